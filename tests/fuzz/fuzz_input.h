#pragma once

// What the fuzz targets share: the bytes of the fuzzer as text, and a check that ends the run.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "support/text.h"

/// Ends the run, which makes the fuzzer keep the input, unless the property holds.
inline void Require(bool property) {
    if (!property) {
        std::abort();
    }
}

/// Pairs of bytes as 16-bit units, the low byte first. A last byte without a partner does not count.
inline CString TextOf(const std::uint8_t* data, std::size_t size) {
    CString text;
    for (std::size_t i = 0; i + 1 < size; i += 2) {
        text += static_cast<wide>(data[i] | data[i + 1] << 8);
    }
    return text;
}

/// A text of ASCII characters in 16-bit units.
inline CString TextOfAscii(std::string_view ascii) {
    CString text;
    text.assign(ascii.begin(), ascii.end());
    return text;
}
