#include "desktop/agent_settings.h"

#include <windows.h>

#include <shlobj.h>

#include <iterator>
#include <string_view>

#include "desktop/failure.h"
#include "support/owners.h"

namespace {

constexpr std::string_view kDefaultSettings =
    "; Settings of ZebAgentForOutlook64.exe, which reads them when it starts.\r\n"
    "\r\n"
    "[Outlook]\r\n"
    "; The folder for the lists of profiles and of folders, below the application data folder of the "
    "user.\r\n"
    "; Without it \"zebdesk profiles\" and \"zebdesk folders\" have nothing to show.\r\n"
    "XMLPath=ZebAgent\r\n"
    "; true: counts and reads go on into the folders below the one that is read.\r\n"
    "subfolder=true\r\n";

/// The value of a key as the agent reads it, cut to 259 characters.
CString Setting(const CString& settings, const wchar_t* key) {
    wchar_t value[MAX_PATH] = {};
    GetPrivateProfileStringW(L"Outlook", key, L"", value, static_cast<DWORD>(std::size(value)),
                             settings.c_str());
    return value;
}

[[noreturn]] void ThrowUnwritable(const CString& settings) {
    throw Failure(ExitCode::kOutputFailed, settings + L" cannot be written");
}

}  // namespace

CString SettingsPath(const CString& agent) {
    return CString(agent.View().substr(0, agent.find_last_of(L"\\/") + 1)) + L"PIMProfile.ini";
}

CString DocumentFolder(const CString& settings) {
    const CString xmlPath = Setting(settings, L"XMLPath");
    wchar_t data[MAX_PATH] = {};
    if (xmlPath.empty() || SHGetSpecialFolderPathW(nullptr, data, CSIDL_APPDATA, TRUE) == FALSE) {
        return {};
    }
    return CString(data) + L"\\" + xmlPath;
}

bool WriteDefaultSettings(const CString& settings) {
    FileHandle file(
        CreateFileW(settings.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) {
        if (GetLastError() == ERROR_FILE_EXISTS) {
            return false;
        }
        ThrowUnwritable(settings);
    }
    DWORD written = 0;
    if (WriteFile(file.Get(), kDefaultSettings.data(), static_cast<DWORD>(kDefaultSettings.size()), &written,
                  nullptr) == 0 ||
        written != kDefaultSettings.size()) {
        // A file that is cut short would be taken for the user's own the next time.
        file.Reset();
        DeleteFileW(settings.c_str());
        ThrowUnwritable(settings);
    }
    return true;
}
