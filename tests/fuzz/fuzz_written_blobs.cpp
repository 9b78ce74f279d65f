// Binary properties that the agent writes, from records of any content: what is read back is the same record
// in the fields that its kind has, and written again it has the same bytes. Nothing is written behind the
// sizes that a kind can have.

#include <algorithm>
#include <cstring>

#include "calendar/zone_blob.h"
#include "tests/fuzz/fuzz_input.h"
#include "tests/unit/calendar/recurrence_digest.h"
#include "tests/unit/calendar/written_blob.h"

namespace {

using NAMESPACE_COMMON::tagZebTimeZone;
using NAMESPACE_MAPI::tagRecurrencePattern;

/// The fuzzer's bytes as numbers, the low byte first; 0 where they end.
class Numbers {
  public:
    Numbers(const std::uint8_t* data, std::size_t size) : m_data(data), m_size(size) {}

    template<class Number>
    void Take(Number& number) {
        std::uint8_t bytes[sizeof(Number)] = {};
        const std::size_t count = std::min(sizeof(Number), m_size);
        std::copy_n(m_data, count, bytes);
        std::memcpy(&number, bytes, sizeof(Number));
        m_data += count;
        m_size -= count;
    }

  private:
    const std::uint8_t* m_data;
    std::size_t m_size;
};

/// A frequency and a type that there are, or else any.
void TakeKind(Numbers& numbers, tagRecurrencePattern& pattern) {
    std::uint8_t choice = 0;
    numbers.Take(choice);
    numbers.Take(pattern.RecurFrequency);
    numbers.Take(pattern.PatternType);
    if ((choice & 1U) != 0) {
        pattern.RecurFrequency = static_cast<std::uint16_t>(0x200A + pattern.RecurFrequency % 4);
    }
    if ((choice & 2U) != 0) {
        pattern.PatternType %= 14;
    }
}

tagRecurrencePattern TakePattern(Numbers numbers) {
    tagRecurrencePattern pattern;
    TakeKind(numbers, pattern);
    for (std::uint16_t* const field :
         {&pattern.ReaderVersion, &pattern.WriterVersion, &pattern.CalendarType}) {
        numbers.Take(*field);
    }
    for (std::uint32_t* const field :
         {&pattern.FirstDateTime, &pattern.Period, &pattern.SlidingFlag, &pattern.WeekDays, &pattern.NthWeek,
          &pattern.DayOfMonth, &pattern.EndType, &pattern.OccurrenceCount, &pattern.FirstDOW,
          &pattern.StartDate, &pattern.EndDate, &pattern.ReaderVersion2, &pattern.WriterVersion2,
          &pattern.StartTimeOffset, &pattern.EndTimeOffset, &pattern.DeletedInstanceCount,
          &pattern.ModifiedInstanceCount}) {
        numbers.Take(*field);
    }
    return pattern;
}

void RequireSameRecurrence(const std::uint8_t* data, std::size_t size) {
    const std::vector<std::uint8_t> bytes = WrittenBytes(TakePattern({data, size}));
    Require(bytes.size() == 76 || bytes.size() == 80 || bytes.size() == 84);
    ReadRecurrence expected;
    expected.result = static_cast<std::uint32_t>(bytes.size());
    expected.pattern = AsReadBack(TakePattern({data, size}));
    const ReadRecurrence read = ReadExactly(bytes);
    Require(RecurrenceDigest(read).Hash() == RecurrenceDigest(expected).Hash());
    Require(WrittenBytes(read.pattern) == bytes);
}

/// What a reader makes of any bytes is a record too.
void RequireWritableRead(const std::uint8_t* data, std::size_t size) {
    ReadRecurrence read = ReadExactly(data, size);
    const std::vector<std::uint8_t> bytes = WrittenBytes(read.pattern);
    ReadRecurrence again = ReadExactly(bytes);
    again.result = 0;
    ReadRecurrence expected;
    expected.pattern = AsReadBack(std::move(read.pattern));
    Require(RecurrenceDigest(again).Hash() == RecurrenceDigest(expected).Hash());
}

/// A property of a zone comes back byte for byte, with the years beside the dates made those in them.
void RequireSameZone(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kZoneBytes = 48;
    constexpr std::pair<std::size_t, std::size_t> kYears[] = {{12, 14}, {30, 32}};
    std::vector<std::uint8_t> bytes(kZoneBytes, 0);
    std::copy_n(data, std::min(size, kZoneBytes), bytes.begin());
    tagZebTimeZone zone;
    Require(ParseTimeZoneBlob(bytes.data(), kZoneBytes, zone) == 1);
    for (const auto& [beside, inside] : kYears) {
        bytes[beside] = bytes[inside];
        bytes[beside + 1] = bytes[inside + 1];
    }
    Require(WrittenBytes(zone) == bytes);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    RequireSameRecurrence(data, size);
    RequireWritableRead(data, size);
    RequireSameZone(data, size);
    return 0;
}
