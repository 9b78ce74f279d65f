#include "support/settings.h"

#include <gtest/gtest.h>

#include <algorithm>

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
CString g_imagePath;

/// What the platform does: a path that does not fit is cut, terminator included, and fills the buffer.
DWORD WINAPI ImagePath(HMODULE /*module*/, LPWSTR path, DWORD size) {
    const std::size_t length = g_imagePath.copy(path, size - 1);
    path[length] = L'\0';
    return static_cast<DWORD>(std::min<std::size_t>(g_imagePath.size(), size));
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
    for (const std::size_t length : {258U, 259U, 260U, 300U}) {
        Load("filter=true\r\nchars=" + std::string(length, 'x'));
        EXPECT_EQ(g_strFilterChars, CString(WideString(std::min<std::size_t>(length, 259), L'x'))) << length;
    }
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

TEST(LoadSettings, OfAPathLongerThan259CharactersTakesTheFolderAbove) {
    const TemporaryFolder folder;
    folder.Write(L"PIMProfile.ini", "[Outlook]\r\nsubfolder=true\r\n");
    const CString file(L"\\a.exe");
    const CString longest =
        folder.Path() + CString(WideString(259 - folder.Path().size() - file.size(), L'd'));
    g_imagePath = longest + file;
    ASSERT_EQ(g_imagePath.size(), 259U);
    LoadSettings(&ImagePath);
    EXPECT_EQ(g_strModulePath, longest + L"\\");
    EXPECT_FALSE(g_bSubFolder);

    // The name of the file is all that is cut.
    g_imagePath = longest + L"\\ab.exe";
    LoadSettings(&ImagePath);
    EXPECT_EQ(g_strModulePath, longest + L"\\");

    // From here on the name of its folder is cut too.
    g_imagePath = longest + L"dddddd" + file;
    LoadSettings(&ImagePath);
    EXPECT_EQ(g_strModulePath, folder.Path());
    EXPECT_TRUE(g_bSubFolder);
}

}  // namespace
