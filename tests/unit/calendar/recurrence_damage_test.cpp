// Recurrence properties that were cut or changed: whatever the bytes are, a read ends and stays inside them.

#include <gtest/gtest.h>

#include "tests/unit/calendar/recurrence_digest.h"
#include "tests/unit/calendar/recurrence_writer.h"
#include "tests/unit/calendar/sample_series.h"

namespace {

using namespace sample_series;

/// Goes into the digest of many reads with the digest of one.
std::uint64_t Joined(std::uint64_t digest, const ReadRecurrence& read) {
    return (digest ^ RecurrenceDigest(read).Hash()) * 0x100000001B3;
}

std::uint64_t DigestOfAllPrefixes(const std::vector<std::uint8_t>& bytes) {
    std::uint64_t digest = 0;
    for (std::size_t size = 0; size <= bytes.size(); ++size) {
        digest = Joined(digest, ReadExactly(bytes.data(), size));
    }
    return digest;
}

std::uint64_t DigestOfAllChanges(std::vector<std::uint8_t> bytes) {
    std::uint64_t digest = 0;
    for (std::uint8_t& byte : bytes) {
        for (unsigned change = 1; change <= 0xFF; ++change) {
            const std::uint8_t original = byte;
            byte = static_cast<std::uint8_t>(original ^ change);
            digest = Joined(digest, ReadExactly(bytes));
            byte = original;
        }
    }
    return digest;
}

TEST(DamagedRecurrence, EveryPrefixKeepsWhatLiesInFrontOfTheCut) {
    const std::vector<std::uint8_t> bytes = RecurrenceBytes(WithExceptions()).Bytes();
    const tagRecurrencePattern whole = ReadExactly(bytes).pattern;
    for (std::size_t size = 26; size <= bytes.size(); ++size) {
        const tagRecurrencePattern pattern = ReadExactly(bytes.data(), size).pattern;
        EXPECT_EQ(pattern.Period, whole.Period);
        EXPECT_EQ(pattern.WeekDays, whole.WeekDays);
        const std::uint32_t count = pattern.DeletedInstanceDates ? pattern.DeletedInstanceCount : 0;
        EXPECT_EQ(count, size < 42 ? 0 : whole.DeletedInstanceCount) << size;
        for (std::uint32_t i = 0; i < count; ++i) {
            EXPECT_EQ(pattern.DeletedInstanceDates[i], size < 46 + 4 * i ? 0 : whole.DeletedInstanceDates[i]);
        }
    }
}

// The numbers of the next two tests tell nothing but that the readers of all builds agree, down to the last
// field.

TEST(DamagedRecurrence, EveryPrefixGivesTheSameAnswerInEveryBuild) {
    EXPECT_EQ(DigestOfAllPrefixes(RecurrenceBytes(WithExceptions()).Bytes()), 0xC8A7FBE6B905113U);
}

TEST(DamagedRecurrence, EveryValueOfEveryByteGivesTheSameAnswerInEveryBuild) {
    EXPECT_EQ(DigestOfAllChanges(RecurrenceBytes(WithExceptions()).Bytes()), 0x329F1736BA3D6A23U);
}

}  // namespace
