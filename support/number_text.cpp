#include "support/number_text.h"

#include <algorithm>
#include <cstddef>
#include <limits>

std::int32_t ReadNumber(WideView text) noexcept {
    constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
    constexpr std::int64_t kLeast = std::numeric_limits<std::int32_t>::min();

    text.remove_prefix(std::min(text.find_first_not_of(WIDE(" \t\n\v\f\r")), text.size()));
    const bool negative = text.starts_with(WIDE('-'));
    if (negative || text.starts_with(WIDE('+'))) {
        text.remove_prefix(1);
    }
    std::int64_t number = 0;
    for (const wide unit : text) {
        if (unit < WIDE('0') || unit > WIDE('9')) {
            break;
        }
        // Held just above the largest value, so that no number of digits overflows and both ends clamp.
        number = std::min(number * 10 + (unit - WIDE('0')), kMost + 1);
    }
    return static_cast<std::int32_t>(negative ? std::max(-number, kLeast) : std::min(number, kMost));
}
