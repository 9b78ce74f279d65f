#pragma once

// What the writers of binary properties make, as bytes, and what a reader must find in them.

#include <memory>
#include <utility>
#include <vector>

#include "calendar/blob_writer.h"
#include "calendar/recurrence_blob.h"
#include "calendar/zone_blob.h"

/// The bytes of a series; none if they could not be made.
inline std::vector<std::uint8_t> WrittenBytes(const NAMESPACE_MAPI::tagRecurrencePattern& pattern) {
    std::unique_ptr<std::uint8_t[]> bytes;
    std::uint32_t size = 0;
    if (WriteRecurrenceBlob(pattern, &bytes, size) != 1) {
        return {};
    }
    return {bytes.get(), bytes.get() + size};
}

/// The bytes of a zone's rules; none if they could not be made.
inline std::vector<std::uint8_t> WrittenBytes(const NAMESPACE_COMMON::tagZebTimeZone& zone) {
    std::unique_ptr<std::uint8_t[]> bytes;
    std::uint32_t size = 0;
    if (WriteTimeZoneBlob(zone, &bytes, size) != 1) {
        return {};
    }
    return {bytes.get(), bytes.get() + size};
}

/// A series as it comes back from its bytes: without the fields that its kind does not carry, without
/// instances, and in the versions that are written.
inline NAMESPACE_MAPI::tagRecurrencePattern AsReadBack(NAMESPACE_MAPI::tagRecurrencePattern pattern) {
    const std::uint16_t frequency = pattern.RecurFrequency;
    const std::uint16_t type = pattern.PatternType;
    const bool isMonthly = frequency == 0x200C || frequency == 0x200D;
    const bool hasWeek = isMonthly && (type == 3 || type == 0xB);
    const bool hasDays = hasWeek || frequency == 0x200B || (frequency == 0x200A && type == 1);
    const bool hasDay = isMonthly && (type == 2 || type == 4 || type == 0xA || type == 0xC);
    pattern.WeekDays = hasDays ? pattern.WeekDays : 0;
    pattern.NthWeek = hasWeek ? pattern.NthWeek : 0;
    pattern.DayOfMonth = hasDay ? pattern.DayOfMonth : 0;
    pattern.DeletedInstanceCount = 0;
    pattern.DeletedInstanceDates.reset();
    pattern.ModifiedInstanceCount = 0;
    pattern.Exceptions.reset();
    pattern.ReaderVersion2 = 0x3006;
    pattern.WriterVersion2 = 0x3008;
    return pattern;
}
