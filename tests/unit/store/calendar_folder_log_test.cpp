// Reads of changed appointments through sub-folders, and their walk that lists what the folders hold.

#include "mapi/property_tags.h"
#include "support/settings.h"
#include "tests/unit/store/calendar_reading_fixture.h"
#include "tests/unit/store/change_log.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;

decltype(pfnHrQueryAllRows) g_queryAllRows = nullptr;  ///< the one that the hook of a test stands for

class CalendarFolderLog : public CalendarReading {
  protected:
    void TearDown() override {
        OnGetChangeLog({});
        CalendarReading::TearDown();
    }
    /// The default folder of appointments with one below, both with an item, and a session that reads both.
    void MakeFolders(const std::vector<const wchar_t*>& top) {
        MakeFolder(L"Work\\Mail\\Calendar\\A");
        AddAppointments(L"Calendar", top);
        AddAppointments(L"Calendar\\A", {L"InA"});
        LogOn();
        g_bSubFolder = true;
    }
    static LogLine Line(const wchar_t* operation, const wchar_t* text, std::int32_t level = 1) {
        return {level, CString::Format(L"CMAPIObject::%s - %s\r\n", operation, text)};
    }
    /// The lines of an operation that enters a folder of which both tables can be had.
    static LogLines LinesOfAFolder(const wchar_t* operation) {
        return {Line(operation, L"Begin"),
                Line(operation, L"m_lpEventFolder->OpenEntry(0X00000000)"),
                Line(operation, L"lpContainer->GetContentsTable(0X00000000)"),
                Line(operation, L"pfnHrQueryAllRows(0X00000000)"),
                Line(operation, L"lpContainer->GetHierarchyTable(0X00000000)"),
                Line(operation, L"pfnHrQueryAllRows(0X00000000)")};
    }
    /// The lines of one that enters a folder and the one below it.
    static LogLines LinesOfBothFolders(const wchar_t* operation, const wchar_t* finish) {
        LogLines lines = LinesOfAFolder(operation);
        Append(lines, LinesOfAFolder(operation));
        Append(lines, {Line(operation, finish), Line(operation, finish)});
        return lines;
    }
    /// The lines of a read of changes up to its walk.
    static LogLines LinesUpToTheWalk(int count) {
        LogLines lines{Line(L"ReadCalendars", L"Begin"), Line(L"GetCalendarCount", L"Begin"),
                       Line(L"GetCalendarEventCount", L"Begin"),
                       Line(L"GetCalendarEventCount", L"m_lpEventFolder->GetProps(0X00000000)")};
        Append(lines, LinesOfBothFolders(L"GetCalendarEventCountFromFolder", L"Finish"));
        Append(lines, {Line(L"GetCalendarEventCount", L"Finish"), Line(L"GetCalendarCount", L"Finish"),
                       Line(L"ReadCalenda", CString::Format(L"Calendar Count(%d)", count).c_str()),
                       Line(L"ReadCalendarEvent", L"Begin"),
                       Line(L"ReadContacts", L"m_lpEventFolder->GetProps(0X00000000)"),
                       Line(L"ReadCalendarEvent", L"Map File(map)")});
        return lines;
    }
    /// The last lines of a read of changes whose list could not be made.
    static LogLines LastLinesWithoutAList(const wchar_t* outcome) {
        return {Line(L"ReadCalendarEventLogFromFolder", L"Finish(Failed)"),
                Line(L"ReadCalendarEvent", L"Failed to read from log", 3),
                {1, L"CMAPIObject::before pfnfreeBuffer\r\n"},
                Line(L"ReadCalendarEvent", L"Finish(Failed)"),
                Line(L"ReadContacts", outcome, 3),
                Line(L"ReadCalendars", L"Finish")};
    }
    /// Reads changes, of which none can be told since the list has a gap: what it lacks would count as
    /// deleted.
    static void ExpectReadWithoutAList(const wchar_t* outcome) {
        OnGetChangeLog([](LogItems&, const GetChangeLogArgs&) {
            ADD_FAILURE() << "a partial list was compared";
            return 0;
        });
        TakeLog();
        EXPECT_EQ(g_MAPIObject.ReadCalendars(L"map"), 1);
        EXPECT_TRUE(TakeSentCalendars().empty());
        const LogLines expected = LastLinesWithoutAList(outcome);
        EXPECT_EQ(LastOf(TakeLog(), expected), expected);
        EXPECT_EQ(g_MAPIObject.m_bStop, 0);
    }
};

TEST_F(CalendarFolderLog, ReadThroughSubFoldersWritesItsLinesInOrder) {
    MakeFolders({L"Top"});
    std::vector<CString> ids;
    OnGetChangeLog([&](LogItems& items, const GetChangeLogArgs&) {
        for (tagLogItem& item : items) {
            item.m_lLogFlag = 8;
            ids.push_back(item.m_strId);
        }
        return 2;
    });
    TakeLog();
    EXPECT_EQ(g_MAPIObject.ReadCalendars(L"map"), 0);
    EXPECT_EQ(Subjects(TakeSentCalendars()), (std::vector<CString>{L"Top", L"InA"}));
    ASSERT_EQ(ids.size(), 2U);
    LogLines expected = LinesUpToTheWalk(2);
    Append(expected, LinesOfBothFolders(L"ReadCalendarEventLogFromFolder", L"Finish(Succeeded)"));
    Append(expected, {Line(L"ReadCalendarEvent", L"Call GetChangeLog", 3),
                      Line(L"ReadCalendarEvent", L"Read Changes"),
                      Line(L"ReadCalendarEventFromLog", L"Begin"),
                      Line(L"ReadCalendarEventFromLog", (L"New(" + ids[0] + L")").c_str()),
                      Line(L"ReadCalendarEventFromLog", (L"New(" + ids[1] + L")").c_str()),
                      Line(L"ReadCalendarEventFromLog", L"Finish(Succeeded)"),
                      {1, L"CMAPIObject::before logArrayRemoveall\r\n"}});
    Append(expected, LastLines());
    EXPECT_EQ(TakeLog(), expected);
}

TEST_F(CalendarFolderLog, HierarchyThatCannotBeHadFailsTheRead) {
    MakeFolders({L"Top"});
    recorder::FailMethod("IMAPIFolder::GetHierarchyTable", {}, E_FAIL);
    ExpectReadWithoutAList(L"Failed");
}

TEST_F(CalendarFolderLog, SubFolderWhoseContentsCannotBeHadFailsTheRead) {
    MakeFolders({L"Top"});
    recorder::FailMethod("IMAPIFolder::GetContentsTable", "Calendar\\A", E_FAIL);
    ExpectReadWithoutAList(L"Failed");
}

TEST_F(CalendarFolderLog, StopBehindTheRowsDoesNotLeaveTheSubFoldersOutUnseen) {
    // Without a row nothing looks at the stop but the step to the sub-folders.
    MakeFolders({});
    g_queryAllRows = pfnHrQueryAllRows;
    pfnHrQueryAllRows = [](LPMAPITABLE table, LPSPropTagArray columns, LPSRestriction restriction,
                           LPSSortOrderSet order, LONG most, LPSRowSet* rows) -> HRESULT {
        const HRESULT result = g_queryAllRows(table, columns, restriction, order, most, rows);
        if (columns->cValues == 3) {
            g_MAPIObject.m_bStop = 1;
        }
        return result;
    };
    ExpectReadWithoutAList(L"Interrupted");
    pfnHrQueryAllRows = g_queryAllRows;
}

}  // namespace
