// The writers of binary properties where memory is scarce.

#include <gtest/gtest.h>

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
