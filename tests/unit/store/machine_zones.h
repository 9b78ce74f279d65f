#pragma once

// The zones that tests run in. The zone belongs to the process, so these suites run once for each of them, in
// a process with TZ in its environment.

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <string>

/// What the zones are by law. On a machine whose platform does not list a zone, its names are empty.
struct MachineZone {
    const char* name;
    std::int32_t bias;
    WORD daylightMonth;  ///< 0 without daylight saving
    WORD standardMonth;
    const wchar_t* offset;  ///< as names of zones show it
};
inline constexpr MachineZone kMachineZones[] = {
    {"America/New_York", 300, 3, 11, L"-05:00"}, {"America/Los_Angeles", 480, 3, 11, L"-08:00"},
    {"America/St_Johns", 210, 3, 11, L"-03:30"}, {"America/Phoenix", 420, 0, 0, L"-07:00"},
    {"Europe/Berlin", -60, 3, 10, L"+01:00"},    {"Asia/Kolkata", -330, 0, 0, L"+05:30"},
    {"Asia/Kathmandu", -345, 0, 0, L"+05:45"},   {"Asia/Yangon", -390, 0, 0, L"+06:30"},
    {"Asia/Tokyo", -540, 0, 0, L"+09:00"},       {"Australia/Adelaide", -570, 10, 4, L"+09:30"},
    {"Australia/Darwin", -570, 0, 0, L"+09:30"}, {"Australia/Lord_Howe", -630, 10, 4, L"+10:30"},
};

/// The zone of this process; null if TZ names none of them.
inline const MachineZone* ZoneOfThisProcess() {
    const char* const name = std::getenv("TZ");
    const auto* const zone =
        std::ranges::find(kMachineZones, std::string(name == nullptr ? "" : name), &MachineZone::name);
    return zone == std::end(kMachineZones) ? nullptr : zone;
}
