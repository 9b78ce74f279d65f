#include "libraries/fennic/log_settings.h"

#include <windows.h>

#include "support/owners.h"

namespace {

/// The value of an environment variable, or an empty text.
CString ReadVariable(const wchar_t* name) {
    CString value;
    value.resize(GetEnvironmentVariableW(name, nullptr, 0));
    const DWORD length = GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size()));
    value.resize(length < value.size() ? length : 0);
    return value;
}

/// The full path of the process image, or an empty text.
CString ReadImagePath() {
    constexpr std::size_t kLongestPath = 32768;
    CString path;
    path.resize(kLongestPath);
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), kLongestPath);
    path.resize(length < kLongestPath ? length : 0);
    return path;
}

/// The level that the registry names for a process image, or 0.
DWORD ReadRegistryLevel(const CString& imagePath) {
    RegistryKey key;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, L"SoftWare\\Lornwick\\LogFiles", 0, KEY_QUERY_VALUE, key.Put()) !=
        ERROR_SUCCESS) {
        return 0;
    }
    DWORD level = 0;
    DWORD type = 0;
    DWORD size = sizeof(level);
    const LSTATUS status = RegQueryValueExW(key.Get(), imagePath.c_str(), nullptr, &type,
                                            reinterpret_cast<BYTE*>(&level), &size);
    return status == ERROR_SUCCESS && type == REG_DWORD && size == sizeof(level) ? level : 0;
}

CString ReadTemporaryFolder() {
    CString folder;
    folder.resize(MAX_PATH + 1);
    const DWORD length = GetTempPathW(static_cast<DWORD>(folder.size()), folder.data());
    folder.resize(length < folder.size() ? length : 0);
    return folder;
}

}  // namespace

LogSettings ReadLogSettings() {
    const CString image = ReadImagePath();
    LogSettings settings;
    settings.privateLines = ReadVariable(L"FENNIC64_LEVEL") == L"1" || ReadRegistryLevel(image) == 1;
    settings.namedFile = ReadVariable(L"FENNIC64_LOG");
    settings.imageFolder = image.substr(0, image.rfind(L'\\') + 1);
    settings.temporaryFolder = ReadTemporaryFolder();
    return settings;
}
