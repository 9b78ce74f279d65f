#include "support/user_folders.h"

#include <exception>
#include <iterator>

CString g_strDataFolder;

namespace {

/// The user's application data folder, made if it is missing; empty on failure.
CString ApplicationDataFolder(const FolderCalls& calls) {
    wchar_t path[MAX_PATH] = {};
    return calls.getSpecialFolderPath(nullptr, path, CSIDL_APPDATA, TRUE) != FALSE ? CString(path)
                                                                                   : CString();
}

CString TemporaryFolder(const FolderCalls& calls) {
    wchar_t path[MAX_PATH] = {};
    calls.getTempPath(static_cast<DWORD>(std::size(path)), path);
    return path;
}

}  // namespace

void PrepareDataFolder(const FolderCalls& calls) {
    g_strDataFolder.clear();
    try {
        CString folder = ApplicationDataFolder(calls);
        if (folder.empty()) {
            folder = TemporaryFolder(calls);
        }
        g_strDataFolder = CString::Format(L"%s\\Outlook", folder.c_str());
        calls.createDirectory(nullptr, g_strDataFolder.c_str(), nullptr);
    } catch (const std::exception&) {
        g_strDataFolder.clear();
    }
}

CString MakeXMLFolder(const CString& relativePath, const FolderCalls& calls) {
    CString folder = ApplicationDataFolder(calls);
    if (folder.empty() || relativePath.empty()) {
        return folder;
    }
    folder += L'\\';
    folder += relativePath;
    const int result = calls.createDirectory(nullptr, folder.c_str(), nullptr);
    const bool there =
        result == ERROR_SUCCESS || result == ERROR_FILE_EXISTS || result == ERROR_ALREADY_EXISTS;
    return there ? folder : CString();
}
