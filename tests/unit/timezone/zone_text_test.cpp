#include "timezone/zone_text.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

#include "tests/unit/text_printer.h"

namespace {

using NAMESPACE_COMMON::tagZebTimeZone;

/// From 02:00 on the second Sunday of March to 02:00 on the first Sunday of November.
tagZebTimeZone Pacific() {
    tagZebTimeZone zone;
    zone.Bias = 480;
    zone.DaylightBias = -60;
    zone.StandardDate = {0, 11, 0, 1, 2, 0, 0, 0};
    zone.DaylightDate = {0, 3, 0, 2, 2, 0, 0, 0};
    return zone;
}

TEST(ZoneRecord, ANewOneIsEmpty) {
    const tagZebTimeZone zone;
    EXPECT_EQ(zone.Display, WIDE(""));
    EXPECT_EQ(zone.Std, WIDE(""));
    EXPECT_EQ(zone.Dlt, WIDE(""));
    EXPECT_EQ(zone.Bias, 0);
    EXPECT_EQ(zone.StandardBias, 0);
    EXPECT_EQ(zone.DaylightBias, 0);
    EXPECT_TRUE(SameFields(zone.StandardDate, SYSTEMTIME{}));
    EXPECT_TRUE(SameFields(zone.DaylightDate, SYSTEMTIME{}));
    EXPECT_FALSE(zone.HasDaylightRule());
}

TEST(ZoneRecord, AnyFieldOfTheRuleMakesADaylightRuleAndTheBiasNone) {
    for (WORD SYSTEMTIME::*const field :
         {&SYSTEMTIME::wYear, &SYSTEMTIME::wMonth, &SYSTEMTIME::wDayOfWeek, &SYSTEMTIME::wDay,
          &SYSTEMTIME::wHour, &SYSTEMTIME::wMinute, &SYSTEMTIME::wSecond, &SYSTEMTIME::wMilliseconds}) {
        tagZebTimeZone zone;
        zone.DaylightDate.*field = 1;
        EXPECT_TRUE(zone.HasDaylightRule());
    }
    tagZebTimeZone zone = Pacific();
    zone.DaylightDate = SYSTEMTIME{};
    EXPECT_FALSE(zone.HasDaylightRule());
}

TEST(ZoneRules, EachFieldHasItsPlaceInTheBytes) {
    std::array<std::uint8_t, kZoneRulesBytes> bytes{};
    const std::array<std::uint8_t, 12> biases{0xE0, 0x01, 0,    0,    0x01, 0x02,
                                              0x03, 0x04, 0xC4, 0xFF, 0xFF, 0xFF};
    std::copy(biases.begin(), biases.end(), bytes.begin());
    for (std::uint8_t i = 0; i < 32; i += 2) {
        bytes[12U + i] = static_cast<std::uint8_t>(i / 2 + 1);
    }
    bytes[43] = 0xFF;
    tagZebTimeZone zone;
    SetZoneRules(zone, bytes);
    EXPECT_EQ(zone.Bias, 480);
    EXPECT_EQ(zone.StandardBias, 0x04030201);
    EXPECT_EQ(zone.DaylightBias, -60);
    EXPECT_TRUE(SameFields(zone.StandardDate, {1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_TRUE(SameFields(zone.DaylightDate, {9, 10, 11, 12, 13, 14, 15, 0xFF10}));
}

TEST(ShortZoneText, BiasAndDaylightAmountOfAZoneWithADaylightRule) {
    EXPECT_EQ(FormatShortTimeZoneText(Pacific()), WIDE("GMT:+480;DST:60"));
}

TEST(ShortZoneText, WithoutADaylightRuleTheAmountIsZeroWhateverItsBias) {
    for (const std::int32_t bias : {0, -60, 60, 12345}) {
        tagZebTimeZone zone;
        zone.Bias = -60;
        zone.DaylightBias = bias;
        EXPECT_EQ(FormatShortTimeZoneText(zone), WIDE("GMT:-60;DST:0"));
    }
}

TEST(ShortZoneText, BiasZeroShowsItsSign) {
    EXPECT_EQ(FormatShortTimeZoneText({}), WIDE("GMT:+0;DST:0"));
}

TEST(ShortZoneText, AmountIsAbsolute) {
    tagZebTimeZone zone = Pacific();
    zone.DaylightBias = 30;
    EXPECT_EQ(FormatShortTimeZoneText(zone), WIDE("GMT:+480;DST:30"));
    zone.DaylightBias = std::numeric_limits<std::int32_t>::max();
    EXPECT_EQ(FormatShortTimeZoneText(zone), WIDE("GMT:+480;DST:2147483647"));
}

TEST(ShortZoneText, TheLeastNumberHasNoAbsoluteValue) {
    tagZebTimeZone zone = Pacific();
    zone.Bias = std::numeric_limits<std::int32_t>::min();
    zone.DaylightBias = std::numeric_limits<std::int32_t>::min();
    EXPECT_EQ(FormatShortTimeZoneText(zone), WIDE("GMT:-2147483648;DST:-2147483648"));
}

TEST(LongZoneText, RulesFollowWithTheDayOfTheWeekLast) {
    EXPECT_EQ(FormatTimeZoneText(Pacific()),
              WIDE("GMT:+480;DST:60;STD:0000110102000000;DLT:0000030202000000"));
    tagZebTimeZone zone;
    zone.Bias = -345;
    zone.StandardDate = {2010, 1, 6, 2, 3, 4, 5, 999};
    EXPECT_EQ(FormatTimeZoneText(zone), WIDE("GMT:-345;DST:0;STD:2010010203040506;DLT:0000000000000000"));
}

TEST(LongZoneText, NumbersWiderThanTheirPlaceAreNotCut) {
    tagZebTimeZone zone;
    zone.StandardDate = {65535, 100, 65535, 101, 102, 103, 104, 0};
    EXPECT_EQ(FormatTimeZoneText(zone),
              WIDE("GMT:+0;DST:0;STD:6553510010110210310465535;DLT:0000000000000000"));
}

}  // namespace
