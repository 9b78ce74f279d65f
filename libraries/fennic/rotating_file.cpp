#include "libraries/fennic/rotating_file.h"

#include <algorithm>
#include <cwctype>

#include "support/fnv.h"

namespace {

/// How long a line waits, in milliseconds, for a process that holds the mutex. A process that was stopped
/// must not stop all the others.
constexpr DWORD kLongestWait = 2000;

/// A mutex by which all processes that write to the path exclude each other. Names of kernel objects are
/// short and hold no backslash, so the path goes in as a number.
Handle CreatePathMutex(CString path) {
    std::transform(path.begin(), path.end(), path.begin(),
                   [](wchar_t unit) { return static_cast<wchar_t>(std::towupper(unit)); });
    const CString name = CString::Format(L"Global\\Fennic64-%016I64x", Fnv1a(path.View()));
    return Handle(CreateMutexExW(nullptr, name.c_str(), 0, SYNCHRONIZE | MUTEX_MODIFY_STATE));
}

/// Holds the mutex if it can be had in time.
class PathLock {
  public:
    explicit PathLock(HANDLE mutex) noexcept : m_mutex(mutex) {
        if (mutex != nullptr) {
            const DWORD result = WaitForSingleObject(mutex, kLongestWait);
            m_held = result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
        }
    }
    PathLock(const PathLock&) = delete;
    PathLock& operator=(const PathLock&) = delete;
    ~PathLock() {
        if (m_held) {
            ReleaseMutex(m_mutex);
        }
    }

  private:
    HANDLE m_mutex;
    bool m_held = false;
};

}  // namespace

RotatingFile::RotatingFile(CString path, std::uint64_t sizeLimit)
    : m_path(std::move(path)), m_sizeLimit(sizeLimit), m_mutex(CreatePathMutex(m_path)) {}

bool RotatingFile::Append(std::string_view bytes) {
    const PathLock lock(m_mutex.Get());
    if (!PrepareToWrite()) {
        return false;
    }
    DWORD written = 0;
    return WriteFile(m_file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) != 0 &&
           written == bytes.size();
}

/// Opens the file for appending, so that others may append to it, rename it and delete it meanwhile.
bool RotatingFile::Open() {
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    m_file.Reset(CreateFileW(m_path.c_str(), FILE_APPEND_DATA | FILE_READ_ATTRIBUTES | SYNCHRONIZE, kShareAll,
                             nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    return static_cast<bool>(m_file);
}

RotatingFile::State RotatingFile::Look() const {
    FILE_STANDARD_INFO info{};
    if (!m_file || GetFileInformationByHandleEx(m_file.Get(), FileStandardInfo, &info, sizeof(info)) == 0 ||
        info.DeletePending != 0 || info.NumberOfLinks == 0) {
        return State::kGone;
    }
    return static_cast<std::uint64_t>(info.EndOfFile.QuadPart) >= m_sizeLimit ? State::kFull : State::kFits;
}

/// Leaves a file open that has room. An open file that is full may be one that another process has moved
/// aside, so the path is opened anew before anything is moved. If moving fails, the full file takes the line:
/// no line is lost for it.
bool RotatingFile::PrepareToWrite() {
    if (Look() == State::kFits) {
        return true;
    }
    if (!Open()) {
        return false;
    }
    if (Look() != State::kFull) {
        return true;
    }
    Rotate();
    return Open();
}

void RotatingFile::Rotate() {
    m_file.Reset();
    const CString first = m_path + L".1";
    const CString second = m_path + L".2";
    MoveFileExW(first.c_str(), second.c_str(), MOVEFILE_REPLACE_EXISTING);
    MoveFileExW(m_path.c_str(), first.c_str(), MOVEFILE_REPLACE_EXISTING);
}
