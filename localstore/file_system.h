#pragma once

// Files and folders of the store. Failures are StoreErrors with MAPI's result codes.

#include <windows.h>

#include <optional>
#include <vector>

#include "localstore/property.h"
#include "support/owners.h"

namespace localstore {

/// What tells one version of a file from another without reading it.
struct FileStamp {
    std::uint64_t size = 0;
    std::uint64_t writeTime = 0;
    std::uint64_t fileId = 0;

    friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

struct FileEntry {
    Text name;
    bool isFolder = false;
    FileStamp stamp;
    /// Times are those of a FILETIME.
    std::uint64_t creationTime = 0;
};

struct FileContent {
    Bytes bytes;
    FileStamp stamp;
    std::uint64_t creationTime = 0;
    bool isTooLong = false;
};

/// Files of messages longer than this are taken for damaged.
constexpr std::uint64_t kLongestFile = 512ULL * 1024 * 1024;

/// A path in the form that has no limit of 260 characters.
Text LongPath(const Text& path);
Text JoinPath(const Text& folder, const Text& name);
/// The last component of a path.
Text LastComponent(const Text& path);

/// What a folder holds, ordered by name. Hidden entries, links to elsewhere and names that begin with a point
/// are left out. A folder that is not there is empty.
std::vector<FileEntry> ListFolder(const Text& path);
/// The names of the folders among that.
std::vector<Text> ListSubFolders(const Text& path);
/// True if one of them is there. Stops at the first.
bool HasSubFolders(const Text& path);

bool FolderExists(const Text& path);
bool IsReadOnlyFile(const Text& path);

/// The file as it is now, without its bytes. Nothing if it is not there.
std::optional<FileEntry> QueryFile(const Text& path);

/// A whole file. The stamp was taken before the first byte was read. Of one that is longer than kLongestFile
/// no byte is read.
FileContent ReadWholeFile(const Text& path);

/// A file that is written whole under another name beside the place where it is to stand, so that its final
/// name always stands for the old or the new content. It goes away unless it gets that name.
class WrittenFile {
  public:
    /// Writes the bytes into a folder and onto its disk.
    WrittenFile(const Text& folder, const Bytes& bytes);
    WrittenFile(const WrittenFile&) = delete;
    WrittenFile& operator=(const WrittenFile&) = delete;
    ~WrittenFile();

    /// Gives the file its name, a path in the same folder, and returns the stamp under which it will be
    /// listed. An existing file ends in MAPI_E_COLLISION, or with `replace` in its place being taken, unless
    /// it is marked as read-only: then in MAPI_E_NO_ACCESS. A failure says that the file does not have the
    /// name: nothing can fail any more once it has.
    FileStamp Rename(const Text& path, bool replace);

  private:
    void Fill(const Bytes& bytes);
    void Remove() noexcept;

    /// Where the file is, in the form without a limit; empty once it has its final name.
    Text m_place;
    FileHandle m_file;
};

void RemoveFile(const Text& path);

/// The text of a file: UTF-16 or UTF-8 with a byte order mark, else UTF-8 if it is valid, else the system's
/// code page. Nothing if there is no such file or it is longer than a megabyte.
std::optional<Text> ReadTextFile(const Text& path);

}  // namespace localstore
