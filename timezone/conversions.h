#pragma once

// How the forms of a time turn into each other. Between local time and UTC the machine's current zone
// decides, as the platform reports it at that moment. Nothing here logs.

#include <windows.h>

#include <cstdint>

#include "timezone/ole_date_time.h"

/// The platform functions that the conversions between local time and UTC look up, so that a platform without
/// them can be had in a test.
struct TimeZoneCalls {
    decltype(&::GetTimeZoneInformation) getTimeZoneInformation = &::GetTimeZoneInformation;
    decltype(&::LoadLibraryW) loadLibrary = &::LoadLibraryW;
    decltype(&::GetProcAddress) getProcAddress = &::GetProcAddress;
};

/// UTC to local time. If the zone cannot be asked for, the date stays as it was. A platform that cannot
/// convert gets the zone's bias alone, without daylight saving.
void UtcSystemTimeToLocalDateTime(const SYSTEMTIME& utc, COleDateTime& local,
                                  const TimeZoneCalls& calls = {});

/// Local time to UTC, with the same two exceptions. A date that is not valid leaves the output as it was.
void LocalDateTimeToUtcSystemTime(const COleDateTime& local, SYSTEMTIME& utc,
                                  const TimeZoneCalls& calls = {});

/// A file time of the store, which is UTC, to local time; with the exceptions of
/// UtcSystemTimeToLocalDateTime.
void FileTimeToLocalDateTime(const FILETIME& utc, COleDateTime& local);

/// Local time to a file time for the store, which is UTC; zero for a date that has none.
[[nodiscard]] FILETIME LocalDateTimeToFileTime(const COleDateTime& local);

/// Writes the date at 00:00:00. Invalid if there is no such date; a null output raises 0x80004005.
void MakeDateOnly(WORD year, WORD month, WORD day, COleDateTime* date);

/// The calendar date of a value.
struct DateParts {
    int year = -1;
    int month = -1;
    int day = -1;
};

/// Splits a value into year, month and day: -1 for each if the value is not valid or out of the calendar's
/// range.
[[nodiscard]] DateParts SplitDate(const COleDateTime& date);

/// The date of a value at 00:00:00; invalid for one that has no date.
[[nodiscard]] COleDateTime MidnightOf(const COleDateTime& date);

/// The minutes from 1601-01-01 to the midnight of a date, both local; 0 for a date that is not valid.
[[nodiscard]] std::uint32_t MinutesSince1601(const COleDateTime& date);

/// Writes the date of some minutes since 1601-01-01, both local. A null output raises 0x80004005.
void MinutesToDateTime(std::uint32_t minutes, COleDateTime* date);

/// Reads a text of the form year-month-day hour:minute:second. An empty text and a text that is no date give
/// the value that stands for no date.
[[nodiscard]] COleDateTime ParseDateTimeText(WideView text);
