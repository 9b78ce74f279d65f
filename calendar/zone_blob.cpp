#include "calendar/zone_blob.h"

#include <algorithm>
#include <array>

namespace {

/// The layout of the property: the three biases, and each date behind a year of its own.
constexpr std::uint32_t kBlobBytes = 48;
constexpr std::uint32_t kBiasesBytes = 12;
constexpr std::uint32_t kStandardDate = 14;
constexpr std::uint32_t kDaylightDate = 32;
static_assert(kBiasesBytes + 2 * sizeof(SYSTEMTIME) == kZoneRulesBytes);

}  // namespace

int ParseTimeZoneBlob(const std::uint8_t* bytes, std::uint32_t size, NAMESPACE_COMMON::tagZebTimeZone& zone) {
    if (bytes == nullptr || size < kBlobBytes) {
        return 0;
    }
    std::array<std::uint8_t, kZoneRulesBytes> rules{};
    auto* end = std::copy_n(bytes, kBiasesBytes, rules.begin());
    end = std::copy_n(bytes + kStandardDate, sizeof(SYSTEMTIME), end);
    std::copy_n(bytes + kDaylightDate, sizeof(SYSTEMTIME), end);
    SetZoneRules(zone, rules);
    return 1;
}
