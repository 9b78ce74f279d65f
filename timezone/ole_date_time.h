#pragma once

// Dates as the class library holds them: an OLE automation date with a status.

#include <cstdint>

#include "support/plain_time.h"
#include "support/text.h"

#ifdef _WIN32
#include <windows.h>
// The base header makes this name a macro for GetTickCount.
#undef GetCurrentTime
#endif

/// The statuses of a COleDateTime.
constexpr std::int32_t kDateValid = 0;
constexpr std::int32_t kDateInvalid = 1;
constexpr std::int32_t kDateNull = 2;

/// A date and time. A new one is 0.0 and valid, which stands for no date and also for 1899-12-30 00:00:00.
struct COleDateTime {
    /// Days since 1899-12-30 00:00, the fraction being the time of day (OLE automation date).
    double m_dt = 0.0;
    std::int32_t m_status = kDateValid;

    /// True for the value that stands for no date.
    [[nodiscard]] bool IsNoDate() const noexcept { return m_status == kDateValid && m_dt == 0.0; }

    /// Not before the other. False if the statuses differ and for two invalid dates; true for two null dates.
    [[nodiscard]] bool operator>=(const COleDateTime& other) const noexcept;

#ifdef _WIN32
    /// Sets the date and time and returns the new status: valid only if the platform's calendar gives back
    /// exactly these fields. A date that the platform refuses leaves m_dt as it was.
    std::int32_t SetDateTime(WORD year, WORD month, WORD day, WORD hour, WORD minute, WORD second);

    /// The local time now, or an invalid date.
    [[nodiscard]] static COleDateTime GetCurrentTime();

    /// The text of the date after a format of wcsftime, at most 255 units, else empty. A null date is empty,
    /// and one that is invalid or out of range is "Invalid DateTime". A null format raises 0x80070057.
    [[nodiscard]] CString Format(const wchar_t* format) const;
#endif
};

// OLE automation dates below 0.0 run backwards within a day: -1.5 is 1899-12-29 12:00. Every sum, difference
// and order therefore goes through a linear form, in which the distance of two values is the distance of the
// times.

/// The linear form of an OLE automation date.
[[nodiscard]] double LinearFromDate(double date) noexcept;

/// The OLE automation date of a linear form.
[[nodiscard]] double DateFromLinear(double linear) noexcept;

/// A span of time in days.
[[nodiscard]] constexpr double DaysOf(std::int32_t days, std::int32_t hours, std::int32_t minutes,
                                      std::int32_t seconds) noexcept {
    return days + hours / 24.0 + minutes / 1440.0 + seconds / 86400.0;
}

/// An OLE automation date some days later.
[[nodiscard]] double AddSpan(double date, double days) noexcept;

/// An OLE automation date some days earlier.
[[nodiscard]] double SubtractSpan(double date, double days) noexcept;

/// The days from the second OLE automation date to the first.
[[nodiscard]] double DateDifference(double date, double earlier) noexcept;

/// The whole minutes of a difference in days, with half a second of tolerance, truncated towards zero. A
/// difference beyond 32 bits gives the nearest value inside, and one that is not a number gives 0.
[[nodiscard]] std::int32_t WholeMinutes(double days) noexcept;
