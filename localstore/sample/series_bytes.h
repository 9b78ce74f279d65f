#pragma once

// A series as the recurrence property of an appointment lays it out (MS-OXOCAL 2.2.1.44.5).

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sample {

/// The kinds of series, each with its frequency and pattern.
enum class SeriesKind { Days, Weekdays, Weeks, DayOfMonth, NthOfMonth, DayOfYear, NthOfYear };

/// The days of a week as bits.
enum DayBits : std::uint32_t {
    kSunday = 1,
    kMonday = 2,
    kTuesday = 4,
    kWednesday = 8,
    kThursday = 16,
    kFriday = 32
};
constexpr std::uint32_t kWorkDays = 62;
constexpr std::uint32_t kLastWeek = 5;

/// A changed instance. What is not set is that of the series.
struct SampleChange {
    const wchar_t* day = L"";    ///< of the series, "2026-03-02"
    const wchar_t* moved = L"";  ///< its new start, "2026-03-03 09:00"
    std::uint32_t minutes = 0;
    std::optional<std::wstring> subject{};
    std::optional<std::wstring> location{};
    std::optional<std::uint32_t> meetingType{};
    std::optional<std::uint32_t> reminderMinutes{};
    std::optional<std::uint32_t> reminderSet{};
    std::optional<std::uint32_t> busy{};
    std::optional<std::uint32_t> attachment{};
    std::optional<std::uint32_t> wholeDay{};
    std::optional<std::uint32_t> color{};
};

/// A series of an appointment.
struct SampleSeries {
    SeriesKind kind = SeriesKind::Weeks;
    std::uint32_t every = 1;         ///< days, weeks, months or years apart
    std::uint32_t days = 0;          ///< of the week, as bits
    std::uint32_t nth = 0;           ///< which of these days in the month
    std::uint32_t day = 0;           ///< of the month
    const wchar_t* until = nullptr;  ///< its last day, "2026-06-25"; null for a series that never ends
    std::uint32_t times = 0;         ///< how often, if the count ends it
    std::vector<const wchar_t*> deleted{};
    std::vector<SampleChange> changes{};
};

/// The number by which a store knows the kind: 1 daily to 4 yearly.
long RecurrenceType(SeriesKind kind);

/// The property of a series whose first instance begins at a time such as "2026-03-02 09:00".
std::vector<unsigned char> SeriesBytes(const SampleSeries& series, const std::wstring& start,
                                       std::uint32_t minutes);

}  // namespace sample
