#pragma once

#include <cstdint>
#include <memory>

#include "timezone/zone_text.h"

/// Reads PidLidTimeZoneStruct (MS-OXOCAL 2.2.1.39) into the rules of a zone; its names stay as they are. The
/// years beside the dates do not count: that of each rule is the one in its date. Returns 1, or 0 with the
/// zone left as it was for a null pointer or too few bytes.
int ParseTimeZoneBlob(const std::uint8_t* bytes, std::uint32_t size, NAMESPACE_COMMON::tagZebTimeZone& zone);

/// Lays the rules of a zone out as PidLidTimeZoneStruct; the years beside the dates are those in the dates.
/// Returns 1 with the bytes and their count, which is 48; 0 with both as they were for a null output and if
/// there is no memory.
int WriteTimeZoneBlob(const NAMESPACE_COMMON::tagZebTimeZone& zone, std::unique_ptr<std::uint8_t[]>* bytes,
                      std::uint32_t& size);
