#include "support/text.h"

#include <algorithm>

#ifdef _WIN32
#include <cstdarg>
#include <cstdio>
#include <stdexcept>
#endif

namespace {

constexpr WideView kWhiteSpace = WIDE(" \t\n\v\f\r");

constexpr wide LowerAscii(wide unit) noexcept {
    return unit >= WIDE('A') && unit <= WIDE('Z') ? static_cast<wide>(unit - WIDE('A') + WIDE('a')) : unit;
}

}  // namespace

CString& CString::Trim() {
    const std::size_t last = find_last_not_of(kWhiteSpace);
    if (last == npos) {
        clear();
        return *this;
    }
    erase(last + 1);
    erase(0, find_first_not_of(kWhiteSpace));
    return *this;
}

bool CString::EqualsNoCase(WideView other) const noexcept {
    return std::equal(begin(), end(), other.begin(), other.end(),
                      [](wide a, wide b) { return LowerAscii(a) == LowerAscii(b); });
}

CString CString::FromNumber(long long number) {
    const std::string digits = std::to_string(number);
    CString text;
    text.assign(digits.begin(), digits.end());
    return text;
}

#ifdef _WIN32
CString CString::Format(const wide* format, ...) {
    std::va_list arguments = nullptr;
    va_start(arguments, format);
    std::va_list again = nullptr;
    va_copy(again, arguments);
    const int length = _vscwprintf(format, arguments);
    va_end(arguments);
    if (length < 0) {
        va_end(again);
        throw std::invalid_argument("text format");
    }
    CString text;
    text.resize(static_cast<std::size_t>(length));
    // The platform's own function, for in it %s always means a text of wide characters.
    _vsnwprintf(text.data(), text.size(), format, again);
    va_end(again);
    return text;
}
#endif

namespace NAMESPACE_COMMON {

CString CStringEx::NextToken(WideView separator) {
    if (separator.empty()) {
        return {View()};
    }
    const std::size_t position = find(separator);
    CString token = substr(0, position);
    erase(0, position == npos ? npos : position + separator.size());
    return token;
}

}  // namespace NAMESPACE_COMMON
