#pragma once

// How GoogleTest prints a text of this project: ASCII as it is, any other unit as its number.

#include <iomanip>
#include <ostream>

#include "support/text.h"

inline void PrintTo(const CString& text, std::ostream* out) {
    *out << '"';
    for (const wide unit : text) {
        if (unit >= 0x20 && unit < 0x7F) {
            *out << static_cast<char>(unit);
        } else {
            *out << "\\u" << std::hex << std::setw(4) << std::setfill('0') << static_cast<unsigned>(unit)
                 << std::dec;
        }
    }
    *out << '"';
}
