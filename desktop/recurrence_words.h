#pragma once

#include <cstdint>

#include "support/text.h"

/// What a document says of a series.
struct RecurrenceFields {
    CString type;      ///< 1 daily, 2 weekly, 3 monthly, 4 yearly; empty for a single appointment
    CString interval;  ///< how many days, weeks, months or years apart; empty if the series could not be read
    std::int32_t instance = 0;  ///< 1 for a weekday of a month, else a day of it
    std::int32_t weekMask = 0;  ///< a bit a day, Sunday's is bit 0
    std::int32_t weekDay = 0;   ///< which of the weekdays of a month; -1 for the last
    std::int32_t day = 0;       ///< of a month
    std::int32_t month = 0;     ///< of a year
    CString end;                ///< the day that the series ends on; empty if it never does
    CString exceptions;         ///< the text that tells of deleted and changed instances
    bool isOtherCalendar = false;
};

/// A series in words, such as "every 2 weeks on Thu until 2011-06-30, 4 deleted, 1 changed". Empty for a
/// single appointment.
CString RecurrenceWords(const RecurrenceFields& fields);

/// The exceptions of a series in words, such as "4 deleted, 1 changed", from the text that tells of them.
/// Empty for none.
CString ExceptionWords(const CString& exceptions);
