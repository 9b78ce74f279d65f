// Recurrence properties that were cut or changed: whatever the bytes are, a read ends, stays inside them and
// gives what a second reader gives too.

#include <gtest/gtest.h>

#include "tests/unit/calendar/damaged_blobs.h"
#include "tests/unit/calendar/recurrence_comparison.h"
#include "tests/unit/calendar/recurrence_digest.h"

namespace {

TEST(DamagedRecurrence, EveryPrefixOfEverySampleIsReadAsItsFieldsSay) {
    for (const std::vector<std::uint8_t>& bytes : SampleBlobs()) {
        for (std::size_t size = 0; size <= bytes.size(); ++size) {
            ASSERT_STREQ(DifferenceOfReaders(bytes.data(), size), nullptr) << size;
        }
    }
}

TEST(DamagedRecurrence, EveryValueOfEveryByteOfEverySampleIsReadAsItsFieldsSay) {
    for (std::vector<std::uint8_t> bytes : SampleBlobs()) {
        for (std::size_t place = 0; place < bytes.size(); ++place) {
            const std::uint8_t original = bytes[place];
            for (unsigned change = 1; change <= 0xFF; ++change) {
                bytes[place] = static_cast<std::uint8_t>(original ^ change);
                ASSERT_STREQ(DifferenceOfReaders(bytes.data(), bytes.size()), nullptr)
                    << change << " at " << place;
            }
            bytes[place] = original;
        }
    }
}

// Without such properties among them nothing would be said about how long all texts together may be.
TEST(DamagedRecurrence, ManyDamagedOnesHaveMoreTextsThanRoom) {
    DamagedBlobs blobs(1);
    int withoutRoom = 0;
    for (int i = 0; i < 10'000; ++i) {
        const std::vector<std::uint8_t> bytes = blobs.Next();
        PlainRecurrenceReader reader(bytes.data(), bytes.size());
        reader.Read();
        withoutRoom += reader.TextsWithoutRoom() != 0 ? 1 : 0;
    }
    EXPECT_GE(withoutRoom, 10);
}

// The number of this test tells nothing but that the readers of all builds agree, down to the last field. It
// changes with the samples; the program damaged_blobs prints the new one, and such numbers of as many
// properties as one likes.
TEST(DamagedRecurrence, ManyDamagedOnesGiveTheSameAnswerInEveryBuild) {
    DamagedBlobs blobs(1);
    std::uint64_t digest = 0;
    for (int i = 0; i < 100'000; ++i) {
        const std::vector<std::uint8_t> bytes = blobs.Next();
        ASSERT_STREQ(DifferenceOfReaders(bytes.data(), bytes.size()), nullptr) << i;
        digest = JoinedDigest(digest, ReadExactly(bytes));
    }
    EXPECT_EQ(digest, 0x97329AA49EFB1C01U);
}

}  // namespace
