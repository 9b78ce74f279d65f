// The numbers of any text, written as a date text, are read as the same numbers; and a number is the one that
// its digits name.

#include <algorithm>
#include <limits>

#include "support/number_text.h"
#include "tests/fuzz/fuzz_input.h"
#include "timezone/date_text.h"

namespace {

CString Written(const DateTextNumbers& numbers) {
    CString text = CString::FromNumber(numbers.year);
    const auto append = [&text](wide delimiter, std::int32_t number) {
        text += delimiter;
        text += CString::FromNumber(number);
    };
    append(WIDE('-'), numbers.month);
    append(WIDE('-'), numbers.day);
    append(WIDE(' '), numbers.hour);
    append(WIDE(':'), numbers.minute);
    append(WIDE(':'), numbers.second);
    return text;
}

/// The number that a text begins with, in floating point, where it cannot overflow.
double Named(WideView text) {
    std::size_t position = 0;
    while (position < text.size() &&
           (text[position] == WIDE(' ') || (text[position] >= 9 && text[position] <= 13))) {
        ++position;
    }
    double sign = 1.0;
    if (position < text.size() && (text[position] == WIDE('-') || text[position] == WIDE('+'))) {
        sign = text[position] == WIDE('-') ? -1.0 : 1.0;
        ++position;
    }
    double number = 0.0;
    for (; position < text.size() && text[position] >= WIDE('0') && text[position] <= WIDE('9'); ++position) {
        number = number * 10.0 + (text[position] - WIDE('0'));
    }
    return sign * number;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Bytes as units: what matters in a date text is ASCII.
    CString text;
    text.assign(data, data + size);

    const double named = std::clamp<double>(Named(text), std::numeric_limits<std::int32_t>::min(),
                                            std::numeric_limits<std::int32_t>::max());
    Require(ReadNumber(text) == static_cast<std::int32_t>(named));

    // The year and the month lose their sign's hyphen to the delimiter, so only texts without one come back.
    const DateTextNumbers numbers = CutDateText(text);
    Require(numbers.year >= 0 && numbers.month >= 0);
    if (numbers.day >= 0) {
        Require(CutDateText(Written(numbers)) == numbers);
    }
    return 0;
}
