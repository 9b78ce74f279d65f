#pragma once

// The text in which a document tells what is different about single instances of a series. It reads like XML,
// but is the text of one element.

#include <cstdint>
#include <functional>

#include "calendar/recurrence_pattern.h"
#include "support/text.h"

/// What an instance has from its series where it has nothing of its own.
struct SeriesDefaults {
    CString subject;
    CString location;
    std::int32_t reminderMinutes = 0;  ///< -1 for no reminder
    std::int32_t isAllDay = 0;
};

/// Writes a line for each deleted day that is not the day of a changed instance, then a paragraph for each
/// changed instance, all in the order of the series. The series must have its array of deleted days. What it
/// has for its changed instances is asked for once, and not at all where there are none.
[[nodiscard]] CString ExceptionRuleText(const NAMESPACE_MAPI::tagRecurrencePattern& pattern,
                                        const std::function<SeriesDefaults()>& defaultsOf);
