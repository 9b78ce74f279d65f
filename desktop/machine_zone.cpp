#include "desktop/machine_zone.h"

#include <cstdlib>
#include <cstring>

namespace {

/// A rule for a change of the clocks; the day of the week stands last.
CString RuleText(const SYSTEMTIME& rule) {
    return CString::Format(L"%04d%02d%02d%02d%02d%02d%02d", rule.wYear, rule.wMonth, rule.wDay, rule.wHour,
                           rule.wMinute, rule.wSecond, rule.wDayOfWeek);
}

}  // namespace

CString ZoneText(const TIME_ZONE_INFORMATION& zone) {
    constexpr SYSTEMTIME kNoRule{};
    const bool hasDaylight = std::memcmp(&zone.DaylightDate, &kNoRule, sizeof(kNoRule)) != 0;
    const long daylight = hasDaylight ? std::abs(zone.DaylightBias) : 0;
    return CString::Format(L"GMT:%+ld;DST:%ld;STD:", zone.Bias, daylight) + RuleText(zone.StandardDate) +
           L";DLT:" + RuleText(zone.DaylightDate);
}

CString MachineZoneText() {
    TIME_ZONE_INFORMATION zone{};
    return GetTimeZoneInformation(&zone) == TIME_ZONE_ID_INVALID ? CString() : ZoneText(zone);
}
