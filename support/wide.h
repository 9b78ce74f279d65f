#pragma once

// The 16-bit text unit of every text in the program. Windows calls it wchar_t; natively, where wchar_t has 32
// bits, it is char16_t, so that lengths are counted in the same units in both builds.

#include <string_view>

#ifdef _WIN32
using wide = wchar_t;
#define WIDE(text) L##text
#else
using wide = char16_t;
#define WIDE(text) u##text
#endif

static_assert(sizeof(wide) == 2);

using WideView = std::basic_string_view<wide>;
