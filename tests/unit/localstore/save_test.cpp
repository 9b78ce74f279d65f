#include "store_fixture.h"

using namespace localstore_test;

class Saving : public StoreTest {
  protected:
    void SetUp() override {
        StoreTest::SetUp();
        m_contacts = OpenContacts();
    }
    void TearDown() override {
        m_contacts.Reset();
        StoreTest::TearDown();
    }
    [[nodiscard]] std::wstring File(const std::wstring& name) const {
        return PathOf(std::wstring(kContactsPath) + L"\\" + name);
    }
    [[nodiscard]] std::vector<std::wstring> Files() const { return FileNames(PathOf(kContactsPath)); }
    using Names = std::vector<std::wstring>;

    ComPtr<IMAPIFolder> m_contacts;
};

TEST_F(Saving, NothingReachesTheDiskBeforeSaveChanges) {
    ComPtr<IMessage> message;
    ASSERT_EQ(m_contacts->CreateMessage(nullptr, 0, &message), S_OK);
    ASSERT_EQ(Set(message.Get(), {StringValue(PR_SUBJECT_W, L"John Doe")}), S_OK);
    EXPECT_TRUE(Files().empty());
    message.Reset();
    EXPECT_TRUE(Files().empty());

    const std::vector<BYTE> id = AddContact(m_contacts.Get(), L"Jane Roe");
    const std::vector<BYTE> before = FileBytes(File(L"Jane Roe.msg"));
    message = OpenMessage(m_contacts.Get(), id);
    ASSERT_EQ(Set(message.Get(), {StringValue(PR_SUBJECT_W, L"Changed")}), S_OK);
    message.Reset();
    EXPECT_EQ(FileBytes(File(L"Jane Roe.msg")), before);
}

TEST_F(Saving, GivesReadableNamesAndNumbersEqualOnes) {
    AddContact(m_contacts.Get(), L"John/Doe");
    AddContact(m_contacts.Get(), L"John/Doe");
    AddContact(m_contacts.Get(), L"");
    EXPECT_EQ(Files(), (Names{L"John_Doe (2).msg", L"John_Doe.msg", L"Message.msg"}));
}

TEST_F(Saving, GivesUpNumbersWhenTheyGetMany) {
    for (int i = 0; i < 25; ++i) {
        AddContact(m_contacts.Get(), L"Same");
    }
    EXPECT_EQ(Files().size(), 25U);
    EXPECT_EQ(ContentsOf(m_contacts.Get(), {PR_ENTRYID})->cRows, 25U);
}

TEST_F(Saving, AnIdentifierThatWasReadBeforeIsTheOneAfter) {
    ComPtr<IMessage> message;
    ASSERT_EQ(m_contacts->CreateMessage(nullptr, 0, &message), S_OK);
    const std::vector<BYTE> before = IdOf(message.Get());
    ASSERT_EQ(before.size(), 56U);
    ASSERT_EQ(Set(message.Get(), {StringValue(PR_SUBJECT_W, L"John Doe")}), S_OK);
    ASSERT_EQ(message->SaveChanges(FORCE_SAVE), S_OK);
    EXPECT_EQ(IdOf(message.Get()), before);
    EXPECT_NE(OpenMessage(m_contacts.Get(), before), nullptr);
}

TEST_F(Saving, StampsTheTimes) {
    ComPtr<IMessage> message;
    ASSERT_EQ(m_contacts->CreateMessage(nullptr, 0, &message), S_OK);
    EXPECT_EQ(OneValue(message.Get(), PR_LAST_MODIFICATION_TIME).Error(), MAPI_E_NOT_FOUND);
    ASSERT_EQ(message->SaveChanges(FORCE_SAVE), S_OK);
    FILETIME now{};
    GetSystemTimeAsFileTime(&now);
    const unsigned long long latest =
        static_cast<unsigned long long>(now.dwHighDateTime) << 32U | now.dwLowDateTime;
    const unsigned long long created = OneValue(message.Get(), PR_CREATION_TIME).Time();
    const unsigned long long changed = OneValue(message.Get(), PR_LAST_MODIFICATION_TIME).Time();
    EXPECT_LE(created, changed);
    EXPECT_LE(changed, latest);
    Sleep(20);
    ASSERT_EQ(Set(message.Get(), {StringValue(PR_SURNAME_W, L"Doe")}), S_OK);
    ASSERT_EQ(message->SaveChanges(FORCE_SAVE), S_OK);
    EXPECT_EQ(OneValue(message.Get(), PR_CREATION_TIME).Time(), created);
    EXPECT_GT(OneValue(message.Get(), PR_LAST_MODIFICATION_TIME).Time(), changed);
}

TEST_F(Saving, WithoutAChangeWritesNothing) {
    const ComPtr<IMessage> message = OpenMessage(m_contacts.Get(), AddContact(m_contacts.Get(), L"John Doe"));
    const std::vector<BYTE> before = FileBytes(File(L"John Doe.msg"));
    EXPECT_EQ(message->SaveChanges(FORCE_SAVE), S_OK);
    EXPECT_EQ(FileBytes(File(L"John Doe.msg")), before);
}

TEST_F(Saving, LeavesNoOtherFileBehind) {
    const ComPtr<IMessage> message = OpenMessage(m_contacts.Get(), AddContact(m_contacts.Get(), L"John Doe"));
    ASSERT_EQ(Set(message.Get(), {StringValue(PR_SURNAME_W, L"Doe")}), S_OK);
    ASSERT_EQ(message->SaveChanges(0), S_OK);
    EXPECT_EQ(Files(), Names{L"John Doe.msg"});
}

TEST_F(Saving, OverAChangeByOthersNeedsForce) {
    const std::vector<BYTE> id = AddContact(m_contacts.Get(), L"John Doe");
    const ComPtr<IMessage> first = OpenMessage(m_contacts.Get(), id);
    const ComPtr<IMessage> second = OpenMessage(m_contacts.Get(), id);
    ASSERT_EQ(Set(first.Get(), {StringValue(PR_SURNAME_W, L"first")}), S_OK);
    ASSERT_EQ(Set(second.Get(), {StringValue(PR_SURNAME_W, L"second, which is longer")}), S_OK);
    ASSERT_EQ(first->SaveChanges(0), S_OK);
    EXPECT_EQ(second->SaveChanges(0), MAPI_E_OBJECT_CHANGED);
    EXPECT_EQ(TextOf(OpenMessage(m_contacts.Get(), id).Get(), PR_SURNAME_W), L"first");
    EXPECT_EQ(second->SaveChanges(FORCE_SAVE), S_OK);
    EXPECT_EQ(TextOf(OpenMessage(m_contacts.Get(), id).Get(), PR_SURNAME_W), L"second, which is longer");
}

TEST_F(Saving, OfAMessageThatIsGoneFails) {
    const ComPtr<IMessage> message = OpenMessage(m_contacts.Get(), AddContact(m_contacts.Get(), L"John Doe"));
    ASSERT_EQ(Set(message.Get(), {StringValue(PR_SURNAME_W, L"Doe")}), S_OK);
    DeleteFileW(File(L"John Doe.msg").c_str());
    EXPECT_EQ(message->SaveChanges(FORCE_SAVE), MAPI_E_OBJECT_DELETED);
    EXPECT_TRUE(Files().empty());
}

TEST_F(Saving, IntoAFolderThatIsGoneFails) {
    MakeFolder(L"Work\\Mail\\Contacts\\Gone");
    const ComPtr<IMAPIFolder> gone = OpenFolder(OpenStore(LogOn().Get()).Get(), L"Contacts\\Gone");
    ComPtr<IMessage> message;
    ASSERT_EQ(gone->CreateMessage(nullptr, 0, &message), S_OK);
    RemoveDirectoryW(PathOf(L"Work\\Mail\\Contacts\\Gone").c_str());
    EXPECT_EQ(message->SaveChanges(FORCE_SAVE), MAPI_E_OBJECT_DELETED);
}

TEST_F(Saving, AReadOnlyFileStaysAsItIs) {
    const std::vector<BYTE> id = AddContact(m_contacts.Get(), L"John Doe");
    SetFileAttributesW(File(L"John Doe.msg").c_str(), FILE_ATTRIBUTE_READONLY);
    const std::vector<BYTE> before = FileBytes(File(L"John Doe.msg"));
    EXPECT_EQ(OpenMessage(m_contacts.Get(), id, MAPI_MODIFY), nullptr);
    const ComPtr<IMessage> message = OpenMessage(m_contacts.Get(), id, MAPI_MODIFY | MAPI_BEST_ACCESS);
    ASSERT_NE(message, nullptr);
    ASSERT_EQ(Set(message.Get(), {StringValue(PR_SURNAME_W, L"Doe")}), S_OK);
    EXPECT_EQ(message->SaveChanges(FORCE_SAVE), MAPI_E_NO_ACCESS);
    EXPECT_EQ(FileBytes(File(L"John Doe.msg")), before);
    EXPECT_EQ(Files().size(), 1U);
    // The message is still what it was to become, and can be saved once the file lets itself be written.
    SetFileAttributesW(File(L"John Doe.msg").c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(message->SaveChanges(FORCE_SAVE), S_OK);
    EXPECT_EQ(TextOf(OpenMessage(m_contacts.Get(), id).Get(), PR_SURNAME_W), L"Doe");
}

TEST_F(Saving, ALockedFileStaysAsItIs) {
    const std::vector<BYTE> id = AddContact(m_contacts.Get(), L"John Doe");
    const ComPtr<IMessage> message = OpenMessage(m_contacts.Get(), id);
    ASSERT_EQ(Set(message.Get(), {StringValue(PR_SURNAME_W, L"Doe")}), S_OK);
    {
        const FileHandle lock(CreateFileW(File(L"John Doe.msg").c_str(), GENERIC_READ, FILE_SHARE_READ,
                                          nullptr, OPEN_EXISTING, 0, nullptr));
        ASSERT_TRUE(lock);
        const HRESULT result = message->SaveChanges(FORCE_SAVE);
        EXPECT_TRUE(result == MAPI_E_BUSY || result == MAPI_E_NO_ACCESS) << std::hex << result;
        EXPECT_EQ(Files(), Names{L"John Doe.msg"});
    }
    EXPECT_EQ(TextOf(OpenMessage(m_contacts.Get(), id).Get(), PR_SUBJECT_W), L"John Doe");
    EXPECT_EQ(message->SaveChanges(FORCE_SAVE), S_OK);
}

TEST_F(Saving, AReadOnlyFileIsRefusedBeforeAnythingIsWritten) {
    const ComPtr<IMessage> message = OpenMessage(m_contacts.Get(), AddContact(m_contacts.Get(), L"John Doe"));
    ASSERT_EQ(Set(message.Get(), {StringValue(PR_SURNAME_W, L"Doe")}), S_OK);
    SetFileAttributesW(File(L"John Doe.msg").c_str(), FILE_ATTRIBUTE_READONLY);
    // A folder's time tells of every file that comes and goes.
    const auto timeOfFolder = [&] {
        WIN32_FILE_ATTRIBUTE_DATA data{};
        EXPECT_TRUE(GetFileAttributesExW(PathOf(kContactsPath).c_str(), GetFileExInfoStandard, &data));
        return std::pair(data.ftLastWriteTime.dwHighDateTime, data.ftLastWriteTime.dwLowDateTime);
    };
    const auto before = timeOfFolder();
    Sleep(20);
    EXPECT_EQ(message->SaveChanges(FORCE_SAVE), MAPI_E_NO_ACCESS);
    EXPECT_EQ(timeOfFolder(), before);
}

TEST_F(Saving, AFileThatIsKeptToAnotherCanBeReadFromMemoryOnly) {
    const std::vector<BYTE> id = AddContact(m_contacts.Get(), L"John Doe");
    const ComPtr<IMessage> message = OpenMessage(m_contacts.Get(), id);
    ASSERT_EQ(Set(message.Get(), {StringValue(PR_SURNAME_W, L"Doe")}), S_OK);
    const std::vector<BYTE> before = FileBytes(File(L"John Doe.msg"));
    {
        const FileHandle lock(
            CreateFileW(File(L"John Doe.msg").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        ASSERT_TRUE(lock);
        EXPECT_EQ(TextOf(OpenMessage(m_contacts.Get(), id).Get(), PR_SUBJECT_W), L"John Doe");
        EXPECT_EQ(ContentsOf(m_contacts.Get(), {PR_SUBJECT_W})->cRows, 1U);
        const HRESULT result = message->SaveChanges(FORCE_SAVE);
        EXPECT_TRUE(result == MAPI_E_BUSY || result == MAPI_E_NO_ACCESS) << std::hex << result;
        localstore::recorder::SetRoot(Root());
        std::vector<BYTE> copy = id;
        ULONG type = 0;
        ComPtr<IUnknown> object;
        EXPECT_EQ(m_contacts->OpenEntry(static_cast<ULONG>(copy.size()),
                                        reinterpret_cast<LPENTRYID>(copy.data()), nullptr, 0, &type, &object),
                  MAPI_E_BUSY);
        EXPECT_EQ(object, nullptr);
        // Not even its class is known, so a table could not show it; and without it there is no table.
        ComPtr<IMAPITable> table;
        EXPECT_EQ(m_contacts->GetContentsTable(MAPI_UNICODE, &table), MAPI_E_BUSY);
        EXPECT_EQ(table, nullptr);
        const std::vector<std::string> lines = localstore::recorder::Diagnostics();
        ASSERT_EQ(lines.size(), 1U);
        EXPECT_NE(lines[0].find("John Doe.msg: it cannot be read now"), std::string::npos) << lines[0];
    }
    EXPECT_EQ(Files(), Names{L"John Doe.msg"});
    EXPECT_EQ(FileBytes(File(L"John Doe.msg")), before);
    EXPECT_EQ(ContentsOf(m_contacts.Get(), {PR_SUBJECT_W})->cRows, 1U);
    EXPECT_EQ(message->SaveChanges(FORCE_SAVE), S_OK);
}

TEST_F(Saving, TouchesNoFileOfAnotherWriter) {
    // A program on another machine can have the number of this process.
    constexpr int others = 50;
    const auto other = [&](int number) {
        return File(L"~localstore-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
                    std::to_wstring(number) + L".tmp");
    };
    for (int number = 1; number <= others; ++number) {
        WriteFileBytes(other(number), {static_cast<BYTE>(number)});
    }
    AddContact(m_contacts.Get(), L"John Doe");
    EXPECT_EQ(Files().size(), others + 1U);
    for (int number = 1; number <= others; ++number) {
        EXPECT_EQ(FileBytes(other(number)), std::vector<BYTE>{static_cast<BYTE>(number)});
    }
}

TEST_F(Saving, RemovesWhatAnEndedWriterLeft) {
    // A file of long ago, as if its writer had been ended in the middle, and one of now.
    const std::wstring old = File(L"~localstore-1-1.tmp");
    const std::wstring fresh = File(L"~localstore-1-2.tmp");
    WriteFileBytes(old, {1});
    WriteFileBytes(fresh, {1});
    {
        const FileHandle file(
            CreateFileW(old.c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        const FILETIME past{0, 0x01D00000};
        ASSERT_TRUE(SetFileTime(file.Get(), nullptr, nullptr, &past));
    }
    EXPECT_EQ(ContentsOf(m_contacts.Get(), {PR_ENTRYID})->cRows, 0U);
    AddContact(m_contacts.Get(), L"John Doe");
    EXPECT_EQ(Files(), (Names{L"John Doe.msg", L"~localstore-1-2.tmp"}));
}

TEST_F(Saving, GoesOnAmongAThousandFilesOfOthersAndNoMore) {
    const std::wstring stem = L"~localstore-" + std::to_wstring(GetCurrentProcessId()) + L"-";
    for (int number = 1; number < 1000; ++number) {
        WriteFileBytes(File(stem + std::to_wstring(number) + L".tmp"), {});
    }
    AddContact(m_contacts.Get(), L"John Doe");
    WriteFileBytes(File(stem + L"1000.tmp"), {});
    ComPtr<IMessage> message;
    ASSERT_EQ(m_contacts->CreateMessage(nullptr, 0, &message), S_OK);
    EXPECT_EQ(message->SaveChanges(0), MAPI_E_COLLISION);
    EXPECT_EQ(ContentsOf(m_contacts.Get(), {PR_ENTRYID})->cRows, 1U);
}

TEST_F(Saving, OpenedForReadingIsRefused) {
    const ComPtr<IMessage> message =
        OpenMessage(m_contacts.Get(), AddContact(m_contacts.Get(), L"John Doe"), 0);
    EXPECT_EQ(Set(message.Get(), {StringValue(PR_SURNAME_W, L"Doe")}), MAPI_E_NO_ACCESS);
    EXPECT_EQ(Delete(message.Get(), {PR_SURNAME_W}), MAPI_E_NO_ACCESS);
    EXPECT_EQ(message->SaveChanges(0), MAPI_E_NO_ACCESS);
}

TEST_F(Saving, KeepOpenReadOnlyEndsWriting) {
    const ComPtr<IMessage> message = OpenMessage(m_contacts.Get(), AddContact(m_contacts.Get(), L"John Doe"));
    ASSERT_EQ(Set(message.Get(), {StringValue(PR_SURNAME_W, L"Doe")}), S_OK);
    ASSERT_EQ(message->SaveChanges(KEEP_OPEN_READONLY), S_OK);
    EXPECT_EQ(Set(message.Get(), {StringValue(PR_SURNAME_W, L"Roe")}), MAPI_E_NO_ACCESS);
}

TEST_F(Saving, ManyRewritesDoNotGrowTheFile) {
    const ComPtr<IMessage> message = OpenMessage(m_contacts.Get(), AddContact(m_contacts.Get(), L"John Doe"));
    constexpr std::size_t sector = 512;
    const std::size_t first = FileBytes(File(L"John Doe.msg")).size();
    for (int i = 0; i < 20; ++i) {
        ASSERT_EQ(Set(message.Get(), {StringValue(PR_SURNAME_W, i % 2 == 0 ? L"Doe" : L"Roe")}), S_OK);
        ASSERT_EQ(message->SaveChanges(0), S_OK);
        // The platform sometimes adds an empty sector to the directory.
        EXPECT_LE(FileBytes(File(L"John Doe.msg")).size(), first + 2 * sector);
    }
}
