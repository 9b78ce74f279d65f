// Every allocation of a read or a count fails in turn: it ends with its last line, each document that arrives
// is closed, nothing is left alive, and the next read is complete.

#include "support/settings.h"
#include "tests/unit/calendar/sample_series.h"
#include "tests/unit/localstore/scarce_memory.h"
#include "tests/unit/store/calendar_reading_fixture.h"
#include "tests/unit/store/change_log.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;

/// A remote procedure of the agent that reads or counts, and how its success shows.
struct Operation {
    const char* name;
    int (*run)();              ///< returns its status, or a count
    const wchar_t* firstLine;  ///< text of the line that it begins with
    const wchar_t* lastLine;   ///< and of the one that it ends with
    std::size_t documents;     ///< what it sends with memory enough
    int complete;              ///< its result then
    bool isCalendar;
};

constexpr int kItems = 2;

std::vector<Operation> Operations() {
    return {
        {"FullReadOfContacts", [] { return g_MAPIObject.ReadContacts(L""); }, L"ReadContacts - Begin",
         L"ReadContacts - Finish", kItems, 0, false},
        {"ReadOfChangedContacts", [] { return g_MAPIObject.ReadContacts(L"map"); }, L"ReadContacts - Begin",
         L"ReadContacts - Finish", kItems, 0, false},
        {"CountOfContacts", [] { return static_cast<int>(g_MAPIObject.GetContactCount()); },
         L"GetContactCount - Begin", L"GetContactCount - Finish", 0, kItems, false},
        {"FullReadOfAppointments", [] { return g_MAPIObject.ReadCalendars(L""); }, L"ReadCalendars - Begin",
         L"ReadCalendars - Finish", kItems, 0, true},
        {"ReadOfChangedAppointments", [] { return g_MAPIObject.ReadCalendars(L"map"); },
         L"ReadCalendars - Begin", L"ReadCalendars - Finish", kItems, 0, true},
        {"CountOfAppointments", [] { return static_cast<int>(g_MAPIObject.GetCalendarCount()); },
         L"GetCalendarCount - Begin", L"GetCalendarCount - Finish", 0, kItems, true},
    };
}

class ReadingMemory : public CalendarReading, public testing::WithParamInterface<Operation> {
  protected:
    void SetUp() override {
        CalendarReading::SetUp();
        MakeFolder(L"Work\\Mail\\Calendar\\Below");
        MakeFolder(L"Work\\Mail\\Contacts\\Below");
        namespace series = sample_series;
        NAMESPACE_MAPI::tagRecurrencePattern pattern = series::Weekly();
        series::SetDeleted(pattern, {series::kFirstMonday});
        series::SetExceptions(pattern, {series::Moved(series::kFirstMonday, 0x1FF)});
        for (const wchar_t* folder : {L"", L"\\Below"}) {
            FolderWriter calendar(L"Work", std::wstring(L"Calendar") + folder);
            FolderWriter contacts(L"Work", std::wstring(L"Contacts") + folder);
            NewAppointment(calendar, L"Review").Reminder(15).Series(2, pattern).Save();
            contacts.AddContact(PropertyValues().Text(PR_GIVEN_NAME_W, L"John"));
        }
        g_bSubFolder = true;
        OnGetChangeLog([](LogItems& items, const GetChangeLogArgs& /*arguments*/) {
            for (tagLogItem& item : items) {
                item.m_lLogFlag = 8;
            }
            return static_cast<int>(items.GetSize());
        });
        LogOn();
        // What is recorded is allocated too, and not by the agent.
        recorder::Record(false);
    }
    void TearDown() override {
        recorder::Record(true);
        OnGetChangeLog({});
        CalendarReading::TearDown();
    }

    static CString Line(const wchar_t* text) { return CString::Format(L"CMAPIObject::%s\r\n", text); }
    static std::vector<CString> TakeDocuments() {
        return GetParam().isCalendar ? TakeSentCalendars() : TakeSent();
    }
    /// True for a document that can be parsed, has its identifier and ends as it should.
    static bool IsClosed(const CString& document) {
        CXMLParser parser;
        EXPECT_TRUE(parser.InitDocument());
        parser.LoadText(document.View());
        return GetParam().isCalendar ? parser.SelectSingleNode(L"/Calendar/PIMID") != nullptr &&
                                           document.ends_with(L"\n\t<lCalType>3</lCalType></Calendar>\r\n")
                                     : parser.SelectSingleNode(L"/Contact/PIMID") != nullptr &&
                                           document.ends_with(L"</Contact>\r\n");
    }
    /// True for an appointment without the last element of its message part.
    static bool IsWithoutZone(const CString& document) {
        return GetParam().isCalendar && !Contains(document, L"<TimeZone>");
    }
    /// The first line and the last one are fixed texts, for which no memory is needed.
    static void ExpectFirstAndLastLine(const LogLines& log) {
        ASSERT_FALSE(log.empty());
        EXPECT_EQ(log.front(), (LogLine{1, Line(GetParam().firstLine)}));
        EXPECT_EQ(log.back(), (LogLine{1, Line(GetParam().lastLine)}));
    }
};

TEST_P(ReadingMemory, EachAllocationThatFailsLeavesAnOrderlyEnd) {
    const Operation& operation = GetParam();
    const long objects = recorder::LiveObjects();
    const long buffers = recorder::LiveBuffers();
    std::ptrdiff_t cut = 0;
    for (const bool forever : {false, true}) {
        bool hasFailed = true;
        for (std::size_t n = 1; hasFailed && !HasFailure(); ++n) {
            SCOPED_TRACE(testing::Message() << "allocation " << n << (forever ? " and all behind it" : ""));
            TakeLog();
            int result = -1;
            {
                const localstore_test::ScarceMemory scarce(n, forever);
                result = operation.run();
                hasFailed = scarce.HasFailed();
            }
            EXPECT_GE(result, 0);
            EXPECT_LE(result, operation.documents == 0 ? kItems : 1);
            EXPECT_EQ(recorder::LiveObjects(), objects);
            EXPECT_EQ(recorder::LiveBuffers(), buffers);
            ExpectFirstAndLastLine(TakeLog());
            const std::vector<CString> documents = TakeDocuments();
            EXPECT_LE(documents.size(), operation.documents);
            EXPECT_TRUE(std::ranges::all_of(documents, IsClosed));
            cut += std::ranges::count_if(documents, IsWithoutZone);
            if (!hasFailed) {
                EXPECT_EQ(result, operation.complete);
                EXPECT_EQ(documents.size(), operation.documents);
                EXPECT_GT(n, 2U) << "nothing was allocated";
            }
        }
    }
    // An appointment whose elements could not all be written goes out as it stands.
    EXPECT_EQ(cut > 0, operation.isCalendar && operation.documents > 0);
}

INSTANTIATE_TEST_SUITE_P(Of, ReadingMemory, testing::ValuesIn(Operations()),
                         [](const testing::TestParamInfo<Operation>& operation) {
                             return std::string(operation.param.name);
                         });

TEST_F(CalendarReading, WhatWasMarkedIsReadWithoutMemoryAndNothingIsRaised) {
    LogOn();
    const LogItems items;
    const CString path(L"Calendar");
    for (const bool isCalendar : {false, true}) {
        int result = 0;
        const localstore_test::ScarceMemory scarce(1, true);
        EXPECT_NO_THROW(result = isCalendar ? g_MAPIObject.ReadCalendarEventFromLog(
                                                  g_MAPIObject.m_lpEventFolder.Get(), items, path)
                                            : g_MAPIObject.ReadContactFromLog(
                                                  g_MAPIObject.m_lpContactFolder.Get(), items, path));
        EXPECT_EQ(result, 1);
        EXPECT_TRUE(scarce.HasFailed());
    }
}

}  // namespace
