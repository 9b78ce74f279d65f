#pragma once

// From the recurrence of an appointment, as a document tells it, to the series that its property holds. What
// the document says goes through as it is: no instance is counted, and no end is worked out from a count.
// Dates are taken apart by the platform's calendar.

#include <cstdint>

#include "calendar/calendar_record.h"
#include "calendar/recurrence_pattern.h"

/// Makes the series of an appointment, in place of what the pattern held. It has no failure: a date that is
/// not valid counts as the minute 0. The series has no deleted and no changed instances, whatever exceptions
/// the appointment brings.
void BuildRecurrencePattern(NAMESPACE_MAPI::tagRecurrencePattern& pattern, const CCalendarEx& calendar);

/// FirstDateTime of a series with an interval in days: the start's minutes since 1601, modulo the interval's
/// minutes. Numbers wrap at 32 bits; 0 if no minutes are left of the interval by that.
[[nodiscard]] std::uint32_t FirstDateTimeDaily(const COleDateTime& start, std::uint32_t interval);

/// The same for a period in weeks, from the first day of the week (0 for Sunday to 6) on or before the start.
[[nodiscard]] std::uint32_t FirstDateTimeWeekly(const COleDateTime& start, std::int32_t firstDayOfWeek,
                                                std::uint32_t period);
