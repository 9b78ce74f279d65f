#include "timezone/date_text.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/unit/text_printer.h"

namespace {

CString DayText(std::uint32_t minutes) {
    CString text;
    AppendDayText(text, minutes);
    return text;
}

CString MomentText(std::uint32_t minutes) {
    CString text;
    AppendMomentText(text, minutes);
    return text;
}

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

TEST(AppendDayText, BeginsWith1601AndReaches9767) {
    EXPECT_EQ(DayText(0), WIDE("1601/01/01"));
    EXPECT_EQ(DayText(0xFFFFFFFF), WIDE("9767/02/16"));
}

TEST(AppendDayText, KnowsTheLeapYears) {
    EXPECT_EQ(DayText(209939039), WIDE("2000/02/29"));
    EXPECT_EQ(DayText(209939040), WIDE("2000/03/01"));
    EXPECT_EQ(DayText(157341600), WIDE("1900/02/28"));
    EXPECT_EQ(DayText(157343040), WIDE("1900/03/01"));
}

TEST(AppendMomentText, HasTheTimeOfDayBehindTheDay) {
    EXPECT_EQ(MomentText(215754300), WIDE("2011/03/22 09:00:00"));
    EXPECT_EQ(MomentText(209939039), WIDE("2000/02/29 23:59:00"));
    EXPECT_EQ(MomentText(0), WIDE("1601/01/01 00:00:00"));
    EXPECT_EQ(MomentText(0xFFFFFFFF), WIDE("9767/02/16 04:15:00"));
}

TEST(AppendMomentText, LeavesWhatStandsInFront) {
    CString text(WIDE("at "));
    AppendMomentText(text, 215754300);
    EXPECT_EQ(text, WIDE("at 2011/03/22 09:00:00"));
}

}  // namespace
