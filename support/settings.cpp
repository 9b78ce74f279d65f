#include "support/settings.h"

#include <windows.h>

#include <iterator>

CString g_strModulePath;
CString g_strFilterChars;
bool g_bSubFolder = false;
bool g_bPicDelete = false;
CString g_strOutlookXml;
CString g_strProfileXml;

namespace {

/// Reads the keys of one settings file; a value is cut to 259 characters.
class SettingsFile {
  public:
    explicit SettingsFile(CString path) : m_path(std::move(path)) {}

    [[nodiscard]] CString Text(const wchar_t* key, const wchar_t* otherwise) const {
        wchar_t value[260] = {};
        GetPrivateProfileStringW(L"Outlook", key, otherwise, value, static_cast<DWORD>(std::size(value)),
                                 m_path.c_str());
        return value;
    }

    [[nodiscard]] bool Flag(const wchar_t* key, const wchar_t* otherwise) const {
        return Text(key, otherwise).EqualsNoCase(L"true");
    }

  private:
    CString m_path;
};

}  // namespace

void LoadSettings(decltype(&::GetModuleFileNameW) getModuleFileName) {
    g_strModulePath.clear();
    wchar_t image[MAX_PATH] = {};
    const DWORD length = getModuleFileName(nullptr, image, static_cast<DWORD>(std::size(image)));
    if (length == 0) {
        return;
    }
    const WideView path(image, length);
    g_strModulePath = path.substr(0, path.rfind(L'\\') + 1);
    LoadSettingsFrom(g_strModulePath);
}

void LoadSettingsFrom(const CString& folder, const FolderCalls& calls) {
    const SettingsFile file(CString::Format(L"%sPIMProfile.ini", folder.c_str()));
    g_strFilterChars = file.Flag(L"filter", L"") ? file.Text(L"chars", L"") : CString();
    g_bSubFolder = file.Flag(L"subfolder", L"false");
    g_bPicDelete = file.Flag(L"picdelete", L"true");
    g_strOutlookXml.clear();
    g_strProfileXml.clear();
    const CString xmlPath = file.Text(L"XMLPath", L"");
    if (!xmlPath.empty()) {
        g_strOutlookXml = CString::Format(L"%s\\Outlook.xml", MakeXMLFolder(xmlPath, calls).c_str());
        g_strProfileXml = CString::Format(L"%s\\Profile.xml", MakeXMLFolder(xmlPath, calls).c_str());
    }
}
