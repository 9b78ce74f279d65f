#pragma once

#include <cstdint>

#include "support/wide.h"

/// The number at the beginning of a text, read as _wtoi reads it: white space, one sign, decimal digits, and
/// an end at the first unit that is no digit. 0 without a digit. A number outside 32 bits becomes the nearest
/// one inside.
[[nodiscard]] std::int32_t ReadNumber(WideView text) noexcept;
