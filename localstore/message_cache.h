#pragma once

// Messages are read once and kept while their file is unchanged.

#include <list>
#include <memory>
#include <string_view>
#include <unordered_map>

#include "localstore/file_system.h"
#include "localstore/msg_content.h"
#include "localstore/msg_storage.h"

namespace localstore {

/// A message as its file holds it, together with what the file system knows.
struct LoadedMessage {
    std::shared_ptr<const MessageContent> content;
    FileEntry file;
};

/// Reads a message file: MAPI_E_NOT_FOUND if it is gone, MAPI_E_CORRUPT_DATA if it is damaged, which is
/// reported once for every version of the file. A shortage of memory is MAPI_E_NOT_ENOUGH_MEMORY and is not
/// remembered: the next try reads the file again.
class MessageCache {
  public:
    /// Keeps at most `mostBytes` of files.
    explicit MessageCache(const StorageCalls& calls = {}, std::uint64_t mostBytes = KeptBytes())
        : m_calls(calls), m_mostBytes(mostBytes) {}

    /// Bytes of files that are kept on this machine: a quarter of its memory, and at least 256 MB.
    static std::uint64_t KeptBytes() noexcept;

    /// The one cache of the process.
    static MessageCache& Instance();

    /// The message of a file whose listing was just read: an unchanged file is not touched.
    LoadedMessage Load(const Text& path, FileEntry listed);
    /// The message of a file as it is now.
    LoadedMessage Load(const Text& path);
    /// Forgets a file that was written or removed.
    void Forget(const Text& path) noexcept;
    void Clear();
    /// Files read since the start, for tests that count reading.
    [[nodiscard]] std::size_t FilesRead() const { return m_filesRead; }

  private:
    struct Entry {
        Text path;
        FileStamp stamp;
        std::uint64_t creationTime = 0;
        /// Null for a damaged file.
        std::shared_ptr<const MessageContent> content;

        /// What the file counts for. Of a damaged one nothing is kept.
        [[nodiscard]] std::uint64_t Weight() const { return content ? stamp.size : 0; }
    };
    using Place = std::list<Entry>::iterator;

    [[nodiscard]] Place Find(const Text& path);
    LoadedMessage Read(const Text& path);
    void Erase(Place place) noexcept;
    void Trim();

    StorageCalls m_calls;
    std::uint64_t m_mostBytes;
    /// The most recently used first.
    std::list<Entry> m_entries;
    /// The entries by their own paths.
    std::unordered_map<std::wstring_view, Place> m_places;
    /// The entry that was used next after the one that was looked for last. Folders are read in the same
    /// order again and again, so it is mostly the one that is looked for now; the end if there is none.
    Place m_next = m_entries.end();
    std::uint64_t m_bytes = 0;
    std::size_t m_filesRead = 0;
};

}  // namespace localstore
