#pragma once

#include <cstdint>

#include "support/text.h"

/// The six numbers of a date text.
struct DateTextNumbers {
    std::int32_t year = 0;
    std::int32_t month = 0;
    std::int32_t day = 0;
    std::int32_t hour = 0;
    std::int32_t minute = 0;
    std::int32_t second = 0;

    friend bool operator==(const DateTextNumbers&, const DateTextNumbers&) = default;
};

/// Cuts a text of the form year-month-day hour:minute:second at its delimiters, one after the other, and
/// reads the number at the beginning of each piece. What is not there is 0, and nothing is checked against a
/// calendar.
[[nodiscard]] DateTextNumbers CutDateText(WideView text);

// Recurrence data counts local minutes since 1601-01-01; every number of 32 bits is a day up to the year
// 9767.

/// Appends the day of such minutes: year/month/day.
void AppendDayText(CString& text, std::uint32_t minutes);

/// Appends the day and the time of such minutes: year/month/day hour:minute:second.
void AppendMomentText(CString& text, std::uint32_t minutes);
