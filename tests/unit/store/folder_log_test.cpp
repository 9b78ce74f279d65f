// The walk that lists what a folder holds.

#include "changelog/folder_log.h"

#include <cstring>

#include "mapi/hex_text.h"
#include "mapi/property_tags.h"
#include "support/settings.h"
#include "tests/unit/store/change_log.h"
#include "tests/unit/store/contact_reading_fixture.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;

const LogLines kRefusedLines{
    {1, L"CMAPIObject::ReadContactLogFromFolder - Begin\r\n"},
    {3, L"CMAPIObject::ReadContactLogFromFolder - Interrupted or INVALID Parameter\r\n"},
    {1, L"CMAPIObject::ReadContactLogFromFolder - Finish(Failed)\r\n"}};

class FolderLogTest : public ContactReading {
  protected:
    void TearDown() override {
        OnGetChangeLog({});
        ContactReading::TearDown();
    }
    static void ExpectNoComparison() {
        OnGetChangeLog([](LogItems&, const GetChangeLogArgs&) {
            ADD_FAILURE() << "a partial list was compared";
            return 0;
        });
    }
    static void ExpectFailedRead() {
        ExpectNoComparison();
        EXPECT_EQ(g_MAPIObject.ReadContacts(L"map"), 1);
        EXPECT_TRUE(TakeSent().empty());
        const LogLines log = TakeLog();
        ASSERT_GE(log.size(), 3U);
        EXPECT_EQ(LogLines(log.end() - 3, log.end()),
                  (LogLines{{1, L"CMAPIObject::ReadContactLogFromFolder - Finish(Failed)\r\n"},
                            {3, L"CMAPIObject::ReadContacts - Failed to read contacts from log\r\n"},
                            {1, L"CMAPIObject::ReadContacts - Finish\r\n"}}));
    }
    static LogItems ItemsOf(const std::vector<SPropValue>& values) {
        LogItems items;
        tagLogItem item;
        FillLogItem(item, values.data(), static_cast<ULONG>(values.size()));
        items.Add(item);
        return items;
    }
    static SPropValue Binary(ULONG tag, const char* bytes) {
        SPropValue value{};
        value.ulPropTag = tag;
        value.Value.bin.cb = static_cast<ULONG>(std::strlen(bytes));
        value.Value.bin.lpb = reinterpret_cast<BYTE*>(const_cast<char*>(bytes));
        return value;
    }
    static SPropValue Time(WORD year) {
        SYSTEMTIME time{};
        time.wYear = year;
        time.wMonth = 7;
        time.wDay = 1;
        time.wHour = 12;
        SPropValue value{};
        value.ulPropTag = PR_LAST_MODIFICATION_TIME;
        SystemTimeToFileTime(&time, &value.Value.ft);
        return value;
    }
};

TEST_F(FolderLogTest, LongTermIdentifierNamesTheItem) {
    for (const bool longTermFirst : {false, true}) {
        std::vector<SPropValue> values{Binary(PR_ENTRYID, "\x01\x02"),
                                       Binary(PR_LONGTERM_ENTRYID_FROM_TABLE, "\xAB\xCD"), Time(2020)};
        if (longTermFirst) {
            std::swap(values[0], values[1]);
        }
        EXPECT_EQ(ItemsOf(values)[0].m_strId, L"ABCD");
    }
}

TEST_F(FolderLogTest, WithoutALongTermIdentifierTheShortTermOneNamesTheItem) {
    EXPECT_EQ(ItemsOf({Binary(PR_ENTRYID, "\x01\x02"), Time(2020)})[0].m_strId, L"0102");
    EXPECT_EQ(ItemsOf({Binary(PR_ENTRYID, "\x01"), Binary(PR_LONGTERM_ENTRYID_FROM_TABLE, "")})[0].m_strId,
              L"01");
    SPropValue missing{};
    missing.ulPropTag = CHANGE_PROP_TYPE(PR_LONGTERM_ENTRYID_FROM_TABLE, PT_ERROR);
    EXPECT_EQ(ItemsOf({Binary(PR_ENTRYID, "\x01"), missing})[0].m_strId, L"01");
}

TEST_F(FolderLogTest, NewItemIsUnmarkedAndHasTheTimeOfItsChange) {
    const LogItems items = ItemsOf({Binary(PR_ENTRYID, "\x01"), Time(2020)});
    EXPECT_EQ(items[0].m_lLogFlag, 0);
    EXPECT_EQ(items[0].m_lReserved, 0);
    EXPECT_EQ(items[0].m_dtModified.m_status, kDateValid);
}

TEST_F(FolderLogTest, TimeOfAnItemIsLocal) {
    const SYSTEMTIME utc{2020, 7, 3, 1, 12, 0, 0, 0};
    SYSTEMTIME local{};
    ASSERT_NE(SystemTimeToTzSpecificLocalTime(nullptr, &utc, &local), 0);
    const LogItems items = ItemsOf({Binary(PR_ENTRYID, "\x01"), Time(2020)});
    EXPECT_EQ(items[0].m_dtModified.Format(L"%m/%d/%Y %H:%M:%S"),
              CString::Format(L"%02d/%02d/%04d %02d:%02d:00", local.wMonth, local.wDay, local.wYear,
                              local.wHour, local.wMinute));
}

TEST_F(FolderLogTest, RowWithoutATimeKeepsTheValueForNoDate) {
    SPropValue missing{};
    missing.ulPropTag = CHANGE_PROP_TYPE(PR_LAST_MODIFICATION_TIME, PT_ERROR);
    EXPECT_TRUE(ItemsOf({Binary(PR_ENTRYID, "\x01"), missing})[0].m_dtModified.IsNoDate());
}

TEST_F(FolderLogTest, ItemsOfSubFoldersFollowInOneList) {
    MakeFolder(L"Work\\Mail\\Contacts\\A");
    AddContacts(L"Contacts", {L"Top"});
    AddContacts(L"Contacts\\A", {L"InA", L"InA2"});
    LogOn();
    std::size_t items = 0;
    OnGetChangeLog([&](LogItems& list, const GetChangeLogArgs&) {
        items = list.GetSize();
        return 0;
    });
    EXPECT_EQ(g_MAPIObject.ReadContacts(L"map"), 0);
    EXPECT_EQ(items, 1U);
    g_bSubFolder = true;
    EXPECT_EQ(g_MAPIObject.ReadContacts(L"map"), 0);
    EXPECT_EQ(items, 3U);
}

TEST_F(FolderLogTest, ListNamesItemsAsAFullReadDoes) {
    AddContacts(L"Contacts", {L"One"});
    std::vector<CString> ids;
    for (const bool longTerm : {false, true}) {
        WriteFile(L"Work\\Mail\\folder.ini", longTerm ? "[Store]\nLongTermIds=1\n" : "[Store]\n");
        LogOn();
        ASSERT_EQ(g_MAPIObject.ReadContacts(L""), 0);
        const CString document = TakeSent().at(0);
        OnGetChangeLog([&](LogItems& list, const GetChangeLogArgs&) {
            ids.push_back(list[0].m_strId);
            EXPECT_TRUE(Contains(document, (L"<PIMID>" + ids.back() + L"</PIMID>").c_str()));
            return 0;
        });
        EXPECT_EQ(g_MAPIObject.ReadContacts(L"map"), 0);
    }
    ASSERT_EQ(ids.size(), 2U);
    EXPECT_NE(ids[0], ids[1]);
}

TEST_F(FolderLogTest, RowThatHasNotThreeValuesIsSkipped) {
    AddContacts(L"Contacts", {L"One", L"Two", L"Three"});
    LogOn();
    static decltype(pfnHrQueryAllRows) queryAllRows;
    queryAllRows = pfnHrQueryAllRows;
    pfnHrQueryAllRows = [](LPMAPITABLE table, LPSPropTagArray columns, LPSRestriction restriction,
                           LPSSortOrderSet order, LONG most, LPSRowSet* rows) -> HRESULT {
        const HRESULT result = queryAllRows(table, columns, restriction, order, most, rows);
        if (columns->cValues == 3) {
            SRow* const row = (*rows)->aRow;
            row[1].cValues = 2;
        }
        return result;
    };
    std::size_t items = 0;
    OnGetChangeLog([&](LogItems& list, const GetChangeLogArgs&) {
        items = list.GetSize();
        return 0;
    });
    EXPECT_EQ(g_MAPIObject.ReadContacts(L"map"), 0);
    pfnHrQueryAllRows = queryAllRows;
    EXPECT_EQ(items, 2U);
}

TEST_F(FolderLogTest, WalkOfSubFoldersWritesItsLinesInOrder) {
    MakeFolder(L"Work\\Mail\\Contacts\\A");
    LogOn();
    g_bSubFolder = true;
    LogItems items;
    MapiBuffer<SPropValue> id;
    ASSERT_EQ(pfnHrGetOneProp(g_MAPIObject.m_lpContactFolder.Get(), PR_ENTRYID, id.Put()), S_OK);
    TakeLog();
    EXPECT_EQ(
        g_MAPIObject.ReadContactLogFromFolder(g_MAPIObject.m_lpContactFolder.Get(), id->Value.bin, items), 1);
    const LogLines folder{
        {1, L"CMAPIObject::ReadContactLogFromFolder - Begin\r\n"},
        {1, L"CMAPIObject::ReadContactLogFromFolder - m_lpContactFolder->OpenEntry(0X00000000)\r\n"},
        {1, L"CMAPIObject::ReadContactLogFromFolder - lpContainer->GetContentsTable(0X00000000)\r\n"},
        {1, L"CMAPIObject::ReadContactLogFromFolder - pfnHrQueryAllRows(0X00000000)\r\n"},
        {1, L"CMAPIObject::ReadContactLogFromFolder - lpContainer->GetHierarchyTable(0X00000000)\r\n"},
        {1, L"CMAPIObject::ReadContactLogFromFolder - pfnHrQueryAllRows(0X00000000)\r\n"}};
    LogLines expected = folder;
    Append(expected, folder);
    Append(expected, {{1, L"CMAPIObject::ReadContactLogFromFolder - Finish(Succeeded)\r\n"},
                      {1, L"CMAPIObject::ReadContactLogFromFolder - Finish(Succeeded)\r\n"}});
    EXPECT_EQ(TakeLog(), expected);
}

TEST_F(FolderLogTest, StopInFrontOfTheWalkFailsTheRead) {
    AddContacts(L"Contacts", {L"One"});
    LogOn();
    g_MAPIObject.Stop();
    ExpectFailedRead();
    EXPECT_EQ(g_MAPIObject.m_bStop, 0);
}

TEST_F(FolderLogTest, FolderThatDoesNotOpenFailsTheWalk) {
    LogOn();
    LogItems items;
    EXPECT_EQ(
        g_MAPIObject.ReadContactLogFromFolder(g_MAPIObject.m_lpContactFolder.Get(), {0, nullptr}, items), 0);
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::ReadContactLogFromFolder - Begin\r\n"},
                                   {3,
                                    L"CMAPIObject::ReadContactLogFromFolder - Interrupted or INVALID "
                                    L"Parameter\r\n"},
                                   {1, L"CMAPIObject::ReadContactLogFromFolder - Finish(Failed)\r\n"}}));
    BYTE junk[] = {1, 2, 3};
    EXPECT_EQ(g_MAPIObject.ReadContactLogFromFolder(g_MAPIObject.m_lpContactFolder.Get(), {3, junk}, items),
              0);
    const LogLines log = TakeLog();
    ASSERT_EQ(log.size(), 4U);
    // The code behind OpenEntry is the store's.
    EXPECT_TRUE(log[1].text.starts_with(
        L"CMAPIObject::ReadContactLogFromFolder - m_lpContactFolder->OpenEntry(0X80"));
    EXPECT_EQ(log[2], (LogLine{3,
                               L"CMAPIObject::ReadContactLogFromFolder - OpenEntry Failed or NULL "
                               L"lpContainer\r\n"}));
    EXPECT_EQ(log[3], (LogLine{1, L"CMAPIObject::ReadContactLogFromFolder - Finish(Failed)\r\n"}));
    EXPECT_TRUE(items.IsEmpty());
}

TEST_F(FolderLogTest, WithoutAChosenFolderTheWalkFails) {
    LogOn();
    g_MAPIObject.m_lpContactFolder.Reset();
    BYTE id[] = {1};
    LogItems items;
    EXPECT_EQ(g_MAPIObject.ReadContactLogFromFolder(g_MAPIObject.m_lpContactFolder.Get(), {1, id}, items), 0);
    EXPECT_EQ(TakeLog(), kRefusedLines);
}

TEST_F(FolderLogTest, WalkThatIsStoppedBeforehandFailsWithItsLines) {
    LogOn();
    g_MAPIObject.m_bStop = 1;
    BYTE id[] = {1};
    LogItems items;
    EXPECT_EQ(g_MAPIObject.ReadContactLogFromFolder(g_MAPIObject.m_lpContactFolder.Get(), {1, id}, items), 0);
    EXPECT_EQ(TakeLog(), kRefusedLines);
}

TEST_F(FolderLogTest, WalkWithoutItsTableFailsWithItsLines) {
    AddContacts(L"Contacts", {L"One"});
    LogOn();
    MapiBuffer<SPropValue> id;
    ASSERT_EQ(pfnHrGetOneProp(g_MAPIObject.m_lpContactFolder.Get(), PR_ENTRYID, id.Put()), S_OK);
    LogLines expected{
        {1, L"CMAPIObject::ReadContactLogFromFolder - Begin\r\n"},
        {1, L"CMAPIObject::ReadContactLogFromFolder - m_lpContactFolder->OpenEntry(0X00000000)\r\n"},
        {1, L"CMAPIObject::ReadContactLogFromFolder - lpContainer->GetContentsTable(0X80004005)\r\n"},
        {1, L"CMAPIObject::ReadContactLogFromFolder - Finish(Failed)\r\n"}};
    LogItems items;
    TakeLog();
    recorder::FailMethod("IMAPIFolder::GetContentsTable", {}, E_FAIL);
    EXPECT_EQ(
        g_MAPIObject.ReadContactLogFromFolder(g_MAPIObject.m_lpContactFolder.Get(), id->Value.bin, items), 0);
    EXPECT_EQ(TakeLog(), expected);
    recorder::ClearFailures();
    recorder::FailMethod("HrQueryAllRows", {}, E_FAIL);
    EXPECT_EQ(
        g_MAPIObject.ReadContactLogFromFolder(g_MAPIObject.m_lpContactFolder.Get(), id->Value.bin, items), 0);
    expected[2].text =
        L"CMAPIObject::ReadContactLogFromFolder - lpContainer->GetContentsTable(0X00000000)\r\n";
    expected.insert(expected.begin() + 3,
                    {1, L"CMAPIObject::ReadContactLogFromFolder - pfnHrQueryAllRows(0X80004005)\r\n"});
    EXPECT_EQ(TakeLog(), expected);
    EXPECT_TRUE(items.IsEmpty());
}

TEST_F(FolderLogTest, FailureAtAnyCallOfTheWalkNeverReachesTheComparison) {
    MakeFolder(L"Work\\Mail\\Contacts\\A");
    MakeFolder(L"Work\\Mail\\Contacts\\B");
    AddContacts(L"Contacts", {L"Top"});
    AddContacts(L"Contacts\\A", {L"InA"});
    AddContacts(L"Contacts\\B", {L"InB"});
    LogOn();
    g_bSubFolder = true;
    OnGetChangeLog([](LogItems& items, const GetChangeLogArgs&) {
        EXPECT_EQ(items.GetSize(), 3U);
        return 0;
    });
    recorder::ClearCalls();
    EXPECT_EQ(g_MAPIObject.GetContactCount(), 3);
    const std::size_t callsOfTheCount = recorder::CallCount();
    recorder::ClearCalls();
    ASSERT_EQ(g_MAPIObject.ReadContacts(L"map"), 0);
    const std::size_t calls = recorder::CallCount();
    ASSERT_GT(calls, callsOfTheCount + 10);
    ExpectNoComparison();
    for (std::size_t n = callsOfTheCount + 1; n <= calls; ++n) {
        recorder::FailCall(n, false);
        EXPECT_EQ(g_MAPIObject.ReadContacts(L"map"), 1) << n;
        EXPECT_TRUE(TakeSent().empty());
        EXPECT_TRUE(recorder::HasFailed()) << n;
        recorder::ClearFailures();
        EXPECT_EQ(TakeLog().back(), (LogLine{1, L"CMAPIObject::ReadContacts - Finish\r\n"})) << n;
    }
}

TEST_F(FolderLogTest, HierarchyThatCannotBeHadFailsTheRead) {
    AddContacts(L"Contacts", {L"Top"});
    LogOn();
    g_bSubFolder = true;
    recorder::FailMethod("IMAPIFolder::GetHierarchyTable", {}, E_FAIL);
    ExpectFailedRead();
}

TEST_F(FolderLogTest, SubFolderWhoseContentsCannotBeHadFailsTheRead) {
    MakeFolder(L"Work\\Mail\\Contacts\\A");
    AddContacts(L"Contacts", {L"Top"});
    LogOn();
    g_bSubFolder = true;
    recorder::FailMethod("IMAPIFolder::GetContentsTable", "Contacts\\A", E_FAIL);
    ExpectFailedRead();
}

TEST_F(FolderLogTest, StopDuringTheLastRowDoesNotLeaveTheSubFoldersOutUnseen) {
    MakeFolder(L"Work\\Mail\\Contacts\\A");
    AddContacts(L"Contacts", {L"Top"});
    AddContacts(L"Contacts\\A", {L"InA"});
    LogOn();
    g_bSubFolder = true;
    const ItemKind kind{L"IPM.Contact", L"IPF.Contact", L"m_lpContactFolder"};
    static constexpr SizedSPropTagArray(1, columns) = {1, {PR_ENTRYID}};
    MapiBuffer<SPropValue> id;
    ASSERT_EQ(pfnHrGetOneProp(g_MAPIObject.m_lpContactFolder.Get(), PR_ENTRYID, id.Put()), S_OK);
    for (const bool whole : {true, false}) {
        int stop = 0;
        const FolderRead read{kind,
                              L"Walk",
                              L"Begin",
                              reinterpret_cast<const SPropTagArray*>(&columns),
                              stop,
                              [&](const SRow&, const CString&) { stop = 1; },
                              whole ? WithoutSubFolders::Fails : WithoutSubFolders::Succeeds};
        EXPECT_EQ(ReadFolderItems(read, g_MAPIObject.m_lpContactFolder.Get(), id->Value.bin, {}),
                  whole ? 0 : 1);
    }
}

}  // namespace
