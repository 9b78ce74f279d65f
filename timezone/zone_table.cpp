#include "timezone/zone_table.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "support/owners.h"

namespace {

using NAMESPACE_COMMON::tagZebTimeZone;

constexpr const wchar_t* kZonesKey = L"Software\\Microsoft\\Windows NT\\CurrentVersion\\Time Zones";
constexpr REGSAM kReadAccess = 0x20019;
static_assert(kReadAccess == KEY_READ);

/// Units of the buffer for the name of a key.
constexpr DWORD kNameUnits = 1024;
/// Units of the buffer for the machine's zone at logon.
constexpr std::size_t kDisplayUnits = 260;

/// What one registry value is read into, 1024 bytes. A value of any type is taken; a larger one cannot be
/// read.
using ValueBuffer = std::array<wchar_t, 512>;

/// Reads a value into a buffer that is zero behind it.
bool ReadValue(HKEY key, const wchar_t* name, ValueBuffer& value) {
    value.fill(L'\0');
    DWORD size = sizeof(value);
    return RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(value.data()), &size) ==
           ERROR_SUCCESS;
}

/// Reads a value as text, which ends at its terminator or with the buffer.
bool ReadText(HKEY key, const wchar_t* name, CString& text) {
    ValueBuffer value;
    if (!ReadValue(key, name, value)) {
        return false;
    }
    const WideView all(value.data(), value.size());
    text = CString(all.substr(0, all.find(L'\0')));
    return true;
}

/// A name of TIME_ZONE_INFORMATION, which need not have a terminator.
template<std::size_t Units>
WideView NameOf(const wchar_t (&name)[Units]) {
    const WideView all(name, Units);
    return all.substr(0, all.find(L'\0'));
}

bool OpenZones(RegistryKey& zones) {
    return RegOpenKeyExW(HKEY_LOCAL_MACHINE, kZonesKey, 0, kReadAccess, zones.Put()) == ERROR_SUCCESS;
}

/// The zones of the registry, one after the other.
class ZoneWalk {
  public:
    explicit ZoneWalk(HKEY zones) : m_zones(zones) {}

    /// Reads the next zone that has all its values; false at the end.
    bool Next(tagZebTimeZone& zone) {
        std::array<wchar_t, kNameUnits> name{};
        for (;;) {
            DWORD units = kNameUnits;
            if (RegEnumKeyExW(m_zones, m_index++, name.data(), &units, nullptr, nullptr, nullptr, nullptr) !=
                ERROR_SUCCESS) {
                return false;
            }
            if (ReadTimeZoneKey(m_zones, name.data(), zone) != 0) {
                return true;
            }
        }
    }

  private:
    HKEY m_zones;
    DWORD m_index = 0;
};

bool HasStandardTimeOf(const tagZebTimeZone& zone, const TIME_ZONE_INFORMATION& information) {
    return zone.Std.View() == NameOf(information.StandardName) && zone.Bias == information.Bias &&
           zone.StandardBias == information.StandardBias &&
           SameFields(zone.StandardDate, information.StandardDate);
}

}  // namespace

int LoadTimeZones(TimeZoneTable& table) {
    if (!table.IsEmpty()) {
        return 1;
    }
    RegistryKey zones;
    if (!OpenZones(zones)) {
        return 0;
    }
    ZoneWalk walk(zones.Get());
    for (tagZebTimeZone zone; walk.Next(zone);) {
        table.Add(zone);
    }
    return 1;
}

int ReadTimeZoneKey(HKEY zones, const wchar_t* name, tagZebTimeZone& zone) {
    zone = tagZebTimeZone();
    // No owner: callers know this operation as one that leaves the key open.
    HKEY key = nullptr;
    if (RegOpenKeyExW(zones, name, 0, kReadAccess, &key) != ERROR_SUCCESS) {
        return 0;
    }
    ValueBuffer rules;
    if (!ReadText(key, L"Display", zone.Display) || !ReadText(key, L"Std", zone.Std) ||
        !ReadText(key, L"Dlt", zone.Dlt) || !ReadValue(key, L"TZI", rules)) {
        return 0;
    }
    SetZoneRules(zone, std::span<const std::uint8_t, kZoneRulesBytes>(
                           reinterpret_cast<const std::uint8_t*>(rules.data()), kZoneRulesBytes));
    return 1;
}

int FindTimeZoneInRegistry(const TIME_ZONE_INFORMATION& information, tagZebTimeZone& zone) {
    zone = tagZebTimeZone();
    RegistryKey zones;
    if (!OpenZones(zones)) {
        return 0;
    }
    ZoneWalk walk(zones.Get());
    for (tagZebTimeZone candidate; walk.Next(candidate);) {
        if (HasStandardTimeOf(candidate, information)) {
            zone = std::move(candidate);
            return 1;
        }
    }
    return 0;
}

int GetTimeZoneDisplayName(const TIME_ZONE_INFORMATION& information, std::span<wchar_t> display) {
    tagZebTimeZone zone;
    if (display.empty() || FindTimeZoneInRegistry(information, zone) == 0) {
        return 0;
    }
    const std::size_t units = std::min(zone.Display.size(), display.size() - 1);
    std::copy_n(zone.Display.begin(), units, display.begin());
    display[units] = L'\0';
    return 1;
}

tagZebTimeZone ReadCurrentTimeZone(const TimeZoneCalls& calls) {
    TIME_ZONE_INFORMATION information{};
    calls.getTimeZoneInformation(&information);
    std::array<wchar_t, kDisplayUnits> display{};
    GetTimeZoneDisplayName(information, display);

    tagZebTimeZone zone;
    zone.Display = CString(display.data());
    zone.Std = CString(NameOf(information.StandardName));
    zone.Dlt = CString(NameOf(information.DaylightName));
    zone.Bias = information.Bias;
    zone.StandardBias = information.StandardBias;
    zone.DaylightBias = information.DaylightBias;
    zone.StandardDate = information.StandardDate;
    zone.DaylightDate = information.DaylightDate;
    return zone;
}

int FindTimeZoneByText(const TimeZoneTable& table, const wchar_t* text) {
    int index = 0;
    for (const tagZebTimeZone& zone : table) {
        if (lstrcmpW(FormatShortTimeZoneText(zone).c_str(), text) == 0) {
            return index;
        }
        ++index;
    }
    return -1;
}
