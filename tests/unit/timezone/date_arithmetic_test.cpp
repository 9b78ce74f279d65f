#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "timezone/ole_date_time.h"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(LinearForm, DatesFromTheEpochOnStay) {
    EXPECT_EQ(LinearFromDate(0.0), 0.0);
    EXPECT_EQ(LinearFromDate(40219.25), 40219.25);
    EXPECT_EQ(DateFromLinear(0.0), 0.0);
    EXPECT_EQ(DateFromLinear(40219.25), 40219.25);
}

TEST(LinearForm, MinusOneAndAHalfIsHalfADayBeforeTheEpoch) {
    EXPECT_EQ(LinearFromDate(-1.5), -0.5);
    EXPECT_EQ(DateFromLinear(-0.5), -1.5);
}

TEST(LinearForm, WholeDaysBeforeTheEpochStay) {
    EXPECT_EQ(LinearFromDate(-2.0), -2.0);
    EXPECT_EQ(DateFromLinear(-2.0), -2.0);
}

TEST(LinearForm, BothDirectionsAreEachOthersInverse) {
    for (const double linear : {-3.75, -1.25, -1.0, -0.5, -0.25, 0.0, 0.25, 1.5}) {
        EXPECT_EQ(LinearFromDate(DateFromLinear(linear)), linear);
    }
}

TEST(LinearForm, WhatIsNextToAMidnightBeforeTheEpochMayBecomeThatOfAnotherDay) {
    // Its whole part is the day before, and what that day lacks to its end is too little for the digits.
    const double inFront = std::nextafter(-1.0, -2.0);
    EXPECT_EQ(DateFromLinear(inFront), -3.0);
    EXPECT_EQ(LinearFromDate(DateFromLinear(inFront)), -3.0);
    const double fromTheEpochOn = std::nextafter(1.0, 0.0);
    EXPECT_EQ(DateFromLinear(fromTheEpochOn), fromTheEpochOn);
}

TEST(Span, IsTheSumOfItsParts) {
    EXPECT_EQ(DaysOf(1, 0, 0, 0), 1.0);
    EXPECT_EQ(DaysOf(0, 6, 0, 0), 0.25);
    EXPECT_EQ(DaysOf(0, 0, 90, 0), 0.0625);
    EXPECT_EQ(DaysOf(0, 0, 0, 43200), 0.5);
    EXPECT_EQ(DaysOf(2, -12, 0, 0), 1.5);
}

TEST(Span, IsAddedAndSubtractedAcrossTheEpoch) {
    // 1899-12-29 12:00 plus a day is 1899-12-30 12:00.
    EXPECT_EQ(AddSpan(-1.5, 1.0), 0.5);
    EXPECT_EQ(SubtractSpan(0.5, 1.0), -1.5);
    // 1899-12-29 06:00 plus 12 hours is 18:00 of the same day.
    EXPECT_EQ(AddSpan(-1.25, 0.5), -1.75);
    EXPECT_EQ(SubtractSpan(-1.75, 0.5), -1.25);
    EXPECT_EQ(SubtractSpan(0.0, 0.25), -1.75);
    EXPECT_EQ(AddSpan(40219.0, 0.5), 40219.5);
}

TEST(Difference, IsTheDistanceOfTheTimes) {
    EXPECT_EQ(DateDifference(40219.5, 40219.0), 0.5);
    EXPECT_EQ(DateDifference(40219.0, 40219.5), -0.5);
    // From 1899-12-29 12:00 to 1899-12-30 12:00.
    EXPECT_EQ(DateDifference(0.5, -1.5), 1.0);
}

TEST(WholeMinutes, HalfASecondOfToleranceRoundsUpAndDownAlike) {
    EXPECT_EQ(WholeMinutes(DaysOf(0, 0, 29, 0) + 59.6 / 86400.0), 30);
    EXPECT_EQ(WholeMinutes(-(DaysOf(0, 0, 29, 0) + 59.6 / 86400.0)), -30);
    EXPECT_EQ(WholeMinutes(DaysOf(0, 0, 29, 0) + 59.4 / 86400.0), 29);
    EXPECT_EQ(WholeMinutes(-(DaysOf(0, 0, 29, 0) + 59.4 / 86400.0)), -29);
}

TEST(WholeMinutes, SecondsAreCutOff) {
    EXPECT_EQ(WholeMinutes(0.0), 0);
    EXPECT_EQ(WholeMinutes(DaysOf(0, 0, 0, 59)), 0);
    EXPECT_EQ(WholeMinutes(DaysOf(0, 0, 0, -59)), 0);
    EXPECT_EQ(WholeMinutes(DaysOf(1, 0, 0, 0)), 1440);
}

TEST(WholeMinutes, DifferenceBeyondTheRangeGivesItsEnd) {
    // 1,491,308 days are 2,147,483,520 minutes, 127 short of the largest number.
    EXPECT_EQ(WholeMinutes(1'491'308.0), 2'147'483'520);
    EXPECT_EQ(WholeMinutes(1'491'309.0), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(WholeMinutes(-1'491'308.0), -2'147'483'520);
    EXPECT_EQ(WholeMinutes(-1'491'309.0), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(WholeMinutes(1e300), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(WholeMinutes(-1e300), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(WholeMinutes(kInfinity), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(WholeMinutes(std::nan("")), 0);
}

TEST(NotBefore, ComparesValidDatesByTheirTimes) {
    const COleDateTime earlier{-1.75, kDateValid};  // 1899-12-29 18:00
    const COleDateTime later{0.0, kDateValid};
    EXPECT_TRUE(later >= earlier);
    EXPECT_FALSE(earlier >= later);
    EXPECT_TRUE(earlier >= earlier);
    // 06:00 is before 18:00 of the same day before the epoch, though its value is the greater one.
    EXPECT_FALSE((COleDateTime{-1.25, kDateValid} >= earlier));
}

TEST(NotBefore, IsFalseForDifferentStatuses) {
    for (const std::int32_t left : {kDateValid, kDateInvalid, kDateNull}) {
        for (const std::int32_t right : {kDateValid, kDateInvalid, kDateNull}) {
            if (left != right) {
                EXPECT_FALSE((COleDateTime{2.0, left} >= COleDateTime{1.0, right})) << left << right;
            }
        }
    }
}

TEST(NotBefore, IsTrueForTwoNullAndFalseForTwoInvalidDates) {
    EXPECT_TRUE((COleDateTime{1.0, kDateNull} >= COleDateTime{2.0, kDateNull}));
    EXPECT_FALSE((COleDateTime{2.0, kDateInvalid} >= COleDateTime{1.0, kDateInvalid}));
    EXPECT_FALSE((COleDateTime{1.0, kDateInvalid} >= COleDateTime{1.0, kDateInvalid}));
}

TEST(NoDate, IsZeroWithTheValidStatusOnly) {
    EXPECT_TRUE(COleDateTime().IsNoDate());
    EXPECT_FALSE((COleDateTime{0.0, kDateInvalid}.IsNoDate()));
    EXPECT_FALSE((COleDateTime{1.0, kDateValid}.IsNoDate()));
}

}  // namespace
