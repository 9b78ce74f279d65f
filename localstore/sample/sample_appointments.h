#pragma once

// The appointments of the sample: single ones and series of every kind. All are made up.

#include <optional>
#include <string>
#include <vector>

#include "localstore/sample/series_bytes.h"

namespace sample {

/// A rule for a change between standard time and daylight saving; month 0 for none.
struct ZoneDate {
    unsigned short month;
    unsigned short weekday;
    unsigned short nth;  ///< 5 for the last
    unsigned short hour;
};

/// A zone as an appointment names it, with the rules of its change.
struct SampleZone {
    const wchar_t* name;  ///< as mail programs show it
    long bias;            ///< minutes; UTC is local time plus this
    long daylightBias;
    ZoneDate standard;
    ZoneDate daylight;
};

constexpr long kNoReminder = -1;

/// One appointment. Its times are those of the clocks in its zone, also in a series.
struct SampleAppointment {
    std::wstring subject{};
    std::wstring location{};
    std::wstring body{};
    std::wstring start{};  ///< "2026-03-02 09:00"
    std::uint32_t minutes = 60;
    bool isWholeDay = false;           ///< in the machine's zone, which it names
    long reminder = kNoReminder;       ///< minutes ahead
    bool isSilent = false;             ///< the reminder overrides its sound
    const SampleZone* zone = nullptr;  ///< null for the machine's, without the property
    std::optional<SampleSeries> series{};
};

/// All of them, in the order in which they are written.
std::vector<SampleAppointment> SampleAppointments();

}  // namespace sample
