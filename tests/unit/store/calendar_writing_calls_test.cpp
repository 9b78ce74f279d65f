// The calls of a write, as whole sequences: each property with its tag, its type and its value.

#include "tests/unit/store/calendar_writing_fixture.h"
#include "tests/unit/store/expected_calls.h"

namespace {

namespace recorder = localstore::recorder;

/// The bytes of PidLidTimeZoneStruct of the zones "First" and "The machine's".
constexpr const char* kFirstZone =
    "2C010000"
    "00000000"
    "C4FFFFFF"
    "0000"
    "00000B000000010002000000"
    "00000000"
    "0000"
    "00000300000002000200000000000000";
constexpr const char* kMachineZone =
    "C4FFFFFF"
    "00000000"
    "00000000"
    "0000"
    "00000000000000000000000000000000"
    "0000"
    "00000000000000000000000000000000";

/// What only a new message gets.
void ExpectNewItem(Expected& calls) {
    calls.Text("0x001A001F", "IPM.Appointment");
    calls.Set("0x0E070003=1").Set("0x00170003=1").Set("0x00260003=0").Set("0x00360003=0");
    calls.Appointment("8205", "0003", "0");
}

void ExpectTimes(Expected& calls, const LocalTime& start, const LocalTime& end, int minutes) {
    for (const char* const id : {"820D", "8235", "8516"}) {
        calls.Appointment(id, "0040", Time(start));
    }
    for (const char* const id : {"820E", "8236", "8517"}) {
        calls.Appointment(id, "0040", Time(end));
    }
    calls.Appointment("8213", "0003", std::to_string(minutes));
}

void ExpectTexts(Expected& calls, const std::string& subject, const std::string& body,
                 const std::string& location) {
    calls.Text("0x0037001F", subject).Text("0x1000001F", body).AppointmentText("8208", location);
}

void ExpectZone(Expected& calls, const char* bytes, const char* display) {
    calls.Appointment("8510", "0003", "369");
    calls.Appointment("8233", "0102", bytes).AppointmentText("8234", display);
}

/// What says that there is no recurrence.
void ExpectSingle(Expected& calls) {
    calls.Appointment("8223", "000B", "false").Appointment("8231", "0003", "0");
    calls.DeleteAppointment("8216", "0040");
}

void ExpectSeries(Expected& calls, const char* type, const std::string& bytes, const LocalTime& end) {
    calls.Appointment("8223", "000B", "true").Appointment("8231", "0003", type);
    calls.Appointment("8216", "0102", bytes).DeleteAppointment("8232", "001F");
    calls.Appointment("8236", "0040", Time(end));
}

void ExpectSave(Expected& calls) {
    calls.Add("IMessage::SaveChanges flags=0x00000004").Add("IMessage::GetProps 0x30080040 flags=0x00000000");
}

/// The look at what the message says of its reminder.
void ExpectLookAtTheReminder(Expected& calls) {
    calls.Name("{00062008}:851C").Add("IMessage::GetProps {00062008}:851C/0000 flags=0x80000000");
}

/// Every second week on Tuesday from 2026-03-10 to 2026-06-30, from 09:30 to 10:15. The days are 155296 and
/// 155408 days behind 1601-01-01, and the week of the first one begins on the day 155294.
const std::string kWeekly =
    "04300430"
    "0B200100"
    "0000"
    "C0210000"  // FirstDateTime: 8640, the first Sunday's minutes modulo two weeks
    "02000000"
    "00000000"
    "04000000"  // WeekDays
    "21200000"
    "01000000"
    "00000000"  // EndType, OccurrenceCount, FirstDOW
    "00000000"
    "00000000"  // no deleted and no changed instances
    "0044540D"
    "00BA560D"  // StartDate, EndDate
    "06300000"
    "08300000"
    "3A020000"
    "67020000"  // 570 and 615 minutes from midnight
    "0000"
    "00000000"
    "00000000";

/// The same without an end, on every working day.
const std::string kWorkingDays =
    "04300430"
    "0A200100"
    "0000"
    "C0210000"  // FirstDateTime: 8640, here modulo one week
    "01000000"
    "00000000"
    "3E000000"
    "23200000"
    "0A000000"
    "00000000"
    "00000000"
    "00000000"
    "0044540D"
    "DF80E95A"
    "06300000"
    "08300000"
    "3A020000"
    "67020000"
    "0000"
    "00000000"
    "00000000";

class CalendarWritingCalls : public CalendarWriting {
  protected:
    static void GiveTexts(CCalendarEx& calendar) {
        calendar.AddField(3000, L"Dentist");
        calendar.AddField(3003, L"Room 4");
        calendar.AddField(3002, L"Bring the card");
        calendar.AddField(3037, L"GMT:+300;DST:60");
        calendar.AddField(3024, L"ignored");
    }
    static void RepeatEverySecondTuesday(CCalendarEx& calendar) {
        calendar.m_lRecurType = 2;
        calendar.m_lRecurInterval = 2;
        calendar.m_lRecurWeekMask = 4;
        calendar.m_bRecurHasEndDate = 1;
        calendar.m_dtRecurEndDate = Date(2026, 6, 30);
    }
    /// An appointment with a reminder of its own kind.
    void AddWithReminder() {
        Write(8, [](CCalendarEx& calendar) { calendar.m_lReminderMinutes = 5; });
        recorder::ClearCalls();
    }

    const LocalTime m_start = At(2026, 3, 10, 9, 30);
    const LocalTime m_end = At(2026, 3, 10, 10, 15);
};

TEST_F(CalendarWritingCalls, AddOfASingleAppointmentWithAReminder) {
    Write(8, [](CCalendarEx& calendar) {
        GiveTexts(calendar);
        calendar.m_lReminderMinutes = 15;
        calendar.m_nPriority = 2;
        calendar.m_strCsFolder = L"not looked at";
    });

    Expected calls;
    calls.Add("IMAPIFolder::CreateMessage flags=0x00000000");
    ExpectNewItem(calls);
    calls.Set("0x10800003=1024");
    ExpectTimes(calls, m_start, m_end, 45);
    ExpectTexts(calls, "Dentist", "Bring the card", "Room 4");
    calls.Appointment("8215", "000B", "false");
    calls.Appointment("8503", "000B", "true").Appointment("8501", "0003", "15");
    calls.Appointment("851C", "000B", "true").Appointment("851E", "000B", "false");
    calls.AppointmentText("851F", "Reminder.wav");
    calls.Appointment("8502", "0040", Time(m_start));
    calls.Appointment("8560", "0040", Time(At(2026, 3, 10, 9, 15)));
    ExpectZone(calls, kFirstZone, "First");
    ExpectSingle(calls);
    ExpectSave(calls);
    calls.Add("IMessage::GetProps 0x0FFF0102 flags=0x00000000");
    EXPECT_EQ(TakeCalls(), calls.Lines());
}

TEST_F(CalendarWritingCalls, AddOfASeriesWithoutAReminder) {
    Write(8, [](CCalendarEx& calendar) {
        GiveTexts(calendar);
        RepeatEverySecondTuesday(calendar);
    });

    Expected calls;
    calls.Add("IMAPIFolder::CreateMessage flags=0x00000000");
    ExpectNewItem(calls);
    calls.Set("0x10800003=1025");
    ExpectTimes(calls, m_start, m_end, 45);
    ExpectTexts(calls, "Dentist", "Bring the card", "Room 4");
    calls.Appointment("8215", "000B", "false").Appointment("8503", "000B", "false");
    ExpectZone(calls, kFirstZone, "First");
    ExpectSeries(calls, "2", kWeekly, At(2026, 6, 30));
    ExpectSave(calls);
    calls.Add("IMessage::GetProps 0x0FFF0102 flags=0x00000000");
    EXPECT_EQ(TakeCalls(), calls.Lines());
}

TEST_F(CalendarWritingCalls, UpdateToASingleAppointmentWithoutTextsAndReminderRemovesThem) {
    Write(8, [](CCalendarEx& calendar) {
        GiveTexts(calendar);
        RepeatEverySecondTuesday(calendar);
    });
    recorder::ClearCalls();
    Write(4, [](CCalendarEx& calendar) {
        calendar.m_bAlldayEvent = 1;
        calendar.m_dtEndTime = Date(2026, 3, 11, 10, 15);
    });

    Expected calls;
    calls.Add("IMAPIFolder::OpenEntry id=* flags=0x00000011");
    calls.Set("0x10800003=1024");
    ExpectTimes(calls, At(2026, 3, 10), At(2026, 3, 11), 1440);
    ExpectTexts(calls, "", "", "");
    calls.Appointment("8215", "000B", "true").Appointment("8503", "000B", "false");
    ExpectZone(calls, kMachineZone, "The machine's");
    ExpectSingle(calls);
    ExpectSave(calls);
    EXPECT_EQ(TakeCalls(), calls.Lines());
}

TEST_F(CalendarWritingCalls, UpdateToASeriesWithoutAnEndWhoseReminderGetsItsSound) {
    AddWithReminder();
    Write(4, [](CCalendarEx& calendar) {
        GiveTexts(calendar);
        calendar.m_lReminderMinutes = 30;
        calendar.m_nRingTone = 1;
        calendar.m_lRecurType = 2;
        calendar.m_lRecurInterval = 0;
        calendar.m_lRecurWeekMask = 62;
    });

    Expected calls;
    calls.Add("IMAPIFolder::OpenEntry id=* flags=0x00000011");
    calls.Set("0x10800003=1025");
    ExpectTimes(calls, m_start, m_end, 45);
    ExpectTexts(calls, "Dentist", "Bring the card", "Room 4");
    calls.Appointment("8215", "000B", "false");
    calls.Appointment("8503", "000B", "true").Appointment("8501", "0003", "30");
    ExpectLookAtTheReminder(calls);
    calls.Appointment("851E", "000B", "true").AppointmentText("851F", "Reminder.wav");
    calls.Appointment("8502", "0040", Time(m_start));
    calls.Appointment("8560", "0040", Time(At(2026, 3, 10, 9, 0)));
    ExpectZone(calls, kFirstZone, "First");
    ExpectSeries(calls, "2", kWorkingDays, At(4500, 12, 31, 23, 59));
    ExpectSave(calls);
    EXPECT_EQ(TakeCalls(), calls.Lines());
}

/// The calls of an update with a reminder and a ring tone, where nothing is made of the ring tone.
std::string LinesOfASilentUpdate(const LocalTime& start, const LocalTime& end, bool reads) {
    Expected calls;
    calls.Add("IMAPIFolder::OpenEntry id=* flags=0x00000011");
    calls.Set("0x10800003=1024");
    ExpectTimes(calls, start, end, 45);
    ExpectTexts(calls, "", "", "");
    calls.Appointment("8215", "000B", "false");
    calls.Appointment("8503", "000B", "true").Appointment("8501", "0003", "0");
    calls.Name("{00062008}:851C");
    if (reads) {
        calls.Add("IMessage::GetProps {00062008}:851C/0000 flags=0x80000000");
    }
    calls.Appointment("8502", "0040", Time(start)).Appointment("8560", "0040", Time(start));
    ExpectZone(calls, kMachineZone, "The machine's");
    ExpectSingle(calls);
    ExpectSave(calls);
    return calls.Lines();
}

void RingAtTheStart(CCalendarEx& calendar) {
    calendar.m_lReminderMinutes = 0;
    calendar.m_nRingTone = 1;
}

TEST_F(CalendarWritingCalls, RingToneLeavesTheSoundAloneWhereTheReminderOverridesNothing) {
    // Without the property at all, and with it but not set.
    Write(8);
    recorder::ClearCalls();
    Write(4, RingAtTheStart);
    EXPECT_EQ(TakeCalls(), LinesOfASilentUpdate(m_start, m_end, true));
    {
        const ComPtr<IMessage> message = Message();
        PropertyValues()
            .Boolean(FolderWriter::AppointmentTag(message.Get(), 0x851C, PT_BOOLEAN), false)
            .SetOn(message.Get());
        FolderWriter::Save(message.Get());
    }
    recorder::ClearCalls();
    Write(4, RingAtTheStart);
    EXPECT_EQ(TakeCalls(), LinesOfASilentUpdate(m_start, m_end, true));
}

TEST_F(CalendarWritingCalls, RingToneLeavesTheSoundAloneWhereTheReminderCannotBeLookedAt) {
    AddWithReminder();
    // All reads fail, also that of the time behind the save.
    recorder::FailMethod("IMessage::GetProps", {}, MAPI_E_NO_ACCESS);
    Write(4, RingAtTheStart);
    recorder::ClearFailures();
    EXPECT_EQ(TakeCalls(), LinesOfASilentUpdate(m_start, m_end, true));
    recorder::FailMethod("IMessage::GetProps", {}, MAPI_W_ERRORS_RETURNED);
    Write(4, RingAtTheStart);
    EXPECT_EQ(TakeCalls(), LinesOfASilentUpdate(m_start, m_end, true));
}

TEST_F(CalendarWritingCalls, RingToneLeavesTheSoundAloneWhereTheNameOfThePropertyCannotBeFound) {
    AddWithReminder();
    Write(4, RingAtTheStart);
    const std::vector<recorder::Call> all = recorder::Calls();
    const auto search = std::ranges::find_if(all, [](const recorder::Call& call) {
        return call.method == "IMessage::GetIDsFromNames" && call.arguments.starts_with("{00062008}:851C ");
    });
    ASSERT_NE(search, all.end());
    recorder::ClearCalls();
    recorder::FailCall(static_cast<std::size_t>(search - all.begin()) + 1, false, MAPI_E_NO_SUPPORT);
    Write(4, RingAtTheStart);
    EXPECT_EQ(TakeCalls(), LinesOfASilentUpdate(m_start, m_end, false));
}

TEST_F(CalendarWritingCalls, DeleteGoesThroughTheParentFolder) {
    Write(8);
    recorder::ClearCalls();
    // It needs no kind.
    Write(32, [](CCalendarEx& calendar) { calendar.m_lCalType = -1; });
    EXPECT_EQ(m_calendar.m_lFlag, 0);
    EXPECT_EQ(TakeCalls(),
              "IMAPIFolder::OpenEntry id=* flags=0x00000011\n"
              "IMessage::GetProps 0x0E090102 flags=0x80000000\n"
              "IMAPIFolder::OpenEntry id=* flags=0x00000010\n"
              "IMAPIFolder::DeleteMessages id=* flags=0x00000000\n");
}

}  // namespace
