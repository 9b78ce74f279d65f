#include "localstore/file_system.h"

#include <winternl.h>

#include <algorithm>
#include <mutex>
#include <set>
#include <string>

#include "localstore/failure.h"
#include "localstore/text_convert.h"

namespace localstore {

namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr std::uint64_t kLongestTextFile = 1024ULL * 1024;
/// Names that are tried for a new file; so many writers are never at work in one folder.
constexpr int kMostTemporaries = 1000;
constexpr wchar_t kTemporaryPrefix[] = L"~localstore-";
/// A file that a writer left behind is removed when nobody can be at work on it any more. In units of 100 ns.
constexpr std::uint64_t kTemporaryLifetime = 3600ULL * 10'000'000;

std::uint64_t Join(DWORD high, DWORD low) {
    return static_cast<std::uint64_t>(high) << 32U | low;
}

std::uint64_t Join(const FILETIME& time) {
    return Join(time.dwHighDateTime, time.dwLowDateTime);
}

FileHandle OpenForReading(const Text& path) {
    return FileHandle(CreateFileW(LongPath(path).c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING,
                                  FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
}

/// No access to the content is asked for, so a file that somebody has locked can be looked at too.
FileHandle OpenForQuery(const Text& longPath) {
    return FileHandle(
        CreateFileW(longPath.c_str(), FILE_READ_ATTRIBUTES, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
}

/// What an open file says of itself; false, with the thread's last error, if it does not.
/// GetFileInformationByHandle would tell all of it in one call, but it also asks for the volume, which some
/// systems take a thousand times as long for.
bool ReadEntry(const FileHandle& file, FileEntry& entry) noexcept {
    FILE_BASIC_INFO basic{};
    FILE_STANDARD_INFO standard{};
    FILE_INTERNAL_INFORMATION identity{};
    IO_STATUS_BLOCK status{};
    if (GetFileInformationByHandleEx(file.Get(), FileBasicInfo, &basic, sizeof(basic)) == FALSE ||
        GetFileInformationByHandleEx(file.Get(), FileStandardInfo, &standard, sizeof(standard)) == FALSE) {
        return false;
    }
    const NTSTATUS result =
        NtQueryInformationFile(file.Get(), &status, &identity, sizeof(identity), FileInternalInformation);
    if (!NT_SUCCESS(result)) {
        SetLastError(RtlNtStatusToDosError(result));
        return false;
    }
    entry.isFolder = standard.Directory != FALSE;
    entry.stamp.size = static_cast<std::uint64_t>(standard.EndOfFile.QuadPart);
    entry.stamp.writeTime = static_cast<std::uint64_t>(basic.LastWriteTime.QuadPart);
    entry.stamp.fileId = static_cast<std::uint64_t>(identity.IndexNumber.QuadPart);
    entry.creationTime = static_cast<std::uint64_t>(basic.CreationTime.QuadPart);
    return true;
}

FileEntry EntryOf(const FileHandle& file) {
    FileEntry entry;
    if (!ReadEntry(file, entry)) {
        ThrowFileError();
    }
    return entry;
}

Text NameOf(const FILE_ID_BOTH_DIR_INFO& information) {
    return {information.FileName, information.FileNameLength / sizeof(wchar_t)};
}

bool IsFolder(const FILE_ID_BOTH_DIR_INFO& information) {
    return (information.FileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool IsShown(const FILE_ID_BOTH_DIR_INFO& information) {
    constexpr DWORD left = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_REPARSE_POINT;
    return (information.FileAttributes & left) == 0 && information.FileNameLength != 0 &&
           information.FileName[0] != L'.';
}

FileEntry EntryOf(const FILE_ID_BOTH_DIR_INFO& information) {
    FileEntry entry;
    entry.name = NameOf(information);
    entry.isFolder = IsFolder(information);
    entry.stamp.size = static_cast<std::uint64_t>(information.EndOfFile.QuadPart);
    entry.stamp.writeTime = static_cast<std::uint64_t>(information.LastWriteTime.QuadPart);
    entry.stamp.fileId = static_cast<std::uint64_t>(information.FileId.QuadPart);
    entry.creationTime = static_cast<std::uint64_t>(information.CreationTime.QuadPart);
    return entry;
}

/// Calls `visit` for each entry of a folder that is shown, until it returns false.
template<class Visit>
void VisitFolder(const Text& path, const Visit& visit) {
    const FileHandle folder(CreateFileW(LongPath(path).c_str(), FILE_LIST_DIRECTORY, kShareAll, nullptr,
                                        OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    if (!folder) {
        Require(CodeOfFileError(GetLastError()) == MAPI_E_NOT_FOUND, CodeOfFileError(GetLastError()));
        return;
    }
    constexpr std::size_t bufferSize = std::size_t{64} * 1024;
    std::vector<std::uint64_t> buffer(bufferSize / sizeof(std::uint64_t));
    while (GetFileInformationByHandleEx(folder.Get(), FileIdBothDirectoryInfo, buffer.data(), bufferSize) !=
           FALSE) {
        const auto* place = reinterpret_cast<const BYTE*>(buffer.data());
        for (;;) {
            const auto* information = reinterpret_cast<const FILE_ID_BOTH_DIR_INFO*>(place);
            if (IsShown(*information) && !visit(*information)) {
                return;
            }
            if (information->NextEntryOffset == 0) {
                break;
            }
            place += information->NextEntryOffset;
        }
    }
    Require(GetLastError() == ERROR_NO_MORE_FILES, CodeOfFileError(GetLastError()));
}

void WriteAll(const FileHandle& file, const Bytes& bytes) {
    constexpr std::size_t piece = std::size_t{16} * 1024 * 1024;
    for (std::size_t offset = 0; offset < bytes.size();) {
        const auto size = static_cast<DWORD>(std::min(piece, bytes.size() - offset));
        DWORD written = 0;
        if (WriteFile(file.Get(), bytes.data() + offset, size, &written, nullptr) == FALSE) {
            ThrowFileError();
        }
        Require(written == size, MAPI_E_NOT_ENOUGH_DISK);
        offset += written;
    }
}

/// Makes a file under a name that nobody uses in a folder and stores its path. Processes that share a folder
/// from different machines can have the same number, so that the system decides who has the name.
FileHandle CreateTemporary(const Text& folder, Text& place) {
    const Text stem =
        LongPath(JoinPath(folder, kTemporaryPrefix + std::to_wstring(GetCurrentProcessId()) + L"-"));
    for (int number = 1;; ++number) {
        place = stem + std::to_wstring(number) + L".tmp";
        FileHandle file(CreateFileW(place.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                    FILE_ATTRIBUTE_NORMAL, nullptr));
        if (file) {
            return file;
        }
        const HRESULT code = CodeOfFileError(GetLastError());
        Require(code == MAPI_E_COLLISION && number < kMostTemporaries, code);
    }
}

/// Removes what writers that were ended in the middle have left in a folder. Once for each folder: a look
/// costs as much as the folder is long.
void RemoveLeftovers(const Text& folder) {
    static std::mutex mutex;
    static std::set<Text> done;
    const std::lock_guard lock(mutex);
    if (!done.insert(folder).second) {
        return;
    }
    FILETIME now{};
    GetSystemTimeAsFileTime(&now);
    WIN32_FIND_DATAW found{};
    const FindHandle search(
        FindFirstFileW(LongPath(JoinPath(folder, Text(kTemporaryPrefix) + L"*")).c_str(), &found));
    if (!search) {
        return;
    }
    do {
        if (Join(found.ftLastWriteTime) + kTemporaryLifetime < Join(now)) {
            DeleteFileW(LongPath(JoinPath(folder, found.cFileName)).c_str());
        }
    } while (FindNextFileW(search.Get(), &found) != FALSE);
}

}  // namespace

Text LongPath(const Text& path) {
    return path.starts_with(LR"(\\)") ? path : LR"(\\?\)" + path;
}

Text JoinPath(const Text& folder, const Text& name) {
    if (folder.empty() || name.empty()) {
        return folder + name;
    }
    return folder.back() == L'\\' ? folder + name : folder + L"\\" + name;
}

Text LastComponent(const Text& path) {
    const std::size_t cut = path.rfind(L'\\');
    return cut == Text::npos ? path : path.substr(cut + 1);
}

std::vector<FileEntry> ListFolder(const Text& path) {
    std::vector<FileEntry> entries;
    VisitFolder(path, [&](const FILE_ID_BOTH_DIR_INFO& information) {
        entries.push_back(EntryOf(information));
        return true;
    });
    const auto before = [](const FileEntry& left, const FileEntry& right) { return left.name < right.name; };
    // Most systems list by name.
    if (!std::is_sorted(entries.begin(), entries.end(), before)) {
        std::sort(entries.begin(), entries.end(), before);
    }
    return entries;
}

std::vector<Text> ListSubFolders(const Text& path) {
    std::vector<Text> names;
    VisitFolder(path, [&](const FILE_ID_BOTH_DIR_INFO& information) {
        if (IsFolder(information)) {
            names.push_back(NameOf(information));
        }
        return true;
    });
    std::sort(names.begin(), names.end());
    return names;
}

bool HasSubFolders(const Text& path) {
    bool found = false;
    VisitFolder(path, [&](const FILE_ID_BOTH_DIR_INFO& information) {
        found = IsFolder(information);
        return !found;
    });
    return found;
}

bool FolderExists(const Text& path) {
    const DWORD attributes = GetFileAttributesW(LongPath(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool IsReadOnlyFile(const Text& path) {
    const DWORD attributes = GetFileAttributesW(LongPath(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
}

std::optional<FileEntry> QueryFile(const Text& path) {
    const FileHandle file = OpenForQuery(LongPath(path));
    if (!file) {
        Require(CodeOfFileError(GetLastError()) == MAPI_E_NOT_FOUND, CodeOfFileError(GetLastError()));
        return std::nullopt;
    }
    FileEntry entry = EntryOf(file);
    entry.name = LastComponent(path);
    return entry;
}

FileContent ReadWholeFile(const Text& path) {
    const FileHandle file = OpenForReading(path);
    if (!file) {
        ThrowFileError();
    }
    const FileEntry entry = EntryOf(file);
    FileContent content;
    content.stamp = entry.stamp;
    content.creationTime = entry.creationTime;
    content.isTooLong = content.stamp.size > kLongestFile;
    if (content.isTooLong) {
        return content;
    }
    content.bytes.resize(static_cast<std::size_t>(content.stamp.size));
    DWORD read = 0;
    if (ReadFile(file.Get(), content.bytes.data(), static_cast<DWORD>(content.bytes.size()), &read,
                 nullptr) == FALSE) {
        ThrowFileError();
    }
    content.bytes.resize(read);
    return content;
}

WrittenFile::WrittenFile(const Text& folder, const Bytes& bytes) {
    RemoveLeftovers(folder);
    m_file = CreateTemporary(folder, m_place);
    try {
        Fill(bytes);
    } catch (...) {
        Remove();
        throw;
    }
}

WrittenFile::~WrittenFile() {
    Remove();
}

void WrittenFile::Remove() noexcept {
    m_file.Reset();
    if (!m_place.empty()) {
        DeleteFileW(m_place.c_str());
    }
}

void WrittenFile::Fill(const Bytes& bytes) {
    WriteAll(m_file, bytes);
    if (FlushFileBuffers(m_file.Get()) == FALSE) {
        ThrowFileError();
    }
    // The times of a file are final when its writer has closed it. What is opened now stays with the file
    // through the renaming, whoever may replace it then.
    m_file.Reset();
    m_file = OpenForQuery(m_place);
    if (!m_file) {
        ThrowFileError();
    }
}

FileStamp WrittenFile::Rename(const Text& path, bool replace) {
    // A rename goes over a file that is marked as read-only on some systems.
    Require(!replace || !IsReadOnlyFile(path), MAPI_E_NO_ACCESS);
    const Text target = LongPath(path);
    FileEntry entry = EntryOf(m_file);
    const DWORD flags = MOVEFILE_WRITE_THROUGH | (replace ? MOVEFILE_REPLACE_EXISTING : 0U);
    if (MoveFileExW(m_place.c_str(), target.c_str(), flags) == FALSE) {
        ThrowFileError();
    }
    m_place.clear();
    // Some file systems number files by their place. If the new number cannot be had, the old one makes the
    // file look changed by somebody else, which is on the safe side.
    static_cast<void>(ReadEntry(m_file, entry));
    m_file.Reset();
    return entry.stamp;
}

void RemoveFile(const Text& path) {
    Require(!IsReadOnlyFile(path), MAPI_E_NO_ACCESS);
    if (DeleteFileW(LongPath(path).c_str()) == FALSE) {
        ThrowFileError();
    }
}

std::optional<Text> ReadTextFile(const Text& path) {
    const std::optional<FileEntry> entry = QueryFile(path);
    if (!entry || entry->isFolder || entry->stamp.size > kLongestTextFile) {
        return std::nullopt;
    }
    Bytes bytes = ReadWholeFile(path).bytes;
    if (bytes.size() >= 2 && bytes[0] == 0xFF && bytes[1] == 0xFE) {
        bytes.erase(bytes.begin(), bytes.begin() + 2);
        return TextOfBytes(bytes);
    }
    if (bytes.size() >= 3 && bytes[0] == 0xEF && bytes[1] == 0xBB && bytes[2] == 0xBF) {
        bytes.erase(bytes.begin(), bytes.begin() + 3);
    }
    const Text text = DecodeText(bytes, CP_UTF8);
    return text.find(L'\xFFFD') == Text::npos ? text : DecodeText(bytes, CP_ACP);
}

}  // namespace localstore
