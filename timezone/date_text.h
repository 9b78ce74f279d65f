#pragma once

#include <cstdint>

#include "support/wide.h"

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
