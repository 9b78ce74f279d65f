// What a written appointment is in the store, value by value.

#include <memory>

#include "mapi/property_tags.h"
#include "tests/unit/store/appointment_fixture.h"
#include "tests/unit/store/calendar_writing_fixture.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;

class CalendarValues : public CalendarWriting {
  protected:
    /// A number of 32 bits in a binary property; kNone if it is too short.
    [[nodiscard]] std::int64_t NumberIn(LONG id, std::size_t offset) const {
        const std::vector<std::uint8_t> bytes = Bytes(id);
        if (offset + 4 > bytes.size()) {
            return kNone;
        }
        std::uint32_t number = 0;
        for (std::size_t i = 4; i-- > 0;) {
            number = number << 8 | bytes[offset + i];
        }
        return number;
    }
    /// The zone that the last write chose, by the first number of its rules and its name.
    void ExpectZone(std::int32_t bias, const wchar_t* display) const {
        EXPECT_EQ(Bytes(0x8233).size(), 48U);
        EXPECT_EQ(static_cast<std::int32_t>(NumberIn(0x8233, 0)), bias);
        EXPECT_EQ(NamedText(0x8234), display);
    }
    void WriteWithZone(const wchar_t* text) {
        Write(8, [text](CCalendarEx& calendar) { calendar.AddField(3037, text); });
    }
    static void RepeatDaily(CCalendarEx& calendar) { calendar.m_lRecurType = 1; }
};

TEST_F(CalendarValues, OfANewAppointmentAreSetOnceAndStayWhatOthersMakeOfThem) {
    Write(8);
    EXPECT_EQ(Number(PR_IMPORTANCE), 1);
    EXPECT_EQ(Number(PR_PRIORITY), 0);
    EXPECT_EQ(Number(PR_SENSITIVITY), 0);
    EXPECT_EQ(NamedNumber(0x8205), 0);
    EXPECT_EQ(Number(PR_MESSAGE_FLAGS) & 1, 1);
    {
        const ComPtr<IMessage> message = Message();
        PropertyValues()
            .Number(PR_IMPORTANCE, 2)
            .Number(PR_PRIORITY, 1)
            .Number(PR_SENSITIVITY, 2)
            .Number(FolderWriter::AppointmentTag(message.Get(), 0x8205, PT_LONG), 3)
            .Text(PR_MESSAGE_CLASS_W, L"IPM.Appointment.Own")
            .Text(PR_SENDER_NAME_W, L"Somebody")
            .SetOn(message.Get());
        FolderWriter::Save(message.Get());
    }
    Write(4, [](CCalendarEx& calendar) { calendar.m_nPriority = 2; });
    EXPECT_EQ(m_calendar.m_lFlag, 0);
    EXPECT_EQ(Number(PR_IMPORTANCE), 2);
    EXPECT_EQ(Number(PR_PRIORITY), 1);
    EXPECT_EQ(Number(PR_SENSITIVITY), 2);
    EXPECT_EQ(NamedNumber(0x8205), 3);
    EXPECT_EQ(Text(PR_MESSAGE_CLASS_W), L"IPM.Appointment.Own");
    EXPECT_EQ(Text(PR_SENDER_NAME_W), L"Somebody");
}

TEST_F(CalendarValues, PriorityOfTheRecordIsNotWritten) {
    Write(8, [](CCalendarEx& calendar) { calendar.m_nPriority = 2; });
    EXPECT_EQ(Number(PR_PRIORITY), 0);
    EXPECT_EQ(Number(PR_IMPORTANCE), 1);
}

TEST_F(CalendarValues, AllDayWithBothDatesTheSameEndsAtTheNextMidnight) {
    Write(8, [](CCalendarEx& calendar) {
        calendar.m_bAlldayEvent = 1;
        calendar.m_dtStartTime = calendar.m_dtEndTime = Date(2010, 5, 10, 10);
    });
    for (const LONG id : {0x820D, 0x8235, 0x8516}) {
        EXPECT_EQ(LocalOf(id), L"2010-05-10 00:00:00") << std::hex << id;
    }
    for (const LONG id : {0x820E, 0x8236, 0x8517}) {
        EXPECT_EQ(LocalOf(id), L"2010-05-11 00:00:00") << std::hex << id;
    }
    EXPECT_EQ(NamedNumber(0x8213), 1440);
    EXPECT_EQ(Flag(0x8215), 1);
    EXPECT_EQ(::Text(m_calendar.m_dtStartTime), L"2010-05-10 00:00:00");
    EXPECT_EQ(::Text(m_calendar.m_dtEndTime), L"2010-05-11 00:00:00");
}

TEST_F(CalendarValues, AllDayOverTwoDaysKeepsItsEnd) {
    Write(8, [](CCalendarEx& calendar) {
        calendar.m_bAlldayEvent = 1;
        calendar.m_dtStartTime = Date(2010, 5, 10);
        calendar.m_dtEndTime = Date(2010, 5, 12);
    });
    EXPECT_EQ(LocalOf(0x820E), L"2010-05-12 00:00:00");
    EXPECT_EQ(NamedNumber(0x8213), 2880);
}

TEST_F(CalendarValues, AllDayThatEndsBeforeItStartsTakesOneDay) {
    Write(8, [](CCalendarEx& calendar) {
        calendar.m_bAlldayEvent = 1;
        calendar.m_dtStartTime = Date(2010, 5, 31, 23, 59, 59);
        calendar.m_dtEndTime = Date(2010, 5, 30, 1);
    });
    EXPECT_EQ(LocalOf(0x820D), L"2010-05-31 00:00:00");
    EXPECT_EQ(LocalOf(0x820E), L"2010-06-01 00:00:00");
}

TEST_F(CalendarValues, AllDayBefore1900IsCutOnTheCalendarToo) {
    Write(8, [](CCalendarEx& calendar) {
        calendar.m_bAlldayEvent = 1;
        calendar.m_dtStartTime = calendar.m_dtEndTime = Date(1899, 12, 28, 18);
    });
    EXPECT_EQ(::Text(m_calendar.m_dtStartTime), L"1899-12-28 00:00:00");
    EXPECT_EQ(::Text(m_calendar.m_dtEndTime), L"1899-12-29 00:00:00");
    EXPECT_EQ(NamedNumber(0x8213), 1440);
}

TEST_F(CalendarValues, AllDayWithADateThatIsNotValidGetsNoEnd) {
    Write(8, [](CCalendarEx& calendar) {
        calendar.m_bAlldayEvent = 1;
        calendar.m_dtStartTime.m_status = calendar.m_dtEndTime.m_status = kDateInvalid;
    });
    EXPECT_EQ(m_calendar.m_dtStartTime.m_status, kDateInvalid);
    EXPECT_EQ(m_calendar.m_dtEndTime.m_status, kDateInvalid);
    EXPECT_EQ(m_calendar.m_lFlag, 0);
}

TEST_F(CalendarValues, AllDayIsWrittenWithItsLowSixteenBits) {
    Write(8, [](CCalendarEx& calendar) { calendar.m_bAlldayEvent = 0x10000; });
    EXPECT_EQ(Flag(0x8215), 0);
    EXPECT_EQ(::Text(m_calendar.m_dtStartTime), L"2026-03-10 00:00:00");
    Write(8, [](CCalendarEx& calendar) { calendar.m_bAlldayEvent = 1; });
    EXPECT_EQ(Flag(0x8215), 1);
    Write(8);
    EXPECT_EQ(Flag(0x8215), 0);
    EXPECT_EQ(::Text(m_calendar.m_dtStartTime), L"2026-03-10 09:30:00");
}

TEST_F(CalendarValues, DurationIsInWholeMinutesAndMayBeNegative) {
    const std::pair<COleDateTime, int> cases[] = {{Date(2026, 3, 10, 9, 59, 59), 29},
                                                  {Date(2026, 3, 10, 10, 0, 0), 30},
                                                  {Date(2026, 3, 10, 9, 30, 0), 0},
                                                  {Date(2026, 3, 10, 9, 0, 1), -29},
                                                  {Date(2026, 3, 12, 9, 31), 2881}};
    for (const auto& [end, minutes] : cases) {
        Write(8, [&end = end](CCalendarEx& calendar) { calendar.m_dtEndTime = end; });
        EXPECT_EQ(NamedNumber(0x8213), minutes) << testing::PrintToString(::Text(end));
    }
}

TEST_F(CalendarValues, TimesWithoutADateAreRemovedAndThoseThatAreNotValidAreWritten) {
    constexpr LONG kTimes[] = {0x820D, 0x8235, 0x8516, 0x820E, 0x8236, 0x8517};
    Write(8);
    Write(4, [](CCalendarEx& calendar) { calendar.m_dtStartTime = calendar.m_dtEndTime = {}; });
    for (const LONG id : kTimes) {
        EXPECT_FALSE(Named(id, PT_SYSTIME)) << std::hex << id;
    }
    EXPECT_EQ(NamedNumber(0x8213), 0);
    Write(4, [](CCalendarEx& calendar) {
        calendar.m_dtStartTime = calendar.m_dtEndTime = {0.0, kDateInvalid};
    });
    for (const LONG id : kTimes) {
        EXPECT_EQ(UtcOf(id), L"1601-01-01 00:00:00") << std::hex << id;
    }
}

TEST_F(CalendarValues, TextsThatAreLeftOutAreRemovedAndOfSeveralTheLastCounts) {
    Write(8, [](CCalendarEx& calendar) {
        calendar.AddField(3000, L"first");
        calendar.AddField(3003, L"Room 4");
        calendar.AddField(3002, L"Notes");
        calendar.m_arrInfo.Add(nullptr);
        calendar.AddField(3000, L"last");
        calendar.AddField(3001, L"another field");
    });
    EXPECT_EQ(Text(PR_SUBJECT_W), L"last");
    EXPECT_EQ(Text(PR_BODY_W), L"Notes");
    EXPECT_EQ(NamedText(0x8208), L"Room 4");
    Write(4);
    EXPECT_EQ(Text(PR_SUBJECT_W), L"(none)");
    EXPECT_EQ(Text(PR_BODY_W), L"(none)");
    EXPECT_EQ(NamedText(0x8208), L"(none)");
}

TEST_F(CalendarValues, ReminderOfNoMinutesIsOneAtTheStart) {
    Write(8, [](CCalendarEx& calendar) { calendar.m_lReminderMinutes = 0; });
    EXPECT_EQ(Flag(0x8503), 1);
    EXPECT_EQ(NamedNumber(0x8501), 0);
    EXPECT_EQ(LocalOf(0x8502), L"2026-03-10 09:30:00");
    EXPECT_EQ(LocalOf(0x8560), L"2026-03-10 09:30:00");
    EXPECT_EQ(Flag(0x851C), 1);
    EXPECT_EQ(Flag(0x851E), 0);
    EXPECT_EQ(NamedText(0x851F), L"Reminder.wav");
}

TEST_F(CalendarValues, WithoutAReminderItsOtherPropertiesStayAsTheyWere) {
    Write(8, [](CCalendarEx& calendar) { calendar.m_lReminderMinutes = 15; });
    Write(4, [](CCalendarEx& calendar) { calendar.m_dtStartTime = Date(2026, 3, 10, 9, 45); });
    EXPECT_EQ(Flag(0x8503), 0);
    EXPECT_EQ(NamedNumber(0x8501), 15);
    EXPECT_EQ(LocalOf(0x8502), L"2026-03-10 09:30:00");
    EXPECT_EQ(LocalOf(0x8560), L"2026-03-10 09:15:00");
    EXPECT_EQ(LocalOf(0x820D), L"2026-03-10 09:45:00");
}

TEST_F(CalendarValues, ReminderOfANewAppointmentWithARingToneHasNoSoundOfItsOwn) {
    Write(8, [](CCalendarEx& calendar) {
        calendar.m_lReminderMinutes = 15;
        calendar.m_nRingTone = 1;
    });
    EXPECT_EQ(Flag(0x8503), 1);
    for (const LONG id : {0x851C, 0x851E}) {
        EXPECT_EQ(Flag(id), kNone) << std::hex << id;
    }
    EXPECT_EQ(NamedText(0x851F), L"(none)");
}

TEST_F(CalendarValues, ReminderTurnsOverTheDayAndTakesNegativeMinutes) {
    const std::pair<int, const wchar_t*> cases[] = {
        {600, L"2026-03-09 23:30:00"}, {40320, L"2026-02-10 09:30:00"}, {-5, L"2026-03-10 09:35:00"}};
    for (const auto& [minutes, time] : cases) {
        Write(8, [minutes = minutes](CCalendarEx& calendar) { calendar.m_lReminderMinutes = minutes; });
        EXPECT_EQ(NamedNumber(0x8501), minutes);
        EXPECT_EQ(LocalOf(0x8560), time);
    }
}

TEST_F(CalendarValues, SignalAtTheValueForNoDateIsRemoved) {
    Write(8, [](CCalendarEx& calendar) { calendar.m_lReminderMinutes = 15; });
    Write(4, [](CCalendarEx& calendar) {
        calendar.m_dtStartTime = Date(1899, 12, 30, 0, 15);
        calendar.m_lReminderMinutes = 15;
    });
    EXPECT_EQ(LocalOf(0x8502).substr(0, 10), L"1899-12-30");
    EXPECT_FALSE(Named(0x8560, PT_SYSTIME));
    Write(4, [](CCalendarEx& calendar) {
        calendar.m_dtStartTime = {};
        calendar.m_lReminderMinutes = 0;
    });
    EXPECT_FALSE(Named(0x8502, PT_SYSTIME));
    EXPECT_FALSE(Named(0x8560, PT_SYSTIME));
}

TEST_F(CalendarValues, ZoneIsTheFirstOfTheTableWithTheShortText) {
    WriteWithZone(L"GMT:+300;DST:60");
    ExpectZone(300, L"First");
    WriteWithZone(L"GMT:-330;DST:0");
    ExpectZone(-330, L"Third");
}

TEST_F(CalendarValues, ZoneThatIsNotFoundIsTheMachines) {
    // The long text, as it goes out with appointments; unknown numbers; none; and what is almost a short one.
    for (const wchar_t* const text :
         {L"GMT:+300;DST:60;STD:0000110102000000;DLT:0000030202000000", L"GMT:+301;DST:60", L"",
          L"GMT:+300;DST:0", L"GMT:300;DST:60", L" GMT:+300;DST:60", L"-1"}) {
        WriteWithZone(text);
        ExpectZone(-60, L"The machine's");
    }
    g_MAPIObject.m_arrTimeZones.RemoveAll();
    g_MAPIObject.m_arrTimeZones.Add(Zone(L"Only", 0, 0));
    WriteWithZone(L"GMT:+300;DST:60");
    ExpectZone(-60, L"The machine's");
}

TEST_F(CalendarValues, ZoneWithoutANameHasNoDescription) {
    WriteWithZone(L"GMT:+300;DST:60");
    g_MAPIObject.m_CurrentTimeZone.Display.clear();
    Write(4);
    ExpectZone(-60, L"(none)");
}

TEST_F(CalendarValues, ZoneShiftsNoTime) {
    Write(8);
    const CString start = UtcOf(0x820D);
    const CString end = UtcOf(0x820E);
    for (const wchar_t* const text : {L"GMT:+300;DST:60", L"GMT:-330;DST:0"}) {
        WriteWithZone(text);
        EXPECT_EQ(UtcOf(0x820D), start);
        EXPECT_EQ(UtcOf(0x820E), end);
    }
}

TEST_F(CalendarValues, SeriesHasItsTypeItsIconAndTheEndOfItsClip) {
    Write(8, [](CCalendarEx& calendar) {
        RepeatDaily(calendar);
        calendar.m_lRecurRepeat = 5;
    });
    EXPECT_EQ(Number(PR_ICON_INDEX), 1025);
    EXPECT_EQ(Flag(0x8223), 1);
    EXPECT_EQ(NamedNumber(0x8231), 1);
    EXPECT_EQ(Bytes(0x8216).size(), 76U);
    // An end by count has no date of its own.
    EXPECT_EQ(LocalOf(0x8236), L"2026-03-10 00:00:00");
    EXPECT_EQ(LocalOf(0x8517), L"2026-03-10 10:15:00");
    // The times in the series are local ones: 570 and 615 minutes.
    EXPECT_EQ(NumberIn(0x8216, 58), 570);
    EXPECT_EQ(NumberIn(0x8216, 62), 615);
}

TEST_F(CalendarValues, SeriesOfAnUnknownTypeIsOneAllTheSame) {
    Write(8, [](CCalendarEx& calendar) { calendar.m_lRecurType = -7; });
    EXPECT_EQ(Number(PR_ICON_INDEX), 1025);
    EXPECT_EQ(Flag(0x8223), 1);
    EXPECT_EQ(NamedNumber(0x8231), -7);
    EXPECT_EQ(Bytes(0x8216).size(), 76U);
}

TEST_F(CalendarValues, UpdateFromASeriesToASingleAppointmentLeavesTheClipWithItsOwnEnd) {
    Write(8, RepeatDaily);
    {
        const ComPtr<IMessage> message = Message();
        NewAppointment(message).Text(0x8232, L"every day").Save();
    }
    EXPECT_EQ(LocalOf(0x8236), L"4500-12-31 23:59:00");
    Write(4, RepeatDaily);
    // The words for a series go with each write of one.
    EXPECT_EQ(NamedText(0x8232), L"(none)");
    Write(4);
    EXPECT_EQ(LocalOf(0x8236), L"2026-03-10 10:15:00");
    EXPECT_EQ(Number(PR_ICON_INDEX), 1024);
    EXPECT_EQ(Flag(0x8223), 0);
    EXPECT_EQ(NamedNumber(0x8231), 0);
    EXPECT_FALSE(Named(0x8216, PT_BINARY));
}

TEST_F(CalendarValues, SeriesWhoseEndIsTheValueForNoDateHasNoEndOfItsClip) {
    Write(8, [](CCalendarEx& calendar) {
        RepeatDaily(calendar);
        calendar.m_dtStartTime = {};
        calendar.m_dtEndTime = Date(1899, 12, 30, 1);
        calendar.m_lRecurRepeat = 5;
    });
    EXPECT_EQ(m_calendar.m_lFlag, 0);
    EXPECT_EQ(Bytes(0x8216).size(), 76U);
    EXPECT_FALSE(Named(0x8236, PT_SYSTIME));
}

TEST_F(CalendarValues, ExceptionRuleOfASeriesIsNotWritten) {
    Write(8, [](CCalendarEx& calendar) {
        RepeatDaily(calendar);
        calendar.AddField(3024, L"20260311T093000");
    });
    // The counts of deleted and of changed instances.
    EXPECT_EQ(NumberIn(0x8216, 34), 0);
    EXPECT_EQ(NumberIn(0x8216, 38), 0);
    EXPECT_EQ(Bytes(0x8216).size(), 76U);
}

TEST_F(CalendarValues, OneNameThatIsNotFoundPassesOverItsPropertyAlone) {
    const auto fill = [](CCalendarEx& calendar) {
        calendar.AddField(3003, L"Room 4");
        calendar.m_lReminderMinutes = 15;
        RepeatDaily(calendar);
    };
    Write(8, fill);
    recorder::ClearCalls();
    Write(4, fill);
    const std::vector<std::string> all = recorder::CallLines();
    const auto isSearch = [](const std::string& line) {
        return line.starts_with("IMessage::GetIDsFromNames");
    };
    std::size_t searches = 0;
    for (std::size_t n = 0; n < all.size(); ++n) {
        if (!isSearch(all[n])) {
            continue;
        }
        SCOPED_TRACE(all[n]);
        ++searches;
        recorder::ClearCalls();
        recorder::FailCall(n + 1, false, MAPI_E_NO_SUPPORT);
        Write(4, fill);
        recorder::ClearFailures();
        EXPECT_EQ(m_calendar.m_lFlag, 0);
        std::vector<std::string> expected = all;
        expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(n) + 1);
        EXPECT_EQ(recorder::CallLines(), expected);
    }
    // The named ones among the rows from 8 to 33.
    EXPECT_EQ(searches, 24U);
}

TEST_F(CalendarValues, SingleFailuresOfSettingAndRemovingGoUnnoticed) {
    for (const char* const method :
         {"IMessage::SetProps", "IMessage::DeleteProps", "IMessage::GetIDsFromNames"}) {
        for (const std::int32_t type : {0, 1}) {
            recorder::FailMethod(method, {}, MAPI_E_NO_ACCESS);
            Write(8, [type](CCalendarEx& calendar) {
                calendar.m_lRecurType = type;
                calendar.m_lReminderMinutes = 15;
            });
            recorder::ClearFailures();
            EXPECT_EQ(m_calendar.m_lFlag, 0) << method;
            TakeLog();
        }
    }
    EXPECT_EQ(Files(), 6U);
}

}  // namespace
