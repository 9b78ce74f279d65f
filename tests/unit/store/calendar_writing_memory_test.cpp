// Every allocation of a write of an appointment fails in turn: the flag and the lines tell what became of the
// message, the callback is sent, and the store has the old message or a new one.

#include <filesystem>
#include <initializer_list>
#include <optional>
#include <string>

#include "tests/unit/localstore/scarce_memory.h"
#include "tests/unit/store/calendar_writing_fixture.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;

class CalendarWritingMemory : public CalendarWriting {
  protected:
    void SetUp() override {
        CalendarWriting::SetUp();
        // What is recorded is allocated too, and not by the agent.
        recorder::Record(false);
        m_objects = recorder::LiveObjects();
        m_buffers = recorder::LiveBuffers();
        OnSend([this] {
            ++m_callbacks;
            // From here on there is memory again: what is kept of the callback is not the agent's.
            EndScarcity();
        });
    }
    void TearDown() override {
        OnSend({});
        recorder::Record(true);
        TakeLog();
        CalendarWriting::TearDown();
    }

    /// Writes the record with the first, the second, the third ... allocation failing, and then with all
    /// behind it failing too, until none is left to fail. `prepare` and `check` have memory.
    template<class Prepare, class Check>
    void FailEach(const Prepare& prepare, const Check& check) {
        for (const bool forever : {false, true}) {
            m_hasFailed = true;
            for (std::size_t n = 1; m_hasFailed && !HasFailure(); ++n) {
                SCOPED_TRACE(testing::Message()
                             << "allocation " << n << (forever ? " and all behind it" : ""));
                prepare();
                WriteScarcely(n, forever);
                TakeSentCalendars();
                check();
                if (!m_hasFailed) {
                    EXPECT_EQ(m_status, 0);
                    EXPECT_EQ(m_calendar.m_lFlag, 0);
                    EXPECT_GT(n, 5U) << "nothing was allocated";
                }
            }
        }
    }
    /// Writes the record with the nth allocation failing, until the callback is sent.
    void WriteScarcely(std::size_t n, bool forever) {
        TakeLog();
        m_callbacks = 0;
        m_scarce.emplace(n, forever);
        m_status = g_MAPIObject.WriteCalendars(&m_calendar);
        EndScarcity();
        EXPECT_EQ(m_callbacks, 1);
        EXPECT_EQ(recorder::LiveObjects(), m_objects);
        EXPECT_EQ(recorder::LiveBuffers(), m_buffers);
        m_log = TakeLog();
    }
    /// True if the log of the last write has a line. One for which there was no memory is lost.
    [[nodiscard]] bool HasLine(const std::wstring& text) const {
        const CString line = CString::Format(L"CMAPIObject::%s\r\n", text.c_str());
        return std::ranges::any_of(m_log, [&](const LogLine& logged) { return logged.text == line; });
    }
    /// Expects no line that tells another outcome of the operations than the flag does.
    void ExpectNoLineAgainstTheFlag(std::initializer_list<const wchar_t*> operations) const {
        for (const std::wstring operation : operations) {
            EXPECT_FALSE(HasLine(operation +
                                 (m_calendar.m_lFlag == 0 ? L" - Finish(Failed)" : L" - Finish(Succeeded)")));
        }
    }

    LogLines m_log;
    int m_status = 0;
    bool m_hasFailed = false;  ///< an allocation of the last write

  private:
    void EndScarcity() {
        if (m_scarce) {
            m_hasFailed = m_scarce->HasFailed();
            m_scarce.reset();
        }
    }

    std::optional<localstore_test::ScarceMemory> m_scarce;
    int m_callbacks = 0;
    long m_objects = 0;
    long m_buffers = 0;
};

TEST_F(CalendarWritingMemory, UpdateLeavesTheOldMessageOrANewOne) {
    bool isOld = false;
    int givenUp = 0;
    const auto prepare = [&] {
        if (!isOld) {
            m_calendar.m_strPIMID.clear();
            Write(8, [](CCalendarEx& calendar) { calendar.AddField(3000, L"an old and long subject"); });
            ASSERT_EQ(m_calendar.m_lFlag, 0);
        }
        Fill(4);
        m_calendar.AddField(3000, L"a new and long subject");
        m_calendar.AddField(3037, L"GMT:-330;DST:0");
        m_calendar.m_lReminderMinutes = 15;
        m_calendar.m_lRecurType = 1;
    };
    FailEach(prepare, [&] {
        EXPECT_EQ(m_status, 0);
        ExpectNoLineAgainstTheFlag(
            {L"UpdateCalendar", L"UpdateCalendarEvent", L"UpdateCalendarEventMessage"});
        isOld = m_calendar.m_lFlag != 0;
        if (isOld) {
            ++givenUp;
            EXPECT_EQ(m_calendar.m_lFlag, 4);
            EXPECT_EQ(Text(PR_SUBJECT_W), L"an old and long subject");
            EXPECT_EQ(NamedNumber(0x8231), 0);
        } else {
            // Of what the store had no memory for, a single property stays as it was.
            EXPECT_GE((Text(PR_SUBJECT_W) == L"a new and long subject" ? 1 : 0) +
                          (NamedNumber(0x8231) == 1 ? 1 : 0) + (NamedText(0x8234) == L"Third" ? 1 : 0),
                      m_hasFailed ? 2 : 3);
        }
    });
    EXPECT_GT(givenUp, 0);
}

TEST_F(CalendarWritingMemory, AddLeavesNothingOrANewMessageAndNeverTheIdentifierThatWasSentForIt) {
    const CString sent(std::wstring(60, L'A'));
    const auto prepare = [&] {
        for (const auto& entry : std::filesystem::directory_iterator(m_root + L"\\Work\\Mail\\Calendar")) {
            std::filesystem::remove(entry);
        }
        m_calendar.m_strPIMID = sent;
        Fill(8);
        m_calendar.AddField(3000, L"a new and long subject");
    };
    FailEach(prepare, [&] {
        EXPECT_EQ(m_status, 0);
        ExpectNoLineAgainstTheFlag({L"AddCalendar", L"AddCalendarEvent"});
        if (Files() == 0) {
            EXPECT_EQ(m_calendar.m_lFlag, 8);
        } else {
            EXPECT_EQ(Files(), 1U);
            EXPECT_NE(m_calendar.m_strPIMID, sent);
            // The text of the identifier comes behind the save.
            EXPECT_TRUE(m_calendar.m_lFlag == 0 || m_calendar.m_strPIMID.empty());
        }
    });
}

TEST_F(CalendarWritingMemory, DeleteLeavesTheMessageOrNone) {
    const auto prepare = [&] {
        if (m_calendar.m_lFlag == 0) {
            m_calendar.m_strPIMID.clear();
            Write(8);
        }
        Fill(32);
    };
    FailEach(prepare, [&] {
        EXPECT_EQ(m_status, 0);
        ExpectNoLineAgainstTheFlag({L"DeleteCalendar"});
        EXPECT_EQ(Message() != nullptr, m_calendar.m_lFlag == 32);
    });
}

TEST_F(CalendarWritingMemory, WithoutMemoryForTheZonesTheOperationDoesNotBeginAndTheStatusTells) {
    int failures = 0;
    for (std::size_t n = 1; n <= 12; ++n) {
        SCOPED_TRACE(testing::Message() << "allocation " << n);
        g_MAPIObject.m_arrTimeZones.RemoveAll();
        Fill(8);
        WriteScarcely(n, false);
        TakeSentCalendars();
        failures += m_status;
        EXPECT_EQ(m_calendar.m_lFlag, m_status == 1 ? 8 : 0);
        EXPECT_EQ(HasLine(L"AddCalendar - Begin"), m_status == 0);
        EXPECT_TRUE(HasLine(L"WriteCalendars - Finish"));
    }
    EXPECT_GT(failures, 0);
}

}  // namespace
