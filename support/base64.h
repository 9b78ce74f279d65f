#pragma once

#include <cstdint>

/// Encodes bytes with the alphabet of RFC 4648, section 4, without line breaks and without a terminator.
/// `capacity` holds the characters that `output` has room for and receives the number written. Returns 1, or
/// 0 with nothing written if the output or the capacity is null or too small. A length of which the fourfold
/// does not fit 31 bits raises 0x80004005.
int Base64Encode(const std::uint8_t* source, std::int32_t length, char* output, std::int32_t* capacity);
