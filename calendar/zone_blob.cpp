#include "calendar/zone_blob.h"

#include <algorithm>
#include <array>
#include <new>
#include <utility>

#include "calendar/blob_writer.h"

namespace {

/// The layout of the property: the three biases, and each date behind a year of its own.
constexpr std::uint32_t kBlobBytes = 48;
constexpr std::uint32_t kBiasesBytes = 12;
constexpr std::uint32_t kStandardDate = 14;
constexpr std::uint32_t kDaylightDate = 32;
static_assert(kBiasesBytes + 2 * sizeof(SYSTEMTIME) == kZoneRulesBytes);

/// A date behind its year, which stands there once more by itself.
void WriteDate(BlobWriter& blob, const SYSTEMTIME& date) {
    for (const WORD field : {date.wYear, date.wYear, date.wMonth, date.wDayOfWeek, date.wDay, date.wHour,
                             date.wMinute, date.wSecond, date.wMilliseconds}) {
        blob.Write(field);
    }
}

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

int WriteTimeZoneBlob(const NAMESPACE_COMMON::tagZebTimeZone& zone, std::unique_ptr<std::uint8_t[]>* bytes,
                      std::uint32_t& size) {
    if (bytes == nullptr) {
        return 0;
    }
    std::unique_ptr<std::uint8_t[]> room(new (std::nothrow) std::uint8_t[kBlobBytes]());
    if (!room) {
        return 0;
    }
    BlobWriter blob({room.get(), kBlobBytes});
    for (const std::int32_t bias : {zone.Bias, zone.StandardBias, zone.DaylightBias}) {
        blob.Write(static_cast<std::uint32_t>(bias));
    }
    WriteDate(blob, zone.StandardDate);
    WriteDate(blob, zone.DaylightDate);
    size = blob.Size();
    *bytes = std::move(room);
    return 1;
}
