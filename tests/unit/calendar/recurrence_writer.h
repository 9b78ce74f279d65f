#pragma once

// A recurrence as the published format lays it out (MS-OXOCAL 2.2.1.44.5), without reserved data: what a
// reader of a blob found is what it finds in these bytes again.

#include "tests/unit/calendar/blob_bytes.h"

/// RecurrencePattern up to PatternTypeSpecific (MS-OXOCAL 2.2.1.44.1).
inline BlobBytes HeadBytes(const NAMESPACE_MAPI::tagRecurrencePattern& pattern) {
    return BlobBytes()
        .U16(pattern.ReaderVersion)
        .U16(pattern.WriterVersion)
        .U16(pattern.RecurFrequency)
        .U16(pattern.PatternType)
        .U16(pattern.CalendarType)
        .U32(pattern.FirstDateTime)
        .U32(pattern.Period)
        .U32(pattern.SlidingFlag);
}

/// PatternTypeSpecific.
inline BlobBytes PatternBytes(const NAMESPACE_MAPI::tagRecurrencePattern& pattern) {
    const bool isMonthly = pattern.RecurFrequency == 0x200C || pattern.RecurFrequency == 0x200D;
    const std::uint16_t type = pattern.PatternType;
    if (pattern.RecurFrequency == 0x200B || (pattern.RecurFrequency == 0x200A && type == 1)) {
        return BlobBytes().U32(pattern.WeekDays);
    }
    if (isMonthly && (type == 2 || type == 4 || type == 0xA || type == 0xC)) {
        return BlobBytes().U32(pattern.DayOfMonth);
    }
    if (isMonthly && (type == 3 || type == 0xB)) {
        return BlobBytes().U32(pattern.WeekDays).U32(pattern.NthWeek);
    }
    return {};
}

/// EndType and what follows up to EndTimeOffset.
inline BlobBytes InstanceBytes(const NAMESPACE_MAPI::tagRecurrencePattern& pattern) {
    BlobBytes blob;
    blob.U32(pattern.EndType).U32(pattern.OccurrenceCount).U32(pattern.FirstDOW);
    blob.U32(pattern.DeletedInstanceCount);
    for (std::uint32_t i = 0; i < pattern.DeletedInstanceCount; ++i) {
        blob.U32(pattern.DeletedInstanceDates[i]);
    }
    blob.U32(pattern.ModifiedInstanceCount);
    for (std::uint32_t i = 0; i < pattern.ModifiedInstanceCount; ++i) {
        blob.U32(pattern.Exceptions[i].OriginalDate);
    }
    return blob.U32(pattern.StartDate)
        .U32(pattern.EndDate)
        .U32(pattern.ReaderVersion2)
        .U32(pattern.WriterVersion2)
        .U32(pattern.StartTimeOffset)
        .U32(pattern.EndTimeOffset);
}

inline BlobBytes DateBytes(const NAMESPACE_MAPI::tagRecurrenceException& exception) {
    return BlobBytes()
        .U32(exception.StartDateTime)
        .U32(exception.EndDateTime)
        .U32(exception.OriginalStartDate);
}

/// An 8-bit text, of which only the length matters here. It goes in with and without its terminator; one for
/// which the first has no room is left out.
inline BlobBytes NarrowTextBytes(const CString& text) {
    const auto length = static_cast<std::uint16_t>(text.size() < 0xFFFF ? text.size() : 0);
    return BlobBytes().U16(static_cast<std::uint16_t>(length + 1)).U16(length).Fill(length, '?');
}

/// ExceptionInfo (MS-OXOCAL 2.2.1.44.2).
inline BlobBytes ExceptionBytes(const NAMESPACE_MAPI::tagRecurrenceException& exception) {
    BlobBytes blob = DateBytes(exception);
    blob.U16(exception.OverrideFlags);
    const auto has = [&exception](unsigned flag) { return (exception.OverrideFlags & flag) != 0; };
    const auto writeIf = [&](unsigned flag, std::uint32_t field) {
        if (has(flag)) {
            blob.U32(field);
        }
    };
    if (has(0x0001)) {
        blob.Add(NarrowTextBytes(exception.Subject));
    }
    writeIf(0x0002, exception.MeetingType);
    writeIf(0x0004, exception.ReminderDelta);
    writeIf(0x0008, exception.ReminderSet);
    if (has(0x0010)) {
        blob.Add(NarrowTextBytes(exception.Location));
    }
    writeIf(0x0020, exception.BusyStatus);
    writeIf(0x0040, exception.Attachment);
    writeIf(0x0080, exception.SubType);
    writeIf(0x0100, exception.AppointmentColor);
    return blob;
}

inline BlobBytes WideTextBytes(const CString& text) {
    return BlobBytes().U16(static_cast<std::uint16_t>(text.size())).Wide(text);
}

/// ExtendedException (MS-OXOCAL 2.2.1.44.4), behind its ChangeHighlight if it has one.
inline BlobBytes ExtendedBytes(const NAMESPACE_MAPI::tagRecurrenceException& exception) {
    BlobBytes blob;
    blob.U32(0);  // ReservedBlockEE1Size
    if ((exception.OverrideFlags & 0x0011U) == 0) {
        return blob;
    }
    blob.Add(DateBytes(exception));
    if ((exception.OverrideFlags & 0x0001U) != 0) {
        blob.Add(WideTextBytes(exception.Subject));
    }
    if ((exception.OverrideFlags & 0x0010U) != 0) {
        blob.Add(WideTextBytes(exception.Location));
    }
    return blob.U32(0);  // ReservedBlockEE2Size
}

/// ExceptionCount and what follows. More exceptions than the count can say are left out of both lists.
inline BlobBytes ExceptionsBytes(const NAMESPACE_MAPI::tagRecurrencePattern& pattern) {
    const std::uint32_t count = pattern.ModifiedInstanceCount <= 0xFFFF ? pattern.ModifiedInstanceCount : 0;
    BlobBytes blob;
    blob.U16(static_cast<std::uint16_t>(count));
    for (std::uint32_t i = 0; i < count; ++i) {
        blob.Add(ExceptionBytes(pattern.Exceptions[i]));
    }
    blob.U32(0);  // ReservedBlock1Size
    for (std::uint32_t i = 0; i < count; ++i) {
        if (pattern.WriterVersion2 >= 0x3009) {
            blob.U32(4).U32(0);  // ChangeHighlightSize, ChangeHighlightValue
        }
        blob.Add(ExtendedBytes(pattern.Exceptions[i]));
    }
    return blob.U32(0);  // ReservedBlock2Size
}

/// The whole property. Both arrays must be there where their counts are not 0.
inline BlobBytes RecurrenceBytes(const NAMESPACE_MAPI::tagRecurrencePattern& pattern) {
    BlobBytes blob = HeadBytes(pattern);
    return blob.Add(PatternBytes(pattern)).Add(InstanceBytes(pattern)).Add(ExceptionsBytes(pattern));
}
