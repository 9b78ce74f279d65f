#pragma once

// The zones that the machine's registry lists and the zone that the machine is in. Nothing here logs.

#include <span>

#include "support/containers.h"
#include "timezone/conversions.h"
#include "timezone/zone_text.h"

/// Zones in the order in which the registry lists them.
using TimeZoneTable = CArray<NAMESPACE_COMMON::tagZebTimeZone, const NAMESPACE_COMMON::tagZebTimeZone&>;

/// Fills the table from the registry, once: a table that holds a zone already is ready. Keys that lack a
/// value are passed over. Returns 1 if the table is ready, and 0 if the registry has no list of zones.
int LoadTimeZones(TimeZoneTable& table);

/// Reads one zone's key. Returns 1, or 0 at the first value that cannot be read; what came before it is then
/// in the zone. Names are cut to 512 units.
///
/// The zone's key stays open on purpose: each zone read leaves one handle behind.
int ReadTimeZoneKey(HKEY zones, const wchar_t* name, NAMESPACE_COMMON::tagZebTimeZone& zone);

/// The first zone of the registry with the standard time of the given one: its name, both biases and the rule
/// of the change to it. Daylight time takes no part. Returns 1, or 0 with an empty zone.
int FindTimeZoneInRegistry(const TIME_ZONE_INFORMATION& information, NAMESPACE_COMMON::tagZebTimeZone& zone);

/// Writes the name that such a zone is offered under, cut to the buffer and with its terminator. Returns 1,
/// or 0 with the buffer left as it was.
int GetTimeZoneDisplayName(const TIME_ZONE_INFORMATION& information, std::span<wchar_t> display);

/// The zone that the machine is in. Its display name is empty if the registry does not list it.
[[nodiscard]] NAMESPACE_COMMON::tagZebTimeZone ReadCurrentTimeZone(const TimeZoneCalls& calls = {});

/// The index of the first zone whose short text is the given one, compared as the platform compares texts;
/// -1 if there is none. The long text of a zone finds no zone.
[[nodiscard]] int FindTimeZoneByText(const TimeZoneTable& table, const wchar_t* text);
