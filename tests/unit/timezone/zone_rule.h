#pragma once

// Local time and UTC by arithmetic of the tests' own, from the calendar and from a zone's rule: neither the
// agent's conversions nor the platform's have a part in it.

#include <windows.h>

#include <chrono>
#include <cstdint>

#include "support/text.h"

/// A time of a zone's clocks.
using LocalTime = std::chrono::local_seconds;

/// A time of the clocks, which must be one of the calendar.
inline LocalTime At(int year, unsigned month, unsigned day, int hour = 0, int minute = 0, int second = 0) {
    using namespace std::chrono;
    return local_days(std::chrono::year(year) / static_cast<int>(month) / static_cast<int>(day)) +
           hours(hour) + minutes(minute) + seconds(second);
}

/// A time, local or UTC, as sortable text; it is also what records hold.
template<class Clock>
CString TimeText(const std::chrono::time_point<Clock, std::chrono::seconds>& time) {
    using namespace std::chrono;
    const auto day = floor<days>(time);
    const year_month_day date{local_days(day.time_since_epoch())};
    const hh_mm_ss clock{time - day};
    return CString::Format(L"%04d-%02u-%02u %02d:%02d:%02d", static_cast<int>(date.year()),
                           static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                           static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                           static_cast<int>(clock.seconds().count()));
}

/// A time in UTC as a store has it: steps of 100 nanoseconds since 1601.
inline std::uint64_t FileTimeOf(const std::chrono::sys_seconds& utc) {
    using namespace std::chrono;
    const sys_days first = year(1601) / January / 1;
    return static_cast<std::uint64_t>((utc - first).count()) * 10000000;
}

/// The clocks of a zone: by how much they differ from UTC, and when they are put forward and back.
class ZoneRule {
  public:
    explicit ZoneRule(const TIME_ZONE_INFORMATION& zone) : m_zone(zone) {}
    /// The rule of the zone that this process is in.
    static ZoneRule OfThisProcess() {
        TIME_ZONE_INFORMATION zone{};
        GetTimeZoneInformation(&zone);
        return ZoneRule(zone);
    }

    [[nodiscard]] bool HasChanges() const { return m_zone.DaylightDate.wMonth != 0; }
    /// A year that the rule holds for: the given one, or the one that it names. A platform has no other for a
    /// zone that it does not list.
    [[nodiscard]] int YearOr(int year) const {
        return m_zone.DaylightDate.wYear == 0 ? year : m_zone.DaylightDate.wYear;
    }
    /// By how much the clocks are put forward.
    [[nodiscard]] std::chrono::minutes Amount() const {
        return std::chrono::minutes(HasChanges() ? m_zone.StandardBias - m_zone.DaylightBias : 0);
    }
    /// The time at which the clocks are put forward in a year, which they then do not show.
    [[nodiscard]] LocalTime Forward(int year) const { return Change(year, m_zone.DaylightDate); }
    /// The time at which they are put back, which they then show once more an amount earlier.
    [[nodiscard]] LocalTime Back(int year) const { return Change(year, m_zone.StandardDate); }
    /// False for a time that the clocks leave out or show twice, which may become either of two times in UTC.
    [[nodiscard]] bool IsOneTime(const LocalTime& local) const {
        const int year = YearOf(local);
        return !HasChanges() || !((local >= Forward(year) && local < Forward(year) + Amount()) ||
                                  (local >= Back(year) - Amount() && local < Back(year)));
    }
    [[nodiscard]] std::chrono::sys_seconds ToUtc(const LocalTime& local) const {
        const long bias = m_zone.Bias + (IsDaylightTime(local) ? m_zone.DaylightBias : m_zone.StandardBias);
        return std::chrono::sys_seconds(local.time_since_epoch() + std::chrono::minutes(bias));
    }

  private:
    static int YearOf(const LocalTime& local) {
        using namespace std::chrono;
        return static_cast<int>(year_month_day(floor<days>(local)).year());
    }
    /// A rule for each year names a weekday of a month by its number there, or by 5 for the last one; a rule
    /// for one year names the day.
    static LocalTime Change(int year, const SYSTEMTIME& rule) {
        using namespace std::chrono;
        const weekday day(rule.wDayOfWeek);
        const year_month month = std::chrono::year(year) / std::chrono::month(rule.wMonth);
        const local_days date = rule.wYear != 0  ? local_days(month / std::chrono::day(rule.wDay))
                                : rule.wDay == 5 ? local_days(month / day[last])
                                                 : local_days(month / day[rule.wDay]);
        return date + hours(rule.wHour) + minutes(rule.wMinute) + seconds(rule.wSecond);
    }
    [[nodiscard]] bool IsDaylightTime(const LocalTime& local) const {
        if (!HasChanges()) {
            return false;
        }
        const LocalTime forward = Forward(YearOf(local));
        const LocalTime back = Back(YearOf(local));
        // South of the equator, the year begins in summer.
        return forward < back ? local >= forward && local < back : local >= forward || local < back;
    }

    TIME_ZONE_INFORMATION m_zone;
};
