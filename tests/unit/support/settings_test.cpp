#include "support/settings.h"

#include <gtest/gtest.h>

#include "tests/unit/temporary_folder.h"
#include "tests/unit/text_printer.h"

namespace {

BOOL WINAPI FolderX(HWND, LPWSTR path, int, BOOL) {
    wcscpy(path, L"X:\\data");
    return TRUE;
}
int WINAPI MakeNothing(HWND, LPCWSTR, const SECURITY_ATTRIBUTES*) {
    return ERROR_SUCCESS;
}
int WINAPI RefuseFolder(HWND, LPCWSTR, const SECURITY_ATTRIBUTES*) {
    return ERROR_ACCESS_DENIED;
}

class Settings : public testing::Test {
  protected:
    /// Loads a settings file with some lines in its section.
    void Load(const std::string& lines) {
        m_folder.Write(L"PIMProfile.ini", "[Outlook]\r\n" + lines);
        LoadSettingsFrom(m_folder.Path(), m_calls);
    }

    TemporaryFolder m_folder;
    FolderCalls m_calls{&FolderX, &::GetTempPathW, &MakeNothing};
};

TEST_F(Settings, WithoutAFileEveryKeyHasItsDefault) {
    LoadSettingsFrom(m_folder.Path(), m_calls);
    EXPECT_EQ(g_strFilterChars, L"");
    EXPECT_FALSE(g_bSubFolder);
    EXPECT_TRUE(g_bPicDelete);
    EXPECT_EQ(g_strOutlookXml, L"");
    EXPECT_EQ(g_strProfileXml, L"");
}

TEST_F(Settings, AnEmptySectionGivesTheSame) {
    Load("");
    EXPECT_FALSE(g_bSubFolder);
    EXPECT_TRUE(g_bPicDelete);
    EXPECT_EQ(g_strOutlookXml, L"");
}

TEST_F(Settings, SubfolderIsTrueInAnyCaseAndFalseOtherwise) {
    for (const char* value : {"true", "TRUE", "True", " true ", "\"true\""}) {
        Load(std::string("subfolder=") + value);
        EXPECT_TRUE(g_bSubFolder) << value;
    }
    for (const char* value : {"1", "yes", "", "false", "truely", "tru"}) {
        Load(std::string("subfolder=") + value);
        EXPECT_FALSE(g_bSubFolder) << value;
    }
}

TEST_F(Settings, PicdeleteIsFalseForAnyOtherValue) {
    Load("picdelete=TRUE");
    EXPECT_TRUE(g_bPicDelete);
    for (const char* value : {"false", "1", "no"}) {
        Load(std::string("picdelete=") + value);
        EXPECT_FALSE(g_bPicDelete) << value;
    }
}

TEST_F(Settings, CharsAreReadOnlyWhereFilterIsTrue) {
    Load("filter=True\r\nchars=xyz");
    EXPECT_EQ(g_strFilterChars, L"xyz");
    Load("filter=false\r\nchars=xyz");
    EXPECT_EQ(g_strFilterChars, L"");
    Load("chars=xyz");
    EXPECT_EQ(g_strFilterChars, L"");
}

TEST_F(Settings, AValueIsCutToItsBuffer) {
    Load("filter=true\r\nchars=" + std::string(300, 'x'));
    EXPECT_EQ(g_strFilterChars, CString(WideString(259, L'x')));
}

TEST_F(Settings, KeysOfAnotherSectionDoNotCount) {
    m_folder.Write(L"PIMProfile.ini", "[Other]\r\nsubfolder=true\r\nXMLPath=a\r\n");
    LoadSettingsFrom(m_folder.Path(), m_calls);
    EXPECT_FALSE(g_bSubFolder);
    EXPECT_EQ(g_strOutlookXml, L"");
}

TEST_F(Settings, XmlPathNamesBothDocuments) {
    Load("XMLPath=a\\b");
    EXPECT_EQ(g_strOutlookXml, L"X:\\data\\a\\b\\Outlook.xml");
    EXPECT_EQ(g_strProfileXml, L"X:\\data\\a\\b\\Profile.xml");
}

TEST_F(Settings, XmlPathThatCannotBeMadeLeavesThePathsInTheRoot) {
    m_calls.createDirectory = &RefuseFolder;
    Load("XMLPath=a");
    EXPECT_EQ(g_strOutlookXml, L"\\Outlook.xml");
    EXPECT_EQ(g_strProfileXml, L"\\Profile.xml");
}

TEST_F(Settings, XmlPathMakesItsFolders) {
    m_calls = {};
    const CString top = CString::Format(L"ZebSettings%lu", static_cast<unsigned long>(GetCurrentProcessId()));
    Load("XMLPath=" + std::string(top.begin(), top.end()) + "\\b");
    const CString folder(g_strOutlookXml.substr(0, g_strOutlookXml.rfind(L'\\')));
    EXPECT_TRUE(folder.ends_with(top + L"\\b")) << testing::PrintToString(folder);
    EXPECT_TRUE(RemoveDirectoryW(folder.c_str()));
    EXPECT_TRUE(RemoveDirectoryW(CString(folder.substr(0, folder.rfind(L'\\'))).c_str()));
}

TEST(LoadSettings, KnowsTheFolderOfTheProcessImage) {
    LoadSettings();
    EXPECT_TRUE(g_strModulePath.ends_with(L"\\")) << testing::PrintToString(g_strModulePath);
    const CString image = g_strModulePath + L"support_tests.exe";
    EXPECT_NE(GetFileAttributesW(image.c_str()), INVALID_FILE_ATTRIBUTES);
}

}  // namespace
