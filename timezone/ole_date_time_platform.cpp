#include "timezone/ole_date_time.h"

// Behind the base headers.
#include <oleauto.h>

#include <ctime>
#include <cwchar>
#include <iterator>
#include <span>

#include "support/errors.h"

namespace {

/// True if the platform's calendar turns the date into exactly the fields that it was made from.
bool ComesBackAs(const SYSTEMTIME& fields, double date) {
    SYSTEMTIME back = {};
    return VariantTimeToSystemTime(date, &back) != FALSE && back.wYear == fields.wYear &&
           back.wMonth == fields.wMonth && back.wDay == fields.wDay && back.wHour == fields.wHour &&
           back.wMinute == fields.wMinute && back.wSecond == fields.wSecond;
}

std::tm CalendarTimeOf(const UDATE& date) {
    std::tm fields = {};
    fields.tm_sec = date.st.wSecond;
    fields.tm_min = date.st.wMinute;
    fields.tm_hour = date.st.wHour;
    fields.tm_mday = date.st.wDay;
    fields.tm_mon = date.st.wMonth - 1;
    fields.tm_year = date.st.wYear - 1900;
    fields.tm_wday = date.st.wDayOfWeek;
    fields.tm_yday = date.wDayOfYear - 1;
    return fields;
}

/// A number of a date and with how many digits it is written; none for a directive that is left to wcsftime.
struct DateNumber {
    WORD number;
    int digits;
};

DateNumber NumberOf(const SYSTEMTIME& date, wchar_t directive) {
    switch (directive) {
        case L'Y':
            return {date.wYear, date.wYear < 1000 ? 0 : 4};
        case L'm':
            return {date.wMonth, 2};
        case L'd':
            return {date.wDay, 2};
        case L'H':
            return {date.wHour, 2};
        case L'M':
            return {date.wMinute, 2};
        case L'S':
            return {date.wSecond, 2};
        default:
            return {0, 0};
    }
}

/// Writes a date after a format that has no directives but these, as wcsftime does in any locale. A read
/// writes several dates an item, and wcsftime takes most of the time of one. Returns the length; 0 for what
/// is left to wcsftime, which is also a text that does not fit.
std::size_t WriteNumbers(std::span<wchar_t> text, const wchar_t* format, const SYSTEMTIME& date) {
    std::size_t length = 0;
    for (; *format != L'\0'; ++format) {
        const bool isDirective = *format == L'%';
        const DateNumber number = isDirective ? NumberOf(date, *++format) : DateNumber{0, 1};
        const auto digits = static_cast<std::size_t>(number.digits);
        if (digits == 0 || text.size() - length <= digits) {
            return 0;
        }
        if (!isDirective) {
            text[length] = *format;
        }
        unsigned rest = number.number;
        for (std::size_t i = digits; isDirective && i-- != 0; rest /= 10) {
            text[length + i] = static_cast<wchar_t>(L'0' + rest % 10);
        }
        length += digits;
    }
    return length;
}

}  // namespace

std::int32_t COleDateTime::SetDateTime(WORD year, WORD month, WORD day, WORD hour, WORD minute, WORD second) {
    SYSTEMTIME fields = {};
    fields.wYear = year;
    fields.wMonth = month;
    fields.wDay = day;
    fields.wHour = hour;
    fields.wMinute = minute;
    fields.wSecond = second;
    const bool valid = SystemTimeToVariantTime(&fields, &m_dt) != FALSE && ComesBackAs(fields, m_dt);
    m_status = valid ? kDateValid : kDateInvalid;
    return m_status;
}

COleDateTime COleDateTime::GetCurrentTime() {
    COleDateTime now;
    const __time64_t seconds = _time64(nullptr);
    std::tm fields = {};
    if (_localtime64_s(&fields, &seconds) != 0) {
        now.m_status = kDateInvalid;
        return now;
    }
    now.SetDateTime(static_cast<WORD>(fields.tm_year + 1900), static_cast<WORD>(fields.tm_mon + 1),
                    static_cast<WORD>(fields.tm_mday), static_cast<WORD>(fields.tm_hour),
                    static_cast<WORD>(fields.tm_min), static_cast<WORD>(fields.tm_sec));
    return now;
}

CString COleDateTime::Format(const wchar_t* format) const {
    if (format == nullptr) {
        RaiseComError(kErrorInvalidArgument);
    }
    if (m_status == kDateNull) {
        return {};
    }
    UDATE date = {};
    if (m_status == kDateInvalid || FAILED(VarUdateFromDate(m_dt, 0, &date))) {
        return L"Invalid DateTime";
    }
    wchar_t text[256] = {};
    const std::size_t written = WriteNumbers(text, format, date.st);
    if (written != 0) {
        return {text, written};
    }
    const std::tm fields = CalendarTimeOf(date);
    const std::size_t length = std::wcsftime(text, std::size(text), format, &fields);
    // A text that fills the buffer is one that did not fit, though not every platform says so by 0.
    return length < std::size(text) ? CString(text, length) : CString();
}
