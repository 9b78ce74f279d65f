#pragma once

// Dates as the tests write and read them.

#include "timezone/ole_date_time.h"

/// A calendar time of the platform.
inline SYSTEMTIME Fields(WORD year, WORD month, WORD day, WORD hour = 0, WORD minute = 0, WORD second = 0) {
    return {year, month, 0, day, hour, minute, second, 0};
}

/// A date that must exist.
inline COleDateTime Date(WORD year, WORD month, WORD day, WORD hour = 0, WORD minute = 0, WORD second = 0) {
    COleDateTime date;
    date.SetDateTime(year, month, day, hour, minute, second);
    return date;
}

/// A date as sortable text.
inline CString Text(const COleDateTime& date) {
    return date.Format(L"%Y-%m-%d %H:%M:%S");
}

/// A calendar time as sortable text.
inline CString Text(const SYSTEMTIME& fields) {
    return CString::Format(L"%04d-%02d-%02d %02d:%02d:%02d", fields.wYear, fields.wMonth, fields.wDay,
                           fields.wHour, fields.wMinute, fields.wSecond);
}
