#include "store_fixture.h"

using namespace localstore_test;

class Tables : public StoreTest {
  protected:
    void SetUp() override {
        StoreTest::SetUp();
        m_contacts = OpenContacts();
        for (const wchar_t* subject : {L"b", L"c", L"a"}) {
            AddContact(m_contacts.Get(), subject);
        }
        ASSERT_EQ(m_contacts->GetContentsTable(MAPI_UNICODE | MAPI_DEFERRED_ERRORS, &m_table), S_OK);
    }
    void TearDown() override {
        m_table.Reset();
        m_contacts.Reset();
        StoreTest::TearDown();
    }

    void SetColumns(std::initializer_list<ULONG> tags) const {
        std::vector<ULONG> list = {static_cast<ULONG>(tags.size())};
        list.insert(list.end(), tags);
        ASSERT_EQ(m_table->SetColumns(reinterpret_cast<LPSPropTagArray>(list.data()), 0), S_OK);
    }
    std::vector<std::wstring> Query(LONG count, ULONG flags = 0) const {
        RowSet rows;
        EXPECT_EQ(m_table->QueryRows(count, flags, rows.Put()), S_OK);
        return FirstTexts(rows);
    }
    [[nodiscard]] ULONG Position() const {
        ULONG row = 0;
        ULONG numerator = 0;
        ULONG denominator = 0;
        EXPECT_EQ(m_table->QueryPosition(&row, &numerator, &denominator), S_OK);
        return row;
    }

    using Texts = std::vector<std::wstring>;
    ComPtr<IMAPIFolder> m_contacts;
    ComPtr<IMAPITable> m_table;
};

TEST_F(Tables, RowsStandInOrderOfFileNames) {
    SetColumns({PR_SUBJECT_W});
    EXPECT_EQ(Query(100), (Texts{L"a", L"b", L"c"}));
    EXPECT_EQ(Query(100), Texts());
}

TEST_F(Tables, RowsHaveTheColumnsInTheOrderAskedFor) {
    const RowSet rows = RowsOf(m_table.Get(), {PR_ENTRYID, 0x66700102, PR_LAST_MODIFICATION_TIME});
    ASSERT_EQ(rows->cRows, 3U);
    EXPECT_EQ(rows->aRow[0].cValues, 3U);
    EXPECT_EQ(rows->aRow[0].lpProps[0].ulPropTag, PR_ENTRYID);
    EXPECT_EQ(PROP_TYPE(rows->aRow[0].lpProps[1].ulPropTag), PT_ERROR);
    EXPECT_EQ(rows->aRow[0].lpProps[2].ulPropTag, PR_LAST_MODIFICATION_TIME);
}

TEST_F(Tables, PositionMovesWithQueriesAndSeeks) {
    SetColumns({PR_SUBJECT_W});
    EXPECT_EQ(Query(2), (Texts{L"a", L"b"}));
    EXPECT_EQ(Position(), 2U);
    EXPECT_EQ(Query(-1), Texts{L"b"});
    EXPECT_EQ(Position(), 1U);
    EXPECT_EQ(Query(1, TBL_NOADVANCE), Texts{L"b"});
    EXPECT_EQ(Position(), 1U);
    LONG sought = 0;
    EXPECT_EQ(m_table->SeekRow(BOOKMARK_END, -1, &sought), S_OK);
    EXPECT_EQ(sought, -1);
    EXPECT_EQ(Query(9), Texts{L"c"});
    EXPECT_EQ(m_table->SeekRow(BOOKMARK_BEGINNING, 100, &sought), S_OK);
    EXPECT_EQ(sought, 3);
    EXPECT_EQ(m_table->SeekRow(BOOKMARK_CURRENT, -100, &sought), S_OK);
    EXPECT_EQ(sought, -3);
    EXPECT_EQ(m_table->SeekRow(77, 0, nullptr), MAPI_E_INVALID_BOOKMARK);
}

TEST_F(Tables, BookmarksKeepAPlace) {
    SetColumns({PR_SUBJECT_W});
    ASSERT_EQ(m_table->SeekRow(BOOKMARK_BEGINNING, 1, nullptr), S_OK);
    BOOKMARK place = 0;
    ASSERT_EQ(m_table->CreateBookmark(&place), S_OK);
    Query(2);
    EXPECT_EQ(m_table->SeekRow(place, 0, nullptr), S_OK);
    EXPECT_EQ(Query(1), Texts{L"b"});
    EXPECT_EQ(m_table->FreeBookmark(place), S_OK);
    EXPECT_EQ(m_table->SeekRow(place, 0, nullptr), MAPI_E_INVALID_BOOKMARK);
}

TEST_F(Tables, HrQueryAllRowsReadsFromTheBeginning) {
    SetColumns({PR_SUBJECT_W});
    Query(2);
    RowSet rows;
    ASSERT_EQ(pfnHrQueryAllRows(m_table.Get(), nullptr, nullptr, nullptr, 0, rows.Put()), S_OK);
    EXPECT_EQ(FirstTexts(rows), (Texts{L"a", L"b", L"c"}));
}

TEST_F(Tables, HrQueryAllRowsReallyRestricts) {
    SPropValue value = StringValue(PR_SUBJECT_W, L"c");
    SRestriction restriction{};
    restriction.rt = RES_PROPERTY;
    restriction.res.resProperty = {RELOP_EQ, PR_SUBJECT_W, &value};
    EXPECT_EQ(FirstTexts(RowsOf(m_table.Get(), {PR_SUBJECT_W}, &restriction)), Texts{L"c"});
    ULONG count = 0;
    EXPECT_EQ(m_table->GetRowCount(0, &count), S_OK);
    EXPECT_EQ(count, 1U);
    EXPECT_EQ(m_table->Restrict(nullptr, 0), S_OK);
    EXPECT_EQ(m_table->GetRowCount(0, &count), S_OK);
    EXPECT_EQ(count, 3U);
}

TEST_F(Tables, HrQueryAllRowsRefusesMoreThanAskedFor) {
    RowSet rows;
    EXPECT_EQ(pfnHrQueryAllRows(m_table.Get(), nullptr, nullptr, nullptr, 2, rows.Put()),
              MAPI_E_TABLE_TOO_BIG);
    EXPECT_FALSE(rows);
    EXPECT_EQ(pfnHrQueryAllRows(m_table.Get(), nullptr, nullptr, nullptr, 3, rows.Put()), S_OK);
    EXPECT_EQ(rows->cRows, 3U);
}

TEST_F(Tables, HrQueryAllRowsSortsOnRequest) {
    SizedSSortOrderSet(1, order) = {1, 0, 0, {{PR_SUBJECT_W, TABLE_SORT_DESCEND}}};
    RowSet rows;
    SizedSPropTagArray(1, columns) = {1, {PR_SUBJECT_W}};
    ASSERT_EQ(pfnHrQueryAllRows(m_table.Get(), reinterpret_cast<LPSPropTagArray>(&columns), nullptr,
                                reinterpret_cast<LPSSortOrderSet>(&order), 0, rows.Put()),
              S_OK);
    EXPECT_EQ(FirstTexts(rows), (Texts{L"c", L"b", L"a"}));
}

TEST_F(Tables, AreSnapshots) {
    AddContact(m_contacts.Get(), L"d");
    DeleteFileW(PathOf(L"Work\\Mail\\Contacts\\a.msg").c_str());
    EXPECT_EQ(FirstTexts(RowsOf(m_table.Get(), {PR_SUBJECT_W})), (Texts{L"a", L"b", L"c"}));
    EXPECT_EQ(FirstTexts(ContentsOf(m_contacts.Get(), {PR_SUBJECT_W})), (Texts{L"b", L"c", L"d"}));
}

TEST_F(Tables, FindRowGoesToTheRow) {
    SetColumns({PR_SUBJECT_W});
    SPropValue value = StringValue(PR_SUBJECT_W, L"b");
    SRestriction restriction{};
    restriction.rt = RES_PROPERTY;
    restriction.res.resProperty = {RELOP_EQ, PR_SUBJECT_W, &value};
    ASSERT_EQ(m_table->FindRow(&restriction, BOOKMARK_BEGINNING, 0), S_OK);
    EXPECT_EQ(Position(), 1U);
    ASSERT_EQ(m_table->FindRow(&restriction, BOOKMARK_END, DIR_BACKWARD), S_OK);
    EXPECT_EQ(Position(), 1U);
    EXPECT_EQ(m_table->FindRow(&restriction, BOOKMARK_END, 0), MAPI_E_NOT_FOUND);
    EXPECT_EQ(m_table->FindRow(&restriction, BOOKMARK_BEGINNING, DIR_BACKWARD), MAPI_E_NOT_FOUND);
}

TEST_F(Tables, HaveColumnsOfTheirOwnUntilTheyAreSet) {
    MapiBuffer<SPropTagArray> columns;
    ASSERT_EQ(m_table->QueryColumns(0, columns.Put()), S_OK);
    EXPECT_EQ(columns->aulPropTag[0], PR_ENTRYID);
    SetColumns({PR_SUBJECT_W, PR_ENTRYID});
    ASSERT_EQ(m_table->QueryColumns(0, columns.Put()), S_OK);
    ASSERT_EQ(columns->cValues, 2U);
    EXPECT_EQ(columns->aulPropTag[0], PR_SUBJECT_W);
}

TEST_F(Tables, HaveAtMost4096Columns) {
    for (const auto& [count, result] :
         {std::pair(4'096U, S_OK), std::pair(4'097U, MAPI_E_INVALID_PARAMETER)}) {
        std::vector<ULONG> list(1 + count, PR_SUBJECT_W);
        list[0] = count;
        EXPECT_EQ(m_table->SetColumns(reinterpret_cast<LPSPropTagArray>(list.data()), 0), result) << count;
    }
    RowSet rows;
    ASSERT_EQ(m_table->QueryRows(1, 0, rows.Put()), S_OK);
    EXPECT_EQ(rows->aRow[0].cValues, 4'096U);
}

TEST_F(Tables, RefuseWhatMakesNoSense) {
    RowSet rows;
    EXPECT_EQ(m_table->QueryRows(0, 0, rows.Put()), MAPI_E_INVALID_PARAMETER);
    EXPECT_EQ(m_table->QueryRows(1, 0, nullptr), MAPI_E_INVALID_PARAMETER);
    EXPECT_EQ(m_table->SetColumns(nullptr, 0), MAPI_E_INVALID_PARAMETER);
    EXPECT_EQ(m_table->SortTable(nullptr, 0), MAPI_E_INVALID_PARAMETER);
    SizedSSortOrderSet(1, order) = {1, 1, 0, {{PR_SUBJECT_W, TABLE_SORT_ASCEND}}};
    EXPECT_EQ(m_table->SortTable(reinterpret_cast<LPSSortOrderSet>(&order), 0), MAPI_E_TOO_COMPLEX);
}

TEST_F(Tables, BringALongStringWhole) {
    const ComPtr<IMessage> message = OpenMessage(m_contacts.Get(), AddContact(m_contacts.Get(), L"z"));
    const std::wstring text(100'000, L'x');
    ASSERT_EQ(Set(message.Get(), {StringValue(PR_SURNAME_W, text.c_str())}), S_OK);
    ASSERT_EQ(message->SaveChanges(0), S_OK);
    const RowSet rows = ContentsOf(m_contacts.Get(), {PR_SURNAME_W});
    const SRow* const row = rows->aRow;
    const SPropValue& value = row[3].lpProps[0];
    ASSERT_EQ(value.ulPropTag, PR_SURNAME_W);
    EXPECT_EQ(value.Value.lpszW, text);
}

TEST_F(Tables, ShowALongBinaryAsNotEnoughMemory) {
    const ComPtr<IMessage> message = OpenMessage(m_contacts.Get(), AddContact(m_contacts.Get(), L"z"));
    constexpr ULONG tag = 0x65000102;
    for (const auto& [size, error] : {std::pair(4'096U, S_OK), std::pair(4'097U, MAPI_E_NOT_ENOUGH_MEMORY)}) {
        std::vector<BYTE> bytes(size, 7);
        ASSERT_EQ(Set(message.Get(), {BinaryValue(tag, bytes)}), S_OK);
        ASSERT_EQ(message->SaveChanges(0), S_OK);
        const RowSet rows = ContentsOf(m_contacts.Get(), {tag});
        const SRow* const row = rows->aRow;
        const SPropValue& value = row[3].lpProps[0];
        EXPECT_EQ(PROP_TYPE(value.ulPropTag) == PT_ERROR ? value.Value.err : S_OK, error) << size;
    }
}
