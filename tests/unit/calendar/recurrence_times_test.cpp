// The end of a series, the times of its instances, and its first date. Days are counted from 1601-01-01.

#include <gtest/gtest.h>

#include "calendar/recurrence_building.h"

namespace {

using NAMESPACE_MAPI::tagRecurrencePattern;

constexpr std::uint32_t kDay = 1440;
constexpr std::uint32_t kWeek = 7 * kDay;
constexpr std::uint32_t kStart = 149'816 * kDay;  // 2011-03-09, a Wednesday
constexpr std::uint32_t kEnd = 149'872 * kDay;    // 2011-05-04

COleDateTime At(WORD year, WORD month, WORD day, WORD hour = 0, WORD minute = 0, WORD second = 0) {
    COleDateTime date;
    date.SetDateTime(year, month, day, hour, minute, second);
    return date;
}

/// A daily appointment on 2011-03-09 from 09:30 to 10:15.
class RecurrenceTimes : public testing::Test {
  protected:
    void SetUp() override {
        m_calendar.m_lRecurType = 1;
        m_calendar.m_dtStartTime = At(2011, 3, 9, 9, 30);
        m_calendar.m_dtEndTime = At(2011, 3, 9, 10, 15);
    }
    tagRecurrencePattern Built() {
        tagRecurrencePattern pattern;
        BuildRecurrencePattern(pattern, m_calendar);
        return pattern;
    }
    void ExpectEnd(std::uint32_t type, std::uint32_t count, std::uint32_t date) {
        const tagRecurrencePattern pattern = Built();
        EXPECT_EQ(pattern.EndType, type);
        EXPECT_EQ(pattern.OccurrenceCount, count);
        EXPECT_EQ(pattern.StartDate, kStart);
        EXPECT_EQ(pattern.EndDate, date);
    }

    CCalendarEx m_calendar;
};

TEST_F(RecurrenceTimes, AnEndByDateHasACountOfOne) {
    m_calendar.m_bRecurHasEndDate = 1;
    m_calendar.m_dtRecurEndDate = At(2011, 5, 4, 23, 59, 59);
    ExpectEnd(0x2021, 1, kEnd);
}

TEST_F(RecurrenceTimes, AnEndByDateGoesBeforeACount) {
    m_calendar.m_bRecurHasEndDate = 1;
    m_calendar.m_dtRecurEndDate = At(2011, 5, 4);
    m_calendar.m_lRecurRepeat = 5;
    ExpectEnd(0x2021, 1, kEnd);
}

TEST_F(RecurrenceTimes, AnyFlagButZeroSaysThatThereIsAnEndDate) {
    m_calendar.m_bRecurHasEndDate = -1;
    m_calendar.m_dtRecurEndDate = At(2011, 5, 4);
    ExpectEnd(0x2021, 1, kEnd);
}

TEST_F(RecurrenceTimes, AnEndDateOfZeroWithACountIsAnEndByCountOnTheFirstDay) {
    m_calendar.m_bRecurHasEndDate = 1;
    m_calendar.m_lRecurRepeat = 5;
    ExpectEnd(0x2022, 5, kStart);
}

TEST_F(RecurrenceTimes, AnEndByCountKeepsTheDateThatTheAppointmentBrings) {
    m_calendar.m_lRecurRepeat = 12;
    m_calendar.m_dtRecurEndDate = At(2011, 5, 4, 10);
    ExpectEnd(0x2022, 12, kEnd);
}

TEST_F(RecurrenceTimes, ADateWithoutItsFlagIsIgnored) {
    m_calendar.m_dtRecurEndDate = At(2011, 5, 4);
    ExpectEnd(0x2023, 10, 0x5AE980DF);
}

TEST_F(RecurrenceTimes, WithoutAnEndTheDateIsTheLastMinuteOf4500) {
    ExpectEnd(0x2023, 10, 1'059'202 * kDay + 1439);
    m_calendar.m_bRecurHasEndDate = 1;
    ExpectEnd(0x2023, 10, 1'059'202 * kDay + 1439);
}

TEST_F(RecurrenceTimes, AnEndDateThatIsNotValidEndsTheSeriesAtZeroIfItHasAValue) {
    m_calendar.m_bRecurHasEndDate = 1;
    m_calendar.m_dtRecurEndDate = {40000.0, kDateInvalid};
    ExpectEnd(0x2021, 1, 0);
    m_calendar.m_dtRecurEndDate = {0.0, kDateInvalid};
    ExpectEnd(0x2023, 10, 0x5AE980DF);
}

TEST_F(RecurrenceTimes, AnEndDateBeforeTheStartGoesThrough) {
    m_calendar.m_bRecurHasEndDate = 1;
    m_calendar.m_dtRecurEndDate = At(2011, 2, 1);
    ExpectEnd(0x2021, 1, 149'780 * kDay);
}

TEST_F(RecurrenceTimes, OffsetsAreMinutesFromTheMidnightOfTheStart) {
    EXPECT_EQ(Built().StartTimeOffset, 570U);
    EXPECT_EQ(Built().EndTimeOffset, 615U);
}

TEST_F(RecurrenceTimes, AnEndOnTheNextDayLiesBeyondADay) {
    m_calendar.m_dtStartTime = At(2011, 3, 9, 23, 30);
    m_calendar.m_dtEndTime = At(2011, 3, 10, 0, 30);
    EXPECT_EQ(Built().StartTimeOffset, 1410U);
    EXPECT_EQ(Built().EndTimeOffset, 1470U);
    m_calendar.m_dtEndTime = At(2011, 3, 19, 23, 30);
    EXPECT_EQ(Built().EndTimeOffset, 11 * kDay - 30);
}

TEST_F(RecurrenceTimes, AWholeDayGoesFromZeroToADay) {
    m_calendar.m_dtStartTime = At(2011, 3, 9);
    m_calendar.m_dtEndTime = At(2011, 3, 10);
    EXPECT_EQ(Built().StartTimeOffset, 0U);
    EXPECT_EQ(Built().EndTimeOffset, 1440U);
}

TEST_F(RecurrenceTimes, SecondsAreCutOff) {
    m_calendar.m_dtStartTime = At(2011, 3, 9, 9, 30, 59);
    m_calendar.m_dtEndTime = At(2011, 3, 9, 10, 15, 1);
    EXPECT_EQ(Built().StartTimeOffset, 570U);
    EXPECT_EQ(Built().EndTimeOffset, 615U);
}

TEST_F(RecurrenceTimes, EveryMinuteOfADayHasItsOffset) {
    for (std::uint32_t minute = 0; minute < kDay; ++minute) {
        m_calendar.m_dtStartTime =
            At(2011, 3, 9, static_cast<WORD>(minute / 60), static_cast<WORD>(minute % 60));
        EXPECT_EQ(Built().StartTimeOffset, minute);
        EXPECT_EQ(Built().StartDate, kStart);
    }
}

TEST_F(RecurrenceTimes, AnEndBeforeTheDayOfTheStartWraps) {
    m_calendar.m_dtEndTime = At(2011, 3, 8, 23);
    EXPECT_EQ(Built().EndTimeOffset, 0U - 60U);
}

TEST_F(RecurrenceTimes, DatesBefore1900RunForwards) {
    m_calendar.m_dtStartTime = At(1899, 12, 29, 18);
    m_calendar.m_dtEndTime = At(1899, 12, 30, 6);
    EXPECT_EQ(Built().StartDate, 109'204 * kDay);
    EXPECT_EQ(Built().StartTimeOffset, 18U * 60);
    EXPECT_EQ(Built().EndTimeOffset, 30U * 60);
}

TEST_F(RecurrenceTimes, AStartThatIsNotValidCountsAsTheMinuteZero) {
    m_calendar.m_dtStartTime = {0.0, kDateInvalid};
    m_calendar.m_dtEndTime = {1.5, kDateValid};
    m_calendar.m_lRecurInterval = 3;
    m_calendar.m_lRecurRepeat = 5;
    const tagRecurrencePattern daily = Built();
    EXPECT_EQ(daily.StartDate, 0U);
    EXPECT_EQ(daily.EndDate, 0U);
    EXPECT_EQ(daily.FirstDateTime, 0U);
    EXPECT_EQ(daily.StartTimeOffset, 0U);
    EXPECT_EQ(daily.EndTimeOffset, 2160U);
    m_calendar.m_lRecurType = 2;
    EXPECT_EQ(Built().FirstDateTime, 0U);
    // The day of the year is that of the value, 1899-12-30.
    m_calendar.m_lRecurType = 4;
    EXPECT_EQ(Built().FirstDateTime, 364 * kDay);
}

TEST_F(RecurrenceTimes, ARecordWithoutDatesHasThoseOfItsZeros) {
    m_calendar.Reset();
    m_calendar.m_lRecurType = 1;
    EXPECT_EQ(Built().StartDate, 109'205 * kDay);
    EXPECT_EQ(Built().StartTimeOffset, 0U);
    EXPECT_EQ(Built().EndTimeOffset, 0U);
}

TEST(FirstDateTimeDaily, IsTheStartsMidnightModuloTheInterval) {
    for (std::uint32_t interval = 1; interval <= 1000; ++interval) {
        EXPECT_EQ(FirstDateTimeDaily(At(2011, 3, 9, 23, 59), interval), 149'816 % interval * kDay);
    }
    EXPECT_EQ(FirstDateTimeDaily(At(2011, 3, 9), 200'000), kStart);
}

TEST(FirstDateTimeDaily, WithoutMinutesInTheIntervalIsZero) {
    EXPECT_EQ(FirstDateTimeDaily(At(2011, 3, 9), 0), 0U);
    EXPECT_EQ(FirstDateTimeDaily(At(2011, 3, 9), 1U << 27), 0U);
}

TEST(FirstDateTimeDaily, OfADateBeyond32BitsOfMinutesTakesTheLowOnes) {
    // 9999-12-31 is the day 3,067,670.
    const auto minutes = static_cast<std::uint32_t>(std::uint64_t{3'067'670} * kDay);
    EXPECT_EQ(FirstDateTimeDaily(At(9999, 12, 31), 7), minutes % (7 * kDay));
}

TEST(FirstDateTimeWeekly, GoesBackToTheFirstDayOfTheWeek) {
    // From Sunday, 2011-03-06, to the Saturday behind it.
    for (WORD day = 6; day <= 12; ++day) {
        EXPECT_EQ(FirstDateTimeWeekly(At(2011, 3, day, 13), 0, 1000), (kStart - 3 * kDay) % (1000 * kWeek));
    }
    EXPECT_EQ(FirstDateTimeWeekly(At(2011, 3, 13), 0, 1000), (kStart + 4 * kDay) % (1000 * kWeek));
}

TEST(FirstDateTimeWeekly, AnyDayCanBeTheFirst) {
    // Back from Wednesday, 2011-03-09.
    constexpr std::uint32_t kBack[] = {3, 2, 1, 0, 6, 5, 4};
    for (std::int32_t first = 0; first < 7; ++first) {
        EXPECT_EQ(FirstDateTimeWeekly(At(2011, 3, 9), first, 1000),
                  (kStart - kBack[first] * kDay) % (1000 * kWeek));
    }
}

TEST(FirstDateTimeWeekly, ADayThatNoWeekHasLeadsAWeekBack) {
    EXPECT_EQ(FirstDateTimeWeekly(At(2011, 3, 9), 7, 1000), (kStart - 7 * kDay) % (1000 * kWeek));
}

TEST(FirstDateTimeWeekly, GoesBackOverTheTurnOfAYearAndOverTheDayZero) {
    // 2011-01-01 was a Saturday, and 1899-12-31 a Sunday.
    EXPECT_EQ(FirstDateTimeWeekly(At(2011, 1, 1), 0, 30'000), 149'743 * kDay);
    EXPECT_EQ(FirstDateTimeWeekly(At(1900, 1, 3), 0, 30'000), 109'206 * kDay);
    EXPECT_EQ(FirstDateTimeWeekly(At(1899, 12, 30), 0, 30'000), 109'199 * kDay);
}

TEST(FirstDateTimeWeekly, IsModuloThePeriod) {
    for (std::uint32_t period = 1; period <= 100; ++period) {
        EXPECT_EQ(FirstDateTimeWeekly(At(2011, 3, 9), 0, period), (149'813 % (7 * period)) * kDay);
    }
}

TEST(FirstDateTimeWeekly, WithoutMinutesInThePeriodIsZero) {
    EXPECT_EQ(FirstDateTimeWeekly(At(2011, 3, 9), 0, 0), 0U);
    EXPECT_EQ(FirstDateTimeWeekly(At(2011, 3, 9), 0, 1U << 27), 0U);
}

TEST(FirstDateTimeWeekly, BeforeTheBeginningOfTheCountIsZero) {
    // The Sunday before 1601-01-03, a Wednesday, lies in 1600.
    EXPECT_EQ(FirstDateTimeWeekly(At(1601, 1, 3), 0, 30'000), 0U);
    EXPECT_EQ(FirstDateTimeWeekly(At(1601, 1, 3), 1, 30'000), 0U);
    EXPECT_EQ(FirstDateTimeWeekly(At(1601, 1, 3), 2, 30'000), kDay);
}

TEST(FirstDateTimeWeekly, OfADateThatIsNotValidIsZero) {
    EXPECT_EQ(FirstDateTimeWeekly({40000.0, kDateInvalid}, 0, 2), 0U);
    EXPECT_EQ(FirstDateTimeWeekly({40000.0, kDateNull}, 0, 2), 0U);
    EXPECT_EQ(FirstDateTimeWeekly({1e9, kDateValid}, 0, 2), 0U);
}

}  // namespace
