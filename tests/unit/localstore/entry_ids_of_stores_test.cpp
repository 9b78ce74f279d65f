#include <algorithm>

#include "localstore/entry_id.h"
#include "store_fixture.h"

using namespace localstore_test;

class EntryIds : public StoreTest {
  protected:
    static HRESULT Open(IMsgStore* store, std::vector<BYTE> id) {
        ULONG type = 0;
        ComPtr<IUnknown> object;
        return store->OpenEntry(static_cast<ULONG>(id.size()), reinterpret_cast<LPENTRYID>(id.data()),
                                nullptr, MAPI_BEST_ACCESS, &type, &object);
    }
};

TEST_F(EntryIds, AreAtMost100BytesAndStartWithZeroFlags) {
    const ComPtr<IMAPIFolder> contacts = OpenContacts();
    const std::vector<BYTE> id = AddContact(contacts.Get(), L"John Doe");
    ASSERT_GE(id.size(), 24U);
    EXPECT_LE(id.size(), 100U);
    EXPECT_EQ(std::vector<BYTE>(id.begin(), id.begin() + 4), std::vector<BYTE>(4));
}

TEST_F(EntryIds, AreTheSameForTheSamePathBelowAnotherRoot) {
    const std::vector<BYTE> here = AddContact(OpenContacts().Get(), L"John Doe");
    for (const wchar_t* folder :
         {L"Other", L"Other\\Work", L"Other\\Work\\Mail", L"Other\\Work\\Mail\\Contacts"}) {
        MakeFolder(folder);
    }
    localstore::recorder::SetRoot(PathOf(L"Other"));
    EXPECT_EQ(AddContact(OpenContacts().Get(), L"John Doe"), here);
}

TEST_F(EntryIds, StayWhenTheMessageChanges) {
    const ComPtr<IMAPIFolder> contacts = OpenContacts();
    const std::vector<BYTE> id = AddContact(contacts.Get(), L"John Doe");
    const ComPtr<IMessage> message = OpenMessage(contacts.Get(), id);
    ASSERT_EQ(Set(message.Get(), {StringValue(PR_SUBJECT_W, L"Jane Roe")}), S_OK);
    ASSERT_EQ(message->SaveChanges(0), S_OK);
    EXPECT_EQ(IdOf(message.Get()), id);
    EXPECT_EQ(FileNames(PathOf(kContactsPath)), (std::vector<std::wstring>{L"John Doe.msg"}));
    const RowSet rows = ContentsOf(contacts.Get(), {PR_ENTRYID});
    const SBinary& row = rows->aRow[0].lpProps[0].Value.bin;
    EXPECT_EQ(std::vector<BYTE>(row.lpb, row.lpb + row.cb), id);
}

TEST_F(EntryIds, AreRefusedByOtherStores) {
    for (const wchar_t* folder : {L"Work\\Archive", L"Work\\Archive\\Contacts"}) {
        MakeFolder(folder);
    }
    const ComPtr<IMAPISession> session = LogOn();
    const ComPtr<IMsgStore> mail = OpenStore(session.Get(), L"Mail");
    const ComPtr<IMsgStore> archive = OpenStore(session.Get(), L"Archive");
    const ComPtr<IMAPIFolder> contacts = OpenFolder(mail.Get(), L"Contacts");
    const std::vector<BYTE> message = AddContact(contacts.Get(), L"John Doe");
    EXPECT_EQ(Open(mail.Get(), IdOf(contacts.Get())), S_OK);
    EXPECT_EQ(Open(mail.Get(), message), S_OK);
    EXPECT_EQ(Open(archive.Get(), IdOf(contacts.Get())), MAPI_E_INVALID_ENTRYID);
    EXPECT_EQ(Open(archive.Get(), message), MAPI_E_INVALID_ENTRYID);
    EXPECT_EQ(Open(mail.Get(), IdOf(mail.Get())), MAPI_E_INVALID_ENTRYID);
}

TEST_F(EntryIds, JunkIsRefused) {
    const ComPtr<IMsgStore> mail = OpenStore(LogOn().Get());
    EXPECT_EQ(Open(mail.Get(), {0x00}), MAPI_E_INVALID_ENTRYID);
    EXPECT_EQ(Open(mail.Get(), std::vector<BYTE>(56)), MAPI_E_INVALID_ENTRYID);
    EXPECT_EQ(Open(mail.Get(), std::vector<BYTE>(5'000, 0xFF)), MAPI_E_INVALID_ENTRYID);
    std::vector<BYTE> almost = AddContact(OpenFolder(mail.Get(), L"Contacts").Get(), L"John Doe");
    almost.back() ^= 1U;
    EXPECT_EQ(Open(mail.Get(), almost), MAPI_E_NOT_FOUND);
    almost[30] ^= 1U;
    EXPECT_EQ(Open(mail.Get(), almost), MAPI_E_NOT_FOUND);
}

TEST_F(EntryIds, OfAMovedFileIsANewOne) {
    MakeFolder(L"Work\\Mail\\Contacts\\Family");
    const ComPtr<IMAPIFolder> contacts = OpenContacts();
    const std::vector<BYTE> id = AddContact(contacts.Get(), L"John Doe");
    ASSERT_TRUE(MoveFileW(PathOf(L"Work\\Mail\\Contacts\\John Doe.msg").c_str(),
                          PathOf(L"Work\\Mail\\Contacts\\Family\\John Doe.msg").c_str()));
    EXPECT_EQ(OpenMessage(contacts.Get(), id), nullptr);
    const ComPtr<IMAPIFolder> family = OpenFolder(OpenStore(LogOn().Get()).Get(), L"Contacts\\Family");
    const RowSet rows = ContentsOf(family.Get(), {PR_ENTRYID});
    ASSERT_EQ(rows->cRows, 1U);
    const SBinary& row = rows->aRow[0].lpProps[0].Value.bin;
    const std::vector<BYTE> moved(row.lpb, row.lpb + row.cb);
    EXPECT_NE(moved, id);
    EXPECT_NE(OpenMessage(contacts.Get(), moved), nullptr);
}

TEST_F(EntryIds, OfAFileThatCameFromOutsideOpens) {
    const ComPtr<IMAPIFolder> contacts = OpenContacts();
    const std::vector<BYTE> id = AddContact(contacts.Get(), L"John Doe");
    const std::wstring path = PathOf(L"Work\\Mail\\Contacts\\John Doe.msg");
    const std::wstring away = PathOf(L"elsewhere");
    ASSERT_TRUE(MoveFileW(path.c_str(), away.c_str()));
    EXPECT_EQ(ContentsOf(contacts.Get(), {PR_ENTRYID})->cRows, 0U);
    EXPECT_EQ(OpenMessage(contacts.Get(), id), nullptr);
    ASSERT_TRUE(MoveFileW(away.c_str(), path.c_str()));
    EXPECT_NE(OpenMessage(contacts.Get(), id), nullptr);
}

TEST_F(EntryIds, AreThoseOfTheNamesWhateverFilesComeAndGo) {
    const ComPtr<IMAPIFolder> contacts = OpenContacts();
    for (const wchar_t* subject : {L"b", L"c", L"d"}) {
        AddContact(contacts.Get(), subject);
    }
    const std::wstring folder = PathOf(kContactsPath) + L"\\";
    const auto check = [&](const std::vector<std::wstring>& names) {
        const RowSet rows = ContentsOf(contacts.Get(), {PR_ENTRYID});
        ASSERT_EQ(rows->cRows, names.size());
        for (ULONG i = 0; i < rows->cRows; ++i) {
            const SBinary& id = rows->aRow[i].lpProps[0].Value.bin;
            ASSERT_EQ(id.cb, 56U);
            const localstore::NameDigest digest = localstore::DigestOf(names[i]);
            EXPECT_TRUE(std::equal(digest.begin(), digest.end(), id.lpb + 40)) << i;
            EXPECT_NE(OpenMessage(contacts.Get(), {id.lpb, id.lpb + id.cb}), nullptr) << i;
        }
    };
    check({L"b.msg", L"c.msg", L"d.msg"});
    ASSERT_TRUE(CopyFileW((folder + L"b.msg").c_str(), (folder + L"a.msg").c_str(), TRUE));
    ASSERT_TRUE(MoveFileW((folder + L"c.msg").c_str(), (folder + L"cc.msg").c_str()));
    ASSERT_TRUE(CopyFileW((folder + L"b.msg").c_str(), (folder + L"e.msg").c_str(), TRUE));
    check({L"a.msg", L"b.msg", L"cc.msg", L"d.msg", L"e.msg"});
    ASSERT_TRUE(DeleteFileW((folder + L"a.msg").c_str()));
    ASSERT_TRUE(DeleteFileW((folder + L"e.msg").c_str()));
    check({L"b.msg", L"cc.msg", L"d.msg"});
}

TEST_F(EntryIds, OfAMessageInAFolderThatIsGoneOrAFileIsNotFound) {
    MakeFolder(L"Work\\Mail\\Later");
    const ComPtr<IMsgStore> mail = OpenStore(LogOn().Get());
    const std::vector<BYTE> id = AddContact(OpenFolder(mail.Get(), L"Later").Get(), L"John Doe");
    ASSERT_EQ(Open(mail.Get(), id), S_OK);
    std::vector<BYTE> other = id;
    other.back() ^= 1U;
    const std::wstring folder = PathOf(L"Work\\Mail\\Later");
    ASSERT_TRUE(DeleteFileW((folder + L"\\John Doe.msg").c_str()));
    ASSERT_TRUE(RemoveDirectoryW(folder.c_str()));
    EXPECT_EQ(Open(mail.Get(), id), MAPI_E_NOT_FOUND);
    EXPECT_EQ(Open(mail.Get(), other), MAPI_E_NOT_FOUND);
    WriteFileText(L"Work\\Mail\\Later", "no folder");
    EXPECT_EQ(Open(mail.Get(), id), MAPI_E_NOT_FOUND);
    EXPECT_EQ(Open(mail.Get(), other), MAPI_E_NOT_FOUND);
}

TEST_F(EntryIds, OfAFolderThatCameLaterOpens) {
    const ComPtr<IMAPISession> session = LogOn();
    const ComPtr<IMsgStore> first = OpenStore(session.Get());
    OpenFolder(first.Get(), L"Contacts");
    MakeFolder(L"Work\\Mail\\Later");
    const ComPtr<IMAPIFolder> later = OpenFolder(first.Get(), L"Later");
    ASSERT_NE(later, nullptr);
    EXPECT_EQ(Open(first.Get(), IdOf(later.Get())), S_OK);
    const std::vector<BYTE> id = IdOf(later.Get());
    RemoveDirectoryW(PathOf(L"Work\\Mail\\Later").c_str());
    EXPECT_EQ(Open(first.Get(), id), MAPI_E_NOT_FOUND);
}

TEST_F(EntryIds, LongTermOnesAppearInTablesOnRequest) {
    constexpr ULONG longTerm = 0x66700102;
    const ComPtr<IMAPIFolder> contacts = OpenContacts();
    const std::vector<BYTE> id = AddContact(contacts.Get(), L"John Doe");
    {
        const RowSet rows = ContentsOf(contacts.Get(), {PR_ENTRYID, longTerm});
        EXPECT_EQ(rows->aRow[0].lpProps[1].ulPropTag, CHANGE_PROP_TYPE(longTerm, PT_ERROR));
        EXPECT_EQ(rows->aRow[0].lpProps[1].Value.err, MAPI_E_NOT_FOUND);
    }
    WriteFileText(L"Work\\Mail\\folder.ini", "[Store]\nLongTermIds=1\n");
    const RowSet rows = ContentsOf(contacts.Get(), {PR_ENTRYID, longTerm});
    const SBinary& value = rows->aRow[0].lpProps[1].Value.bin;
    const std::vector<BYTE> other(value.lpb, value.lpb + value.cb);
    EXPECT_NE(other, id);
    const ComPtr<IMessage> message = OpenMessage(contacts.Get(), other);
    ASSERT_NE(message, nullptr);
    EXPECT_EQ(IdOf(message.Get()), id);
    EXPECT_EQ(OneValue(message.Get(), longTerm).Error(), MAPI_E_NOT_FOUND);
}

TEST_F(EntryIds, ATableGoesOnAsItWasOpenedWhenLongTermOnesAreRequested) {
    constexpr ULONG longTerm = 0x66700102;
    const ComPtr<IMAPIFolder> contacts = OpenContacts();
    AddContact(contacts.Get(), L"John Doe");
    ComPtr<IMAPITable> before;
    ASSERT_EQ(contacts->GetContentsTable(MAPI_UNICODE, &before), S_OK);
    WriteFileText(L"Work\\Mail\\folder.ini", "[Store]\nLongTermIds=1\n");
    EXPECT_EQ(RowsOf(before.Get(), {longTerm})->aRow[0].lpProps[0].ulPropTag,
              CHANGE_PROP_TYPE(longTerm, PT_ERROR));
    EXPECT_EQ(ContentsOf(contacts.Get(), {longTerm})->aRow[0].lpProps[0].ulPropTag, longTerm);
}

TEST_F(EntryIds, NoIdentifierOpensTheRoot) {
    const ComPtr<IMAPIFolder> contacts = OpenContacts();
    ULONG type = 0;
    ComPtr<IUnknown> object;
    EXPECT_EQ(contacts->OpenEntry(0, nullptr, nullptr, 0x11, &type, &object), S_OK);
    EXPECT_EQ(type, MAPI_FOLDER);
}
