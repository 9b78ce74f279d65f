// The reader of the recurrence property and the writers of binary properties where memory is scarce.

#include <gtest/gtest.h>

#include "tests/unit/calendar/recurrence_writer.h"
#include "tests/unit/calendar/sample_series.h"
#include "tests/unit/calendar/written_blob.h"
#include "tests/unit/localstore/scarce_memory.h"

namespace {

using localstore_test::ScarceMemory;

/// What a writer left in its outputs, which held a byte and the count 77 before.
struct Outputs {
    int result = -1;
    bool keptBytes = false;
    std::uint32_t size = 77;
};

/// Runs a writer while the n-th allocation and all behind it fail.
template<class Record, class Writer>
Outputs WriteScarce(const Record& record, Writer write, std::size_t n) {
    auto bytes = std::make_unique<std::uint8_t[]>(1);
    const std::uint8_t* const before = bytes.get();
    Outputs outputs;
    {
        const ScarceMemory scarce(n, true);
        outputs.result = write(record, &bytes, outputs.size);
    }
    outputs.keptBytes = bytes.get() == before;
    return outputs;
}

/// Reads a blob while the n-th allocation fails, and with `forever` all behind it.
ReadRecurrence ReadScarce(const BlobBytes& blob, std::size_t n, bool forever = false) {
    ReadRecurrence read;
    const ScarceMemory scarce(n, forever);
    read.result = ParseRecurrenceBlob(blob.Bytes().data(), blob.Size(), read.pattern);
    return read;
}

/// That the fields on both sides of the lists are those of the series.
void ExpectRestOf(const NAMESPACE_MAPI::tagRecurrencePattern& series,
                  const NAMESPACE_MAPI::tagRecurrencePattern& read) {
    EXPECT_EQ(read.WeekDays, series.WeekDays);
    EXPECT_EQ(read.EndType, series.EndType);
    EXPECT_EQ(read.OccurrenceCount, series.OccurrenceCount);
    EXPECT_EQ(read.StartDate, series.StartDate);
    EXPECT_EQ(read.EndDate, series.EndDate);
    EXPECT_EQ(read.ReaderVersion2, series.ReaderVersion2);
    EXPECT_EQ(read.WriterVersion2, series.WriterVersion2);
    EXPECT_EQ(read.StartTimeOffset, series.StartTimeOffset);
    EXPECT_EQ(read.EndTimeOffset, series.EndTimeOffset);
}

/// Where a read ends without an array of exceptions: the first of their bytes is the size of a block.
std::uint32_t EndWithoutExceptions(const NAMESPACE_MAPI::tagRecurrencePattern& series) {
    constexpr std::uint32_t kExceptionCount = 2;
    constexpr std::uint32_t kBlockSize = 4;
    const BlobBytes before =
        BlobBytes().Add(HeadBytes(series)).Add(PatternBytes(series)).Add(InstanceBytes(series));
    return before.Size() + kExceptionCount + kBlockSize + series.Exceptions[0].StartDateTime;
}

TEST(BlobMemory, AFailedAllocationOfTheDeletedDatesKeepsTheirCountAndReadsTheRest) {
    const auto series = sample_series::WithExceptions();
    const BlobBytes blob = RecurrenceBytes(series);
    const ReadRecurrence read = ReadScarce(blob, 1);
    EXPECT_EQ(read.pattern.DeletedInstanceCount, 12U);
    EXPECT_EQ(read.pattern.DeletedInstanceDates, nullptr);
    ExpectRestOf(series, read.pattern);
    EXPECT_EQ(read.result, blob.Size());
    ASSERT_EQ(read.pattern.ModifiedInstanceCount, 11U);
    ASSERT_NE(read.pattern.Exceptions, nullptr);
    for (std::uint32_t i = 0; i < 11; ++i) {
        EXPECT_EQ(read.pattern.Exceptions[i].OriginalDate, series.Exceptions[i].OriginalDate);
        EXPECT_EQ(read.pattern.Exceptions[i].OverrideFlags, series.Exceptions[i].OverrideFlags);
        EXPECT_EQ(read.pattern.Exceptions[i].EndDateTime, series.Exceptions[i].EndDateTime);
        EXPECT_EQ(read.pattern.Exceptions[i].Subject, series.Exceptions[i].Subject);
        EXPECT_EQ(read.pattern.Exceptions[i].Location, series.Exceptions[i].Location);
    }
}

TEST(BlobMemory, AFailedAllocationOfTheExceptionsKeepsTheirCountAndReadsTheRest) {
    const auto series = sample_series::WithExceptions();
    const ReadRecurrence read = ReadScarce(RecurrenceBytes(series), 2);
    ASSERT_EQ(read.pattern.DeletedInstanceCount, 12U);
    ASSERT_NE(read.pattern.DeletedInstanceDates, nullptr);
    EXPECT_TRUE(std::equal(read.pattern.DeletedInstanceDates.get(),
                           read.pattern.DeletedInstanceDates.get() + 12, series.DeletedInstanceDates.get()));
    EXPECT_EQ(read.pattern.ModifiedInstanceCount, 11U);
    EXPECT_EQ(read.pattern.Exceptions, nullptr);
    ExpectRestOf(series, read.pattern);
    EXPECT_EQ(read.result, EndWithoutExceptions(series));
}

TEST(BlobMemory, WithoutAnyMemoryBothCountsStayAndTheRestIsRead) {
    const auto series = sample_series::WithExceptions();
    const ReadRecurrence read = ReadScarce(RecurrenceBytes(series), 1, true);
    EXPECT_EQ(read.pattern.DeletedInstanceCount, 12U);
    EXPECT_EQ(read.pattern.DeletedInstanceDates, nullptr);
    EXPECT_EQ(read.pattern.ModifiedInstanceCount, 11U);
    EXPECT_EQ(read.pattern.Exceptions, nullptr);
    ExpectRestOf(series, read.pattern);
    EXPECT_EQ(read.result, EndWithoutExceptions(series));
}

TEST(BlobMemory, AFailedAllocationOfARecurrenceGivesZeroAndLeavesTheOutputs) {
    const Outputs outputs = WriteScarce(sample_series::Weekly(), &WriteRecurrenceBlob, 1);
    EXPECT_EQ(outputs.result, 0);
    EXPECT_TRUE(outputs.keptBytes);
    EXPECT_EQ(outputs.size, 77U);
}

TEST(BlobMemory, ARecurrenceTakesOneAllocation) {
    const Outputs outputs = WriteScarce(sample_series::WithExceptions(), &WriteRecurrenceBlob, 2);
    EXPECT_EQ(outputs.result, 1);
    EXPECT_FALSE(outputs.keptBytes);
    EXPECT_EQ(outputs.size, 80U);
}

TEST(BlobMemory, AFailedAllocationOfAZoneGivesZeroAndLeavesTheOutputs) {
    const Outputs outputs = WriteScarce(NAMESPACE_COMMON::tagZebTimeZone(), &WriteTimeZoneBlob, 1);
    EXPECT_EQ(outputs.result, 0);
    EXPECT_TRUE(outputs.keptBytes);
    EXPECT_EQ(outputs.size, 77U);
}

TEST(BlobMemory, AZoneTakesOneAllocation) {
    const Outputs outputs = WriteScarce(NAMESPACE_COMMON::tagZebTimeZone(), &WriteTimeZoneBlob, 2);
    EXPECT_EQ(outputs.result, 1);
    EXPECT_FALSE(outputs.keptBytes);
    EXPECT_EQ(outputs.size, 48U);
}

}  // namespace
