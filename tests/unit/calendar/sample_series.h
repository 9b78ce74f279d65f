#pragma once

// Series that tests write and read.

#include <utility>
#include <vector>

#include "calendar/recurrence_pattern.h"

namespace sample_series {

using NAMESPACE_MAPI::tagRecurrenceException;
using NAMESPACE_MAPI::tagRecurrencePattern;

/// Days as minutes since 1601-01-01: 2011-03-07 is the day 149,814.
constexpr std::uint32_t kDay = 1440;
constexpr std::uint32_t kFirstMonday = 149'814 * kDay;

inline void SetDeleted(tagRecurrencePattern& pattern, const std::vector<std::uint32_t>& dates) {
    pattern.DeletedInstanceCount = static_cast<std::uint32_t>(dates.size());
    pattern.DeletedInstanceDates = std::make_unique<std::uint32_t[]>(dates.size());
    std::copy(dates.begin(), dates.end(), pattern.DeletedInstanceDates.get());
}

inline void SetExceptions(tagRecurrencePattern& pattern, std::vector<tagRecurrenceException> exceptions) {
    pattern.ModifiedInstanceCount = static_cast<std::uint32_t>(exceptions.size());
    pattern.Exceptions = std::make_unique<tagRecurrenceException[]>(exceptions.size());
    std::move(exceptions.begin(), exceptions.end(), pattern.Exceptions.get());
}

/// Every second week on Monday and Wednesday from 09:00 to 10:00, ten times, without exceptions.
inline tagRecurrencePattern Weekly() {
    tagRecurrencePattern pattern;
    pattern.ReaderVersion = 0x3004;
    pattern.WriterVersion = 0x3004;
    pattern.RecurFrequency = 0x200B;
    pattern.PatternType = 1;
    pattern.FirstDateTime = 8640;
    pattern.Period = 2;
    pattern.WeekDays = 0x0A;
    pattern.EndType = 0x2022;
    pattern.OccurrenceCount = 10;
    pattern.StartDate = kFirstMonday;
    pattern.EndDate = kFirstMonday + 58 * kDay;
    pattern.ReaderVersion2 = 0x3006;
    pattern.WriterVersion2 = 0x3009;
    pattern.StartTimeOffset = 540;
    pattern.EndTimeOffset = 600;
    return pattern;
}

/// An instance of a day, moved by a day and with the flags given, whose override values are all different.
inline tagRecurrenceException Moved(std::uint32_t day, std::uint16_t flags) {
    tagRecurrenceException exception;
    exception.OriginalDate = day;
    exception.OverrideFlags = flags;
    exception.StartDateTime = day + kDay + 540;
    exception.EndDateTime = day + kDay + 600;
    exception.OriginalStartDate = day + 540;
    const auto valueIf = [flags](std::uint16_t flag, std::uint32_t value) {
        return (flags & flag) != 0 ? value : 0;
    };
    exception.MeetingType = valueIf(ARO_MEETINGTYPE, 3);
    exception.ReminderDelta = valueIf(ARO_REMINDERDELTA, 45);
    exception.ReminderSet = valueIf(ARO_REMINDER, 1);
    exception.BusyStatus = valueIf(ARO_BUSYSTATUS, 2);
    exception.Attachment = valueIf(ARO_ATTACHMENT, 6);
    exception.SubType = valueIf(ARO_SUBTYPE, 5);
    exception.AppointmentColor = valueIf(ARO_APPTCOLOR, 7);
    exception.Subject = (flags & ARO_SUBJECT) != 0 ? CString(WIDE("Besprechung \u00fc")) : CString();
    exception.Location = (flags & ARO_LOCATION) != 0 ? CString(WIDE("\u4f1a\u8b70\u5ba4")) : CString();
    return exception;
}

/// A deleted instance and changed ones with each override alone, with all and with none.
inline tagRecurrencePattern WithExceptions() {
    tagRecurrencePattern pattern = Weekly();
    std::vector<std::uint32_t> deleted{kFirstMonday};
    std::vector<tagRecurrenceException> exceptions;
    std::uint32_t day = kFirstMonday;
    for (const unsigned flags : {0x0U, 0x1U, 0x2U, 0x4U, 0x8U, 0x10U, 0x20U, 0x40U, 0x80U, 0x100U, 0x1FFU}) {
        day += 7 * kDay;
        deleted.push_back(day);
        exceptions.push_back(Moved(day, static_cast<std::uint16_t>(flags)));
    }
    SetDeleted(pattern, deleted);
    SetExceptions(pattern, std::move(exceptions));
    return pattern;
}

}  // namespace sample_series
