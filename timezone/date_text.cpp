#include "timezone/date_text.h"

#include <chrono>
#include <cstddef>

#include "support/number_text.h"

namespace {

constexpr std::chrono::sys_days kFirstDay = std::chrono::year(1601) / 1 / 1;

/// Puts a number where its digits stand, with zeros in front.
constexpr void PutNumber(wide* place, std::size_t digits, unsigned number) noexcept {
    for (std::size_t i = digits; i-- != 0; number /= 10) {
        place[i] = static_cast<wide>(WIDE('0') + number % 10);
    }
}

}  // namespace

DateTextNumbers CutDateText(WideView text) {
    NAMESPACE_COMMON::CStringEx rest(text);
    DateTextNumbers numbers;
    numbers.year = ReadNumber(rest.NextToken(WIDE("-")));
    numbers.month = ReadNumber(rest.NextToken(WIDE("-")));
    numbers.day = ReadNumber(rest.NextToken(WIDE(" ")));
    numbers.hour = ReadNumber(rest.NextToken(WIDE(":")));
    numbers.minute = ReadNumber(rest.NextToken(WIDE(":")));
    numbers.second = ReadNumber(rest.NextToken(WIDE(":")));
    return numbers;
}

void AppendDayText(CString& text, std::uint32_t minutes) {
    const auto day = std::chrono::floor<std::chrono::days>(kFirstDay + std::chrono::minutes(minutes));
    const std::chrono::year_month_day date(day);
    wide room[] = WIDE("0000/00/00");
    PutNumber(room, 4, static_cast<unsigned>(static_cast<int>(date.year())));
    PutNumber(room + 5, 2, static_cast<unsigned>(date.month()));
    PutNumber(room + 8, 2, static_cast<unsigned>(date.day()));
    text += room;
}

void AppendMomentText(CString& text, std::uint32_t minutes) {
    constexpr std::uint32_t kHourMinutes = 60;
    constexpr std::uint32_t kDayMinutes = 24 * kHourMinutes;
    AppendDayText(text, minutes);
    wide room[] = WIDE(" 00:00:00");
    PutNumber(room + 1, 2, minutes % kDayMinutes / kHourMinutes);
    PutNumber(room + 4, 2, minutes % kHourMinutes);
    text += room;
}
