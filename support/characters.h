#pragma once

// The characters of a text of 16-bit units.

#include "support/wide.h"

/// What stands for a unit that is no character.
constexpr char32_t kReplacementCharacter = 0xFFFD;

/// Takes the first character off a text that is not empty. A lone surrogate counts as U+FFFD.
constexpr char32_t TakeCharacter(WideView& text) noexcept {
    const auto isHighSurrogate = [](wide unit) { return (unit & 0xFC00U) == 0xD800U; };
    const auto isLowSurrogate = [](wide unit) { return (unit & 0xFC00U) == 0xDC00U; };
    const wide first = text.front();
    text.remove_prefix(1);
    if (isHighSurrogate(first) && !text.empty() && isLowSurrogate(text.front())) {
        const char32_t character = 0x10000U + ((first & 0x3FFU) << 10U) + (text.front() & 0x3FFU);
        text.remove_prefix(1);
        return character;
    }
    return isHighSurrogate(first) || isLowSurrogate(first) ? kReplacementCharacter : char32_t{first};
}
