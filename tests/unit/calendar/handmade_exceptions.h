#pragma once

// Recurrence properties whose exceptions are laid out by hand, as no record of a series can have them.

#include "tests/unit/calendar/recurrence_writer.h"
#include "tests/unit/calendar/sample_series.h"

/// A weekly series whose exceptions are the dates alone, up to its ExceptionCount.
inline BlobBytes UpToExceptionCount(std::uint32_t writerVersion2, std::uint32_t exceptions) {
    NAMESPACE_MAPI::tagRecurrencePattern pattern = sample_series::Weekly();
    pattern.WriterVersion2 = writerVersion2;
    std::vector<NAMESPACE_MAPI::tagRecurrenceException> list(exceptions);
    for (std::uint32_t i = 0; i < exceptions; ++i) {
        list[i].OriginalDate = sample_series::kFirstMonday + i * sample_series::kDay;
    }
    sample_series::SetExceptions(pattern, std::move(list));
    return BlobBytes().Add(HeadBytes(pattern)).Add(PatternBytes(pattern)).Add(InstanceBytes(pattern));
}

/// An ExceptionInfo up to its flags.
inline BlobBytes InfoHead(std::uint16_t flags) {
    return BlobBytes()
        .U32(100)     // StartDateTime
        .U32(200)     // EndDateTime
        .U32(300)     // OriginalStartDate
        .U16(flags);  // OverrideFlags
}

/// A series of changes with a subject each. Behind each a block leads back, so that all share one text.
inline BlobBytes WithSharedSubject(std::uint16_t exceptions, std::uint16_t units) {
    BlobBytes blob = UpToExceptionCount(0x3008, exceptions).U16(exceptions);
    for (int i = 0; i < exceptions; ++i) {
        blob.Add(InfoHead(0x1)).U16(1).U16(0);  // ExceptionInfo with a subject
    }
    return blob
        .U32(0)                                        // ReservedBlock1Size
        .U32(0)                                        // ReservedBlockEE1Size
        .Add(DateBytes({}))                            // StartDateTime, EndDateTime, OriginalStartDate
        .U16(units)                                    // WideCharSubjectLength
        .Fill(2 * std::size_t{units}, 'x')             // WideCharSubject
        .U32(0U - (4U + 12U + 2U + 2U * units + 4U));  // ReservedBlockEE2Size
}
