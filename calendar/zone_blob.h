#pragma once

#include <cstdint>

#include "timezone/zone_text.h"

/// Reads PidLidTimeZoneStruct (MS-OXOCAL 2.2.1.39) into the rules of a zone; its names stay as they are. The
/// years beside the dates do not count: that of each rule is the one in its date. Returns 1, or 0 with the
/// zone left as it was for a null pointer or too few bytes.
int ParseTimeZoneBlob(const std::uint8_t* bytes, std::uint32_t size, NAMESPACE_COMMON::tagZebTimeZone& zone);
