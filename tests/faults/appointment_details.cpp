#include "tests/faults/appointment_details.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "mapi/property_tags.h"
#include "tests/faults/detail_checks.h"
#include "tests/unit/text_printer.h"

namespace {

/// The named properties besides those of the fixture (MS-OXPROPS 2).
constexpr LONG kBusyStatus = 0x8205;
constexpr LONG kDuration = 0x8213;
constexpr LONG kPattern = 0x8232;
constexpr LONG kZoneDescription = 0x8234;
constexpr LONG kClipStart = 0x8235;
constexpr LONG kClipEnd = 0x8236;
constexpr LONG kReminderTime = 0x8502;
constexpr LONG kSideEffects = 0x8510;
constexpr LONG kCommonStart = 0x8516;
constexpr LONG kCommonEnd = 0x8517;
constexpr LONG kReminderFile = 0x851F;
constexpr LONG kSignalTime = 0x8560;

/// The document's times, 2011-03-07 from 09:00 to 10:00, in minutes since 1899-12-30: that day is the
/// 40609th.
constexpr std::int32_t kMidnight = 40609 * 1440;
constexpr std::int32_t kStart = kMidnight + 9 * 60;
constexpr std::int32_t kEnd = kMidnight + 10 * 60;
/// The days from 1601-01-01, a Monday, to 1899-12-30.
constexpr std::uint32_t kDaysBefore1900 = 109205;
/// The Sunday in front of any day, from a Monday on.
constexpr std::uint32_t kSunday = 6 * 1440;

constexpr const wchar_t* kZoneText = L"GMT:-60;DST:0";
constexpr const wchar_t* kNewZone = L"Display of Second";
constexpr const wchar_t* kOldZone = L"an old zone";

/// What is left of a date: the document's, none because its element was not found, or none that exists
/// because its text was not.
enum class Came { kWhole, kNot, kEmpty };

/// What came of the document. A number that was not found is 0.
struct Arrived {
    Came start = Came::kWhole;
    Came end = Came::kWhole;
    bool hasSubject = false;
    bool hasLocation = false;
    bool hasBody = false;
    bool hasZone = false;
    std::int32_t reminder = 0;
    std::int32_t type = 0;
    std::int32_t days = 0;
};

/// The numbers of a property's bytes, the lowest first.
class Digits {
  public:
    Digits& Word(std::uint32_t number) { return Add(number, 2); }
    Digits& Long(std::uint32_t number) { return Add(number, 4); }
    [[nodiscard]] const CString& Text() const { return m_text; }

  private:
    Digits& Add(std::uint32_t number, int bytes) {
        for (int i = 0; i < bytes; ++i, number >>= 8U) {
            m_text += CString::Format(L"%02X", number & 0xFFU);
        }
        return *this;
    }
    CString m_text;
};

Came CameOf(const COleDateTime& date, std::int32_t minutes) {
    if (date.m_status != kDateValid) {
        EXPECT_EQ(date.m_status, kDateInvalid);
        return Came::kEmpty;
    }
    if (date.m_dt == 0.0) {
        return Came::kNot;
    }
    EXPECT_EQ(std::lround(date.m_dt * 1440), minutes);
    return Came::kWhole;
}

std::int32_t NumberOf(std::int32_t number, std::int32_t whole) {
    EXPECT_TRUE(number == whole || number == 0) << number;
    return number;
}

bool HasText(const CCalendarEx& calendar, std::int32_t field, const wchar_t* whole) {
    for (const auto& entry : calendar.m_arrInfo) {
        if (entry->m_nFieldId == field) {
            EXPECT_EQ(entry->m_strValue, whole);
            return true;
        }
    }
    return false;
}

Arrived ArrivedOf(const CCalendarEx& calendar) {
    return {.start = CameOf(calendar.m_dtStartTime, kStart),
            .end = CameOf(calendar.m_dtEndTime, kEnd),
            .hasSubject = HasText(calendar, kSubjectField, kNewName),
            .hasLocation = HasText(calendar, kLocationField, kNewName),
            .hasBody = HasText(calendar, kBodyField, kNewName),
            .hasZone = HasText(calendar, kTimeZoneField, kZoneText),
            .reminder = NumberOf(calendar.m_lReminderMinutes, 15),
            .type = NumberOf(calendar.m_lRecurType, 2),
            .days = NumberOf(calendar.m_lRecurWeekMask, 2)};
}

/// True if all of the document came.
bool IsWhole(const Arrived& arrived) {
    return arrived.start == Came::kWhole && arrived.end == Came::kWhole && arrived.hasSubject &&
           arrived.hasLocation && arrived.hasBody && arrived.hasZone && arrived.reminder == 15 &&
           arrived.type == 2 && arrived.days == 2;
}

SYSTEMTIME March7(WORD hour, WORD minute = 0) {
    return {2011, 3, 0, 7, hour, minute, 0, 0};
}

/// A date that does not exist is written as the first of all times.
CString FirstTime() {
    return TimeText({1601, 1, 0, 1, 0, 0, 0, 0});
}

CString DateText(Came came, const SYSTEMTIME& whole) {
    if (came == Came::kNot) {
        return kNoValue;
    }
    return came == Came::kWhole ? TimeTextOfLocal(whole) : FirstTime();
}

/// When the reminder shows itself. Without a start that is as long before 1899-12-30, and never at it.
CString SignalText(const Arrived& arrived) {
    if (arrived.start == Came::kWhole) {
        return TimeTextOfLocal(arrived.reminder == 0 ? March7(9) : March7(8, 45));
    }
    if (arrived.reminder == 0) {
        return kNoValue;
    }
    return arrived.start == Came::kNot ? TimeTextOfLocal({1899, 12, 0, 29, 23, 45, 0, 0}) : FirstTime();
}

/// The minutes of a date since 1899-12-30, which one that did not come is itself.
std::int32_t MinutesOf(Came came, std::int32_t whole) {
    return came == Came::kWhole ? whole : 0;
}

/// The day of the start in minutes since 1601.
std::uint32_t StartDay(Came start) {
    if (start == Came::kEmpty) {
        return 0;
    }
    return kDaysBefore1900 * 1440 + static_cast<std::uint32_t>(MinutesOf(start, kMidnight));
}

/// A week's series without an end (MS-OXOCAL 2.2.1.44.1 and 2.2.1.44.5). One without days is of working days.
CString SeriesText(const Arrived& arrived) {
    const std::int32_t midnight = MinutesOf(arrived.start, kMidnight);
    const auto offset = [&](Came came, std::int32_t whole) {
        return static_cast<std::uint32_t>(MinutesOf(came, whole) - midnight);
    };
    return Digits()
        .Word(0x3004)
        .Word(0x3004)
        .Word(0x200B)
        .Word(1)
        .Word(0)
        .Long(arrived.start == Came::kEmpty ? 0 : kSunday)
        .Long(1)
        .Long(0)
        .Long(arrived.days == 0 ? 62 : 2)
        .Long(0x2023)
        .Long(10)
        .Long(0)
        .Long(0)
        .Long(0)
        .Long(StartDay(arrived.start))
        .Long(0x5AE980DF)
        .Long(0x3006)
        .Long(0x3008)
        .Long(offset(arrived.start, kStart))
        .Long(offset(arrived.end, kEnd))
        .Word(0)
        .Long(0)
        .Long(0)
        .Text();
}

/// The bytes of a zone (MS-OXOCAL 2.2.1.39): biases, and the two dates behind their years.
CString ZoneText(const TIME_ZONE_INFORMATION& zone) {
    Digits digits;
    for (const LONG bias : {zone.Bias, zone.StandardBias, zone.DaylightBias}) {
        digits.Long(static_cast<std::uint32_t>(bias));
    }
    for (const SYSTEMTIME& date : {zone.StandardDate, zone.DaylightDate}) {
        for (const WORD field : {date.wYear, date.wYear, date.wMonth, date.wDayOfWeek, date.wDay, date.wHour,
                                 date.wMinute, date.wSecond, date.wMilliseconds}) {
            digits.Word(field);
        }
    }
    return digits.Text();
}

CString SecondZone() {
    TIME_ZONE_INFORMATION zone{};
    zone.Bias = -60;
    zone.DaylightBias = -60;
    return ZoneText(zone);
}

/// The zone that stands where the document's is not found; the machine of the test has no name for it.
CString MachineZone() {
    TIME_ZONE_INFORMATION zone{};
    GetTimeZoneInformation(&zone);
    return ZoneText(zone);
}

CString OldTime(WORD hour, WORD minute = 0) {
    return TimeText({2010, 1, 0, 5, hour, minute, 0, 0});
}

void ExpectTexts(WrittenProperties& properties, const Arrived& arrived) {
    const auto fresh = [](bool came) { return came ? kNewName : kNoValue; };
    properties.Tagged(PR_SUBJECT_W, kOldName, fresh(arrived.hasSubject));
    properties.Tagged(PR_BODY_W, kOldName, fresh(arrived.hasBody));
    properties.Named(lid::kLocation, PT_UNICODE, kOldName, fresh(arrived.hasLocation));
}

/// The clip of a series ends with the series, once it has ended with the appointment.
void ExpectTimes(WrittenProperties& properties, const Arrived& arrived) {
    const CString start = DateText(arrived.start, March7(9));
    const CString end = DateText(arrived.end, March7(10));
    for (const LONG id : {lid::kStartWhole, kClipStart, kCommonStart}) {
        properties.Named(id, PT_SYSTIME, OldTime(7), start);
    }
    for (const LONG id : {lid::kEndWhole, kCommonEnd}) {
        properties.Named(id, PT_SYSTIME, OldTime(8), end);
    }
    const CString endOfSeries = TimeTextOfLocal({4500, 12, 0, 31, 23, 59, 0, 0});
    if (arrived.type == 0) {
        properties.Named(kClipEnd, PT_SYSTIME, OldTime(8), end);
    } else {
        properties.Named(kClipEnd, PT_SYSTIME, OldTime(8), endOfSeries, end);
    }
    properties.Named(kDuration, PT_LONG, L"61",
                     CString::Format(L"%d", MinutesOf(arrived.end, kEnd) - MinutesOf(arrived.start, kStart)));
    properties.Named(lid::kSubType, PT_BOOLEAN, L"1", L"0");
}

void ExpectReminder(WrittenProperties& properties, const Arrived& arrived) {
    properties.Named(lid::kReminderSet, PT_BOOLEAN, L"0", L"1");
    properties.Named(lid::kReminderDelta, PT_LONG, L"30", CString::Format(L"%d", arrived.reminder));
    properties.Named(lid::kReminderOverride, PT_BOOLEAN, L"0", L"1");
    properties.Named(lid::kReminderPlaySound, PT_BOOLEAN, L"1", L"0");
    properties.Named(kReminderFile, PT_UNICODE, L"Old.wav", L"Reminder.wav");
    properties.Named(kReminderTime, PT_SYSTIME, OldTime(7), DateText(arrived.start, March7(9)));
    properties.Named(kSignalTime, PT_SYSTIME, OldTime(6, 30), SignalText(arrived));
}

/// True if the zone of the document is among those that could be read.
bool IsZoneKnown() {
    return std::ranges::any_of(g_MAPIObject.m_arrTimeZones,
                               [](const auto& zone) { return zone.Display == kNewZone; });
}

/// Without the document's zone stands that of the session.
void ExpectZone(WrittenProperties& properties, const Arrived& arrived, const Outcome& outcome) {
    const bool isKnown = IsZoneKnown();
    EXPECT_TRUE(isKnown || !(outcome.complete || outcome.storeFailed));
    const bool isFound = arrived.hasZone && isKnown;
    properties.Named(lid::kTimeZoneStruct, PT_BINARY, L"070000", isFound ? SecondZone() : MachineZone());
    properties.Named(kZoneDescription, PT_UNICODE, kOldZone, isFound ? kNewZone : kNoValue);
}

void ExpectSeries(WrittenProperties& properties, const Arrived& arrived) {
    const bool isSeries = arrived.type != 0;
    properties.Tagged(PR_ICON_INDEX, L"1024", isSeries ? L"1025" : L"1024");
    properties.Named(lid::kRecurring, PT_BOOLEAN, L"0", isSeries ? L"1" : L"0");
    properties.Named(lid::kRecurrenceType, PT_LONG, L"0", isSeries ? L"2" : L"0");
    properties.Named(lid::kRecur, PT_BINARY, L"010203", isSeries ? SeriesText(arrived) : CString(kNoValue));
    // The words of an old series go with a new one, and stay without.
    properties.Named(kPattern, PT_UNICODE, L"old words",
                     isSeries || properties.WasAdded() ? kNoValue : L"old words");
}

}  // namespace

void SetOldAppointment(NewAppointment& appointment) {
    appointment.Body(kOldName).Text(lid::kLocation, kOldName);
    for (const LONG id : {lid::kStartWhole, kClipStart, kCommonStart, kReminderTime}) {
        appointment.Time(id, 2010, 1, 5, 7, 0);
    }
    for (const LONG id : {lid::kEndWhole, kClipEnd, kCommonEnd}) {
        appointment.Time(id, 2010, 1, 5, 8, 0);
    }
    appointment.Time(kSignalTime, 2010, 1, 5, 6, 30)
        .Number(kDuration, 61)
        .Number(kBusyStatus, 2)
        .Number(kSideEffects, 1)
        .Boolean(lid::kSubType, true)
        .Boolean(lid::kReminderSet, false)
        .Number(lid::kReminderDelta, 30)
        .Boolean(lid::kReminderOverride, false)
        .Boolean(lid::kReminderPlaySound, true)
        .Text(kReminderFile, L"Old.wav")
        .Binary(lid::kTimeZoneStruct, {7, 0, 0})
        .Text(kZoneDescription, kOldZone)
        .Series(0, {1, 2, 3})
        .Boolean(lid::kRecurring, false)
        .Text(kPattern, L"old words");
    PropertyValues().Number(PR_ICON_INDEX, 1024).SetOn(appointment.Get());
}

CString AppointmentElements() {
    return CString::Format(L"<Description>%s</Description><Location>%s</Location><Body>%s</Body>", kNewName,
                           kNewName, kNewName) +
           L"<dtStartTime>03/07/2011 09:00:00</dtStartTime><dtEndTime>03/07/2011 10:00:00</dtEndTime>"
           L"<lReminderMinutes>15</lReminderMinutes><lRecurType>2</lRecurType><lCalType>3</lCalType>"
           L"<lRecurWeekMask>2</lRecurWeekMask><TimeZone>" +
           kZoneText + L"</TimeZone>";
}

void ExpectAppointment(IMessage* message, const StoreState& state, bool wasAdded, const Outcome& outcome) {
    const Arrived arrived = ArrivedOf(state.calendar);
    EXPECT_TRUE(outcome.documentsFailed || IsWhole(arrived));
    WrittenProperties properties(message, wasAdded, IsWhole(arrived), outcome);
    properties.Class(L"IPM.Appointment");
    properties.OfNew(PR_IMPORTANCE, kNoValue, L"1");
    properties.OfNew(PR_PRIORITY, kNoValue, L"0");
    properties.OfNew(PR_SENSITIVITY, kNoValue, L"0");
    properties.NamedOfNew(kBusyStatus, PT_LONG, L"2", L"0");
    properties.Named(kSideEffects, PT_LONG, L"1", L"369");
    ExpectTexts(properties, arrived);
    ExpectTimes(properties, arrived);
    ExpectReminder(properties, arrived);
    ExpectZone(properties, arrived, outcome);
    ExpectSeries(properties, arrived);
}
