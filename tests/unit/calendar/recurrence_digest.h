#pragma once

// All that a read of a blob gave as one number, by which programs of different builds can be compared.

#include "tests/unit/calendar/blob_bytes.h"

/// A 64-bit FNV-1a hash over the fields of a read, in the order of their declaration.
class RecurrenceDigest {
  public:
    explicit RecurrenceDigest(const ReadRecurrence& read) {
        const NAMESPACE_MAPI::tagRecurrencePattern& pattern = read.pattern;
        Add({read.result,
             pattern.ReaderVersion,
             pattern.WriterVersion,
             pattern.RecurFrequency,
             pattern.PatternType,
             pattern.CalendarType,
             pattern.FirstDateTime,
             pattern.Period,
             pattern.SlidingFlag,
             pattern.WeekDays,
             pattern.NthWeek,
             pattern.DayOfMonth,
             pattern.EndType,
             pattern.OccurrenceCount,
             pattern.FirstDOW,
             pattern.StartDate,
             pattern.EndDate,
             pattern.ReaderVersion2,
             pattern.WriterVersion2,
             pattern.StartTimeOffset,
             pattern.EndTimeOffset,
             pattern.DeletedInstanceCount,
             pattern.ModifiedInstanceCount,
             pattern.DeletedInstanceDates ? 1U : 0U,
             pattern.Exceptions ? 1U : 0U});
        for (std::uint32_t i = 0; pattern.DeletedInstanceDates && i < pattern.DeletedInstanceCount; ++i) {
            Add({pattern.DeletedInstanceDates[i]});
        }
        for (std::uint32_t i = 0; pattern.Exceptions && i < pattern.ModifiedInstanceCount; ++i) {
            AddException(pattern.Exceptions[i]);
        }
    }
    [[nodiscard]] std::uint64_t Hash() const { return m_hash; }

  private:
    static constexpr std::uint64_t kPrime = 0x100000001B3;

    void Add(std::initializer_list<std::uint32_t> numbers) {
        for (const std::uint32_t number : numbers) {
            m_hash = (m_hash ^ number) * kPrime;
        }
    }
    void AddException(const NAMESPACE_MAPI::tagRecurrenceException& exception) {
        Add({exception.OriginalDate, exception.OverrideFlags, exception.StartDateTime, exception.EndDateTime,
             exception.OriginalStartDate, exception.MeetingType, exception.ReminderDelta,
             exception.ReminderSet, exception.BusyStatus, exception.Attachment, exception.SubType,
             exception.AppointmentColor});
        for (const CString* text : {&exception.Subject, &exception.Location, &exception.Reserved}) {
            Add({static_cast<std::uint32_t>(text->size())});
            for (const wide unit : *text) {
                Add({static_cast<std::uint32_t>(unit)});
            }
        }
    }

    std::uint64_t m_hash = 0xCBF29CE484222325;
};

/// The digest of several reads, with one more.
inline std::uint64_t JoinedDigest(std::uint64_t digest, const ReadRecurrence& read) {
    return (digest ^ RecurrenceDigest(read).Hash()) * 0x100000001B3;
}
