#pragma once

// All that a read of a blob gave as one number, to compare two reads by.

#include <string>

#include "support/fnv.h"
#include "tests/unit/calendar/blob_bytes.h"

/// The fields of a read as units of a text, which can be hashed and compared.
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
            AddDate(i, pattern.DeletedInstanceDates[i]);
        }
        for (std::uint32_t i = 0; pattern.Exceptions && i < pattern.ModifiedInstanceCount; ++i) {
            AddException(i, pattern.Exceptions[i]);
        }
    }
    [[nodiscard]] std::uint64_t Hash() const {
        return Fnv1a(std::basic_string_view<char16_t>(m_units.data(), m_units.size()));
    }

  private:
    void Add(std::initializer_list<std::uint32_t> numbers) {
        for (const std::uint32_t number : numbers) {
            m_units += static_cast<char16_t>(number & 0xFFFFU);
            m_units += static_cast<char16_t>(number >> 16);
        }
    }
    /// A damaged count can make an array of a million elements that are all zero, which do not go in.
    void AddDate(std::uint32_t index, std::uint32_t date) {
        if (date != 0) {
            Add({index, date});
        }
    }
    void AddException(std::uint32_t index, const NAMESPACE_MAPI::tagRecurrenceException& exception) {
        if (exception.OriginalDate == 0 && exception.OverrideFlags == 0 && exception.StartDateTime == 0) {
            return;
        }
        Add({index, exception.OriginalDate, exception.OverrideFlags, exception.StartDateTime,
             exception.EndDateTime, exception.OriginalStartDate, exception.MeetingType,
             exception.ReminderDelta, exception.ReminderSet, exception.BusyStatus, exception.Attachment,
             exception.SubType, exception.AppointmentColor});
        for (const CString& text : {exception.Subject, exception.Location, exception.Reserved}) {
            Add({static_cast<std::uint32_t>(text.size())});
            m_units.append(text.begin(), text.end());
        }
    }

    std::u16string m_units;
};
