#include "desktop/item_file_name.h"

#include <cstdint>

#include "support/fnv.h"

namespace {

/// A hash of a text as sixteen hexadecimal digits.
CString HashText(WideView text) {
    const std::uint64_t hash = Fnv1a(text);
    constexpr WideView kDigits = WIDE("0123456789abcdef");
    CString digits;
    for (int shift = 60; shift >= 0; shift -= 4) {
        digits += kDigits[hash >> shift & 15U];
    }
    return digits;
}

}  // namespace

CString ItemFileNames::Next(WideView identifier) {
    const CString stem(m_kind + WIDE("-") + HashText(identifier));
    CString name = stem;
    for (int number = 2; !m_given.insert(name).second; ++number) {
        name = stem + WIDE("-") + CString::FromNumber(number);
    }
    return {name + WIDE(".xml")};
}
