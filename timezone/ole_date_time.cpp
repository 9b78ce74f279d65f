#include "timezone/ole_date_time.h"

#include <algorithm>
#include <cmath>
#include <limits>

bool COleDateTime::operator>=(const COleDateTime& other) const noexcept {
    if (m_status != other.m_status) {
        return false;
    }
    if (m_status == kDateValid) {
        return LinearFromDate(m_dt) > LinearFromDate(other.m_dt) || m_dt == other.m_dt;
    }
    return m_status == kDateNull;
}

double LinearFromDate(double date) noexcept {
    if (date >= 0.0) {
        return date;
    }
    const double whole = std::ceil(date);
    return whole - (date - whole);
}

double DateFromLinear(double linear) noexcept {
    if (linear >= 0.0) {
        return linear;
    }
    const double whole = std::floor(linear);
    return (whole - linear) + whole;
}

double AddSpan(double date, double days) noexcept {
    return DateFromLinear(LinearFromDate(date) + days);
}

double SubtractSpan(double date, double days) noexcept {
    return DateFromLinear(LinearFromDate(date) - days);
}

double DateDifference(double date, double earlier) noexcept {
    return LinearFromDate(date) - LinearFromDate(earlier);
}

std::int32_t WholeMinutes(double days) noexcept {
    constexpr double kHalfSecond = 5.787037037037037e-6;
    constexpr double kMinutesPerDay = 1440.0;
    const double minutes = (days >= 0.0 ? days + kHalfSecond : days - kHalfSecond) * kMinutesPerDay;
    if (std::isnan(minutes)) {
        return 0;
    }
    return static_cast<std::int32_t>(std::clamp<double>(minutes, std::numeric_limits<std::int32_t>::min(),
                                                        std::numeric_limits<std::int32_t>::max()));
}
