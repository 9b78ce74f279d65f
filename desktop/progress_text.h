#pragma once

#include <cstddef>

#include "support/text.h"

/// A progress bar of fixed width: "[######..........]  3/10". More done than was expected shows as a full
/// bar, and with nothing expected there is none: "3".
CString ProgressText(std::size_t done, std::size_t expected);
