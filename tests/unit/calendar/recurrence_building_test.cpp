// The series that the recurrence of an appointment becomes. Days are counted from 1601-01-01.

#include "calendar/recurrence_building.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/unit/calendar/recurrence_digest.h"
#include "tests/unit/calendar/sample_series.h"
#include "tests/unit/calendar/written_blob.h"

namespace {

using namespace sample_series;

constexpr std::uint32_t kWednesday = 149'816 * kDay;     // 2011-03-09
constexpr std::uint32_t kSundayBefore = 149'813 * kDay;  // 2011-03-06
constexpr std::uint32_t kWeek = 7 * kDay;
constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

COleDateTime At(WORD year, WORD month, WORD day, WORD hour = 0, WORD minute = 0, WORD second = 0) {
    COleDateTime date;
    date.SetDateTime(year, month, day, hour, minute, second);
    return date;
}

tagRecurrencePattern Built(const CCalendarEx& calendar) {
    tagRecurrencePattern pattern;
    BuildRecurrencePattern(pattern, calendar);
    return pattern;
}

/// An appointment on 2011-03-09, a Wednesday, from 09:30 to 10:15.
class RecurrenceBuilding : public testing::Test {
  protected:
    void SetUp() override {
        m_calendar.m_dtStartTime = At(2011, 3, 9, 9, 30);
        m_calendar.m_dtEndTime = At(2011, 3, 9, 10, 15);
    }
    tagRecurrencePattern OfKind(std::int32_t type, std::int32_t interval, std::int32_t instance = 0,
                                std::int32_t weekMask = 0) {
        m_calendar.m_lRecurType = type;
        m_calendar.m_lRecurInterval = interval;
        m_calendar.m_lRecurInstance = instance;
        m_calendar.m_lRecurWeekMask = weekMask;
        return Built(m_calendar);
    }

    CCalendarEx m_calendar;
};

void ExpectKind(const tagRecurrencePattern& pattern, unsigned frequency, unsigned type, std::uint32_t period,
                std::uint32_t firstDateTime) {
    EXPECT_EQ(pattern.RecurFrequency, frequency);
    EXPECT_EQ(pattern.PatternType, type);
    EXPECT_EQ(pattern.Period, period);
    EXPECT_EQ(pattern.FirstDateTime, firstDateTime);
}

TEST_F(RecurrenceBuilding, DailyCountsItsPeriodInMinutes) {
    ExpectKind(OfKind(1, 1), 0x200A, 0, 1440, 0);
    ExpectKind(OfKind(1, 3), 0x200A, 0, 4320, (149'816 % 3) * kDay);
    ExpectKind(OfKind(1, 7), 0x200A, 0, 10080, (149'816 % 7) * kDay);
    ExpectKind(OfKind(1, 1000), 0x200A, 0, 1'440'000, (149'816 % 1000) * kDay);
}

TEST_F(RecurrenceBuilding, DailyGivesABlobOf76Bytes) {
    EXPECT_EQ(WrittenBytes(OfKind(1, 1)).size(), 76U);
}

TEST_F(RecurrenceBuilding, DailyWithoutAnIntervalHasNoFirstDate) {
    ExpectKind(OfKind(1, 0), 0x200A, 0, 0, 0);
}

TEST_F(RecurrenceBuilding, DailyIntervalWrapsAt32Bits) {
    const auto period = static_cast<std::uint32_t>(std::uint64_t{kMost} * 1440);
    ExpectKind(OfKind(1, kMost), 0x200A, 0, period, kWednesday % period);
    ExpectKind(OfKind(1, -1), 0x200A, 0, 0U - 1440U, kWednesday);
}

TEST_F(RecurrenceBuilding, DailyIntervalOfWhichNoMinutesAreLeftHasNoFirstDate) {
    // 2^27 times 1440 is 45 times 2^32.
    ExpectKind(OfKind(1, 1 << 27), 0x200A, 0, 0, 0);
}

TEST_F(RecurrenceBuilding, WeeklyWithoutAnIntervalFromMondayToFridayIsEveryWorkingDay) {
    const tagRecurrencePattern pattern = OfKind(2, 0, 0, 62);
    ExpectKind(pattern, 0x200A, 1, 1, kSundayBefore % kWeek);
    EXPECT_EQ(pattern.WeekDays, 62U);
    const std::vector<std::uint8_t> bytes = WrittenBytes(pattern);
    ASSERT_EQ(bytes.size(), 80U);
    EXPECT_EQ(std::vector<std::uint8_t>(bytes.begin() + 22, bytes.begin() + 26),
              (std::vector<std::uint8_t>{62, 0, 0, 0}));
}

TEST_F(RecurrenceBuilding, EveryWorkingDayNeedsBothTheIntervalAndTheDays) {
    ExpectKind(OfKind(2, 1, 0, 62), 0x200B, 1, 1, kSundayBefore % kWeek);
    ExpectKind(OfKind(2, 0, 0, 63), 0x200B, 1, 0, 0);
    ExpectKind(OfKind(2, 0, 0, 0), 0x200B, 1, 0, 0);
}

TEST_F(RecurrenceBuilding, WeeklyCountsItsPeriodInWeeks) {
    const tagRecurrencePattern pattern = OfKind(2, 2, 0, 0x0A);
    ExpectKind(pattern, 0x200B, 1, 2, kSundayBefore % (2 * kWeek));
    EXPECT_EQ(pattern.WeekDays, 0x0AU);
    ExpectKind(OfKind(2, 5, 0, 0x0A), 0x200B, 1, 5, kSundayBefore % (5 * kWeek));
}

TEST_F(RecurrenceBuilding, WeeklyWithoutDaysIsOneOfWorkingDays) {
    const tagRecurrencePattern pattern = OfKind(2, 2, 0, 0);
    EXPECT_EQ(pattern.RecurFrequency, 0x200B);
    EXPECT_EQ(pattern.WeekDays, 62U);
}

TEST_F(RecurrenceBuilding, WeeklyPeriodWrapsAt32Bits) {
    const auto minutes = static_cast<std::uint32_t>(std::uint64_t{kMost} * 10080);
    ExpectKind(OfKind(2, kMost, 0, 2), 0x200B, 1, 0x7FFFFFFF, kSundayBefore % minutes);
    ExpectKind(OfKind(2, -1, 0, 2), 0x200B, 1, 0xFFFFFFFF, kSundayBefore % (0U - 10080U));
    // 2^27 times 10080 is 315 times 2^32.
    ExpectKind(OfKind(2, 1 << 27, 0, 2), 0x200B, 1, 1U << 27, 0);
}

TEST_F(RecurrenceBuilding, MonthlyIsByDayOrWithAnInstanceByWeek) {
    m_calendar.m_lRecurDay = 31;
    ExpectKind(OfKind(3, 2), 0x200C, 2, 2, 0);
    EXPECT_EQ(OfKind(3, 2).DayOfMonth, 31U);
    ExpectKind(OfKind(3, 2, 1), 0x200C, 3, 2, 0);
    ExpectKind(OfKind(3, 2, -1), 0x200C, 3, 2, 0);
    ExpectKind(OfKind(3, 0), 0x200C, 2, 0, 0);
}

TEST_F(RecurrenceBuilding, MonthlyInTheLastWeekHasWeek5AndABlobOf84Bytes) {
    m_calendar.m_lRecurWeekDay = -1;
    const tagRecurrencePattern pattern = OfKind(3, 1, 2, 0x08);
    EXPECT_EQ(pattern.PatternType, 3);
    EXPECT_EQ(pattern.NthWeek, 5U);
    EXPECT_EQ(pattern.WeekDays, 0x08U);
    EXPECT_EQ(WrittenBytes(pattern).size(), 84U);
}

TEST_F(RecurrenceBuilding, YearlyCountsItsPeriodInMonthsAndItsFirstDateIsTheDayOfTheYear) {
    m_calendar.m_dtStartTime = At(2011, 2, 1, 8);
    ExpectKind(OfKind(4, 1), 0x200D, 2, 12, 46080);
    ExpectKind(OfKind(4, 3, 1), 0x200D, 3, 36, 46080);
    m_calendar.m_dtStartTime = At(2011, 1, 1);
    ExpectKind(OfKind(4, 1), 0x200D, 2, 12, 1440);
    m_calendar.m_dtStartTime = At(2011, 12, 31, 23, 59, 59);
    ExpectKind(OfKind(4, 1), 0x200D, 2, 12, 365 * 1440);
    m_calendar.m_dtStartTime = At(2012, 2, 29);
    ExpectKind(OfKind(4, 1), 0x200D, 2, 12, 60 * 1440);
    m_calendar.m_dtStartTime = At(2012, 12, 31);
    ExpectKind(OfKind(4, 1), 0x200D, 2, 12, 366 * 1440);
}

TEST_F(RecurrenceBuilding, TheLongestIntervalIsKeptAndOneMoreIsNot) {
    EXPECT_EQ(OfKind(1, 2'982'616).Period, 4'294'967'040U);
    EXPECT_EQ(OfKind(1, 2'982'617).Period, 1'184U);
    EXPECT_EQ(OfKind(4, 357'913'941).Period, 4'294'967'292U);
    EXPECT_EQ(OfKind(4, 357'913'942).Period, 8U);
    // Of weeks it is the first date that depends on a product.
    EXPECT_EQ(OfKind(2, 426'088).FirstDateTime, kSundayBefore);
    EXPECT_EQ(OfKind(2, 426'089).FirstDateTime, kSundayBefore % 9'824);
}

TEST_F(RecurrenceBuilding, YearlyIntervalWrapsAt32Bits) {
    EXPECT_EQ(OfKind(4, kMost).Period, static_cast<std::uint32_t>(std::uint64_t{kMost} * 12));
    EXPECT_EQ(OfKind(4, -1).Period, 0U - 12U);
    EXPECT_EQ(OfKind(4, 0).Period, 0U);
}

TEST_F(RecurrenceBuilding, YearlyStartOutsideTheCalendarHasTheDayMinusOne) {
    m_calendar.m_dtStartTime = {1e9, kDateValid};
    ExpectKind(OfKind(4, 1), 0x200D, 2, 12, 0U - 1440U);
    EXPECT_EQ(OfKind(4, 1).StartDate, 0U);
}

TEST_F(RecurrenceBuilding, AnyOtherTypeHasNoFrequencyAndItsIntervalAsPeriod) {
    for (const std::int32_t type : {0, 5, 6, -1, kMost}) {
        m_calendar.m_lRecurDay = 9;
        const tagRecurrencePattern pattern = OfKind(type, 4, 1, 0x02);
        ExpectKind(pattern, 0, 0, 4, 0);
        EXPECT_EQ(pattern.WeekDays, 2U);
        EXPECT_EQ(pattern.DayOfMonth, 9U);
        EXPECT_EQ(WrittenBytes(pattern).size(), 76U);
    }
}

TEST_F(RecurrenceBuilding, OnlyAWeeklySeriesGetsDaysThatTheAppointmentDoesNotName) {
    for (const std::int32_t type : {0, 1, 3, 4}) {
        EXPECT_EQ(OfKind(type, 1, 1, 0).WeekDays, 0U) << type;
    }
}

TEST_F(RecurrenceBuilding, WeekOfTheMonthIsTheWeekDayAndMinusOneTheLast) {
    const std::pair<std::int32_t, std::uint32_t> weeks[] = {{-1, 5}, {0, 0}, {1, 1},          {4, 4},
                                                            {5, 5},  {6, 6}, {-2, 0xFFFFFFFE}};
    for (const auto& [weekDay, week] : weeks) {
        m_calendar.m_lRecurWeekDay = weekDay;
        EXPECT_EQ(OfKind(3, 1, 1).NthWeek, week) << weekDay;
    }
}

TEST_F(RecurrenceBuilding, NumbersBelowZeroWrap) {
    m_calendar.m_lRecurDay = -1;
    m_calendar.m_lRecurRepeat = -3;
    const tagRecurrencePattern pattern = OfKind(3, -2, 0, -4);
    EXPECT_EQ(pattern.Period, 0xFFFFFFFEU);
    EXPECT_EQ(pattern.WeekDays, 0xFFFFFFFCU);
    EXPECT_EQ(pattern.DayOfMonth, 0xFFFFFFFFU);
    EXPECT_EQ(pattern.OccurrenceCount, 0xFFFFFFFDU);
}

TEST_F(RecurrenceBuilding, EveryFieldThatDoesNotDependOnTheAppointmentHasItsValue) {
    for (std::int32_t type = 0; type <= 5; ++type) {
        const tagRecurrencePattern pattern = OfKind(type, 1);
        EXPECT_EQ(pattern.ReaderVersion, 0x3004);
        EXPECT_EQ(pattern.WriterVersion, 0x3004);
        EXPECT_EQ(pattern.CalendarType, 0);
        EXPECT_EQ(pattern.SlidingFlag, 0U);
        EXPECT_EQ(pattern.FirstDOW, 0U);
        EXPECT_EQ(pattern.ReaderVersion2, 0x3006U);
        EXPECT_EQ(pattern.WriterVersion2, 0x3008U);
        EXPECT_EQ(pattern.DeletedInstanceCount, 0U);
        EXPECT_EQ(pattern.DeletedInstanceDates, nullptr);
        EXPECT_EQ(pattern.ModifiedInstanceCount, 0U);
        EXPECT_EQ(pattern.Exceptions, nullptr);
    }
}

TEST_F(RecurrenceBuilding, WhatThePatternHeldIsGone) {
    tagRecurrencePattern pattern = WithExceptions();
    BuildRecurrencePattern(pattern, m_calendar);
    ReadRecurrence reused;
    reused.pattern = std::move(pattern);
    ReadRecurrence fresh;
    fresh.pattern = Built(m_calendar);
    EXPECT_EQ(RecurrenceDigest(reused).Hash(), RecurrenceDigest(fresh).Hash());
    EXPECT_EQ(reused.pattern.Exceptions, nullptr);
    EXPECT_EQ(reused.pattern.DeletedInstanceDates, nullptr);
}

TEST_F(RecurrenceBuilding, MonthOfTheRecurrenceAndExceptionRuleChangeNothing) {
    m_calendar.m_lRecurDay = 9;
    const std::vector<std::uint8_t> without = WrittenBytes(OfKind(4, 1));
    m_calendar.m_lRecurMonth = 7;
    m_calendar.AddField(kExceptionRuleField, L"2011/03/16");
    EXPECT_EQ(WrittenBytes(OfKind(4, 1)), without);
}

TEST_F(RecurrenceBuilding, WhatIsWrittenComesBackAsTheSameSeries) {
    std::size_t compared = 0;
    for (std::int32_t type = 0; type <= 5; ++type) {
        for (const std::int32_t interval : {-1, 0, 1, 2, 99, kMost}) {
            for (const std::int32_t instance : {0, 1}) {
                for (const std::int32_t mask : {0, 1, 62, 127}) {
                    m_calendar.m_lRecurWeekDay = -1;
                    m_calendar.m_lRecurDay = 31;
                    const std::vector<std::uint8_t> bytes =
                        WrittenBytes(OfKind(type, interval, instance, mask));
                    ReadRecurrence expected;
                    expected.result = static_cast<std::uint32_t>(bytes.size());
                    expected.pattern = AsReadBack(Built(m_calendar));
                    EXPECT_EQ(RecurrenceDigest(ReadExactly(bytes)).Hash(), RecurrenceDigest(expected).Hash());
                    ++compared;
                }
            }
        }
    }
    EXPECT_EQ(compared, 6U * 6U * 2U * 4U);
}

}  // namespace
