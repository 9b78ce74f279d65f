#pragma once

// Entry identifiers as text: upper-case hexadecimal, two characters a byte, no separators and no prefix.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "support/text.h"

/// The text of some bytes. Empty for a null pointer or a count of 0.
CString BinaryToHexString(const std::uint8_t* bytes, std::size_t count);

/// The bytes of a text, read more leniently than texts are written: an "x" in front or a "0x" prefix is
/// passed over, and a pair that is no number gives 0 or the value of its first digit. The count is half the
/// length of the whole text, prefix included, so the last bytes of a prefixed text stay zero. Empty for a
/// text of fewer than 2 characters, and when there is no memory.
std::vector<std::uint8_t> HexStringToBinary(WideView text);
