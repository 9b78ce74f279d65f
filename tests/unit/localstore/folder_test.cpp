#include "localstore/file_system.h"
#include "store_fixture.h"

#include <mapiguid.h>

using namespace localstore_test;

class Folders : public StoreTest {
  protected:
    /// The entry identifier of a folder by its path.
    static std::vector<BYTE> IdOfFolder(IMsgStore* store, const std::wstring& path) {
        const ComPtr<IMAPIFolder> folder = OpenFolder(store, path);
        return folder ? IdOf(folder.Get()) : std::vector<BYTE>();
    }

    static ComPtr<IMAPIFolder> Root(IMsgStore* store) {
        ULONG type = 0;
        ComPtr<IUnknown> opened;
        ComPtr<IMAPIFolder> root;
        EXPECT_EQ(store->OpenEntry(0, nullptr, nullptr, MAPI_BEST_ACCESS, &type, &opened), S_OK);
        EXPECT_EQ(opened->QueryInterface(IID_IMAPIFolder, reinterpret_cast<void**>(root.GetAddressOf())),
                  S_OK);
        return root;
    }

    static std::vector<BYTE> OneProp(IMAPIProp* object, ULONG tag, HRESULT expected = S_OK) {
        MapiBuffer<SPropValue> value;
        EXPECT_EQ(pfnHrGetOneProp(object, tag, value.Put()), expected);
        if (!value) {
            return {};
        }
        return {value->Value.bin.lpb, value->Value.bin.lpb + value->Value.bin.cb};
    }

    static std::wstring ClassOf(IMsgStore* store, const std::wstring& path) {
        const OneValue value(OpenFolder(store, path).Get(), PR_CONTAINER_CLASS_W);
        return value.Error() == MAPI_E_NOT_FOUND ? L"(none)" : value.Text();
    }
};

TEST_F(Folders, TheRootLeadsToTheTopAndTheTopToTheMailFolders) {
    const ComPtr<IMsgStore> store = OpenStore(LogOn().Get());
    const ComPtr<IMAPIFolder> root = Root(store.Get());
    EXPECT_EQ(OneValue(root.Get(), PR_FOLDER_TYPE).Value().Value.l, static_cast<LONG>(FOLDER_ROOT));
    EXPECT_EQ(FirstTexts(FoldersOf(root.Get(), {PR_DISPLAY_NAME_W})), (std::vector<std::wstring>{L"Mail"}));
    EXPECT_EQ(ContentsOf(root.Get(), {PR_ENTRYID})->cRows, 0U);
    EXPECT_EQ(FirstTexts(FoldersOf(OpenFolder(store.Get(), L"").Get(), {PR_DISPLAY_NAME_W})),
              (std::vector<std::wstring>{L"Contacts", L"Inbox"}));
}

TEST_F(Folders, ParentsLeadBackToTheRoot) {
    MakeFolder(L"Work\\Mail\\Contacts\\Family");
    const ComPtr<IMsgStore> store = OpenStore(LogOn().Get());
    const auto parent = [&](const std::wstring& path) {
        return OneValue(OpenFolder(store.Get(), path).Get(), PR_PARENT_ENTRYID).Bytes();
    };
    EXPECT_EQ(parent(L"Contacts\\Family"), IdOfFolder(store.Get(), L"Contacts"));
    EXPECT_EQ(parent(L"Contacts"), IdOfFolder(store.Get(), L""));
    EXPECT_EQ(parent(L""), IdOf(Root(store.Get()).Get()));
    EXPECT_EQ(OneValue(Root(store.Get()).Get(), PR_PARENT_ENTRYID).Bytes(), IdOf(Root(store.Get()).Get()));
}

TEST_F(Folders, GetTheirClassFromNameParentOrIni) {
    for (const wchar_t* folder : {L"Calendar", L"Tasks", L"Journal", L"Notes", L"Drafts", L"Other",
                                  L"Contacts\\Family", L"Contacts\\Notes", L"Contacts\\Quick",
                                  L"Other\\Calendar", L"contacts of old", L"Contacts\\Quick\\Deep"}) {
        MakeFolder(std::wstring(L"Work\\Mail\\") + folder);
    }
    WriteFileText(L"Work\\Mail\\Contacts\\Quick\\folder.ini",
                  "[Folder]\nClass=IPF.Contact.Quick\nName=Quick ones\n");
    WriteFileText(L"Work\\Mail\\Contacts\\Quick\\Deep\\folder.ini", "[Folder]\nClass=\n");
    const ComPtr<IMsgStore> store = OpenStore(LogOn().Get());
    EXPECT_EQ(ClassOf(store.Get(), L"Contacts"), L"IPF.Contact");
    EXPECT_EQ(ClassOf(store.Get(), L"Calendar"), L"IPF.Appointment");
    EXPECT_EQ(ClassOf(store.Get(), L"Tasks"), L"IPF.Task");
    EXPECT_EQ(ClassOf(store.Get(), L"Journal"), L"IPF.Journal");
    EXPECT_EQ(ClassOf(store.Get(), L"Notes"), L"IPF.StickyNote");
    EXPECT_EQ(ClassOf(store.Get(), L"Drafts"), L"IPF.Note");
    EXPECT_EQ(ClassOf(store.Get(), L"Inbox"), L"IPF.Note");
    EXPECT_EQ(ClassOf(store.Get(), L"Other"), L"(none)");
    EXPECT_EQ(ClassOf(store.Get(), L"contacts of old"), L"(none)");
    EXPECT_EQ(ClassOf(store.Get(), L"Contacts\\Family"), L"IPF.Contact");
    EXPECT_EQ(ClassOf(store.Get(), L"Contacts\\Notes"), L"IPF.Contact");
    EXPECT_EQ(ClassOf(store.Get(), L"Contacts\\Quick ones"), L"IPF.Contact.Quick");
    EXPECT_EQ(ClassOf(store.Get(), L"Contacts\\Quick ones\\Deep"), L"(none)");
    EXPECT_EQ(ClassOf(store.Get(), L"Other\\Calendar"), L"IPF.Appointment");
}

TEST_F(Folders, ClassRestrictsTheHierarchyTable) {
    MakeFolder(L"Work\\Mail\\Other");
    const ComPtr<IMsgStore> store = OpenStore(LogOn().Get());
    SPropValue value = StringValue(PR_CONTAINER_CLASS_W, L"IPF.Contact");
    SRestriction restriction{};
    restriction.rt = RES_PROPERTY;
    restriction.res.resProperty = {RELOP_EQ, PR_CONTAINER_CLASS_W, &value};
    const RowSet rows =
        FoldersOf(OpenFolder(store.Get(), L"").Get(),
                  {PR_DISPLAY_NAME_W, PR_CONTAINER_CLASS_W, PR_ENTRYID, PR_SUBFOLDERS}, &restriction);
    EXPECT_EQ(FirstTexts(rows), (std::vector<std::wstring>{L"Contacts"}));
    EXPECT_EQ(rows->aRow[0].lpProps[3].Value.b, FALSE);
}

TEST_F(Folders, AFolderWithoutClassHasAnErrorInItsRow) {
    MakeFolder(L"Work\\Mail\\Other");
    const ComPtr<IMsgStore> store = OpenStore(LogOn().Get());
    const RowSet rows =
        FoldersOf(OpenFolder(store.Get(), L"").Get(), {PR_DISPLAY_NAME_W, PR_CONTAINER_CLASS_W});
    ASSERT_EQ(rows->cRows, 3U);
    const SRow* const row = rows->aRow;
    EXPECT_EQ(row[2].lpProps[1].ulPropTag, CHANGE_PROP_TYPE(PR_CONTAINER_CLASS_W, PT_ERROR));
    EXPECT_EQ(row[2].lpProps[1].Value.err, MAPI_E_NOT_FOUND);
}

TEST_F(Folders, CountAndSubFoldersAreWhatTheyHold) {
    MakeFolder(L"Work\\Mail\\Contacts\\Family");
    const ComPtr<IMAPIFolder> contacts = OpenContacts();
    AddContact(contacts.Get(), L"one");
    AddContact(contacts.Get(), L"two");
    WriteFileText(L"Work\\Mail\\Contacts\\damaged.msg", "no message");
    EXPECT_EQ(OneValue(contacts.Get(), PR_CONTENT_COUNT).Value().Value.l, 2);
    EXPECT_EQ(OneValue(contacts.Get(), PR_SUBFOLDERS).Value().Value.b, TRUE);
    EXPECT_EQ(TextOf(contacts.Get(), PR_DISPLAY_NAME_W), L"Contacts");
}

TEST_F(Folders, AFolderKeepsTheNameThatItHadWhenItWasAskedForIt) {
    const ComPtr<IMAPIFolder> contacts = OpenContacts();
    WriteFileText(L"Work\\Mail\\Contacts\\folder.ini",
                  "[Folder]\r\nName=People\r\nClass=IPF.Contact.Friends\r\n");
    EXPECT_EQ(TextOf(contacts.Get(), PR_DISPLAY_NAME_W), L"People");
    WriteFileText(L"Work\\Mail\\Contacts\\folder.ini", "[Folder]\r\nName=Somebody\r\n");
    EXPECT_EQ(TextOf(contacts.Get(), PR_DISPLAY_NAME_W), L"People");
    EXPECT_EQ(TextOf(contacts.Get(), PR_CONTAINER_CLASS_W), L"IPF.Contact.Friends");
    const ComPtr<IMsgStore> store = OpenStore(LogOn().Get());
    EXPECT_EQ(TextOf(OpenFolder(store.Get(), L"Somebody").Get(), PR_CONTAINER_CLASS_W), L"IPF.Contact");
}

TEST_F(Folders, AFolderWhoseSettingsSomebodyKeepsToHimselfListsAndHasNoNameMeanwhile) {
    AddContact(OpenContacts().Get(), L"one");
    const wchar_t* const settings = L"Work\\Mail\\Contacts\\folder.ini";
    const ComPtr<IMsgStore> store = OpenStore(LogOn().Get());
    std::vector<BYTE> id = IdOf(OpenFolder(store.Get(), L"Contacts").Get());
    WriteFileText(settings, "[Folder]\r\nName=People\r\n");
    FileHandle kept(
        CreateFileW(PathOf(settings).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(kept);
    ComPtr<IMAPIFolder> folder;
    ULONG type = 0;
    ASSERT_EQ(store->OpenEntry(static_cast<ULONG>(id.size()), reinterpret_cast<LPENTRYID>(id.data()), nullptr,
                               0, &type, reinterpret_cast<LPUNKNOWN*>(folder.GetAddressOf())),
              S_OK);
    EXPECT_EQ(OneValue(folder.Get(), PR_CONTENT_COUNT).Value().Value.l, 1);
    SizedSPropTagArray(1, tags) = {1, {PR_DISPLAY_NAME_W}};
    ULONG count = 0;
    MapiBuffer<SPropValue> name;
    EXPECT_EQ(folder->GetProps(reinterpret_cast<LPSPropTagArray>(&tags), MAPI_UNICODE, &count, name.Put()),
              MAPI_E_BUSY);
    kept.Reset();
    EXPECT_EQ(TextOf(folder.Get(), PR_DISPLAY_NAME_W), L"People");
}

TEST_F(Folders, OnlyFoldersThatAreShownCountAsSubFolders) {
    const ComPtr<IMAPIFolder> contacts = OpenContacts();
    const auto hasSubFolders = [&] { return OneValue(contacts.Get(), PR_SUBFOLDERS).Value().Value.b; };
    AddContact(contacts.Get(), L"one");
    MakeFolder(L"Work\\Mail\\Contacts\\.hidden");
    EXPECT_EQ(hasSubFolders(), FALSE);
    MakeFolder(L"Work\\Mail\\Contacts\\two.msg");
    EXPECT_EQ(hasSubFolders(), TRUE);
    ASSERT_TRUE(RemoveDirectoryW(PathOf(L"Work\\Mail\\Contacts\\two.msg").c_str()));
    EXPECT_EQ(hasSubFolders(), FALSE);
}

TEST_F(Folders, TheDeepTableShowsAllLevels) {
    MakeFolder(L"Work\\Mail\\Contacts\\Family");
    MakeFolder(L"Work\\Mail\\Contacts\\Family\\Far");
    const ComPtr<IMAPIFolder> contacts = OpenContacts();
    ComPtr<IMAPITable> table;
    ASSERT_EQ(contacts->GetHierarchyTable(MAPI_UNICODE | CONVENIENT_DEPTH, &table), S_OK);
    const RowSet rows = RowsOf(table.Get(), {PR_DISPLAY_NAME_W, PR_DEPTH});
    EXPECT_EQ(FirstTexts(rows), (std::vector<std::wstring>{L"Family", L"Far"}));
    const SRow* const row = rows->aRow;
    EXPECT_EQ(row[1].lpProps[1].Value.l, 2);
}

TEST_F(Folders, RootAndInboxNameTheDefaultFolders) {
    MakeFolder(L"Work\\Mail\\calendar");
    const ComPtr<IMsgStore> store = OpenStore(LogOn().Get());
    for (const ComPtr<IMAPIFolder>& folder : {Root(store.Get()), OpenFolder(store.Get(), L"Inbox")}) {
        EXPECT_EQ(OneProp(folder.Get(), 0x36D10102), IdOfFolder(store.Get(), L"Contacts"));
        EXPECT_EQ(OneProp(folder.Get(), 0x36D00102), IdOfFolder(store.Get(), L"calendar"));
        for (const ULONG tag : {0x36D20102U, 0x36D30102U, 0x36D40102U, 0x36D70102U}) {
            OneProp(folder.Get(), tag, MAPI_E_NOT_FOUND);
        }
    }
    OneProp(OpenFolder(store.Get(), L"Contacts").Get(), 0x36D10102, MAPI_E_NOT_FOUND);
}

TEST_F(Folders, FolderIniKeepsTheDefaultFoldersOnOneObject) {
    WriteFileText(L"Work\\Mail\\folder.ini", "[Store]\nDefaultFoldersOn=Root\n");
    const ComPtr<IMsgStore> store = OpenStore(LogOn().Get());
    EXPECT_EQ(OneProp(Root(store.Get()).Get(), 0x36D10102), IdOfFolder(store.Get(), L"Contacts"));
    OneProp(OpenFolder(store.Get(), L"Inbox").Get(), 0x36D10102, MAPI_E_NOT_FOUND);
}

TEST_F(Folders, TheInboxIsTheReceiveFolder) {
    const ComPtr<IMsgStore> store = OpenStore(LogOn().Get());
    ULONG size = 0;
    MapiBuffer<ENTRYID> id;
    MapiBuffer<wchar_t> explicitClass;
    ASSERT_EQ(store->GetReceiveFolder(const_cast<LPWSTR>(L"IPM.Note"), MAPI_UNICODE, &size, id.Put(),
                                      explicitClass.Put()),
              S_OK);
    const auto* bytes = reinterpret_cast<const BYTE*>(id.Get());
    EXPECT_EQ(std::vector<BYTE>(bytes, bytes + size), IdOfFolder(store.Get(), L"Inbox"));
    EXPECT_STREQ(explicitClass.Get(), L"");
    RemoveDirectoryW(PathOf(L"Work\\Mail\\Inbox").c_str());
    EXPECT_EQ(store->GetReceiveFolder(nullptr, MAPI_UNICODE, &size, id.Put(), nullptr), MAPI_E_NOT_FOUND);
}

TEST_F(Folders, MessagesStandInTheTopFolderToo) {
    const ComPtr<IMsgStore> store = OpenStore(LogOn().Get());
    const ComPtr<IMAPIFolder> top = OpenFolder(store.Get(), L"");
    const std::vector<BYTE> id = AddContact(top.Get(), L"in the top");
    EXPECT_EQ(FileNames(PathOf(L"Work\\Mail")), (std::vector<std::wstring>{L"in the top.msg"}));
    const ComPtr<IMessage> message = OpenMessage(top.Get(), id);
    ASSERT_NE(message, nullptr);
    EXPECT_EQ(OneValue(message.Get(), PR_PARENT_ENTRYID).Bytes(), IdOf(top.Get()));
}

TEST_F(Folders, ShowWhatTheirNameAndNotThePathSays) {
    WriteFileText(L"Work\\Mail\\Contacts\\folder.ini",
                  "\xEF\xBB\xBF[Folder]\r\nName=People \xE5\xB1\xB1\r\n");
    const ComPtr<IMsgStore> store = OpenStore(LogOn().Get());
    const ComPtr<IMAPIFolder> folder = OpenFolder(store.Get(), L"People \x5C71");
    ASSERT_NE(folder, nullptr);
    EXPECT_EQ(OneProp(Root(store.Get()).Get(), 0x36D10102), IdOf(folder.Get()));
}

TEST_F(Folders, RefuseToBeWrittenTo) {
    const ComPtr<IMAPIFolder> contacts = OpenContacts();
    EXPECT_EQ(Set(contacts.Get(), {StringValue(PR_DISPLAY_NAME_W, L"x")}), MAPI_E_NO_SUPPORT);
    const ComPtr<IMsgStore> store = OpenStore(LogOn().Get());
    ComPtr<IMessage> message;
    EXPECT_EQ(Root(store.Get())->CreateMessage(nullptr, 0, &message), MAPI_E_NO_ACCESS);
}

TEST_F(Folders, AssociatedContentsAreEmpty) {
    const ComPtr<IMAPIFolder> contacts = OpenContacts();
    AddContact(contacts.Get(), L"one");
    ComPtr<IMAPITable> table;
    ASSERT_EQ(contacts->GetContentsTable(MAPI_ASSOCIATED, &table), S_OK);
    ULONG count = 7;
    EXPECT_EQ(table->GetRowCount(0, &count), S_OK);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(contacts->GetContentsTable(0x10000000, &table), MAPI_E_UNKNOWN_FLAGS);
}

TEST_F(Folders, DeleteMessagesRemovesTheFile) {
    const ComPtr<IMAPIFolder> contacts = OpenContacts();
    std::vector<BYTE> id = AddContact(contacts.Get(), L"one");
    AddContact(contacts.Get(), L"two");
    SBinary entry{static_cast<ULONG>(id.size()), id.data()};
    ENTRYLIST list{1, &entry};
    EXPECT_EQ(contacts->DeleteMessages(&list, 0, nullptr, 0), S_OK);
    EXPECT_EQ(FileNames(PathOf(kContactsPath)), (std::vector<std::wstring>{L"two.msg"}));
    EXPECT_EQ(OpenMessage(contacts.Get(), id), nullptr);
    EXPECT_EQ(contacts->DeleteMessages(&list, 0, nullptr, 0), MAPI_E_NOT_FOUND);
}

TEST_F(Folders, DeleteMessagesTakesOnlyItsOwn) {
    MakeFolder(L"Work\\Mail\\Contacts\\Family");
    const ComPtr<IMsgStore> store = OpenStore(LogOn().Get());
    const ComPtr<IMAPIFolder> contacts = OpenFolder(store.Get(), L"Contacts");
    const ComPtr<IMAPIFolder> family = OpenFolder(store.Get(), L"Contacts\\Family");
    std::vector<BYTE> mine = AddContact(contacts.Get(), L"mine");
    std::vector<BYTE> other = AddContact(family.Get(), L"other");
    SBinary entries[] = {{static_cast<ULONG>(other.size()), other.data()},
                         {static_cast<ULONG>(mine.size()), mine.data()}};
    ENTRYLIST list{1, entries};
    EXPECT_EQ(contacts->DeleteMessages(&list, 0, nullptr, 0), MAPI_E_NOT_FOUND);
    list.cValues = 2;
    EXPECT_EQ(contacts->DeleteMessages(&list, 0, nullptr, 0), MAPI_W_PARTIAL_COMPLETION);
    EXPECT_EQ(FileNames(PathOf(L"Work\\Mail\\Contacts\\Family")).size(), 1U);
    EXPECT_TRUE(FileNames(PathOf(kContactsPath)).empty());
    ENTRYLIST wrong{1, nullptr};
    EXPECT_EQ(contacts->DeleteMessages(&wrong, 0, nullptr, 0), MAPI_E_INVALID_PARAMETER);
    EXPECT_EQ(contacts->DeleteMessages(nullptr, 0, nullptr, 0), MAPI_E_INVALID_PARAMETER);
}

TEST_F(Folders, AReadOnlyFileIsNotDeleted) {
    const ComPtr<IMAPIFolder> contacts = OpenContacts();
    std::vector<BYTE> id = AddContact(contacts.Get(), L"one");
    SetFileAttributesW(PathOf(L"Work\\Mail\\Contacts\\one.msg").c_str(), FILE_ATTRIBUTE_READONLY);
    SBinary entry{static_cast<ULONG>(id.size()), id.data()};
    ENTRYLIST list{1, &entry};
    EXPECT_EQ(contacts->DeleteMessages(&list, 0, nullptr, 0), MAPI_E_NO_ACCESS);
    EXPECT_EQ(FileNames(PathOf(kContactsPath)).size(), 1U);
}

TEST_F(Folders, OpenTo32LevelsAndNoFurther) {
    // The store's top is level 0, and Contacts is level 1.
    std::wstring path = L"Contacts";
    for (int level = 2; level <= 33; ++level) {
        path += L"\\f";
        ASSERT_TRUE(CreateDirectoryW(localstore::LongPath(PathOf(L"Work\\Mail\\" + path)).c_str(), nullptr))
            << level;
    }
    const ComPtr<IMsgStore> store = OpenStore(LogOn().Get());
    ComPtr<IMAPIFolder> folder = OpenFolder(store.Get(), L"Contacts");
    int level = 1;
    for (;; ++level) {
        const RowSet rows = FoldersOf(folder.Get(), {PR_ENTRYID});
        ASSERT_EQ(rows->cRows, 1U) << level;
        const SBinary& id = rows->aRow[0].lpProps[0].Value.bin;
        ULONG type = 0;
        ComPtr<IMAPIFolder> inner;
        if (store->OpenEntry(id.cb, reinterpret_cast<LPENTRYID>(id.lpb), nullptr, 0, &type,
                             reinterpret_cast<LPUNKNOWN*>(inner.GetAddressOf())) != S_OK) {
            break;
        }
        folder = std::move(inner);
    }
    EXPECT_EQ(level, 32);
}

TEST_F(Folders, AFolderIniOfMoreThanAMegabyteDoesNotCount) {
    constexpr std::size_t kLongest = std::size_t{1024} * 1024;
    const std::string text = "[Folder]\nName=People\n;";
    for (const auto& [size, name] : {std::pair(kLongest, L"People"), std::pair(kLongest + 1, L"Contacts")}) {
        WriteFileText(L"Work\\Mail\\Contacts\\folder.ini", text + std::string(size - text.size(), 'x'));
        const ComPtr<IMsgStore> store = OpenStore(LogOn().Get());
        EXPECT_NE(OpenFolder(store.Get(), name), nullptr) << size;
    }
}
