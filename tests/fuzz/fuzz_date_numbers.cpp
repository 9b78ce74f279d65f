// Dates as floating-point numbers of any bits: the linear form and the date lead to each other, whole minutes
// are those of a wider number, and the order of dates is that of their times.

#include <cmath>
#include <cstring>
#include <limits>

#include "tests/fuzz/fuzz_input.h"
#include "timezone/ole_date_time.h"

namespace {

double NumberAt(const std::uint8_t* data, std::size_t size, std::size_t place) {
    double number = 0.0;
    if (size >= place + sizeof(number)) {
        std::memcpy(&number, data + place, sizeof(number));
    }
    return number;
}

/// Seconds since 1899-12-30 00:00: the part in front of the point counts days in either direction, and the
/// part behind it the time of day, which always runs forwards.
long double SecondsOf(double date) {
    long double days = 0.0L;
    const long double time = std::modf(static_cast<long double>(date), &days);
    return (days + std::fabs(time)) * 86400.0L;
}

/// Half a second more, and what is no whole minute is left out.
long long PlainMinutes(double days) {
    constexpr long double kMost = std::numeric_limits<std::int32_t>::max();
    constexpr long double kLeast = std::numeric_limits<std::int32_t>::min();
    const long double seconds = static_cast<long double>(days) * 86400.0L;
    const long double minutes = (seconds + (days < 0 ? -0.5L : 0.5L)) / 60.0L;
    return static_cast<long long>(std::fmin(std::fmax(minutes, kLeast), kMost));
}

void RequireMinutes(double days) {
    const std::int32_t minutes = WholeMinutes(days);
    if (std::isnan(days)) {
        Require(minutes == 0);
        return;
    }
    const long long plain = PlainMinutes(days);
    // Half a second in front of a minute, the two may round to either side of it.
    Require(std::abs(plain - minutes) <= 1);
    const long double past = std::fabs(static_cast<long double>(days) * 86400.0L) + 0.5L;
    const long double rest = std::fmod(past, 60.0L);
    if (std::isfinite(days) && rest > 0.001L && rest < 59.999L) {
        Require(plain == minutes);
    }
}

bool IsDate(double date) {
    // Where a day still has seconds, and beyond each date that a calendar has.
    return std::fabs(date) < 3e6;
}

/// Of a day before the epoch, a time that is too near to its end to be told from it becomes the midnight of
/// another day: that is the form of such dates, which has no digit more.
bool IsAtMidnight(double linear) {
    constexpr double kNearest = 1e-8;
    return std::fabs(linear - std::round(linear)) < kNearest;
}

void RequireTimes(double date) {
    constexpr double kSecond = 1.0 / 86400.0;
    const double linear = LinearFromDate(date);
    if (IsAtMidnight(linear) || IsAtMidnight(linear + 0.5)) {
        return;
    }
    Require(std::fabs(static_cast<long double>(linear) * 86400.0L - SecondsOf(date)) < 0.001L);
    const double again = DateFromLinear(linear);
    Require(std::fabs(LinearFromDate(again) - linear) < kSecond / 1000);
    Require(std::fabs(DateDifference(AddSpan(date, 1.5), date) - 1.5) < kSecond / 1000);
    Require(std::fabs(DateDifference(SubtractSpan(date, 1.5), date) + 1.5) < kSecond / 1000);
}

void RequireOrder(double left, double right) {
    constexpr long double kMillisecond = 0.001L;
    const COleDateTime first{left, kDateValid};
    const COleDateTime second{right, kDateValid};
    if (std::fabs(SecondsOf(left) - SecondsOf(right)) > kMillisecond) {
        Require((first >= second) == (SecondsOf(left) > SecondsOf(right)));
    }
    const COleDateTime same = first;
    Require(first >= same);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const double first = NumberAt(data, size, 0);
    const double second = NumberAt(data, size, sizeof(double));
    RequireMinutes(first);
    RequireMinutes(second);
    RequireMinutes(DateDifference(first, second));
    if (IsDate(first) && IsDate(second)) {
        RequireTimes(first);
        RequireTimes(second);
        RequireOrder(first, second);
    }
    return 0;
}
