#include "timezone/zone_text.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace {

using NAMESPACE_COMMON::tagZebTimeZone;

/// The registry value "TZI" as it lies in memory.
struct ZoneRules {
    std::int32_t bias;
    std::int32_t standardBias;
    std::int32_t daylightBias;
    SYSTEMTIME standardDate;
    SYSTEMTIME daylightDate;
};
static_assert(sizeof(ZoneRules) == kZoneRulesBytes && std::is_trivially_copyable_v<ZoneRules>);

/// A number in decimal with zeros in front, up to a width.
CString Padded(WORD number, std::size_t width) {
    CString text = CString::FromNumber(number);
    text.insert(0, width - std::min(width, text.size()), WIDE('0'));
    return text;
}

/// The day of the week stands last, and milliseconds do not appear.
CString RuleText(const SYSTEMTIME& rule) {
    CString text = Padded(rule.wYear, 4);
    for (const WORD number :
         {rule.wMonth, rule.wDay, rule.wHour, rule.wMinute, rule.wSecond, rule.wDayOfWeek}) {
        text += Padded(number, 2);
    }
    return text;
}

/// The absolute value as 32 bits hold it: the least number has none and stays as it is.
std::int32_t Magnitude(std::int32_t number) noexcept {
    const auto bits = static_cast<std::uint32_t>(number);
    return static_cast<std::int32_t>(number < 0 ? 0U - bits : bits);
}

}  // namespace

namespace NAMESPACE_COMMON {

bool tagZebTimeZone::HasDaylightRule() const noexcept {
    return !SameFields(DaylightDate, SYSTEMTIME{});
}

}  // namespace NAMESPACE_COMMON

void SetZoneRules(tagZebTimeZone& zone, std::span<const std::uint8_t, kZoneRulesBytes> bytes) noexcept {
    ZoneRules rules{};
    std::memcpy(&rules, bytes.data(), bytes.size());
    zone.Bias = rules.bias;
    zone.StandardBias = rules.standardBias;
    zone.DaylightBias = rules.daylightBias;
    zone.StandardDate = rules.standardDate;
    zone.DaylightDate = rules.daylightDate;
}

bool SameFields(const SYSTEMTIME& left, const SYSTEMTIME& right) noexcept {
    static_assert(sizeof(SYSTEMTIME) == 8 * sizeof(WORD), "a calendar time has no gaps to compare");
    return std::memcmp(&left, &right, sizeof(SYSTEMTIME)) == 0;
}

CString FormatTimeZoneText(const tagZebTimeZone& zone) {
    CString text = FormatShortTimeZoneText(zone);
    text += WIDE(";STD:");
    text += RuleText(zone.StandardDate);
    text += WIDE(";DLT:");
    text += RuleText(zone.DaylightDate);
    return text;
}

CString FormatShortTimeZoneText(const tagZebTimeZone& zone) {
    CString text(zone.Bias < 0 ? WIDE("GMT:") : WIDE("GMT:+"));
    text += CString::FromNumber(zone.Bias);
    text += WIDE(";DST:");
    text += CString::FromNumber(zone.HasDaylightRule() ? Magnitude(zone.DaylightBias) : 0);
    return text;
}
