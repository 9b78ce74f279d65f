// What an exception inside the two writers of an appointment's document leaves: the elements in front of it,
// and not a word.

#include <set>

#include "calendar/calendar_xml_output.h"
#include "tests/unit/calendar/sample_series.h"
#include "tests/unit/localstore/scarce_memory.h"
#include "tests/unit/store/appointment_fixture.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;
using Names = std::vector<CString>;

const Names kFirstNames{L"Body", L"Location", L"bAlldayEvent", L"dtStartTime", L"dtEndTime"};
const Names kSeriesNames{L"lRecurInterval", L"lRecurInstance", L"lRecurWeekMask",   L"lRecurWeekDay",
                         L"lRecurDay",      L"dtRecurEndDate", L"bRecurHasEndDate", L"lRecurRepeat"};

Names operator+(Names names, const Names& more) {
    names.insert(names.end(), more.begin(), more.end());
    return names;
}

bool IsPrefix(const Names& names, const Names& whole) {
    return names.size() <= whole.size() && std::equal(names.begin(), names.end(), whole.begin());
}

/// The names of the elements of a document, in their order.
Names NamesIn(const CString& text) {
    Names names;
    for (std::size_t at = 0; (at = text.find(L"\n\t<", at)) != CString::npos;) {
        at += 3;
        names.emplace_back(text.substr(at, text.find_first_of(L"/>", at) - at));
    }
    return names;
}

class InterruptedAppointment : public StoreTest {
  protected:
    void SetUp() override {
        StoreTest::SetUp();
        m_writer = std::make_unique<FolderWriter>(L"Work", L"Calendar");
        // What is recorded is allocated too, and not by the agent.
        recorder::Record(false);
        TakeLog();
    }
    void TearDown() override {
        recorder::Record(true);
        m_writer.reset();
        StoreTest::TearDown();
    }

    /// Writes into new documents with the first, the second, the third ... allocation failing, and then with
    /// all behind it failing too. Returns the names of the elements of each document that was cut.
    template<class Write>
    static std::set<Names> WriteWithoutMemory(const Write& write) {
        std::set<Names> seen;
        for (const bool forever : {false, true}) {
            bool hasFailed = true;
            for (std::size_t n = 1; hasFailed; ++n) {
                SCOPED_TRACE(testing::Message() << "allocation " << n << (forever ? " and all" : ""));
                CXMLParser document;
                EXPECT_TRUE(document.InitDocument());
                document.CreateHeader();
                document.CreateRootElement(L"Calendar");
                const long objects = recorder::LiveObjects();
                const long buffers = recorder::LiveBuffers();
                {
                    const localstore_test::ScarceMemory scarce(n, forever);
                    write(document);
                    hasFailed = scarce.HasFailed();
                }
                EXPECT_EQ(recorder::LiveObjects(), objects);
                EXPECT_EQ(recorder::LiveBuffers(), buffers);
                EXPECT_EQ(TakeLog(), LogLines{});
                const CString text = document.GetDocumentText();
                EXPECT_TRUE(text.ends_with(L"</Calendar>\r\n") || text.ends_with(L"<Calendar/>\r\n"));
                if (hasFailed) {
                    seen.insert(NamesIn(text));
                }
            }
        }
        return seen;
    }
    /// The same for the message part of an appointment.
    static std::set<Names> WriteDetailsWithoutMemory(const NewAppointment& appointment) {
        return WriteWithoutMemory([&](CXMLParser& document) {
            WriteCalendarDetails(document, appointment.Get(), g_MAPIObject.m_CurrentTimeZone);
        });
    }
    [[nodiscard]] NewAppointment New() const {
        NewAppointment appointment(*m_writer, L"Review");
        appointment.Body(L"an agenda of some length")
            .Text(lid::kLocation, L"a room whose name is long")
            .Time(lid::kStartWhole, 2011, 1, 7, 9, 0)
            .Time(lid::kEndWhole, 2011, 7, 7, 10, 0);
        return appointment;
    }

    std::unique_ptr<FolderWriter> m_writer;
};

TEST_F(InterruptedAppointment, RowEndsBehindTheElementsInFrontOfTheException) {
    std::vector<BYTE> id(40, 0xAB);
    SPropValue values[5]{};
    values[0].ulPropTag = PR_ENTRYID;
    values[0].Value.bin = {static_cast<ULONG>(id.size()), id.data()};
    values[1].ulPropTag = PR_CREATION_TIME;
    values[2].ulPropTag = PR_LAST_MODIFICATION_TIME;
    values[1].Value.ft = values[2].Value.ft = {0, 30'000'000};
    values[3].ulPropTag = PR_SUBJECT_W;
    values[3].Value.lpszW = const_cast<LPWSTR>(L"a subject of some length");
    values[4].ulPropTag = PR_PRIORITY;
    values[4].Value.l = -1;
    const std::set<Names> seen = WriteWithoutMemory([&](CXMLParser& document) {
        CString read;
        const ULONG count = 5;
        WriteCalendarRowFields(read, document, values, &count);
    });
    // The number has room in the text itself.
    EXPECT_EQ(seen, (std::set<Names>{{}, {L"CreateTime"}, {L"CreateTime", L"lastModifiedTime"}}));
}

TEST_F(InterruptedAppointment, DetailsEndBehindTheElementsInFrontOfTheException) {
    const Names all = kFirstNames + Names{L"lReminderMinutes", L"nRingTone", L"RecurType", L"TimeZone"};
    const std::set<Names> seen = WriteDetailsWithoutMemory(New());
    std::set<std::size_t> lengths;
    for (const Names& names : seen) {
        EXPECT_TRUE(IsPrefix(names, all)) << testing::PrintToString(names);
        lengths.insert(names.size());
    }
    // The texts of the times and of the zone are made by the writer; what the store could not give is only
    // left out of its element.
    EXPECT_TRUE(lengths.contains(3));
    EXPECT_TRUE(lengths.contains(4));
    EXPECT_TRUE(lengths.contains(8));
    EXPECT_TRUE(lengths.contains(9));
}

TEST_F(InterruptedAppointment, SeriesEndsBehindTheElementsInFrontOfTheException) {
    NewAppointment appointment = New();
    appointment.Reminder(15).Series(2, sample_series::WithExceptions());
    std::vector<Names> wholes;
    for (const Names& reminder :
         {Names{L"nRingTone", L"lReminderMinutes"}, Names{L"lReminderMinutes", L"nRingTone"}}) {
        const Names front = kFirstNames + reminder;
        wholes.push_back(front + Names{L"RecurType", L"TimeZone"});
        wholes.push_back(front + Names{L"lRecurType", L"TimeZone"});
        wholes.push_back(front + Names{L"lRecurType"} + kSeriesNames + Names{L"TimeZone"});
        wholes.push_back(front + Names{L"lRecurType"} + kSeriesNames + Names{L"ExceptionRule", L"TimeZone"});
    }
    const std::set<Names> seen = WriteDetailsWithoutMemory(appointment);
    for (const Names& names : seen) {
        EXPECT_TRUE(std::ranges::any_of(wholes, [&](const Names& whole) { return IsPrefix(names, whole); }))
            << testing::PrintToString(names);
    }
    // Without memory for their text there are no exceptions, and what would come behind them is missing too.
    EXPECT_TRUE(
        seen.contains(kFirstNames + Names{L"nRingTone", L"lReminderMinutes", L"lRecurType"} + kSeriesNames));
}

}  // namespace
