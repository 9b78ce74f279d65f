#pragma once

// The platform's calendar time and file time, under their published names and layouts, for code that is also
// built natively.

#ifdef _WIN32
#include <windef.h>

// Behind the base types, which it uses.
#include <minwinbase.h>
#else
#include <cstdint>

using WORD = std::uint16_t;
using DWORD = std::uint32_t;

struct SYSTEMTIME {
    WORD wYear;
    WORD wMonth;
    WORD wDayOfWeek;
    WORD wDay;
    WORD wHour;
    WORD wMinute;
    WORD wSecond;
    WORD wMilliseconds;
};

struct FILETIME {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};
#endif
