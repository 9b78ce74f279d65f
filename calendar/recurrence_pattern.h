#pragma once

// What the recurrence property of an appointment says: the series and its changed instances. The fields bear
// the names of the published format (MS-OXOCAL 2.2.1.44.5, AppointmentRecurrencePattern). Its dates and times
// are minutes since 1601-01-01 00:00, in the local time of the series.

#include <cstdint>
#include <memory>

#include "support/text.h"

/// RecurFrequency (MS-OXOCAL 2.2.1.44.1).
constexpr std::uint16_t kDailyFrequency = 0x200A;
constexpr std::uint16_t kWeeklyFrequency = 0x200B;
constexpr std::uint16_t kMonthlyFrequency = 0x200C;
constexpr std::uint16_t kYearlyFrequency = 0x200D;

/// PatternType (MS-OXOCAL 2.2.1.44.1).
constexpr std::uint16_t kDayPattern = 0x0000;
constexpr std::uint16_t kWeekPattern = 0x0001;
constexpr std::uint16_t kMonthPattern = 0x0002;
constexpr std::uint16_t kMonthNthPattern = 0x0003;
constexpr std::uint16_t kMonthEndPattern = 0x0004;
constexpr std::uint16_t kHijriMonthPattern = 0x000A;
constexpr std::uint16_t kHijriMonthNthPattern = 0x000B;
constexpr std::uint16_t kHijriMonthEndPattern = 0x000C;

/// EndType (MS-OXOCAL 2.2.1.44.1). A series that never ends has one of two values.
constexpr std::uint32_t kEndByDate = 0x2021;
constexpr std::uint32_t kEndAfterCount = 0x2022;
constexpr std::uint32_t kNeverEnd = 0x2023;
constexpr std::uint32_t kNeverEndOld = 0xFFFFFFFF;

/// The versions of a series that the agent writes, which are those of a blob without ChangeHighlight.
constexpr std::uint16_t kWrittenVersion = 0x3004;
constexpr std::uint32_t kWrittenReaderVersion2 = 0x3006;
constexpr std::uint32_t kWrittenWriterVersion2 = 0x3008;

/// OverrideFlags (MS-OXOCAL 2.2.1.44.2): which fields of an exception differ from the series.
constexpr std::uint16_t ARO_SUBJECT = 0x0001;
constexpr std::uint16_t ARO_MEETINGTYPE = 0x0002;
constexpr std::uint16_t ARO_REMINDERDELTA = 0x0004;
constexpr std::uint16_t ARO_REMINDER = 0x0008;
constexpr std::uint16_t ARO_LOCATION = 0x0010;
constexpr std::uint16_t ARO_BUSYSTATUS = 0x0020;
constexpr std::uint16_t ARO_ATTACHMENT = 0x0040;
constexpr std::uint16_t ARO_SUBTYPE = 0x0080;
constexpr std::uint16_t ARO_APPTCOLOR = 0x0100;

namespace NAMESPACE_MAPI {

/// One changed instance.
struct tagRecurrenceException {
    std::uint32_t OriginalDate = 0;  ///< the instance's day, from the list of changed days
    std::uint16_t OverrideFlags = 0;
    std::uint32_t StartDateTime = 0;
    std::uint32_t EndDateTime = 0;
    std::uint32_t OriginalStartDate = 0;
    std::uint32_t MeetingType = 0;
    std::uint32_t ReminderDelta = 0;  ///< minutes
    std::uint32_t ReminderSet = 0;
    std::uint32_t BusyStatus = 0;
    std::uint32_t Attachment = 0;
    std::uint32_t SubType = 0;  ///< 1 for a whole day
    std::uint32_t AppointmentColor = 0;
    CString Subject;
    CString Location;
    CString Reserved;  ///< always empty
};

/// A series. A changed instance is listed among the deleted ones too.
struct tagRecurrencePattern {
    tagRecurrencePattern() = default;
    tagRecurrencePattern(tagRecurrencePattern&&) noexcept = default;
    tagRecurrencePattern& operator=(tagRecurrencePattern&&) noexcept = default;
    tagRecurrencePattern(const tagRecurrencePattern&) = delete;
    tagRecurrencePattern& operator=(const tagRecurrencePattern&) = delete;
    virtual ~tagRecurrencePattern() = default;

    std::uint16_t ReaderVersion = 0;
    std::uint16_t WriterVersion = 0;
    std::uint16_t RecurFrequency = 0;
    std::uint16_t PatternType = 0;
    std::uint16_t CalendarType = 0;   ///< 0 is the Gregorian calendar
    std::uint32_t FirstDateTime = 0;  ///< offset of the first instance in minutes
    std::uint32_t Period = 0;         ///< minutes if daily, weeks if weekly, else months
    std::uint32_t SlidingFlag = 0;
    std::uint32_t WeekDays = 0;  ///< a bit a day, Sunday's is bit 0
    std::uint32_t NthWeek = 0;   ///< 1 to 4, and 5 for the last
    std::uint32_t DayOfMonth = 0;
    std::uint32_t EndType = 0;
    std::uint32_t OccurrenceCount = 0;
    std::uint32_t FirstDOW = 0;
    std::uint32_t StartDate = 0;
    std::uint32_t EndDate = 0;
    std::uint32_t ReaderVersion2 = 0;
    std::uint32_t WriterVersion2 = 0;
    std::uint32_t StartTimeOffset = 0;  ///< minutes from midnight
    std::uint32_t EndTimeOffset = 0;    ///< minutes from midnight
    std::uint32_t DeletedInstanceCount = 0;
    /// Null if the count is 0. Null too, while the count stays, if there is no memory for as many or the
    /// reader takes the count for damage. Up to 4096 dates that a property lacks are zeros here.
    std::unique_ptr<std::uint32_t[]> DeletedInstanceDates;
    std::uint32_t ModifiedInstanceCount = 0;
    std::unique_ptr<tagRecurrenceException[]> Exceptions;  ///< likewise
};

}  // namespace NAMESPACE_MAPI
