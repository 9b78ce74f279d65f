#include "libraries/dunmere/map_file.h"

#include "libraries/dunmere/library_log.h"
#include "support/owners.h"

namespace {

/// A map of a million items has about 200 MB.
constexpr LONGLONG kLongestMap = 1LL << 30;

/// Names that are tried for a map that is set aside.
constexpr int kAsideNames = 1000;

/// A file operation that failed, by the platform's error.
struct FileError {
    DWORD code;
};

[[noreturn]] void ThrowLastError() {
    throw FileError{GetLastError()};
}

void Require(BOOL succeeded) {
    if (succeeded == FALSE) {
        ThrowLastError();
    }
}

/// A file that is gone again unless it took the name of another one.
class FileBeside {
  public:
    explicit FileBeside(CString path)
        : m_path(std::move(path)),
          m_file(CreateFileW(m_path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                             nullptr)) {
        if (!m_file) {
            ThrowLastError();
        }
    }
    FileBeside(const FileBeside&) = delete;
    FileBeside& operator=(const FileBeside&) = delete;
    ~FileBeside() {
        if (!m_renamed) {
            m_file.Reset();
            DeleteFileW(m_path.c_str());
        }
    }

    void Fill(const std::string& bytes) {
        DWORD written = 0;
        Require(WriteFile(m_file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr));
        if (written != bytes.size()) {
            throw FileError{ERROR_DISK_FULL};
        }
        Require(FlushFileBuffers(m_file.Get()));
        m_file.Reset();
    }
    void RenameTo(const CString& path) {
        Require(
            MoveFileExW(m_path.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH));
        m_renamed = true;
    }

  private:
    CString m_path;
    FileHandle m_file;
    bool m_renamed = false;
};

/// All bytes of an open file. Nothing if it is longer than any map.
bool ReadAll(HANDLE file, std::string& bytes) {
    LARGE_INTEGER size{};
    Require(GetFileSizeEx(file, &size));
    if (size.QuadPart > kLongestMap) {
        return false;
    }
    bytes.resize(static_cast<std::size_t>(size.QuadPart));
    DWORD read = 0;
    Require(ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr));
    bytes.resize(read);
    return true;
}

}  // namespace

ChangeMap MapFile::Read() {
    ChangeMap map;
    try {
        std::string bytes;
        if (!ReadBytes(bytes)) {
            return map;
        }
        switch (ReadMap(bytes, map)) {
            case MapState::kGood:
                m_good = m_replaceable = true;
                break;
            case MapState::kDamaged:
                SetAside(L"is damaged");
                break;
            case MapState::kNewer:
                SetAside(L"was written by a later version");
                break;
        }
    } catch (const FileError& error) {
        LogLibrary(
            kLibraryFailure,
            L"The map file %s cannot be read (error %lu). All items count as new, and it stays as it is.",
            m_path.c_str(), error.code);
    }
    return map;
}

/// False if there is no file. One that is longer than any map gives no bytes, which is no map either.
bool MapFile::ReadBytes(std::string& bytes) {
    const FileHandle file(CreateFileW(m_path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) {
        const DWORD error = GetLastError();
        if (error != ERROR_FILE_NOT_FOUND && error != ERROR_PATH_NOT_FOUND) {
            throw FileError{error};
        }
        m_replaceable = true;
        return false;
    }
    if (!ReadAll(file.Get(), bytes)) {
        bytes.clear();
    }
    return true;
}

void MapFile::SetAside(const wchar_t* reason) {
    DWORD error = ERROR_SUCCESS;
    for (int number = 1; number <= kAsideNames; ++number) {
        const CString aside = m_path + L".aside" + (number == 1 ? CString() : CString::FromNumber(number));
        if (MoveFileExW(m_path.c_str(), aside.c_str(), MOVEFILE_WRITE_THROUGH) != FALSE) {
            m_replaceable = true;
            LogLibrary(kLibraryFailure, L"The map file %s %s. It is kept as %s, and all items count as new.",
                       m_path.c_str(), reason, aside.c_str());
            return;
        }
        error = GetLastError();
        if (error != ERROR_ALREADY_EXISTS && error != ERROR_FILE_EXISTS) {
            break;
        }
    }
    LogLibrary(kLibraryFailure,
               L"The map file %s %s and cannot be renamed (error %lu). All items count as new, and it stays "
               L"as it is.",
               m_path.c_str(), reason, error);
}

void MapFile::Replace(const std::string& text) noexcept {
    if (!m_replaceable) {
        return;
    }
    try {
        Write(text);
        return;
    } catch (const FileError& error) {
        LogLibrary(
            kLibraryFailure,
            L"The map file %s cannot be written (error %lu). The next comparison finds the same changes "
            L"again.",
            m_path.c_str(), error.code);
    } catch (...) {
        LogLibrary(kLibraryFailure, L"There is no memory for writing the map file %s.", m_path.c_str());
    }
}

void MapFile::Write(const std::string& text) const {
    if (text.size() > static_cast<std::size_t>(kLongestMap)) {
        throw FileError{ERROR_FILE_TOO_LARGE};
    }
    // A rename goes over a file that is marked as read-only on some systems.
    const DWORD attributes = GetFileAttributesW(m_path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
        throw FileError{ERROR_ACCESS_DENIED};
    }
    FileBeside beside(CString(m_path + L".writing"));
    beside.Fill(text);
    beside.RenameTo(m_path);
}
