// The series of a recurrence property. Its exceptions have tests of their own.

#include "calendar/recurrence_blob.h"

#include <gtest/gtest.h>

#include "tests/unit/calendar/recurrence_writer.h"
#include "tests/unit/calendar/sample_series.h"
#include "tests/unit/text_printer.h"

namespace {

using namespace sample_series;

/// A series of a frequency and a pattern, with a value in each field that a pattern can have. Read again,
/// only those that its kind has are there.
tagRecurrencePattern OfKind(std::uint16_t frequency, std::uint16_t type) {
    tagRecurrencePattern pattern = Weekly();
    pattern.RecurFrequency = frequency;
    pattern.PatternType = type;
    pattern.WeekDays = 0x11;
    pattern.NthWeek = 5;
    pattern.DayOfMonth = 31;
    return pattern;
}

TEST(RecurrenceBlob, EachFieldHasItsPlaceInTheBytes) {
    const BlobBytes blob = BlobBytes()
                               .U16(0x3004)  // ReaderVersion
                               .U16(0x3005)  // WriterVersion
                               .U16(0x200A)  // RecurFrequency: daily
                               .U16(0)       // PatternType: by days
                               .U16(1)       // CalendarType
                               .U32(2880)    // FirstDateTime
                               .U32(4320)    // Period: three days
                               .U32(1)       // SlidingFlag
                               .U32(0x2021)  // EndType: by date
                               .U32(11)      // OccurrenceCount
                               .U32(6)       // FirstDOW: Saturday
                               .U32(2)       // DeletedInstanceCount
                               .U32(1000)    // DeletedInstanceDates
                               .U32(500)     //
                               .U32(1)       // ModifiedInstanceCount
                               .U32(500)     // ModifiedInstanceDates
                               .U32(700)     // StartDate
                               .U32(900)     // EndDate
                               .U32(0x3006)  // ReaderVersion2
                               .U32(0x3008)  // WriterVersion2
                               .U32(540)     // StartTimeOffset
                               .U32(600)     // EndTimeOffset
                               .U16(1)       // ExceptionCount
                               .U32(1040)    // StartDateTime
                               .U32(1100)    // EndDateTime
                               .U32(560)     // OriginalStartDate
                               .U16(0)       // OverrideFlags
                               .U32(0)       // ReservedBlock1Size
                               .U32(0)       // ReservedBlockEE1Size
                               .U32(0);      // ReservedBlock2Size
    const ReadRecurrence read = ReadExactly(blob);
    const tagRecurrencePattern& pattern = read.pattern;
    EXPECT_EQ(read.result, 106U);
    EXPECT_EQ(pattern.ReaderVersion, 0x3004);
    EXPECT_EQ(pattern.WriterVersion, 0x3005);
    EXPECT_EQ(pattern.RecurFrequency, 0x200A);
    EXPECT_EQ(pattern.PatternType, 0);
    EXPECT_EQ(pattern.CalendarType, 1);
    EXPECT_EQ(pattern.FirstDateTime, 2880U);
    EXPECT_EQ(pattern.Period, 4320U);
    EXPECT_EQ(pattern.SlidingFlag, 1U);
    EXPECT_EQ(pattern.EndType, 0x2021U);
    EXPECT_EQ(pattern.OccurrenceCount, 11U);
    EXPECT_EQ(pattern.FirstDOW, 6U);
    ASSERT_EQ(pattern.DeletedInstanceCount, 2U);
    EXPECT_EQ(pattern.DeletedInstanceDates[0], 1000U);
    EXPECT_EQ(pattern.DeletedInstanceDates[1], 500U);
    ASSERT_EQ(pattern.ModifiedInstanceCount, 1U);
    EXPECT_EQ(pattern.Exceptions[0].OriginalDate, 500U);
    EXPECT_EQ(pattern.StartDate, 700U);
    EXPECT_EQ(pattern.EndDate, 900U);
    EXPECT_EQ(pattern.ReaderVersion2, 0x3006U);
    EXPECT_EQ(pattern.WriterVersion2, 0x3008U);
    EXPECT_EQ(pattern.StartTimeOffset, 540U);
    EXPECT_EQ(pattern.EndTimeOffset, 600U);
    EXPECT_EQ(pattern.Exceptions[0].StartDateTime, 1040U);
    EXPECT_EQ(pattern.Exceptions[0].EndDateTime, 1100U);
    EXPECT_EQ(pattern.Exceptions[0].OriginalStartDate, 560U);
    EXPECT_EQ(pattern.Exceptions[0].OverrideFlags, 0);
}

TEST(RecurrenceBlob, ANullPointerGivesZeroAndLeavesTheRecord) {
    tagRecurrencePattern pattern = Weekly();
    EXPECT_EQ(ParseRecurrenceBlob(nullptr, 80, pattern), 0U);
    EXPECT_EQ(pattern.Period, 2U);
}

TEST(RecurrenceBlob, OfFewerThanTwoBytesLeavesTheRecordZeroAndGivesZero) {
    const std::uint8_t byte = 0xFF;
    for (const std::uint32_t size : {0U, 1U}) {
        tagRecurrencePattern pattern = WithExceptions();
        EXPECT_EQ(ParseRecurrenceBlob(&byte, size, pattern), 0U);
        EXPECT_EQ(pattern.ReaderVersion, 0);
        EXPECT_EQ(pattern.Period, 0U);
        EXPECT_EQ(pattern.DeletedInstanceCount, 0U);
        EXPECT_EQ(pattern.DeletedInstanceDates, nullptr);
        EXPECT_EQ(pattern.ModifiedInstanceCount, 0U);
        EXPECT_EQ(pattern.Exceptions, nullptr);
    }
}

TEST(RecurrenceBlob, OfTwoBytesGivesItsOneField) {
    const ReadRecurrence read = ReadExactly(BlobBytes().U16(0x3004));
    EXPECT_EQ(read.result, 2U);
    EXPECT_EQ(read.pattern.ReaderVersion, 0x3004);
    EXPECT_EQ(read.pattern.WriterVersion, 0);
}

TEST(RecurrenceBlob, DailyWithPattern0HasNoVariablePartAndWithPattern1FourBytes) {
    const ReadRecurrence byDays = ReadExactly(RecurrenceBytes(OfKind(0x200A, 0)));
    EXPECT_EQ(byDays.pattern.WeekDays, 0U);
    EXPECT_EQ(byDays.pattern.EndType, 0x2022U);
    EXPECT_EQ(byDays.result, 76U);
    const ReadRecurrence byWeek = ReadExactly(RecurrenceBytes(OfKind(0x200A, 1)));
    EXPECT_EQ(byWeek.pattern.WeekDays, 0x11U);
    EXPECT_EQ(byWeek.pattern.EndType, 0x2022U);
    EXPECT_EQ(byWeek.result, 80U);
}

TEST(RecurrenceBlob, WeeklyWithPattern0StillReadsItsDays) {
    const BlobBytes blob = BlobBytes()
                               .Add(HeadBytes(OfKind(0x200B, 0)))
                               .U32(0x22)     // WeekDays
                               .U32(0x2023);  // EndType
    EXPECT_EQ(ReadExactly(blob).pattern.WeekDays, 0x22U);
    EXPECT_EQ(ReadExactly(blob).pattern.EndType, 0x2023U);
}

TEST(RecurrenceBlob, YearlyWithPattern3ReadsItsDaysAndTheirWeek) {
    const BlobBytes blob = BlobBytes()
                               .Add(HeadBytes(OfKind(0x200D, 3)))
                               .U32(0x22)     // WeekDays
                               .U32(4)        // NthWeek
                               .U32(0x2023);  // EndType
    const ReadRecurrence read = ReadExactly(blob);
    EXPECT_EQ(read.pattern.WeekDays, 0x22U);
    EXPECT_EQ(read.pattern.NthWeek, 4U);
    EXPECT_EQ(read.pattern.DayOfMonth, 0U);
    EXPECT_EQ(read.pattern.EndType, 0x2023U);
}

TEST(RecurrenceBlob, OfNoFrequencyReadsNoVariablePartAndGoesOnWithTheEnd) {
    for (const unsigned frequency : {0U, 0x2009U, 0x200EU, 0xFFFFU}) {
        for (std::uint16_t type = 0; type <= 0xC; ++type) {
            const tagRecurrencePattern written = OfKind(static_cast<std::uint16_t>(frequency), type);
            const ReadRecurrence read = ReadExactly(RecurrenceBytes(written));
            EXPECT_EQ(read.result, 76U);
            EXPECT_EQ(read.pattern.EndType, 0x2022U);
            EXPECT_EQ(read.pattern.WeekDays + read.pattern.NthWeek + read.pattern.DayOfMonth, 0U);
        }
    }
}

TEST(RecurrenceBlob, TheFrequencyAndThenThePatternChooseTheVariablePart) {
    struct Row {
        std::uint16_t type;
        std::uint32_t dailyBytes;
        std::uint32_t monthlyBytes;
    };
    constexpr Row kRows[] = {{0, 0, 0}, {1, 4, 0},  {2, 0, 4},  {3, 0, 8},  {4, 0, 4}, {5, 0, 0},
                             {9, 0, 0}, {10, 0, 4}, {11, 0, 8}, {12, 0, 4}, {13, 0, 0}};
    constexpr std::uint32_t kOtherBytes = 76;
    // What stands in the place of the variable part shows how much of it was taken.
    const auto taken = [](std::uint16_t frequency, std::uint16_t type) {
        const BlobBytes blob =
            HeadBytes(OfKind(frequency, type)).U32(1).U32(2).U32(3).U32(0).U32(0).U32(0).U32(0);
        const tagRecurrencePattern pattern = ReadExactly(blob).pattern;
        return (pattern.EndType - 1) * 4;
    };
    for (const Row& row : kRows) {
        EXPECT_EQ(taken(0x200A, row.type), row.dailyBytes) << row.type;
        EXPECT_EQ(taken(0x200B, row.type), 4U) << row.type;
        EXPECT_EQ(taken(0x200C, row.type), row.monthlyBytes) << row.type;
        EXPECT_EQ(taken(0x200D, row.type), row.monthlyBytes) << row.type;
        EXPECT_EQ(ReadExactly(RecurrenceBytes(OfKind(0x200C, row.type))).result,
                  kOtherBytes + row.monthlyBytes);
    }
}

TEST(RecurrenceBlob, DayOfMonthIsThatOfTheHijriPatternsToo) {
    for (const unsigned type : {2U, 4U, 0xAU, 0xCU}) {
        const tagRecurrencePattern written = OfKind(0x200C, static_cast<std::uint16_t>(type));
        const tagRecurrencePattern pattern = ReadExactly(RecurrenceBytes(written)).pattern;
        EXPECT_EQ(pattern.DayOfMonth, 31U);
        EXPECT_EQ(pattern.WeekDays, 0U);
    }
}

TEST(RecurrenceBlob, AnyCalendarIsKeptAsItStands) {
    for (const unsigned calendar : {0U, 1U, 6U, 8U, 20U, 0xFFFFU}) {
        tagRecurrencePattern written = OfKind(0x200C, 0xB);
        written.CalendarType = static_cast<std::uint16_t>(calendar);
        const tagRecurrencePattern pattern = ReadExactly(RecurrenceBytes(written)).pattern;
        EXPECT_EQ(pattern.CalendarType, calendar);
        EXPECT_EQ(pattern.NthWeek, 5U);
    }
}

TEST(RecurrenceBlob, BytesBehindItDoNotCount) {
    BlobBytes blob = RecurrenceBytes(Weekly());
    const std::uint32_t size = blob.Size();
    blob.Fill(316, 0xD9);
    const ReadRecurrence read = ReadExactly(blob);
    EXPECT_EQ(read.result, size);
    EXPECT_EQ(read.pattern.EndTimeOffset, 600U);
}

TEST(RecurrenceBlob, TheLastReservedBlockCountsThoughItIsNotThere) {
    const BlobBytes blob = HeadBytes(Weekly())
                               .Add(PatternBytes(Weekly()))
                               .Add(InstanceBytes(Weekly()))
                               .U16(0)      // ExceptionCount
                               .U32(0)      // ReservedBlock1Size
                               .U32(1000);  // ReservedBlock2Size
    EXPECT_EQ(ReadExactly(blob).result, blob.Size() + 1000);
}

TEST(RecurrenceBlob, TheFirstReservedBlockIsSkipped) {
    const BlobBytes blob = HeadBytes(Weekly())
                               .Add(PatternBytes(Weekly()))
                               .Add(InstanceBytes(Weekly()))
                               .U16(0)         // ExceptionCount
                               .U32(6)         // ReservedBlock1Size
                               .Fill(6, 0xFF)  // ReservedBlock1
                               .U32(0);        // ReservedBlock2Size
    EXPECT_EQ(ReadExactly(blob).result, blob.Size());
}

TEST(RecurrenceBlob, ACutNumberLetsALaterShorterOneBeReadFromItsPlace) {
    const BlobBytes blob = HeadBytes(OfKind(0, 0))
                               .U16(7)          // the first half of EndType, or ExceptionCount
                               .Fill(1, 0x55);  // no room for anything else
    const ReadRecurrence read = ReadExactly(blob);
    EXPECT_EQ(read.pattern.EndType, 0U);
    EXPECT_EQ(read.pattern.StartDate, 0U);
    EXPECT_EQ(read.result, blob.Size() - 1);
}

TEST(RecurrenceBlob, DeletedDatesStayInTheirOrderWithDoubles) {
    tagRecurrencePattern written = Weekly();
    SetDeleted(written, {30, 10, 20, 10});
    const tagRecurrencePattern pattern = ReadExactly(RecurrenceBytes(written)).pattern;
    ASSERT_EQ(pattern.DeletedInstanceCount, 4U);
    EXPECT_EQ(std::vector<std::uint32_t>(pattern.DeletedInstanceDates.get(),
                                         pattern.DeletedInstanceDates.get() + 4),
              (std::vector<std::uint32_t>{30, 10, 20, 10}));
}

TEST(RecurrenceBlob, DatesThatAreNotThereAreZeroInTheArray) {
    const BlobBytes blob = HeadBytes(OfKind(0, 0))
                               .U32(0)    // EndType
                               .U32(0)    // OccurrenceCount
                               .U32(0)    // FirstDOW
                               .U32(3)    // DeletedInstanceCount
                               .U32(40);  // one date
    const tagRecurrencePattern pattern = ReadExactly(blob).pattern;
    ASSERT_EQ(pattern.DeletedInstanceCount, 3U);
    EXPECT_EQ(pattern.DeletedInstanceDates[0], 40U);
    EXPECT_EQ(pattern.DeletedInstanceDates[1], 0U);
    EXPECT_EQ(pattern.DeletedInstanceDates[2], 0U);
}

TEST(RecurrenceBlob, TheMostDeletedDatesHaveAnArrayAndOneMoreHasNone) {
    const BlobBytes head = HeadBytes(OfKind(0, 0)).U32(0).U32(0).U32(0);
    const auto most = ReadExactly(BlobBytes(head).U32(1'048'576).Fill(4 * std::size_t{1'048'576}, 'x'));
    EXPECT_EQ(most.pattern.DeletedInstanceCount, 1'048'576U);
    ASSERT_NE(most.pattern.DeletedInstanceDates, nullptr);
    EXPECT_EQ(most.pattern.DeletedInstanceDates[1'048'575], 0x78787878U);
    EXPECT_EQ(most.result, head.Size() + 4 + 4 * 1'048'576);

    const auto more = ReadExactly(BlobBytes(head).U32(1'048'577));
    EXPECT_EQ(more.pattern.DeletedInstanceCount, 1'048'577U);
    EXPECT_EQ(more.pattern.DeletedInstanceDates, nullptr);
    EXPECT_EQ(more.result, head.Size() + 4 + 4 * 1'048'577U);
}

TEST(RecurrenceBlob, OfMoreMissingDatesThan4096ThereIsNoArray) {
    const BlobBytes head = HeadBytes(OfKind(0, 0)).U32(0).U32(0).U32(0);
    const auto most = ReadExactly(BlobBytes(head).U32(4096));
    ASSERT_NE(most.pattern.DeletedInstanceDates, nullptr);
    EXPECT_EQ(most.pattern.DeletedInstanceDates[4095], 0U);
    const auto more = ReadExactly(BlobBytes(head).U32(4097).Fill(3, 'x'));
    EXPECT_EQ(more.pattern.DeletedInstanceCount, 4097U);
    EXPECT_EQ(more.pattern.DeletedInstanceDates, nullptr);
    EXPECT_EQ(more.result, head.Size() + 4 + 4 * 4097U);

    const auto exceptions = ReadExactly(BlobBytes(head).U32(0).U32(1'048'576));
    EXPECT_EQ(exceptions.pattern.ModifiedInstanceCount, 1'048'576U);
    EXPECT_EQ(exceptions.pattern.Exceptions, nullptr);
}

TEST(RecurrenceBlob, AListOfManyDatesThatWasCutKeepsThoseInFrontOfTheCut) {
    const BlobBytes head = HeadBytes(OfKind(0, 0)).U32(0).U32(0).U32(0);
    const auto read = ReadExactly(BlobBytes(head).U32(1'000 + 4096).Fill(4'000, 'x'));
    ASSERT_NE(read.pattern.DeletedInstanceDates, nullptr);
    EXPECT_EQ(read.pattern.DeletedInstanceDates[999], 0x78787878U);
    EXPECT_EQ(read.pattern.DeletedInstanceDates[1'000 + 4095], 0U);
    EXPECT_EQ(read.result, head.Size() + 4 + 4'000);
}

TEST(RecurrenceBlob, SizeOfTheLastBlockCountsModulo32Bits) {
    const BlobBytes blob = RecurrenceBytes(OfKind(0, 0));
    BlobBytes cut;
    const std::uint32_t front = blob.Size() - 4;
    for (std::uint32_t i = 0; i < front; ++i) {
        cut.Fill(1, blob.Bytes()[i]);
    }
    EXPECT_EQ(ReadExactly(BlobBytes(cut).U32(5)).result, front + 4 + 5);
    EXPECT_EQ(ReadExactly(BlobBytes(cut).U32(0U - (front + 4))).result, 0U);
}

TEST(RecurrenceBlob, DatesWithoutAnArrayAreSkippedModulo32Bits) {
    // Four times 0x40000001 is 4 in 32 bits, so what follows stands four bytes on.
    const BlobBytes blob = HeadBytes(OfKind(0, 0))
                               .U32(0)             // EndType
                               .U32(0)             // OccurrenceCount
                               .U32(0)             // FirstDOW
                               .U32(0x40000001)    // DeletedInstanceCount
                               .U32(77)            // skipped
                               .U32(0)             // ModifiedInstanceCount
                               .U32(kFirstMonday)  // StartDate
                               .U32(0);            // EndDate
    const tagRecurrencePattern pattern = ReadExactly(blob).pattern;
    EXPECT_EQ(pattern.DeletedInstanceCount, 0x40000001U);
    EXPECT_EQ(pattern.DeletedInstanceDates, nullptr);
    EXPECT_EQ(pattern.ModifiedInstanceCount, 0U);
    EXPECT_EQ(pattern.StartDate, kFirstMonday);
}

}  // namespace
