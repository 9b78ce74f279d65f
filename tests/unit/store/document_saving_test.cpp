// How the profile document and the folder document get to their files, or do not.

#include "tests/unit/store/documents_fixture.h"
#include "tests/unit/store/without_document_class.h"
#include "tests/unit/text_printer.h"

namespace {

TEST_F(Documents, ProfilesWithoutAPathGoNowhereAndOverwriteNothing) {
    g_strProfileXml.clear();
    EXPECT_EQ(g_MAPIObject.GetAppProfile(m_buffer), 0);
    EXPECT_EQ(m_buffer[0], L'x');
    EXPECT_EQ(m_buffer[1], L'\0');
    m_expectedBuffers = 2;
}

TEST_F(Documents, ProfilesThatCannotBeSavedFailWithTheirLine) {
    g_strProfileXml = CString((m_documents + L"\\missing\\Profile.xml").c_str());
    EXPECT_EQ(g_MAPIObject.GetAppProfile(m_buffer), 1);
    const LogLines log = TakeLog();
    EXPECT_EQ(log[2], (LogLine{3, L"CMAPIObject::GetAppProfile : Failed to Save Profiles\r\n"}));
    EXPECT_EQ(log.back(), (LogLine{1, L"CMAPIObject::GetAppProfile : Finish(1)\r\n"}));
    m_expectedBuffers = 2;
}

TEST_F(Documents, FoldersWithoutAPathGoNowhereAndOverwriteNothing) {
    g_strOutlookXml.clear();
    LogOn();
    EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 0);
    EXPECT_EQ(m_buffer[0], L'x');
}

TEST_F(Documents, FoldersThatCannotBeSavedFailAndTheAgentGoesOn) {
    LogOn();
    const CString path = g_strOutlookXml;
    FileHandle held(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    ASSERT_TRUE(held);
    EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 1);
    const LogLines log = TakeLog();
    EXPECT_EQ(log[log.size() - 2], (LogLine{3, L"CMAPIObject::GetAppFolder : Failed to Save Folders\r\n"}));
    EXPECT_EQ(log.back(), (LogLine{1, L"CMAPIObject::GetAppFolder : Finish(1)\r\n"}));
    held.Reset();
    EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 0);
}

TEST_F(Documents, SavedDocumentEmptiesTheBuffer) {
    LogOn();
    EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 0);
    EXPECT_EQ(m_buffer[0], L'\0');
    m_buffer[0] = L'x';
    EXPECT_EQ(g_MAPIObject.GetAppProfile(m_buffer), 0);
    EXPECT_EQ(m_buffer[0], L'\0');
    m_expectedBuffers = 2;
}

TEST_F(Documents, FolderDocumentIsRewrittenAtEachCall) {
    LogOn();
    EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 0);
    const std::string first = Saved(g_strOutlookXml);
    std::ofstream(std::filesystem::path(g_strOutlookXml.c_str())) << std::string(100000, 'x');
    EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 0);
    EXPECT_EQ(Saved(g_strOutlookXml), first);
}

TEST_F(Documents, ProfileDocumentIsRewrittenAtEachCall) {
    EXPECT_EQ(g_MAPIObject.GetAppProfile(m_buffer), 0);
    const std::string first = Saved(g_strProfileXml);
    std::ofstream(std::filesystem::path(g_strProfileXml.c_str())) << std::string(100000, 'x');
    EXPECT_EQ(g_MAPIObject.GetAppProfile(m_buffer), 0);
    EXPECT_EQ(Saved(g_strProfileXml), first);
    m_expectedBuffers = 4;
}

constexpr const char* kWritableAllTheSame =
    "THIS USER CAN WRITE FILES THAT MAY ONLY BE READ, as root can under Wine: run the tests as another user";

/// A file that may only be read, as long as this lives.
class ReadOnlyFile {
  public:
    ReadOnlyFile(const CString& path, const std::string& text) : m_path(path.c_str()) {
        std::ofstream(std::filesystem::path(m_path), std::ios::binary) << text;
        EXPECT_NE(SetFileAttributesW(m_path.c_str(), FILE_ATTRIBUTE_READONLY), 0);
    }
    ReadOnlyFile(const ReadOnlyFile&) = delete;
    ReadOnlyFile& operator=(const ReadOnlyFile&) = delete;
    ~ReadOnlyFile() { SetFileAttributesW(m_path.c_str(), FILE_ATTRIBUTE_NORMAL); }

    /// False where files can be written all the same, as under Wine for the user root.
    [[nodiscard]] bool IsRespected() const {
        return !FileHandle(CreateFileW(m_path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                       nullptr, OPEN_EXISTING, 0, nullptr));
    }
    [[nodiscard]] std::string Text() const {
        std::ifstream file(std::filesystem::path(m_path), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

  private:
    std::wstring m_path;
};

TEST_F(Documents, ProfilesAreNotSavedOverAFileThatMayOnlyBeRead) {
    {
        const ReadOnlyFile file(g_strProfileXml, "as it was");
        if (!file.IsRespected()) {
            GTEST_SKIP() << kWritableAllTheSame;
        }
        EXPECT_EQ(g_MAPIObject.GetAppProfile(m_buffer), 1);
        EXPECT_EQ(TakeLog()[2], (LogLine{3, L"CMAPIObject::GetAppProfile : Failed to Save Profiles\r\n"}));
        EXPECT_EQ(file.Text(), "as it was");
    }
    EXPECT_EQ(g_MAPIObject.GetAppProfile(m_buffer), 0);
    EXPECT_TRUE(Saved(g_strProfileXml).ends_with("</profiles>"));
    m_expectedBuffers = 4;
}

TEST_F(Documents, FoldersAreNotSavedOverAFileThatMayOnlyBeRead) {
    LogOn();
    {
        const ReadOnlyFile file(g_strOutlookXml, "as it was");
        if (!file.IsRespected()) {
            GTEST_SKIP() << kWritableAllTheSame;
        }
        EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 1);
        const LogLines log = TakeLog();
        EXPECT_EQ(log[log.size() - 2],
                  (LogLine{3, L"CMAPIObject::GetAppFolder : Failed to Save Folders\r\n"}));
        EXPECT_EQ(file.Text(), "as it was");
    }
    EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 0);
    EXPECT_TRUE(Saved(g_strOutlookXml).ends_with("</folders>"));
}

TEST_F(Documents, ProfilesWithoutTheXmlServiceFailWithTheirLine) {
    const WithoutDocumentClass broken;
    EXPECT_EQ(g_MAPIObject.GetAppProfile(m_buffer), 1);
    const LogLines log = TakeLog();
    EXPECT_EQ(log[1], (LogLine{3, L"CMAPIObject::GetAppProfile : Failed to Init XMLParser\r\n"}));
    EXPECT_EQ(log.back(), (LogLine{1, L"CMAPIObject::GetAppProfile : Finish(1)\r\n"}));
    EXPECT_FALSE(std::filesystem::exists(g_strProfileXml.c_str()));
}

TEST_F(Documents, FoldersWithoutTheXmlServiceFailWithTheirLine) {
    LogOn();
    const WithoutDocumentClass broken;
    EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 1);
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::GetAppFolder : Begin\r\n"},
                                   {3, L"CMAPIObject::GetAppFolder : Failed to Init XMLParser\r\n"},
                                   {1, L"CMAPIObject::GetAppFolder : Finish(1)\r\n"}}));
    EXPECT_FALSE(std::filesystem::exists(g_strOutlookXml.c_str()));
}

}  // namespace
