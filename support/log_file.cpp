#include "support/log_file.h"

#include <array>

#include "support/errors.h"
#include "support/owners.h"

int g_nLogLevel = 0;
CString g_strLogFile;

namespace {

constexpr const wchar_t* kKeyName = L"SoftWare\\Lornwick\\LogFiles";

[[noreturn]] void Fail(const LogFileCalls& calls, const wchar_t* text) {
    calls.outputDebugString(text);
    AfxThrowUserException();
}

CString ModulePath(const wchar_t* moduleName, bool isLibrary, const LogFileCalls& calls) {
    const CString file = CString::Format(isLibrary ? L"%s.dll" : L"%s.exe", moduleName);
    std::array<wchar_t, MAX_PATH> path{};
    if (calls.getModuleFileName(GetModuleHandleW(file.c_str()), path.data(),
                                static_cast<DWORD>(path.size())) == 0) {
        Fail(calls, L"CLogFile::Init - Failed to Get Module Name\r\n");
    }
    path.back() = L'\0';
    return {path.data()};
}

int LevelOf(const CString& path, const LogFileCalls& calls) {
    RegistryKey key;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, kKeyName, 0, KEY_QUERY_VALUE, key.Put()) != ERROR_SUCCESS) {
        Fail(calls, L"CLogFile::Init - Failed to Open Register Key\r\n");
    }
    DWORD level = 0;
    DWORD size = sizeof(level);
    if (RegQueryValueExW(key.Get(), path.c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(&level), &size) !=
        ERROR_SUCCESS) {
        Fail(calls, L"CLogFile::Init - Failed to Query Register Value\r\n");
    }
    return static_cast<int>(level);
}

/// A path without a "." stays as it is.
CString LogPath(CString path) {
    const std::size_t dot = path.rfind(L'.');
    if (dot != CString::npos) {
        path.erase(dot);
        path += L".log";
    }
    return path.Trim();
}

}  // namespace

void CLogFile::Init(const wchar_t* moduleName, bool isLibrary, int defaultLevel, const LogFileCalls& calls) {
    g_nLogLevel = defaultLevel;
    try {
        const CString path = ModulePath(moduleName, isLibrary, calls);
        g_nLogLevel = LevelOf(path, calls);
        g_strLogFile = LogPath(path);
    } catch (...) {
        // The debug string is all that is left of it.
    }
}
