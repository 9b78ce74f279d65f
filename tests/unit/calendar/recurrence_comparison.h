#pragma once

// The answers of the two readers of the recurrence property, compared field by field.

#include "tests/unit/calendar/plain_recurrence_reader.h"

/// The name of the first field of an exception that is not the same in both, or null.
inline const char* DifferenceOf(const NAMESPACE_MAPI::tagRecurrenceException& one,
                                const NAMESPACE_MAPI::tagRecurrenceException& other) {
#define ZEB_COMPARE(field)          \
    if (one.field != other.field) { \
        return #field;              \
    }
    ZEB_COMPARE(OriginalDate)
    ZEB_COMPARE(OverrideFlags)
    ZEB_COMPARE(StartDateTime)
    ZEB_COMPARE(EndDateTime)
    ZEB_COMPARE(OriginalStartDate)
    ZEB_COMPARE(MeetingType)
    ZEB_COMPARE(ReminderDelta)
    ZEB_COMPARE(ReminderSet)
    ZEB_COMPARE(BusyStatus)
    ZEB_COMPARE(Attachment)
    ZEB_COMPARE(SubType)
    ZEB_COMPARE(AppointmentColor)
    ZEB_COMPARE(Subject)
    ZEB_COMPARE(Location)
    ZEB_COMPARE(Reserved)
    return nullptr;
}

/// The name of the first field outside the arrays that is not the same in both, or null.
inline const char* DifferenceOfSeries(const NAMESPACE_MAPI::tagRecurrencePattern& one,
                                      const NAMESPACE_MAPI::tagRecurrencePattern& other) {
    ZEB_COMPARE(ReaderVersion)
    ZEB_COMPARE(WriterVersion)
    ZEB_COMPARE(RecurFrequency)
    ZEB_COMPARE(PatternType)
    ZEB_COMPARE(CalendarType)
    ZEB_COMPARE(FirstDateTime)
    ZEB_COMPARE(Period)
    ZEB_COMPARE(SlidingFlag)
    ZEB_COMPARE(WeekDays)
    ZEB_COMPARE(NthWeek)
    ZEB_COMPARE(DayOfMonth)
    ZEB_COMPARE(EndType)
    ZEB_COMPARE(OccurrenceCount)
    ZEB_COMPARE(FirstDOW)
    ZEB_COMPARE(StartDate)
    ZEB_COMPARE(EndDate)
    ZEB_COMPARE(ReaderVersion2)
    ZEB_COMPARE(WriterVersion2)
    ZEB_COMPARE(StartTimeOffset)
    ZEB_COMPARE(EndTimeOffset)
    ZEB_COMPARE(DeletedInstanceCount)
    ZEB_COMPARE(ModifiedInstanceCount)
    return nullptr;
}
#undef ZEB_COMPARE

/// Reads a blob in both ways. Returns the name of the first field in which the answers differ, or null.
inline const char* DifferenceOfReaders(const std::uint8_t* bytes, std::size_t size) {
    const ReadRecurrence read = ReadExactly(bytes, size);
    const ReadRecurrence plain = PlainRecurrenceReader(bytes, size).Read();
    if (read.result != plain.result) {
        return "the result";
    }
    const NAMESPACE_MAPI::tagRecurrencePattern& one = read.pattern;
    const NAMESPACE_MAPI::tagRecurrencePattern& other = plain.pattern;
    if (const char* const field = DifferenceOfSeries(one, other)) {
        return field;
    }
    if ((one.DeletedInstanceDates == nullptr) != (other.DeletedInstanceDates == nullptr) ||
        (one.DeletedInstanceDates && !std::equal(one.DeletedInstanceDates.get(),
                                                 one.DeletedInstanceDates.get() + one.DeletedInstanceCount,
                                                 other.DeletedInstanceDates.get()))) {
        return "DeletedInstanceDates";
    }
    if ((one.Exceptions == nullptr) != (other.Exceptions == nullptr)) {
        return "Exceptions";
    }
    for (std::uint32_t i = 0; one.Exceptions && i < one.ModifiedInstanceCount; ++i) {
        if (const char* const field = DifferenceOf(one.Exceptions[i], other.Exceptions[i])) {
            return field;
        }
    }
    return nullptr;
}
