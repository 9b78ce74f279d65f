#include "support/log_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "support/owners.h"
#include "tests/unit/text_printer.h"

namespace {

std::vector<CString> g_debugStrings;
CString g_imagePath;

void WINAPI KeepDebugString(LPCWSTR text) {
    g_debugStrings.emplace_back(text);
}

DWORD WINAPI ImagePath(HMODULE /*module*/, LPWSTR path, DWORD size) {
    return static_cast<DWORD>(g_imagePath.copy(path, size));
}

class LogFile : public ::testing::Test {
  protected:
    static constexpr const wchar_t* kKey = L"SoftWare\\Lornwick\\LogFiles";

    void SetUp() override {
        g_debugStrings.clear();
        g_imagePath = L"C:\\a.b\\Agent.exe";
        g_nLogLevel = 77;
        g_strLogFile.clear();
        RegDeleteTreeW(HKEY_CURRENT_USER, kKey);
    }
    void TearDown() override { RegDeleteTreeW(HKEY_CURRENT_USER, kKey); }

    static void SetLevel(const CString& name, DWORD level) {
        RegistryKey key;
        ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, kKey, 0, nullptr, 0, KEY_SET_VALUE, nullptr, key.Put(),
                                  nullptr),
                  ERROR_SUCCESS);
        RegSetValueExW(key.Get(), name.c_str(), 0, REG_DWORD, reinterpret_cast<const BYTE*>(&level),
                       sizeof(level));
    }
    static void Init() {
        LogFileCalls calls;
        calls.getModuleFileName = &ImagePath;
        calls.outputDebugString = &KeepDebugString;
        CLogFile::Init(L"ZebAgentOutlook64", false, 4, calls);
    }
};

TEST_F(LogFile, WithoutTheKeyTheDefaultLevelStaysWithOneDebugString) {
    Init();
    EXPECT_EQ(g_nLogLevel, 4);
    EXPECT_EQ(g_strLogFile, L"");
    EXPECT_EQ(g_debugStrings, (std::vector<CString>{L"CLogFile::Init - Failed to Open Register Key\r\n"}));
}

TEST_F(LogFile, WithoutTheValueTheDefaultLevelStays) {
    SetLevel(L"C:\\other.exe", 1);
    Init();
    EXPECT_EQ(g_nLogLevel, 4);
    EXPECT_EQ(g_strLogFile, L"");
    EXPECT_EQ(g_debugStrings, (std::vector<CString>{L"CLogFile::Init - Failed to Query Register Value\r\n"}));
}

TEST_F(LogFile, WithoutTheImagePathTheDefaultLevelStays) {
    g_imagePath.clear();
    Init();
    EXPECT_EQ(g_nLogLevel, 4);
    EXPECT_EQ(g_debugStrings, (std::vector<CString>{L"CLogFile::Init - Failed to Get Module Name\r\n"}));
}

TEST_F(LogFile, ValueOfTheImageGivesLevelAndPath) {
    SetLevel(g_imagePath, 1);
    Init();
    EXPECT_EQ(g_nLogLevel, 1);
    EXPECT_EQ(g_strLogFile, L"C:\\a.b\\Agent.log");
    EXPECT_TRUE(g_debugStrings.empty());
}

TEST_F(LogFile, PathIsCutAtItsLastDotWhereverThatIs) {
    g_imagePath = L"C:\\a.b\\Agent";
    SetLevel(g_imagePath, 3);
    Init();
    EXPECT_EQ(g_strLogFile, L"C:\\a.log");
}

TEST_F(LogFile, PathWithoutADotStaysAsItIs) {
    g_imagePath = L"C:\\ab\\Agent";
    SetLevel(g_imagePath, 3);
    Init();
    EXPECT_EQ(g_nLogLevel, 3);
    EXPECT_EQ(g_strLogFile, L"C:\\ab\\Agent");
}

TEST_F(LogFile, LevelOfALongPathStandsUnderItsFirst259Characters) {
    for (const std::size_t length : {258U, 259U, 260U, 300U}) {
        g_imagePath = CString(WideString(length, L'x'));
        SetLevel(g_imagePath.substr(0, 259), static_cast<DWORD>(length));
        Init();
        EXPECT_EQ(g_nLogLevel, static_cast<int>(length));
        EXPECT_EQ(g_strLogFile.size(), std::min<std::size_t>(length, 259));
    }
}

TEST_F(LogFile, RealImageIsFoundWhenNoModuleHasTheName) {
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    SetLevel(path, 2);
    CLogFile::Init(L"ZebAgentOutlook64", false, 4);
    EXPECT_EQ(g_nLogLevel, 2);
}

TEST_F(LogFile, LibraryIsLookedForByItsOwnName) {
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(GetModuleHandleW(L"kernel32.dll"), path, MAX_PATH);
    SetLevel(path, 9);
    CLogFile::Init(L"kernel32", true, 4);
    EXPECT_EQ(g_nLogLevel, 9);
}

}  // namespace
