#include "support/number_text.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/text.h"

namespace {

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();

TEST(ReadNumber, ReadsDigitsUpToTheFirstOtherUnit) {
    EXPECT_EQ(ReadNumber(WIDE("42")), 42);
    EXPECT_EQ(ReadNumber(WIDE("007")), 7);
    EXPECT_EQ(ReadNumber(WIDE("12x34")), 12);
    EXPECT_EQ(ReadNumber(WIDE("12 34")), 12);
    EXPECT_EQ(ReadNumber(WIDE("1.9")), 1);
}

TEST(ReadNumber, TextWithoutNumberIsZero) {
    for (const WideView text : {WIDE(""), WIDE("x"), WIDE("-"), WIDE("+"), WIDE("   "), WIDE("- 1"),
                                WIDE("+-1"), WIDE("--1"), WIDE(":5")}) {
        EXPECT_EQ(ReadNumber(text), 0);
    }
}

TEST(ReadNumber, SkipsLeadingWhiteSpaceAndTakesOneSign) {
    EXPECT_EQ(ReadNumber(WIDE(" \t\n\v\f\r5")), 5);
    EXPECT_EQ(ReadNumber(WIDE("  -5")), -5);
    EXPECT_EQ(ReadNumber(WIDE("+5")), 5);
}

TEST(ReadNumber, OtherDigitsOfUnicodeAreNone) {
    // ARABIC-INDIC DIGIT ONE, FULLWIDTH DIGIT ONE.
    EXPECT_EQ(ReadNumber(WIDE("\x0661")), 0);
    EXPECT_EQ(ReadNumber(WIDE("\xFF11")), 0);
}

TEST(ReadNumber, ReadsBothEndsOfTheRange) {
    EXPECT_EQ(ReadNumber(WIDE("2147483647")), kMost);
    EXPECT_EQ(ReadNumber(WIDE("-2147483648")), kLeast);
}

TEST(ReadNumber, ANumberOutsideBecomesTheNearestInside) {
    EXPECT_EQ(ReadNumber(WIDE("2147483648")), kMost);
    EXPECT_EQ(ReadNumber(WIDE("-2147483649")), kLeast);
    EXPECT_EQ(ReadNumber(WIDE("4294967297")), kMost);
    EXPECT_EQ(ReadNumber(CString(WideString(5000, WIDE('9')))), kMost);
    EXPECT_EQ(ReadNumber(CString(WIDE("-") + WideString(5000, WIDE('9')))), kLeast);
}

TEST(ReadNumber, AZeroUnitEndsTheNumber) {
    EXPECT_EQ(ReadNumber(WideView(WIDE("12\0"
                                       "3"),
                                  4)),
              12);
}

}  // namespace
