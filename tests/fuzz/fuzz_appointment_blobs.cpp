// The binary properties of an appointment, from bytes of any content: what a read gave is what it gives again
// from the same bytes and from a property that is laid out as published.

#include "calendar/zone_blob.h"
#include "tests/fuzz/fuzz_input.h"
#include "tests/unit/calendar/recurrence_digest.h"
#include "tests/unit/calendar/recurrence_writer.h"

namespace {

/// Longer lists say nothing new and take long to write.
constexpr std::uint32_t kMostWritten = 10'000;

/// A count for which there is no array cannot be written again.
bool CanBeWritten(const NAMESPACE_MAPI::tagRecurrencePattern& pattern) {
    const auto fits = [](std::uint32_t count, bool isThere) {
        return count == 0 || (count <= kMostWritten && isThere);
    };
    return fits(pattern.DeletedInstanceCount, pattern.DeletedInstanceDates != nullptr) &&
           fits(pattern.ModifiedInstanceCount, pattern.Exceptions != nullptr);
}

void RequireSoundRecurrence(const std::uint8_t* data, std::size_t size) {
    const ReadRecurrence read = ReadExactly(data, size);
    const std::uint64_t digest = RecurrenceDigest(read).Hash();
    Require(RecurrenceDigest(ReadExactly(data, size)).Hash() == digest);
    if (!CanBeWritten(read.pattern)) {
        return;
    }
    const BlobBytes written = RecurrenceBytes(read.pattern);
    ReadRecurrence again = ReadExactly(written);
    Require(again.result == written.Size());
    again.result = read.result;
    Require(RecurrenceDigest(again).Hash() == digest);
}

void RequireSoundZone(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kZoneBytes = 48;
    const auto bytes = static_cast<std::uint32_t>(size);
    NAMESPACE_COMMON::tagZebTimeZone zone;
    Require(ParseTimeZoneBlob(data, bytes, zone) == (data != nullptr && size >= kZoneBytes ? 1 : 0));
    Require(FormatTimeZoneText(zone).starts_with(FormatShortTimeZoneText(zone)));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    RequireSoundRecurrence(data, size);
    RequireSoundZone(data, size);
    return 0;
}
