#pragma once

// A time zone of the machine and its two text forms. The long one goes out with appointments; the short one
// is what a zone is found by.

#include <cstddef>
#include <cstdint>
#include <span>

#include "support/plain_time.h"
#include "support/text.h"

namespace NAMESPACE_COMMON {

/// One zone with its three names and its rules. The fields from Bias on are those of the registry value
/// "TZI", in its order (REG_TZI_FORMAT, documented with the TIME_ZONE_INFORMATION structure). A new zone has
/// empty names and rules of zeros.
struct tagZebTimeZone {
    CString Display;                ///< the name that the zone is offered under
    CString Std;                    ///< the name of standard time
    CString Dlt;                    ///< the name of daylight time
    std::int32_t Bias = 0;          ///< minutes; UTC is local time plus this
    std::int32_t StandardBias = 0;  ///< minutes added to Bias during standard time
    std::int32_t DaylightBias = 0;  ///< minutes added to Bias during daylight time
    SYSTEMTIME StandardDate{};      ///< rule for the change to standard time
    SYSTEMTIME DaylightDate{};      ///< rule for the change to daylight time

    /// True if there is a change to daylight time. DaylightBias alone decides nothing.
    [[nodiscard]] bool HasDaylightRule() const noexcept;
};

}  // namespace NAMESPACE_COMMON

/// The bytes of the registry value "TZI".
constexpr std::size_t kZoneRulesBytes = 44;

/// Sets the rules of a zone, all at once, from the bytes of "TZI".
void SetZoneRules(NAMESPACE_COMMON::tagZebTimeZone& zone,
                  std::span<const std::uint8_t, kZoneRulesBytes> bytes) noexcept;

/// True if all fields of two calendar times are equal.
[[nodiscard]] bool SameFields(const SYSTEMTIME& left, const SYSTEMTIME& right) noexcept;

/// The long form: the short one and both rules, each as year, month, day, hour, minute, second and day of the
/// week: "GMT:+480;DST:60;STD:0000110102000000;DLT:0000030202000000".
[[nodiscard]] CString FormatTimeZoneText(const NAMESPACE_COMMON::tagZebTimeZone& zone);

/// The short form: "GMT:+480;DST:60". Without a daylight rule the second number is 0.
[[nodiscard]] CString FormatShortTimeZoneText(const NAMESPACE_COMMON::tagZebTimeZone& zone);
