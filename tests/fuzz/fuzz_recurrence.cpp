// The recurrence property of an appointment, from bytes of any content: the reader gives what the tests'
// second reader gives. The bytes grow out of the samples, since few of another kind have exceptions.

#include "tests/fuzz/fuzz_input.h"
#include "tests/unit/calendar/recurrence_comparison.h"
#include "tests/unit/calendar/sample_blobs.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

namespace {

constexpr unsigned kFreshSampleEvery = 512;

std::size_t CopySample(std::uint8_t* data, std::size_t most, unsigned number) {
    static const std::vector<std::vector<std::uint8_t>> kSamples = SampleBlobs();
    const std::vector<std::uint8_t>& sample = kSamples[number % kSamples.size()];
    const std::size_t size = std::min(sample.size(), most);
    std::copy_n(sample.begin(), size, data);
    return size;
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most,
                                               unsigned seed) {
    if (size <= 1 || seed % kFreshSampleEvery == 0) {
        size = CopySample(data, most, seed / kFreshSampleEvery);
    }
    return LLVMFuzzerMutate(data, size, most);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Require(DifferenceOfReaders(data, size) == nullptr);
    return 0;
}
