// The rules of a zone as bytes.

#include <gtest/gtest.h>

#include "tests/unit/calendar/written_blob.h"
#include "tests/unit/text_printer.h"

namespace {

using NAMESPACE_COMMON::tagZebTimeZone;

/// A zone in which each field has bytes of its own.
tagZebTimeZone SampleZone() {
    tagZebTimeZone zone;
    zone.Display = WIDE("display");
    zone.Std = WIDE("standard");
    zone.Dlt = WIDE("daylight");
    zone.Bias = 0x01020304;
    zone.StandardBias = -2;
    zone.DaylightBias = -60;
    zone.StandardDate = {0x0506, 0x0708, 0x090A, 0x0B0C, 0x0D0E, 0x0F10, 0x1112, 0x1314};
    zone.DaylightDate = {0x1516, 0x1718, 0x191A, 0x1B1C, 0x1D1E, 0x1F20, 0x2122, 0x2324};
    return zone;
}

TEST(ZoneWriting, EachFieldHasItsPlaceInTheBytesAndEachYearHasTwo) {
    const std::vector<std::uint8_t> expected{
        0x04, 0x03, 0x02, 0x01,                           // 0 lBias
        0xFE, 0xFF, 0xFF, 0xFF,                           // 4 lStandardBias
        0xC4, 0xFF, 0xFF, 0xFF,                           // 8 lDaylightBias
        0x06, 0x05,                                       // 12 wStandardYear
        0x06, 0x05, 0x08, 0x07, 0x0A, 0x09, 0x0C, 0x0B,   // 14 stStandardDate
        0x0E, 0x0D, 0x10, 0x0F, 0x12, 0x11, 0x14, 0x13,   //
        0x16, 0x15,                                       // 30 wDaylightYear
        0x16, 0x15, 0x18, 0x17, 0x1A, 0x19, 0x1C, 0x1B,   // 32 stDaylightDate
        0x1E, 0x1D, 0x20, 0x1F, 0x22, 0x21, 0x24, 0x23};  //
    EXPECT_EQ(WrittenBytes(SampleZone()), expected);
}

TEST(ZoneWriting, AZoneOfZerosIs48ZeroBytes) {
    EXPECT_EQ(WrittenBytes(tagZebTimeZone()), std::vector<std::uint8_t>(48, 0));
}

TEST(ZoneWriting, WhatIsReadBackIsTheSameRules) {
    const tagZebTimeZone zone = SampleZone();
    const std::vector<std::uint8_t> bytes = WrittenBytes(zone);
    tagZebTimeZone read;
    ASSERT_EQ(ParseTimeZoneBlob(bytes.data(), static_cast<std::uint32_t>(bytes.size()), read), 1);
    EXPECT_EQ(read.Bias, zone.Bias);
    EXPECT_EQ(read.StandardBias, zone.StandardBias);
    EXPECT_EQ(read.DaylightBias, zone.DaylightBias);
    EXPECT_TRUE(SameFields(read.StandardDate, zone.StandardDate));
    EXPECT_TRUE(SameFields(read.DaylightDate, zone.DaylightDate));
    EXPECT_EQ(read.Display, WIDE(""));
    EXPECT_EQ(WrittenBytes(read), bytes);
}

TEST(ZoneWriting, ANullOutputGivesZeroAndLeavesTheCount) {
    std::uint32_t size = 77;
    EXPECT_EQ(WriteTimeZoneBlob(SampleZone(), nullptr, size), 0);
    EXPECT_EQ(size, 77U);
}

}  // namespace
