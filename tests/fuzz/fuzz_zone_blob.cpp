// The zone property of an appointment, from bytes of any content: whether it is read depends on its length
// alone, and its text begins with its short text.

#include "calendar/zone_blob.h"
#include "tests/fuzz/fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kZoneBytes = 48;
    const auto bytes = static_cast<std::uint32_t>(size);
    NAMESPACE_COMMON::tagZebTimeZone zone;
    Require(ParseTimeZoneBlob(data, bytes, zone) == (data != nullptr && size >= kZoneBytes ? 1 : 0));
    Require(FormatTimeZoneText(zone).starts_with(FormatShortTimeZoneText(zone)));
    return 0;
}
