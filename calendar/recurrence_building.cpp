#include "calendar/recurrence_building.h"

// Behind the base headers.
#include <windows.h>

#include <oleauto.h>

#include "timezone/conversions.h"

namespace {

using NAMESPACE_MAPI::tagRecurrencePattern;

constexpr std::uint32_t kMinutesPerDay = 1440;
constexpr std::uint32_t kMinutesPerWeek = 7 * kMinutesPerDay;
constexpr std::uint32_t kMonthsPerYear = 12;

/// The kinds of recurrence that a document names.
constexpr std::int32_t kDaily = 1;
constexpr std::int32_t kWeekly = 2;
constexpr std::int32_t kMonthly = 3;
constexpr std::int32_t kYearly = 4;

constexpr std::int32_t kSunday = 0;
constexpr std::uint32_t kMondayToFriday = 62;
constexpr std::int32_t kLastWeek = -1;
constexpr std::uint32_t kLastNthWeek = 5;

/// What a series without an end has for its count and its date, 4500-12-31 23:59 (MS-OXOCAL 2.2.1.44.1).
constexpr std::uint32_t kCountWithoutEnd = 10;
constexpr std::uint32_t kDateWithoutEnd = 0x5AE980DF;

/// A number of a document as the series holds it: without a sign, modulo 2^32.
constexpr std::uint32_t Unsigned(std::int32_t number) noexcept {
    return static_cast<std::uint32_t>(number);
}

/// The remainder, and 0 for a divisor that wrapped to 0.
constexpr std::uint32_t Remainder(std::uint32_t minutes, std::uint32_t divisor) noexcept {
    return divisor == 0 ? 0 : minutes % divisor;
}

/// The day of the week, from 1 for Sunday to 7; -1 for a date that is not valid.
std::int32_t DayOfWeek(const COleDateTime& date) {
    SYSTEMTIME fields = {};
    if (date.m_status != kDateValid || VariantTimeToSystemTime(date.m_dt, &fields) == FALSE) {
        return -1;
    }
    return fields.wDayOfWeek + 1;
}

/// The day of the year, from 1 on; -1 if the platform has none for the value. The status takes no part.
std::int32_t DayOfYear(const COleDateTime& date) {
    UDATE fields = {};
    return SUCCEEDED(VarUdateFromDate(date.m_dt, 0, &fields)) ? fields.wDayOfYear : -1;
}

void SetDaily(tagRecurrencePattern& pattern, const CCalendarEx& calendar) {
    pattern.RecurFrequency = kDailyFrequency;
    pattern.PatternType = kDayPattern;
    pattern.Period = Unsigned(calendar.m_lRecurInterval) * kMinutesPerDay;
    pattern.FirstDateTime = FirstDateTimeDaily(calendar.m_dtStartTime, Unsigned(calendar.m_lRecurInterval));
}

/// Every working day comes as a week of five days without an interval, and is a daily series.
void SetWeekly(tagRecurrencePattern& pattern, const CCalendarEx& calendar) {
    const bool isEveryWorkingDay =
        calendar.m_lRecurInterval == 0 && Unsigned(calendar.m_lRecurWeekMask) == kMondayToFriday;
    pattern.RecurFrequency = isEveryWorkingDay ? kDailyFrequency : kWeeklyFrequency;
    pattern.PatternType = kWeekPattern;
    pattern.Period = isEveryWorkingDay ? 1 : Unsigned(calendar.m_lRecurInterval);
    pattern.FirstDateTime = FirstDateTimeWeekly(calendar.m_dtStartTime, kSunday, pattern.Period);
}

void SetMonthly(tagRecurrencePattern& pattern, const CCalendarEx& calendar) {
    pattern.RecurFrequency = kMonthlyFrequency;
    pattern.PatternType = calendar.m_lRecurInstance != 0 ? kMonthNthPattern : kMonthPattern;
    pattern.Period = Unsigned(calendar.m_lRecurInterval);
}

/// The first date is the day of the year, and not the offset of the month that the format describes: so these
/// series have always been written.
void SetYearly(tagRecurrencePattern& pattern, const CCalendarEx& calendar) {
    SetMonthly(pattern, calendar);
    pattern.RecurFrequency = kYearlyFrequency;
    pattern.Period *= kMonthsPerYear;
    pattern.FirstDateTime = Unsigned(DayOfYear(calendar.m_dtStartTime)) * kMinutesPerDay;
}

void SetKind(tagRecurrencePattern& pattern, const CCalendarEx& calendar) {
    switch (calendar.m_lRecurType) {
        case kDaily:
            SetDaily(pattern, calendar);
            return;
        case kWeekly:
            SetWeekly(pattern, calendar);
            return;
        case kMonthly:
            SetMonthly(pattern, calendar);
            return;
        case kYearly:
            SetYearly(pattern, calendar);
            return;
        default:
            pattern.Period = Unsigned(calendar.m_lRecurInterval);
            return;
    }
}

/// The days. A week without any is one of working days.
void SetDays(tagRecurrencePattern& pattern, const CCalendarEx& calendar) {
    pattern.WeekDays = Unsigned(calendar.m_lRecurWeekMask);
    if (pattern.WeekDays == 0 && pattern.RecurFrequency == kWeeklyFrequency) {
        pattern.WeekDays = kMondayToFriday;
    }
    // The element is named for a day, but what it carries is the number of the week.
    pattern.NthWeek =
        calendar.m_lRecurWeekDay == kLastWeek ? kLastNthWeek : Unsigned(calendar.m_lRecurWeekDay);
    pattern.DayOfMonth = Unsigned(calendar.m_lRecurDay);
}

void SetEnd(tagRecurrencePattern& pattern, const CCalendarEx& calendar) {
    const bool hasDate = calendar.m_dtRecurEndDate.m_dt != 0.0;
    pattern.StartDate = MinutesSince1601(calendar.m_dtStartTime);
    if (calendar.m_bRecurHasEndDate != 0 && hasDate) {
        pattern.EndType = kEndByDate;
        pattern.OccurrenceCount = 1;
        pattern.EndDate = MinutesSince1601(calendar.m_dtRecurEndDate);
        return;
    }
    if (calendar.m_lRecurRepeat != 0) {
        pattern.EndType = kEndAfterCount;
        pattern.OccurrenceCount = Unsigned(calendar.m_lRecurRepeat);
        pattern.EndDate = hasDate ? MinutesSince1601(calendar.m_dtRecurEndDate) : pattern.StartDate;
        return;
    }
    pattern.EndType = kNeverEnd;
    pattern.OccurrenceCount = kCountWithoutEnd;
    pattern.EndDate = kDateWithoutEnd;
}

/// Both offsets count from the midnight of the start, so that of an end on a later day is beyond a day.
void SetOffsets(tagRecurrencePattern& pattern, const CCalendarEx& calendar) {
    const COleDateTime midnight = MidnightOf(calendar.m_dtStartTime);
    const auto minutes = [&midnight](const COleDateTime& date) {
        return Unsigned(WholeMinutes(DateDifference(date.m_dt, midnight.m_dt)));
    };
    pattern.StartTimeOffset = minutes(calendar.m_dtStartTime);
    pattern.EndTimeOffset = minutes(calendar.m_dtEndTime);
}

}  // namespace

void BuildRecurrencePattern(tagRecurrencePattern& pattern, const CCalendarEx& calendar) {
    pattern = tagRecurrencePattern();
    pattern.ReaderVersion = kWrittenVersion;
    pattern.WriterVersion = kWrittenVersion;
    pattern.ReaderVersion2 = kWrittenReaderVersion2;
    pattern.WriterVersion2 = kWrittenWriterVersion2;
    SetKind(pattern, calendar);
    SetDays(pattern, calendar);
    SetEnd(pattern, calendar);
    SetOffsets(pattern, calendar);
}

std::uint32_t FirstDateTimeDaily(const COleDateTime& start, std::uint32_t interval) {
    return Remainder(MinutesSince1601(start), interval * kMinutesPerDay);
}

std::uint32_t FirstDateTimeWeekly(const COleDateTime& start, std::int32_t firstDayOfWeek,
                                  std::uint32_t period) {
    constexpr int kDaysPerWeek = 7;
    COleDateTime day = MidnightOf(start);
    for (int i = 0; i < kDaysPerWeek && DayOfWeek(day) != firstDayOfWeek + 1; ++i) {
        day.m_dt = SubtractSpan(day.m_dt, DaysOf(1, 0, 0, 0));
    }
    return Remainder(MinutesSince1601(day), period * kMinutesPerWeek);
}
