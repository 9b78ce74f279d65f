// A series as bytes. Which series an appointment has is a matter of its own.

#include <gtest/gtest.h>

#include "tests/unit/calendar/recurrence_digest.h"
#include "tests/unit/calendar/recurrence_writer.h"
#include "tests/unit/calendar/sample_series.h"
#include "tests/unit/calendar/written_blob.h"

namespace {

using namespace sample_series;

/// A series in which every field that a blob carries has a value of its own, and bytes that are all
/// different.
tagRecurrencePattern OfKind(unsigned frequency, unsigned type) {
    tagRecurrencePattern pattern;
    pattern.ReaderVersion = 0x0102;
    pattern.WriterVersion = 0x0304;
    pattern.RecurFrequency = static_cast<std::uint16_t>(frequency);
    pattern.PatternType = static_cast<std::uint16_t>(type);
    pattern.CalendarType = 0x0506;
    pattern.FirstDateTime = 0x0708090A;
    pattern.Period = 0x0B0C0D0E;
    pattern.SlidingFlag = 0x0F101112;
    pattern.WeekDays = 0x13141516;
    pattern.NthWeek = 0x1718191A;
    pattern.DayOfMonth = 0x1B1C1D1E;
    pattern.EndType = 0x1F202122;
    pattern.OccurrenceCount = 0x23242526;
    pattern.FirstDOW = 0x2728292A;
    pattern.StartDate = 0x2B2C2D2E;
    pattern.EndDate = 0x2F303132;
    pattern.ReaderVersion2 = 0x33343536;
    pattern.WriterVersion2 = 0x3738393A;
    pattern.StartTimeOffset = 0x3B3C3D3E;
    pattern.EndTimeOffset = 0x3F404142;
    return pattern;
}

/// The bytes of such a series, around those of its pattern.
std::vector<std::uint8_t> Around(unsigned frequency, unsigned type, const std::vector<std::uint8_t>& middle) {
    const auto low = [](unsigned number) { return static_cast<std::uint8_t>(number & 0xFFU); };
    const auto high = [](unsigned number) { return static_cast<std::uint8_t>(number >> 8); };
    std::vector<std::uint8_t> bytes{
        0x02,           0x01,             // 0 ReaderVersion
        0x04,           0x03,             // 2 WriterVersion
        low(frequency), high(frequency),  // 4 RecurFrequency
        low(type),      high(type),       // 6 PatternType
        0x06,           0x05,             // 8 CalendarType
        0x0A,           0x09,
        0x08,           0x07,  // 10 FirstDateTime
        0x0E,           0x0D,
        0x0C,           0x0B,  // 14 Period
        0x12,           0x11,
        0x10,           0x0F,  // 18 SlidingFlag
    };
    bytes.insert(bytes.end(), middle.begin(), middle.end());
    const std::vector<std::uint8_t> rest{
        0x22, 0x21, 0x20, 0x1F,  // EndType
        0x26, 0x25, 0x24, 0x23,  // OccurrenceCount
        0x2A, 0x29, 0x28, 0x27,  // FirstDOW
        0,    0,    0,    0,     // DeletedInstanceCount
        0,    0,    0,    0,     // ModifiedInstanceCount
        0x2E, 0x2D, 0x2C, 0x2B,  // StartDate
        0x32, 0x31, 0x30, 0x2F,  // EndDate
        0x06, 0x30, 0,    0,     // ReaderVersion2, whatever the series says
        0x08, 0x30, 0,    0,     // WriterVersion2, likewise
        0x3E, 0x3D, 0x3C, 0x3B,  // StartTimeOffset
        0x42, 0x41, 0x40, 0x3F,  // EndTimeOffset
        0,    0,                 // ExceptionCount
        0,    0,    0,    0,     // ReservedBlock1Size
        0,    0,    0,    0,     // ReservedBlock2Size
    };
    bytes.insert(bytes.end(), rest.begin(), rest.end());
    return bytes;
}

const std::vector<std::uint8_t> kWeekDaysBytes{0x16, 0x15, 0x14, 0x13};
const std::vector<std::uint8_t> kDayOfMonthBytes{0x1E, 0x1D, 0x1C, 0x1B};
const std::vector<std::uint8_t> kNthWeekBytes{0x16, 0x15, 0x14, 0x13, 0x1A, 0x19, 0x18, 0x17};

/// The bytes of the pattern of a kind.
std::vector<std::uint8_t> PatternBytesOf(unsigned frequency, unsigned type) {
    if (frequency == 0x200B || (frequency == 0x200A && type == 1)) {
        return kWeekDaysBytes;
    }
    if (frequency != 0x200C && frequency != 0x200D) {
        return {};
    }
    switch (type) {
        case 2:
        case 4:
        case 10:
        case 12:
            return kDayOfMonthBytes;
        case 3:
        case 11:
            return kNthWeekBytes;
        default:
            return {};
    }
}

TEST(RecurrenceWriting, DailyByDaysHasNoPatternBytes) {
    EXPECT_EQ(WrittenBytes(OfKind(0x200A, 0)), Around(0x200A, 0, {}));
    EXPECT_EQ(WrittenBytes(OfKind(0x200A, 0)).size(), 76U);
}

TEST(RecurrenceWriting, DailyByWeekHasItsDays) {
    EXPECT_EQ(WrittenBytes(OfKind(0x200A, 1)), Around(0x200A, 1, kWeekDaysBytes));
    EXPECT_EQ(WrittenBytes(OfKind(0x200A, 1)).size(), 80U);
}

TEST(RecurrenceWriting, WeeklyHasItsDaysWhateverThePatternIs) {
    for (const unsigned type : {0U, 1U, 2U, 3U, 11U, 0xFFFFU}) {
        EXPECT_EQ(WrittenBytes(OfKind(0x200B, type)), Around(0x200B, type, kWeekDaysBytes)) << type;
    }
}

TEST(RecurrenceWriting, MonthlyAndYearlyByDayHaveTheDayOfTheMonth) {
    for (const unsigned frequency : {0x200CU, 0x200DU}) {
        for (const unsigned type : {2U, 4U, 10U, 12U}) {
            EXPECT_EQ(WrittenBytes(OfKind(frequency, type)), Around(frequency, type, kDayOfMonthBytes))
                << frequency << ' ' << type;
        }
    }
}

TEST(RecurrenceWriting, MonthlyAndYearlyByWeekHaveTheDaysAndThenTheWeek) {
    for (const unsigned frequency : {0x200CU, 0x200DU}) {
        for (const unsigned type : {3U, 11U}) {
            EXPECT_EQ(WrittenBytes(OfKind(frequency, type)), Around(frequency, type, kNthWeekBytes))
                << frequency << ' ' << type;
        }
    }
    EXPECT_EQ(WrittenBytes(OfKind(0x200C, 3)).size(), 84U);
}

TEST(RecurrenceWriting, EveryFrequencyWithEveryPatternHasTheBytesOfItsKind) {
    constexpr unsigned kTypes = 16;
    for (const unsigned frequency :
         {0U, 1U, 0x2009U, 0x200AU, 0x200BU, 0x200CU, 0x200DU, 0x200EU, 0x0A20U, 0xFFFFU}) {
        for (unsigned type = 0; type < kTypes; ++type) {
            EXPECT_EQ(WrittenBytes(OfKind(frequency, type)),
                      Around(frequency, type, PatternBytesOf(frequency, type)))
                << frequency << ' ' << type;
        }
    }
}

TEST(RecurrenceWriting, InstancesOfTheSeriesAreLeftOut) {
    tagRecurrencePattern pattern = WithExceptions();
    const std::vector<std::uint8_t> bytes = WrittenBytes(pattern);
    pattern.DeletedInstanceCount = 0;
    pattern.ModifiedInstanceCount = 0;
    EXPECT_EQ(WrittenBytes(pattern), bytes);
    const tagRecurrencePattern read = ReadExactly(bytes).pattern;
    EXPECT_EQ(read.DeletedInstanceCount, 0U);
    EXPECT_EQ(read.DeletedInstanceDates, nullptr);
    EXPECT_EQ(read.ModifiedInstanceCount, 0U);
    EXPECT_EQ(read.Exceptions, nullptr);
}

TEST(RecurrenceWriting, ACountOfDeletedInstancesWithoutDatesWritesZeroAllTheSame) {
    tagRecurrencePattern pattern = OfKind(0x200A, 0);
    pattern.DeletedInstanceCount = 3;
    pattern.ModifiedInstanceCount = 2;
    EXPECT_EQ(WrittenBytes(pattern), Around(0x200A, 0, {}));
}

TEST(RecurrenceWriting, WhatIsReadBackIsTheSameSeriesInTheFieldsOfItsKind) {
    for (const unsigned frequency : {0U, 0x200AU, 0x200BU, 0x200CU, 0x200DU, 0x200EU}) {
        for (unsigned type = 0; type <= 13; ++type) {
            const std::vector<std::uint8_t> bytes = WrittenBytes(OfKind(frequency, type));
            ReadRecurrence expected;
            expected.result = static_cast<std::uint32_t>(bytes.size());
            expected.pattern = AsReadBack(OfKind(frequency, type));
            EXPECT_EQ(RecurrenceDigest(ReadExactly(bytes)).Hash(), RecurrenceDigest(expected).Hash())
                << frequency << ' ' << type;
            EXPECT_EQ(WrittenBytes(ReadExactly(bytes).pattern), bytes);
        }
    }
}

TEST(RecurrenceWriting, IsWhatAnotherWriterOfThePublishedFormatMakesOfASeriesWithoutInstances) {
    tagRecurrencePattern pattern = Weekly();
    pattern.ReaderVersion2 = 0x3006;
    pattern.WriterVersion2 = 0x3008;
    EXPECT_EQ(WrittenBytes(pattern), RecurrenceBytes(pattern).Bytes());
}

TEST(RecurrenceWriting, ANullOutputGivesZeroAndLeavesTheCount) {
    std::uint32_t size = 77;
    EXPECT_EQ(WriteRecurrenceBlob(Weekly(), nullptr, size), 0);
    EXPECT_EQ(size, 77U);
}

TEST(BlobWriter, LeavesOutANumberForWhichThereIsNoRoom) {
    std::uint8_t room[] = {0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE};
    BlobWriter blob({room, 5});
    blob.Write(std::uint32_t{0x04030201});
    blob.Write(std::uint32_t{0xFFFFFFFF});
    blob.Write(std::uint16_t{0xFFFF});
    EXPECT_EQ(blob.Size(), 4U);
    const std::uint8_t expected[] = {1, 2, 3, 4, 0xEE, 0xEE};
    EXPECT_TRUE(std::equal(std::begin(room), std::end(room), std::begin(expected)));
}

TEST(BlobWriter, OfNoRoomWritesNothing) {
    BlobWriter blob({});
    blob.Write(std::uint16_t{1});
    EXPECT_EQ(blob.Size(), 0U);
}

}  // namespace
