// Every call of a write of an appointment failed once, and from then on: only the calls that decide end the
// write, the flag and the lines tell what became of it, nothing is left alive (which the fixture counts), the
// callback is sent, and the message is the old one or the new one.

#include <algorithm>
#include <string>

#include "tests/unit/store/calendar_writing_fixture.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;

/// The result of the calls that fail here, which the store itself does not give.
constexpr HRESULT kFault = MAPI_E_NETWORK_ERROR;

class CalendarWritingFaults : public CalendarWriting {
  protected:
    void TearDown() override {
        TakeLog();
        CalendarWriting::TearDown();
    }
    static void Name(CCalendarEx& calendar, const wchar_t* text) {
        calendar.AddField(3000, text);
        calendar.AddField(3002, text);
        calendar.AddField(3003, text);
        calendar.m_lReminderMinutes = 15;
        calendar.m_lRecurType = 1;
    }
    /// Writes an appointment while its nth call fails; false if there was no such call.
    bool WriteWithFault(std::int32_t flag, std::size_t n, bool forever) {
        TakeLog();
        TakeSentCalendars();
        recorder::ClearCalls();
        recorder::FailCall(n, forever, kFault);
        Write(flag, [](CCalendarEx& calendar) { Name(calendar, L"new"); });
        const bool failed = recorder::HasFailed();
        recorder::ClearFailures();
        EXPECT_EQ(TakeSentCalendars(), std::vector<CString>{L""});
        m_failed.clear();
        for (const recorder::Call& call : recorder::Calls()) {
            if (call.result == kFault) {
                m_failed.push_back(call.method);
            }
        }
        EXPECT_EQ(!m_failed.empty(), failed) << n;
        return failed;
    }
    /// True if a call of the last write was one of a method, and failed.
    [[nodiscard]] bool HasFailed(const char* method) const {
        return std::ranges::find(m_failed, method) != m_failed.end();
    }
    /// Expects the lines and the flag of a write whose message is gained by a call of one method.
    void ExpectOutcomeOfTheCalls(std::int32_t flag, const std::wstring& operation,
                                 const char* gaining) const {
        const bool gained = !HasFailed(gaining);
        const bool saved = gained && !HasFailed("IMessage::SaveChanges");
        EXPECT_EQ(m_calendar.m_lFlag, saved ? 0 : flag);
        const std::wstring outcome = saved ? L" - Finish(Succeeded)" : L" - Finish(Failed)";
        const std::wstring texts[] = {operation + L" - Begin",
                                      operation + L"Event - Begin",
                                      L"UpdateCalendarEventMessage - Begin",
                                      L"UpdateCalendarEventMessage" + outcome,
                                      operation + L"Event" + outcome,
                                      operation + outcome};
        std::vector<const wchar_t*> lines;
        for (std::size_t i = 0; i < std::size(texts); ++i) {
            if (gained || (i != 2 && i != 3)) {
                lines.push_back(texts[i].c_str());
            }
        }
        EXPECT_EQ(TakeLog(), Lines(lines));
    }
    /// How many of three properties have a text.
    [[nodiscard]] int PropertiesWith(const wchar_t* text) const {
        return (Text(PR_SUBJECT_W) == text ? 1 : 0) + (Text(PR_BODY_W) == text ? 1 : 0) +
               (NamedText(0x8208) == text ? 1 : 0);
    }

    /// The methods that failed in the last write.
    std::vector<std::string> m_failed;
};

TEST_F(CalendarWritingFaults, UpdateLeavesTheOldMessageOrANewOne) {
    for (const bool forever : {false, true}) {
        std::size_t n = 1;
        for (;; ++n) {
            SCOPED_TRACE(testing::Message() << "call " << n << (forever ? " and all behind it" : ""));
            m_calendar.m_strPIMID.clear();
            Write(8, [](CCalendarEx& calendar) { Name(calendar, L"old"); });
            ASSERT_EQ(m_calendar.m_lFlag, 0);
            const bool failed = WriteWithFault(4, n, forever);
            ExpectOutcomeOfTheCalls(4, L"UpdateCalendar", "IMAPIFolder::OpenEntry");
            ASSERT_TRUE(Message());
            if (m_calendar.m_lFlag == 4) {
                EXPECT_EQ(PropertiesWith(L"old"), 3);
            } else {
                // A single call that fails is at most one property that stays as it was.
                EXPECT_GE(PropertiesWith(L"new"), forever ? 3 : 2);
            }
            if (!failed) {
                break;
            }
        }
        EXPECT_GT(n, 50U);
        EXPECT_EQ(PropertiesWith(L"new"), 3);
    }
}

TEST_F(CalendarWritingFaults, AddLeavesNothingOrANewMessage) {
    std::size_t before = 0;
    for (const bool forever : {false, true}) {
        for (std::size_t n = 1;; ++n) {
            SCOPED_TRACE(testing::Message() << "call " << n << (forever ? " and all behind it" : ""));
            m_calendar.m_strPIMID.clear();
            const bool failed = WriteWithFault(8, n, forever);
            ExpectOutcomeOfTheCalls(8, L"AddCalendar", "IMAPIFolder::CreateMessage");
            // Its class may be what could not be set, so the files are counted.
            const std::size_t after = Files();
            EXPECT_EQ(after, m_calendar.m_lFlag == 8 ? before : before + 1);
            before = after;
            if (!failed) {
                break;
            }
        }
    }
}

TEST_F(CalendarWritingFaults, DeleteLeavesTheMessageOrNone) {
    for (const bool forever : {false, true}) {
        for (std::size_t n = 1;; ++n) {
            SCOPED_TRACE(testing::Message() << "call " << n << (forever ? " and all behind it" : ""));
            m_calendar.m_strPIMID.clear();
            Write(8);
            const bool failed = WriteWithFault(32, n, forever);
            // It takes each of its calls.
            EXPECT_EQ(m_calendar.m_lFlag, failed ? 32 : 0);
            EXPECT_EQ(TakeLog(),
                      Lines({L"DeleteCalendar - Begin", failed ? L"DeleteCalendar - Finish(Failed)"
                                                               : L"DeleteCalendar - Finish(Succeeded)"}));
            EXPECT_EQ(Message() != nullptr, failed);
            if (!failed) {
                EXPECT_EQ(n, 5U);
                break;
            }
        }
    }
}

}  // namespace
