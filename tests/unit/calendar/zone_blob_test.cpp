#include "calendar/zone_blob.h"

#include <gtest/gtest.h>

#include "tests/unit/calendar/blob_bytes.h"
#include "tests/unit/text_printer.h"

namespace {

using NAMESPACE_COMMON::tagZebTimeZone;

BlobBytes DateBytes(const SYSTEMTIME& date) {
    return BlobBytes()
        .U16(date.wYear)
        .U16(date.wMonth)
        .U16(date.wDayOfWeek)
        .U16(date.wDay)
        .U16(date.wHour)
        .U16(date.wMinute)
        .U16(date.wSecond)
        .U16(date.wMilliseconds);
}

/// Five hours behind UTC, with daylight saving from the last Sunday of March to the last of October.
BlobBytes ZoneBytes() {
    return BlobBytes()
        .U32(300)                                      // lBias
        .U32(static_cast<std::uint32_t>(-5))           // lStandardBias
        .U32(static_cast<std::uint32_t>(-60))          // lDaylightBias
        .U16(1999)                                     // wStandardYear
        .Add(DateBytes({2007, 10, 0, 5, 3, 1, 2, 4}))  // stStandardDate
        .U16(1998)                                     // wDaylightYear
        .Add(DateBytes({0, 3, 6, 5, 2, 9, 8, 7}));     // stDaylightDate
}

int Parse(const BlobBytes& blob, tagZebTimeZone& zone) {
    const auto copy = std::make_unique<std::uint8_t[]>(blob.Size());
    std::copy(blob.Bytes().begin(), blob.Bytes().end(), copy.get());
    return ParseTimeZoneBlob(copy.get(), blob.Size(), zone);
}

TEST(ZoneBlob, EachFieldHasItsPlaceInTheBytesAndTheYearsBesideTheDatesAreLost) {
    tagZebTimeZone zone;
    EXPECT_EQ(Parse(ZoneBytes(), zone), 1);
    EXPECT_EQ(zone.Bias, 300);
    EXPECT_EQ(zone.StandardBias, -5);
    EXPECT_EQ(zone.DaylightBias, -60);
    EXPECT_TRUE(SameFields(zone.StandardDate, {2007, 10, 0, 5, 3, 1, 2, 4}));
    EXPECT_TRUE(SameFields(zone.DaylightDate, {0, 3, 6, 5, 2, 9, 8, 7}));
}

TEST(ZoneBlob, NamesAreNotTouched) {
    tagZebTimeZone zone;
    zone.Display = WIDE("display");
    zone.Std = WIDE("standard");
    zone.Dlt = WIDE("daylight");
    Parse(ZoneBytes(), zone);
    EXPECT_EQ(zone.Display, WIDE("display"));
    EXPECT_EQ(zone.Std, WIDE("standard"));
    EXPECT_EQ(zone.Dlt, WIDE("daylight"));
}

TEST(ZoneBlob, Of47BytesGivesAnAllZeroZone) {
    BlobBytes blob;
    for (std::size_t i = 0; i < 47; ++i) {
        blob.Fill(1, ZoneBytes().Bytes()[i]);
    }
    tagZebTimeZone zone;
    EXPECT_EQ(Parse(blob, zone), 0);
    EXPECT_EQ(FormatTimeZoneText(zone), WIDE("GMT:+0;DST:0;STD:0000000000000000;DLT:0000000000000000"));
}

TEST(ZoneBlob, TooFewBytesOrNoneLeaveTheZoneAsItWas) {
    for (std::uint32_t size = 0; size < 48; ++size) {
        tagZebTimeZone zone;
        zone.Bias = 77;
        EXPECT_EQ(Parse(BlobBytes().Fill(size, 0xFF), zone), 0);
        EXPECT_EQ(zone.Bias, 77);
    }
    tagZebTimeZone zone;
    zone.Bias = 77;
    EXPECT_EQ(ParseTimeZoneBlob(nullptr, 48, zone), 0);
    EXPECT_EQ(zone.Bias, 77);
}

TEST(ZoneBlob, BytesBehindItDoNotCount) {
    tagZebTimeZone zone;
    EXPECT_EQ(Parse(ZoneBytes().Fill(100, 0xFF), zone), 1);
    EXPECT_TRUE(SameFields(zone.DaylightDate, {0, 3, 6, 5, 2, 9, 8, 7}));
}

TEST(ZoneBlob, EveryValueOfEveryByteIsTaken) {
    tagZebTimeZone zone;
    EXPECT_EQ(Parse(BlobBytes().Fill(48, 0xFF), zone), 1);
    EXPECT_EQ(zone.Bias, -1);
    EXPECT_EQ(zone.DaylightDate.wMilliseconds, 0xFFFF);
}

}  // namespace
