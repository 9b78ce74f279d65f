#include "desktop/item_output.h"

#include <gtest/gtest.h>

#include "desktop/failure.h"
#include "support/utf8.h"
#include "tests/unit/temporary_folder.h"

namespace {

namespace fs = std::filesystem;

std::unique_ptr<ItemOutput> FilesIn(const CString& folder) {
    Arguments arguments;
    arguments.options = kOptionOut;
    arguments.out = folder;
    return MakeItemOutput(*FindItemKind(L"contacts"), arguments);
}

void Take(ItemOutput& output, const wchar_t* xml) {
    ItemDocument document(L"Contact", xml);
    output.Take(document);
}

TEST(ItemOutput, WritesAFileForEachItem) {
    const TemporaryFolder folder;
    const std::unique_ptr<ItemOutput> output = FilesIn(folder.Path() + L"new\\folder");
    const wchar_t* ada = L"<Contact><PIMID>00AB</PIMID><FULLNAME>Ada \u5C71\U0001F600</FULLNAME></Contact>";
    Take(*output, ada);
    Take(*output, L"<Contact><PIMID>00AC</PIMID></Contact>");
    Take(*FilesIn(folder.Path() + L"new\\folder"), ada);
    std::vector<std::string> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder.File(L"new/folder").c_str())) {
        files.push_back(folder.Read(entry.path().c_str()));
    }
    std::sort(files.begin(), files.end());
    ASSERT_EQ(files.size(), 2U);
    EXPECT_EQ(files[0], "<Contact><PIMID>00AB</PIMID><FULLNAME>Ada \u5C71\U0001F600</FULLNAME></Contact>");
    EXPECT_EQ(files[1], "<Contact><PIMID>00AC</PIMID></Contact>");
}

TEST(ItemOutput, RefusesAFolderThatIsAFile) {
    const TemporaryFolder folder;
    folder.Write(L"file", "x");
    try {
        FilesIn(folder.Path() + L"file");
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Code(), ExitCode::kOutputFailed);
    }
}

TEST(ItemOutput, SaysWhenAFileCannotBeWritten) {
    const TemporaryFolder folder;
    const wchar_t* xml = L"<Contact><PIMID>00AB</PIMID></Contact>";
    Take(*FilesIn(folder.Path()), xml);
    const fs::path file = fs::directory_iterator(folder.Path().c_str())->path();
    fs::remove(file);
    fs::create_directories(file / "in the way");
    EXPECT_THROW(Take(*FilesIn(folder.Path()), xml), Failure);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path().c_str()), fs::directory_iterator()), 1);
}

/// A folder in which an agent has left a picture, and another one that a read writes to.
class ItemOutputPicture : public ::testing::Test {
  protected:
    void SetUp() override {
        fs::create_directories(m_agent.c_str());
        m_folder.Write(L"agent\\PIC0.jpg", "one");
        m_folder.Write(L"agent\\PIC1.jpg", "two");
    }

    /// The document of a contact with the picture of that number, or none.
    static CString Document(const CString& path) {
        const CString element = path.empty() ? CString() : L"\n\t<PICPath>" + path + L"</PICPath>";
        return L"<?xml version='1.0'?>\r\n<Contact>\n\t<PIMID>00AB</PIMID>" + element +
               L"\n\t<SP-BODY>a &lt;PICPath&gt; &#13;\n b</SP-BODY></Contact>";
    }
    [[nodiscard]] CString AgentFile(const wchar_t* name) const { return m_agent + L"\\" + name; }

    /// Writes one document as the only one of a read.
    void Read(const CString& document, bool changed = false) {
        Arguments arguments;
        arguments.options = changed ? kOptionOut | kOptionChanged : kOptionOut;
        arguments.out = m_out;
        const std::unique_ptr<ItemOutput> output = MakeItemOutput(*FindItemKind(L"contacts"), arguments);
        Take(*output, document.c_str());
        output->Finish();
    }

    /// The one file with that extension where the documents are; empty if there is none.
    [[nodiscard]] fs::path Find(const wchar_t* extension) const {
        fs::path found;
        for (const fs::directory_entry& entry : fs::directory_iterator(m_out.c_str())) {
            if (entry.path().extension() == extension) {
                EXPECT_TRUE(found.empty());
                found = entry.path();
            }
        }
        return found;
    }
    [[nodiscard]] std::string ContentOf(const wchar_t* extension) const {
        return m_folder.Read(Find(extension).c_str());
    }
    /// What the document's file is to hold, with that path of the picture.
    static std::string Expected(const CString& path) { return Utf8FromWide(Document(path).View()); }

    TemporaryFolder m_folder;
    CString m_agent = m_folder.File(L"agent");
    CString m_out = m_folder.File(L"you & me");
};

TEST_F(ItemOutputPicture, MovesToTheDocumentWhichNamesItAndIsOtherwiseAsItCame) {
    for (const bool changed : {false, true}) {
        m_folder.Write(L"agent\\PIC0.jpg", "one");
        Read(Document(AgentFile(L"PIC0.jpg")), changed);
        EXPECT_EQ(ContentOf(L".jpg"), "one");
        EXPECT_EQ(Find(L".jpg").stem(), Find(L".xml").stem());
        std::wstring path = Find(L".jpg").wstring();
        path.replace(path.find(L'&'), 1, L"&amp;");
        EXPECT_EQ(ContentOf(L".xml"), Expected(path.c_str()));
        EXPECT_FALSE(fs::exists(AgentFile(L"PIC0.jpg").c_str()));
        EXPECT_TRUE(Find(L".part").empty());
    }
}

TEST_F(ItemOutputPicture, IsNamedByAPathFromTheRootWhereverTheFolderIsToldFrom) {
    const fs::path before = fs::current_path();
    fs::current_path(m_folder.Path().c_str());
    m_out = L"relative";
    Read(Document(AgentFile(L"PIC0.jpg")));
    fs::current_path(before);
    m_out = m_folder.File(L"relative");
    EXPECT_EQ(ContentOf(L".xml"), Expected(Find(L".jpg").c_str()));
}

TEST_F(ItemOutputPicture, IsReplacedByTheNextOneOfTheContact) {
    Read(Document(AgentFile(L"PIC0.jpg")));
    Read(Document(AgentFile(L"PIC1.jpg")));
    EXPECT_EQ(ContentOf(L".jpg"), "two");
}

TEST_F(ItemOutputPicture, GoesWhenTheContactHasNoneAnyMore) {
    Read(Document(AgentFile(L"PIC0.jpg")));
    Read(Document(L""));
    EXPECT_TRUE(Find(L".jpg").empty());
    EXPECT_EQ(ContentOf(L".xml"), Expected(L""));
}

TEST_F(ItemOutputPicture, GoesWithTheContact) {
    Read(Document(AgentFile(L"PIC0.jpg")));
    Read(L"<Contact><lFlag>32</lFlag><PIMID>00AB</PIMID></Contact>", true);
    EXPECT_TRUE(Find(L".jpg").empty());
}

TEST_F(ItemOutputPicture, ThatCannotBeCopiedLosesNoDocumentAndIsToldAtTheEnd) {
    const CString missing = AgentFile(L"PIC7.jpg");
    try {
        Read(Document(missing));
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Code(), ExitCode::kOutputFailed);
        EXPECT_NE(failure.Message().find(missing), CString::npos);
    }
    EXPECT_EQ(ContentOf(L".xml"), Expected(missing));
    EXPECT_TRUE(Find(L".jpg").empty());
    EXPECT_TRUE(Find(L".part").empty());
}

TEST_F(ItemOutputPicture, WhoseNameIsTakenStaysWithTheAgent) {
    Read(Document(AgentFile(L"PIC0.jpg")));
    const fs::path inTheWay = Find(L".jpg");
    fs::remove(inTheWay);
    fs::create_directories(inTheWay / "x");
    EXPECT_THROW(Read(Document(AgentFile(L"PIC1.jpg"))), Failure);
    EXPECT_EQ(m_folder.Read(L"agent\\PIC1.jpg"), "two");
    EXPECT_EQ(ContentOf(L".xml"), Expected(AgentFile(L"PIC1.jpg")));
}

TEST_F(ItemOutputPicture, IsLeftWhereItIsByTheOtherOutputs) {
    Arguments arguments;
    arguments.options = kOptionTabs;
    const std::unique_ptr<ItemOutput> output = MakeItemOutput(*FindItemKind(L"contacts"), arguments);
    Take(*output, Document(AgentFile(L"PIC0.jpg")).c_str());
    EXPECT_EQ(m_folder.Read(L"agent\\PIC0.jpg"), "one");
}

}  // namespace
