// The tokens of any text, put together again with their separator, are the text, and none holds the
// separator; and two texts are equal without regard to case if they are equal in lower case.

#include <algorithm>

#include "tests/fuzz/fuzz_input.h"

namespace {

void RequireTokensMakeTheText(const CString& text, WideView separator) {
    NAMESPACE_COMMON::CStringEx rest(text);
    CString joined;
    bool more = true;
    while (more) {
        // A separator that stands in the text is cut off with its token; without one the token is the end.
        more = rest.find(separator) != CString::npos;
        const CString token = rest.NextToken(separator);
        Require(token.find(separator) == CString::npos);
        joined += token;
        if (more) {
            joined += separator;
        }
    }
    Require(rest.empty());
    Require(joined == text);
}

CString LowerCase(CString text) {
    for (wide& unit : text) {
        unit = unit >= WIDE('A') && unit <= WIDE('Z') ? static_cast<wide>(unit + 32) : unit;
    }
    return text;
}

void RequireEqualWithoutCase(const CString& left, const CString& right) {
    Require(left.EqualsNoCase(right) == (LowerCase(left) == LowerCase(right)));
    Require(left.EqualsNoCase(LowerCase(left)) && LowerCase(right).EqualsNoCase(right));
}

void RequireTrimmed(const CString& text) {
    constexpr WideView kWhiteSpace = WIDE(" \t\n\v\f\r");
    CString trimmed = text;
    trimmed.Trim();
    const std::size_t first = text.find_first_not_of(kWhiteSpace);
    const std::size_t last = text.find_last_not_of(kWhiteSpace);
    Require(trimmed == (first == CString::npos ? CString() : CString(text.substr(first, last - first + 1))));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const CString input = TextOf(data, size);
    // The separator is the beginning of the input: its first unit says how long it is.
    const std::size_t length = input.empty() ? 0 : std::min<std::size_t>(input[0] % 4U, input.size() - 1);
    const CString separator(input.substr(input.empty() ? 0 : 1, length));
    const CString text(input.substr(std::min(input.size(), length + 1)));
    RequireTrimmed(text);
    RequireEqualWithoutCase(CString(text.substr(0, separator.size())), separator);
    RequireEqualWithoutCase(separator, text);
    if (separator.empty()) {
        NAMESPACE_COMMON::CStringEx whole(text);
        Require(whole.NextToken(separator) == text && whole == text);
    } else {
        RequireTokensMakeTheText(text, separator);
    }
    return 0;
}
