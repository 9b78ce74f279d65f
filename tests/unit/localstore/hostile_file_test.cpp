#include "store_fixture.h"

#include <random>

using namespace localstore_test;
using localstore::recorder::Diagnostics;

class HostileFiles : public StoreTest {
  protected:
    void SetUp() override {
        StoreTest::SetUp();
        m_contacts = OpenContacts();
        m_id = AddContact(m_contacts.Get(), L"good");
        m_good = FileBytes(File(L"good.msg"));
    }
    void TearDown() override {
        m_contacts.Reset();
        StoreTest::TearDown();
    }
    [[nodiscard]] std::wstring File(const std::wstring& name) const {
        return PathOf(std::wstring(kContactsPath) + L"\\" + name);
    }
    std::vector<std::wstring> Subjects() const {
        return FirstTexts(ContentsOf(m_contacts.Get(), {PR_SUBJECT_W}));
    }
    using Texts = std::vector<std::wstring>;

    ComPtr<IMAPIFolder> m_contacts;
    std::vector<BYTE> m_id;
    std::vector<BYTE> m_good;
};

TEST_F(HostileFiles, AreLeftOutOfTablesWithAReason) {
    WriteFileBytes(File(L"empty.msg"), {});
    WriteFileBytes(File(L"text.msg"), {'h', 'e', 'l', 'l', 'o'});
    EXPECT_EQ(Subjects(), Texts{L"good"});
    const std::vector<std::string> lines = Diagnostics();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_NE(lines[0].find("empty.msg: it is empty"), std::string::npos) << lines[0];
    EXPECT_NE(lines[1].find("text.msg: it is no structured storage file"), std::string::npos) << lines[1];
}

TEST_F(HostileFiles, AreReportedOnceForEachVersion) {
    WriteFileBytes(File(L"bad.msg"), {1});
    Subjects();
    Subjects();
    EXPECT_EQ(Diagnostics().size(), 1U);
    WriteFileBytes(File(L"bad.msg"), {1, 2});
    Subjects();
    EXPECT_EQ(Diagnostics().size(), 2U);
    WriteFileBytes(File(L"bad.msg"), m_good);
    EXPECT_EQ(Subjects(), (Texts{L"good", L"good"}));
}

TEST_F(HostileFiles, DoNotOpen) {
    WriteFileBytes(File(L"good.msg"), {1, 2, 3});
    std::vector<BYTE> id = m_id;
    ULONG type = 0;
    ComPtr<IUnknown> object;
    EXPECT_EQ(m_contacts->OpenEntry(static_cast<ULONG>(id.size()), reinterpret_cast<LPENTRYID>(id.data()),
                                    nullptr, 0x11, &type, &object),
              MAPI_E_CORRUPT_DATA);
    EXPECT_EQ(object, nullptr);
}

TEST_F(HostileFiles, CutAtAnyLengthAreReadOrLeftOutWithAReason) {
    std::vector<std::size_t> sizes;
    for (std::size_t size = 0; size < m_good.size(); size += 256) {
        sizes.push_back(size);
        sizes.push_back(size + 17);
    }
    for (const std::size_t size : sizes) {
        std::vector<BYTE> bytes = m_good;
        bytes.resize(size);
        localstore::recorder::ClearDiagnostics();
        WriteFileBytes(File(L"cut.msg"), bytes);
        const std::size_t rows = Subjects().size();
        const std::vector<std::string> lines = Diagnostics();
        EXPECT_EQ(rows, lines.empty() ? 2U : 1U) << size;
        EXPECT_LE(lines.size(), 1U) << size;
        for (const std::string& line : lines) {
            EXPECT_NE(line.find("cut.msg: "), std::string::npos) << line;
        }
    }
}

TEST_F(HostileFiles, WithChangedBytesDoNoHarm) {
    std::mt19937 random(20'240'229);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same files each time.
    for (int round = 0; round < 300; ++round) {
        std::vector<BYTE> bytes = m_good;
        for (int change = 0; change < 1 + round % 8; ++change) {
            bytes[random() % bytes.size()] = static_cast<BYTE>(random());
        }
        WriteFileBytes(File(L"changed.msg"), bytes);
        const RowSet rows = ContentsOf(m_contacts.Get(), {PR_SUBJECT_W, PR_ENTRYID});
        EXPECT_GE(rows->cRows, 1U) << round;
    }
}

TEST_F(HostileFiles, OfRandomBytesDoNoHarm) {
    std::mt19937 random(7);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same files each time.
    for (int round = 0; round < 50; ++round) {
        std::vector<BYTE> bytes(512 + random() % 4096);
        for (BYTE& one : bytes) {
            one = static_cast<BYTE>(random());
        }
        // Half of them begin like a structured storage file.
        if (round % 2 == 0) {
            std::copy_n(m_good.begin(), 76, bytes.begin());
        }
        WriteFileBytes(File(L"random.msg"), bytes);
        EXPECT_GE(Subjects().size(), 1U) << round;
    }
}

TEST_F(HostileFiles, FoldersNamedLikeMessagesAreFolders) {
    MakeFolder(L"Work\\Mail\\Contacts\\folder.msg");
    EXPECT_EQ(Subjects(), Texts{L"good"});
    EXPECT_EQ(FirstTexts(FoldersOf(m_contacts.Get(), {PR_DISPLAY_NAME_W})), Texts{L"folder.msg"});
}

TEST_F(HostileFiles, OtherFilesAreNoMessages) {
    WriteFileBytes(File(L"good.txt"), m_good);
    WriteFileBytes(File(L"folder.ini"), {'[', 0});
    EXPECT_EQ(Subjects(), Texts{L"good"});
    EXPECT_TRUE(Diagnostics().empty());
}

TEST_F(HostileFiles, AreReportedToTheLogFile) {
    SetEnvironmentVariableW(L"LOCALSTORE_LOG", PathOf(L"log.txt").c_str());
    WriteFileBytes(File(L"bad \x5C71.msg"), {1});
    Subjects();
    SetEnvironmentVariableW(L"LOCALSTORE_LOG", nullptr);
    const std::vector<BYTE> bytes = FileBytes(PathOf(L"log.txt"));
    const std::string text(bytes.begin(), bytes.end());
    EXPECT_NE(text.find("bad \xE5\xB1\xB1.msg: it is no structured storage file\r\n"), std::string::npos)
        << text;
}

TEST_F(HostileFiles, LongerThan512MegabytesAreLeftOutWithAReasonAndReportedOnce) {
    constexpr LONGLONG kLongest = 512LL * 1024 * 1024;
    const auto makeLong = [this](LONGLONG size) {
        const FileHandle file(CreateFileW(File(L"long.msg").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                          FILE_ATTRIBUTE_NORMAL, nullptr));
        LARGE_INTEGER end{};
        end.QuadPart = size;
        ASSERT_NE(SetFilePointerEx(file.Get(), end, nullptr, FILE_BEGIN), 0);
        ASSERT_NE(SetEndOfFile(file.Get()), 0);
    };
    makeLong(kLongest + 1);
    EXPECT_EQ(Subjects(), Texts{L"good"});
    EXPECT_EQ(Subjects(), Texts{L"good"});
    std::vector<std::string> lines = Diagnostics();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_NE(lines[0].find("long.msg: it is longer than any message"), std::string::npos) << lines[0];

    // One that is as long as a message can be is read, and is none.
    makeLong(kLongest);
    EXPECT_EQ(Subjects(), Texts{L"good"});
    lines = Diagnostics();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_NE(lines[1].find("long.msg: it is no structured storage file"), std::string::npos) << lines[1];
}

TEST_F(HostileFiles, AreReportedToNoLogFileOfAPathLongerThan259Characters) {
    const std::wstring folder = PathOf(L"");
    for (const std::size_t length : {258U, 259U, 260U}) {
        const std::wstring log = folder + std::wstring(length - folder.size(), L'l');
        ASSERT_EQ(log.size(), length);
        SetEnvironmentVariableW(L"LOCALSTORE_LOG", log.c_str());
        WriteFileBytes(File(L"bad.msg"), std::vector<BYTE>(length));
        Subjects();
        SetEnvironmentVariableW(L"LOCALSTORE_LOG", nullptr);
        EXPECT_EQ(GetFileAttributesW(log.c_str()) != INVALID_FILE_ATTRIBUTES, length < 260) << length;
    }
}
