#include "store_fixture.h"

using namespace localstore_test;

class Profiles : public StoreTest {
  protected:
    static ComPtr<IProfAdmin> Admin() {
        ComPtr<IProfAdmin> admin;
        EXPECT_EQ(pfnMAPIAdminProfiles(0, &admin), S_OK);
        return admin;
    }

    /// "name" or "name*" for the default profile, in table order.
    static std::vector<std::string> List() {
        ComPtr<IMAPITable> table;
        EXPECT_EQ(Admin()->GetProfileTable(0, &table), S_OK);
        EXPECT_EQ(table->SeekRow(BOOKMARK_BEGINNING, 0, nullptr), S_OK);
        const RowSet rows = RowsOf(table.Get(), {PR_DISPLAY_NAME_A, PR_DEFAULT_PROFILE});
        std::vector<std::string> names;
        for (ULONG i = 0; i < rows->cRows; ++i) {
            const SPropValue* values = rows->aRow[i].lpProps;
            EXPECT_EQ(values[0].ulPropTag, PR_DISPLAY_NAME_A);
            names.push_back(std::string(values[0].Value.lpszA) + (values[1].Value.b != FALSE ? "*" : ""));
        }
        return names;
    }

    static HRESULT TryLogOn(const wchar_t* profile, ULONG flags) {
        ComPtr<IMAPISession> session;
        return pfnMAPILogonEx(0, const_cast<LPWSTR>(profile), nullptr, flags | MAPI_UNICODE, &session);
    }

    static std::vector<std::wstring> Stores(const wchar_t* profile = L"Work") {
        ComPtr<IMAPITable> table;
        EXPECT_EQ(LogOn(profile)->GetMsgStoresTable(0, &table), S_OK);
        const RowSet rows = RowsOf(table.Get(), {PR_DISPLAY_NAME_W, PR_DEFAULT_STORE, PR_ENTRYID});
        std::vector<std::wstring> names;
        for (ULONG i = 0; i < rows->cRows; ++i) {
            const SPropValue* values = rows->aRow[i].lpProps;
            names.push_back(std::wstring(values[0].Value.lpszW) + (values[1].Value.b != FALSE ? L"*" : L""));
        }
        return names;
    }
};

TEST_F(Profiles, AreTheFoldersOfTheRootAndTheFirstIsTheDefault) {
    MakeFolder(L"Home");
    MakeFolder(L".hidden");
    WriteFileText(L"file", "x");
    EXPECT_EQ(List(), (std::vector<std::string>{"Home*", "Work"}));
}

TEST_F(Profiles, FolderIniNamesTheDefault) {
    MakeFolder(L"Home");
    WriteFileText(L"Work\\folder.ini", "[Profile]\nDefault=1\n");
    EXPECT_EQ(List(), (std::vector<std::string>{"Home", "Work*"}));
    EXPECT_EQ(TryLogOn(L"", MAPI_USE_DEFAULT), S_OK);
}

TEST_F(Profiles, FolderIniIsReadAgainWhenItChanges) {
    MakeFolder(L"Home");
    EXPECT_EQ(List(), (std::vector<std::string>{"Home*", "Work"}));
    WriteFileText(L"Home\\folder.ini", "[Profile]\nDefault=0\n");
    EXPECT_EQ(List(), (std::vector<std::string>{"Home", "Work*"}));
    WriteFileText(L"Home\\folder.ini", "[Profile]\nDefault=yes\n");
    EXPECT_EQ(List(), (std::vector<std::string>{"Home*", "Work"}));
    DeleteFileW(PathOf(L"Home\\folder.ini").c_str());
    WriteFileText(L"Work\\folder.ini", "[Profile]\nDefault=1\n");
    EXPECT_EQ(List(), (std::vector<std::string>{"Home", "Work*"}));
}

TEST_F(Profiles, OfARootThatIsNotThereAreNone) {
    localstore::recorder::SetRoot(PathOf(L"nowhere"));
    EXPECT_TRUE(List().empty());
    EXPECT_EQ(TryLogOn(L"", MAPI_USE_DEFAULT), MAPI_E_LOGON_FAILED);
}

TEST_F(Profiles, LogonTakesNamesInAnyCaseAndBothWidths) {
    EXPECT_EQ(TryLogOn(L"WORK", 0), S_OK);
    ComPtr<IMAPISession> session;
    EXPECT_EQ(pfnMAPILogonEx(0, reinterpret_cast<LPTSTR>(const_cast<char*>("Work")), nullptr, 0, &session),
              S_OK);
}

TEST_F(Profiles, LogonNeedsAProfileOrTheDefault) {
    EXPECT_EQ(TryLogOn(L"Nobody", 0), MAPI_E_LOGON_FAILED);
    EXPECT_EQ(TryLogOn(L"Nobody", MAPI_USE_DEFAULT), MAPI_E_LOGON_FAILED);
    EXPECT_EQ(TryLogOn(L"", 0), MAPI_E_LOGON_FAILED);
    EXPECT_EQ(TryLogOn(nullptr, 0), MAPI_E_LOGON_FAILED);
    EXPECT_EQ(TryLogOn(L"", MAPI_USE_DEFAULT), S_OK);
    EXPECT_EQ(TryLogOn(L"", 0x80100072), S_OK);
    EXPECT_EQ(TryLogOn(L"Work", 0x80100032), S_OK);
}

TEST_F(Profiles, NothingWorksBeforeMapiIsInitialized) {
    pfnMAPIUninitialize();
    EXPECT_EQ(TryLogOn(L"Work", 0), MAPI_E_NOT_INITIALIZED);
    ComPtr<IProfAdmin> admin;
    EXPECT_EQ(pfnMAPIAdminProfiles(0, &admin), MAPI_E_NOT_INITIALIZED);
    pfnMAPIUninitialize();
    MAPIINIT_0 init{0, 0};
    EXPECT_EQ(pfnMAPIInitialize(&init), S_OK);
    EXPECT_EQ(TryLogOn(L"Work", 0), S_OK);
}

TEST_F(Profiles, AStoreIsAFolderOfTheProfile) {
    MakeFolder(L"Work\\Archive");
    EXPECT_EQ(Stores(), (std::vector<std::wstring>{L"Archive*", L"Mail"}));
    WriteFileText(L"Work\\Mail\\folder.ini", "[Store]\nDefault=1\nName=My mail \xC3\xA9\n");
    EXPECT_EQ(Stores(), (std::vector<std::wstring>{L"Archive", L"My mail \x00E9*"}));
}

TEST_F(Profiles, NoStoreIsTheDefaultIfAllDecline) {
    WriteFileText(L"Work\\Mail\\folder.ini", "[Store]\nDefault=0\n");
    EXPECT_EQ(Stores(), (std::vector<std::wstring>{L"Mail"}));
}

TEST_F(Profiles, TheDefaultStoreIsFoundByARestriction) {
    MakeFolder(L"Work\\Archive");
    ComPtr<IMAPITable> table;
    ASSERT_EQ(LogOn()->GetMsgStoresTable(0, &table), S_OK);
    SPropValue yes = BoolValue(PR_DEFAULT_STORE, true);
    SRestriction restriction{};
    restriction.rt = RES_PROPERTY;
    restriction.res.resProperty = {RELOP_EQ, PR_DEFAULT_STORE, &yes};
    EXPECT_EQ(FirstTexts(RowsOf(table.Get(), {PR_DISPLAY_NAME_W}, &restriction)),
              (std::vector<std::wstring>{L"Archive"}));
}

TEST_F(Profiles, AStoreCanRefuseToOpen) {
    WriteFileText(L"Work\\Mail\\folder.ini", "[Store]\nRefuse=1\n");
    const ComPtr<IMAPISession> session = LogOn();
    ComPtr<IMAPITable> table;
    ASSERT_EQ(session->GetMsgStoresTable(0, &table), S_OK);
    const RowSet rows = RowsOf(table.Get(), {PR_ENTRYID});
    ASSERT_EQ(rows->cRows, 1U);
    const SBinary& id = rows->aRow[0].lpProps[0].Value.bin;
    ComPtr<IMsgStore> store;
    EXPECT_EQ(session->OpenMsgStore(0, id.cb, reinterpret_cast<LPENTRYID>(id.lpb), nullptr, 0, &store),
              MAPI_E_FAILONEPROVIDER);
    EXPECT_EQ(store, nullptr);
}

TEST_F(Profiles, OpenMsgStoreRefusesOtherIdentifiers) {
    const ComPtr<IMAPISession> session = LogOn();
    const ComPtr<IMsgStore> mail = OpenStore(session.Get());
    std::vector<BYTE> folder = IdOf(OpenFolder(mail.Get(), L"Contacts").Get());
    ComPtr<IMsgStore> store;
    EXPECT_EQ(session->OpenMsgStore(0, static_cast<ULONG>(folder.size()),
                                    reinterpret_cast<LPENTRYID>(folder.data()), nullptr, 0, &store),
              MAPI_E_INVALID_ENTRYID);
    std::vector<BYTE> gone = IdOf(mail.Get());
    gone[4] ^= 1U;
    EXPECT_EQ(session->OpenMsgStore(0, static_cast<ULONG>(gone.size()),
                                    reinterpret_cast<LPENTRYID>(gone.data()), nullptr, 0, &store),
              MAPI_E_NOT_FOUND);
}

TEST_F(Profiles, NothingWorksBehindLogoff) {
    const ComPtr<IMAPISession> session = LogOn();
    EXPECT_EQ(session->Logoff(0, MAPI_LOGOFF_UI, 0), S_OK);
    ComPtr<IMAPITable> table;
    EXPECT_EQ(session->GetMsgStoresTable(0, &table), MAPI_E_END_OF_SESSION);
}

TEST_F(Profiles, TheSessionOpensWhatItsStoresHold) {
    const ComPtr<IMAPISession> session = LogOn();
    const ComPtr<IMsgStore> store = OpenStore(session.Get());
    std::vector<BYTE> id = IdOf(OpenFolder(store.Get(), L"Contacts").Get());
    ULONG type = 0;
    ComPtr<IUnknown> object;
    EXPECT_EQ(session->OpenEntry(static_cast<ULONG>(id.size()), reinterpret_cast<LPENTRYID>(id.data()),
                                 nullptr, 0, &type, &object),
              S_OK);
    EXPECT_EQ(type, MAPI_FOLDER);
    ULONG same = FALSE;
    EXPECT_EQ(session->CompareEntryIDs(static_cast<ULONG>(id.size()), reinterpret_cast<LPENTRYID>(id.data()),
                                       static_cast<ULONG>(id.size()), reinterpret_cast<LPENTRYID>(id.data()),
                                       0, &same),
              S_OK);
    EXPECT_EQ(same, static_cast<ULONG>(TRUE));
}
