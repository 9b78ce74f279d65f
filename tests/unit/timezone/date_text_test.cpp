#include "timezone/date_text.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

TEST(CutDateText, ReadsTheSixNumbers) {
    EXPECT_EQ(CutDateText(WIDE("2010-02-10 11:22:33")), (DateTextNumbers{2010, 2, 10, 11, 22, 33}));
}

TEST(CutDateText, WhatIsMissingIsZero) {
    EXPECT_EQ(CutDateText(WIDE("2010-02-10 10:00")), (DateTextNumbers{2010, 2, 10, 10, 0, 0}));
    EXPECT_EQ(CutDateText(WIDE("2010-02-10")), (DateTextNumbers{2010, 2, 10, 0, 0, 0}));
    EXPECT_EQ(CutDateText(WIDE("2010")), (DateTextNumbers{2010, 0, 0, 0, 0, 0}));
    EXPECT_EQ(CutDateText({}), DateTextNumbers{});
}

TEST(CutDateText, AMissingDelimiterGivesTheWholeRestToThatNumber) {
    // No hyphen, so the year takes the whole text and its leading number.
    EXPECT_EQ(CutDateText(WIDE("2010/02/10 10:00:00")), (DateTextNumbers{2010, 0, 0, 0, 0, 0}));
    // No blank, so the day takes the rest.
    EXPECT_EQ(CutDateText(WIDE("2010-02-10T11:22:33")), (DateTextNumbers{2010, 2, 10, 0, 0, 0}));
}

TEST(CutDateText, ADelimiterInFrontGivesAnEmptyYear) {
    // The day's piece is "02-10".
    EXPECT_EQ(CutDateText(WIDE("-2010-02-10 1:2:3")), (DateTextNumbers{0, 2010, 2, 1, 2, 3}));
}

TEST(CutDateText, TextBehindTheSecondIsNotRead) {
    EXPECT_EQ(CutDateText(WIDE("2010-02-10 11:22:33:44")), (DateTextNumbers{2010, 2, 10, 11, 22, 33}));
    EXPECT_EQ(CutDateText(WIDE("2010-02-10 11:22:33.5Z")), (DateTextNumbers{2010, 2, 10, 11, 22, 33}));
}

TEST(CutDateText, NumbersBeyondTheRangeClamp) {
    const DateTextNumbers numbers = CutDateText(WIDE("99999999999-02-10 0:0:-99999999999"));
    EXPECT_EQ(numbers.year, std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(numbers.second, std::numeric_limits<std::int32_t>::min());
}

}  // namespace
