// The zone property of an appointment, from bytes of any content: whether it is read depends on its length
// alone, and its two texts name the numbers that stand at the places of the published layout (MS-OXOCAL,
// section 2.2.1.39).

#include <cstdio>
#include <string>

#include "calendar/zone_blob.h"
#include "tests/fuzz/fuzz_input.h"

namespace {

constexpr std::size_t kZoneBytes = 48;
constexpr std::size_t kDaylightBias = 8;
constexpr std::size_t kStandardDate = 14;
constexpr std::size_t kDaylightDate = 32;

unsigned FieldAt(const std::uint8_t* data, std::size_t place) {
    return data[place] + 256U * data[place + 1];
}

long long BiasAt(const std::uint8_t* data, std::size_t place) {
    const long long number = FieldAt(data, place) + 65536LL * FieldAt(data, place + 2);
    return number < 0x80000000LL ? number : number - 0x100000000LL;
}

/// The fields of a date lie in the order year, month, day of the week, day, hour, minute, second.
std::string RuleAt(const std::uint8_t* data, std::size_t place) {
    char text[64] = {};
    (void)std::snprintf(text, sizeof(text), "%04u%02u%02u%02u%02u%02u%02u", FieldAt(data, place),
                        FieldAt(data, place + 2), FieldAt(data, place + 6), FieldAt(data, place + 8),
                        FieldAt(data, place + 10), FieldAt(data, place + 12), FieldAt(data, place + 4));
    return text;
}

bool HasDaylightRule(const std::uint8_t* data) {
    for (std::size_t place = kDaylightDate; place < kZoneBytes; ++place) {
        if (data[place] != 0) {
            return true;
        }
    }
    return false;
}

std::string ShortText(const std::uint8_t* data) {
    const long long bias = BiasAt(data, 0);
    const long long daylight = HasDaylightRule(data) ? BiasAt(data, kDaylightBias) : 0;
    // The least number has no opposite in 32 bits and stays as it is.
    const bool turns = daylight < 0 && daylight != -0x80000000LL;
    return (bias < 0 ? "GMT:" : "GMT:+") + std::to_string(bias) +
           ";DST:" + std::to_string(turns ? -daylight : daylight);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto bytes = static_cast<std::uint32_t>(size);
    NAMESPACE_COMMON::tagZebTimeZone zone;
    Require(ParseTimeZoneBlob(data, bytes, zone) == (data != nullptr && size >= kZoneBytes ? 1 : 0));
    if (data == nullptr || size < kZoneBytes) {
        Require(FormatShortTimeZoneText(zone) == WIDE("GMT:+0;DST:0"));
        return 0;
    }
    const std::string text = ShortText(data);
    Require(FormatShortTimeZoneText(zone) == TextOfAscii(text));
    Require(FormatTimeZoneText(zone) == TextOfAscii(text + ";STD:" + RuleAt(data, kStandardDate) +
                                                    ";DLT:" + RuleAt(data, kDaylightDate)));
    return 0;
}
