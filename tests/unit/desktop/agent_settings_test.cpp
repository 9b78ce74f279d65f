#include "desktop/agent_settings.h"

#include <gtest/gtest.h>

#include <string>

#include "desktop/failure.h"
#include "tests/unit/temporary_folder.h"

namespace {

/// The user's application data folder, by another way than the one under test.
CString ApplicationData() {
    wchar_t path[MAX_PATH] = {};
    GetEnvironmentVariableW(L"APPDATA", path, MAX_PATH);
    return path;
}

class AgentSettings : public testing::Test {
  protected:
    [[nodiscard]] CString Settings() const { return SettingsPath(m_folder.Path() + L"agent.exe"); }
    [[nodiscard]] CString FolderWith(const std::string& text) const {
        m_folder.Write(L"PIMProfile.ini", text);
        return DocumentFolder(Settings());
    }

    TemporaryFolder m_folder;
};

TEST_F(AgentSettings, StandBesideTheAgent) {
    EXPECT_EQ(Settings(), m_folder.Path() + L"PIMProfile.ini");
    EXPECT_EQ(SettingsPath(L"C:\\a folder\\b/agent.exe"), L"C:\\a folder\\b/PIMProfile.ini");
}

TEST_F(AgentSettings, NameAFolderBelowTheApplicationData) {
    EXPECT_EQ(FolderWith("[Outlook]\r\nXMLPath=a\\b\r\n"), ApplicationData() + L"\\a\\b");
    EXPECT_EQ(FolderWith("; XMLPath=no\r\n[outlook]\nxmlpath = quiet \nXMLPath=later\n"),
              ApplicationData() + L"\\quiet");
}

TEST_F(AgentSettings, AreReadWithTheAgentsLimit) {
    const CString folder = FolderWith("[Outlook]\r\nXMLPath=" + std::string(300, 'x') + "\r\n");
    EXPECT_EQ(folder.size(), ApplicationData().size() + 1 + 259);
}

TEST_F(AgentSettings, NameNoFolderWithoutTheKey) {
    EXPECT_EQ(DocumentFolder(Settings()), L"");
    EXPECT_EQ(FolderWith("[Outlook]\r\nXMLPath=\r\n"), L"");
    EXPECT_EQ(FolderWith("[Other]\r\nXMLPath=a\r\n"), L"");
}

TEST_F(AgentSettings, AreWrittenOnceAndNameAFolder) {
    ASSERT_TRUE(WriteDefaultSettings(Settings()));
    EXPECT_EQ(DocumentFolder(Settings()), ApplicationData() + L"\\ZebAgent");
    m_folder.Write(L"PIMProfile.ini", "mine");
    EXPECT_FALSE(WriteDefaultSettings(Settings()));
    EXPECT_EQ(m_folder.Read(L"PIMProfile.ini"), "mine");
}

TEST_F(AgentSettings, CannotBeWrittenWhereThereIsNoFolder) {
    try {
        WriteDefaultSettings(m_folder.Path() + L"missing\\PIMProfile.ini");
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Code(), ExitCode::kOutputFailed);
    }
}

}  // namespace
