#include "support/user_folders.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <new>

#include "tests/unit/text_printer.h"

namespace {

bool IsFolder(const CString& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// Substitutes for the platform's functions.
CString asked;
int directoryResult = 0;

BOOL WINAPI NoSpecialFolder(HWND, LPWSTR, int, BOOL) {
    return FALSE;
}
BOOL WINAPI FolderX(HWND, LPWSTR path, int folder, BOOL create) {
    EXPECT_EQ(folder, 26);
    EXPECT_TRUE(create);
    wcscpy(path, L"X:\\data");
    return TRUE;
}
DWORD WINAPI TemporaryX(DWORD size, LPWSTR path) {
    EXPECT_EQ(size, 260U);
    wcscpy(path, L"X:\\temp");
    return 7;
}
int WINAPI RecordDirectory(HWND, LPCWSTR path, const SECURITY_ATTRIBUTES*) {
    asked = path;
    return directoryResult;
}
int WINAPI ThrowFromDirectory(HWND, LPCWSTR, const SECURITY_ATTRIBUTES*) {
    throw std::bad_alloc();
}

FolderCalls Substitutes(int result = ERROR_SUCCESS) {
    asked.clear();
    directoryResult = result;
    return {&FolderX, &TemporaryX, &RecordDirectory};
}

TEST(PrepareDataFolder, MakesTheFolderBelowTheApplicationData) {
    PrepareDataFolder();
    EXPECT_TRUE(g_strDataFolder.ends_with(L"\\Outlook")) << testing::PrintToString(g_strDataFolder);
    EXPECT_TRUE(IsFolder(g_strDataFolder));
}

TEST(PrepareDataFolder, AsksForTheApplicationDataFolder) {
    PrepareDataFolder(Substitutes());
    EXPECT_EQ(g_strDataFolder, L"X:\\data\\Outlook");
    EXPECT_EQ(asked, L"X:\\data\\Outlook");
}

TEST(PrepareDataFolder, WithoutApplicationDataTheTemporaryFolderTakesItsPlace) {
    FolderCalls calls = Substitutes();
    calls.getSpecialFolderPath = &NoSpecialFolder;
    PrepareDataFolder(calls);
    EXPECT_EQ(g_strDataFolder, L"X:\\temp\\Outlook");
    EXPECT_EQ(asked, L"X:\\temp\\Outlook");
}

BOOL WINAPI FolderOf259Characters(HWND, LPWSTR path, int, BOOL) {
    *std::fill_n(path, 259, L'x') = L'\0';
    return TRUE;
}
/// A path that does not fit is not written at all; the result tells the room that it takes.
DWORD WINAPI TemporaryThatDoesNotFit(DWORD size, LPWSTR) {
    return size + 1;
}

TEST(PrepareDataFolder, AFolderOf259CharactersIsTakenWhole) {
    FolderCalls calls = Substitutes();
    calls.getSpecialFolderPath = &FolderOf259Characters;
    PrepareDataFolder(calls);
    EXPECT_EQ(g_strDataFolder, CString(WideString(259, L'x') + L"\\Outlook"));
    EXPECT_EQ(asked, g_strDataFolder);
}

TEST(PrepareDataFolder, ATemporaryFolderThatDoesNotFitLeavesTheRootOfTheDrive) {
    FolderCalls calls = Substitutes();
    calls.getSpecialFolderPath = &NoSpecialFolder;
    calls.getTempPath = &TemporaryThatDoesNotFit;
    PrepareDataFolder(calls);
    EXPECT_EQ(g_strDataFolder, L"\\Outlook");
}

TEST(PrepareDataFolder, FolderThatCannotBeMadeGoesUnnoticed) {
    PrepareDataFolder(Substitutes(ERROR_ACCESS_DENIED));
    EXPECT_EQ(g_strDataFolder, L"X:\\data\\Outlook");
}

TEST(PrepareDataFolder, AnExceptionLeavesThePathEmpty) {
    FolderCalls calls = Substitutes();
    calls.createDirectory = &ThrowFromDirectory;
    g_strDataFolder = L"before";
    PrepareDataFolder(calls);
    EXPECT_EQ(g_strDataFolder, L"");
}

TEST(MakeXMLFolder, EmptyPathGivesTheApplicationDataFolderAndMakesNothing) {
    EXPECT_EQ(MakeXMLFolder({}, Substitutes()), L"X:\\data");
    EXPECT_EQ(asked, L"");
}

TEST(MakeXMLFolder, AFolderThatIsMadeOrThereAlreadyIsASuccess) {
    for (const int result : {0, 80, 183}) {
        EXPECT_EQ(MakeXMLFolder(L"a\\b", Substitutes(result)), L"X:\\data\\a\\b") << result;
        EXPECT_EQ(asked, L"X:\\data\\a\\b");
    }
}

TEST(MakeXMLFolder, AnyOtherResultGivesTheEmptyPath) {
    for (const int result : {3, 5, 161, 1223, -1}) {
        EXPECT_EQ(MakeXMLFolder(L"a", Substitutes(result)), L"") << result;
    }
}

TEST(MakeXMLFolder, WithoutApplicationDataThePathIsEmpty) {
    FolderCalls calls = Substitutes();
    calls.getSpecialFolderPath = &NoSpecialFolder;
    EXPECT_EQ(MakeXMLFolder(L"a", calls), L"");
    EXPECT_EQ(asked, L"");
}

TEST(MakeXMLFolder, MakesAllParentsAndTakesAFolderThatIsThere) {
    const CString top = CString::Format(L"ZebTest%lu", static_cast<unsigned long>(GetCurrentProcessId()));
    const CString path = MakeXMLFolder(top + L"\\b");
    EXPECT_TRUE(path.ends_with(top + L"\\b")) << testing::PrintToString(path);
    EXPECT_TRUE(IsFolder(path));
    EXPECT_EQ(MakeXMLFolder(top + L"\\b"), path);
    EXPECT_TRUE(RemoveDirectoryW(path.c_str()));
    EXPECT_TRUE(RemoveDirectoryW(CString(path.substr(0, path.rfind(L'\\'))).c_str()));
}

}  // namespace
