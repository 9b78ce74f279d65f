#include "desktop/text_cell.h"

#include <algorithm>
#include <iterator>

#include "desktop/character_widths.h"

namespace {

constexpr char32_t kReplacementCharacter = 0xFFFD;
constexpr wide kEllipsis = 0x2026;

constexpr bool IsHighSurrogate(wide unit) {
    return (unit & 0xFC00U) == 0xD800U;
}
constexpr bool IsLowSurrogate(wide unit) {
    return (unit & 0xFC00U) == 0xDC00U;
}

/// Takes the first character off a text that is not empty. A lone surrogate counts as U+FFFD.
char32_t TakeCharacter(WideView& text) {
    const wide first = text.front();
    if (IsHighSurrogate(first) && text.size() > 1 && IsLowSurrogate(text[1])) {
        const char32_t character = 0x10000U + ((first & 0x3FFU) << 10U) + (text[1] & 0x3FFU);
        text.remove_prefix(2);
        return character;
    }
    text.remove_prefix(1);
    return IsHighSurrogate(first) || IsLowSurrogate(first) ? kReplacementCharacter : char32_t{first};
}

template<std::size_t count>
bool IsIn(const CodePointRange (&ranges)[count], char32_t character) {
    const auto* range =
        std::lower_bound(std::begin(ranges), std::end(ranges), character,
                         [](const CodePointRange& item, char32_t value) { return item.last < value; });
    return range != std::end(ranges) && character >= range->first;
}

std::size_t CharacterWidth(char32_t character) {
    if (IsIn(kZeroWidth, character)) {
        return 0;
    }
    return IsIn(kDoubleWidth, character) ? 2 : 1;
}

/// C0 and C1 controls, and the separators that begin a new line.
constexpr bool IsControl(char32_t character) {
    return character < 0x20 || (character >= 0x7F && character <= 0x9F) || character == 0x2028 ||
           character == 0x2029;
}

/// Embeddings, overrides and isolates (UAX #9), which outlast the text that they stand in. Plain marks do
/// not.
constexpr bool TurnsDirection(char32_t character) {
    return (character >= 0x202A && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069);
}

}  // namespace

std::size_t DisplayWidth(WideView text) {
    std::size_t width = 0;
    while (!text.empty()) {
        width += CharacterWidth(TakeCharacter(text));
    }
    return width;
}

CString PrintableText(WideView text) {
    CString printable;
    printable.reserve(text.size());
    while (!text.empty()) {
        const WideView rest = text;
        const char32_t character = TakeCharacter(text);
        if (IsControl(character)) {
            printable += WIDE(' ');
        } else if (character == kReplacementCharacter) {
            printable += static_cast<wide>(kReplacementCharacter);
        } else if (!TurnsDirection(character)) {
            printable += rest.substr(0, rest.size() - text.size());
        }
    }
    return printable;
}

CString FitText(WideView text, std::size_t width) {
    CString fitted(text);
    const std::size_t whole = DisplayWidth(text);
    if (whole <= width) {
        fitted.append(width - whole, WIDE(' '));
        return fitted;
    }
    if (width == 0) {
        return {};
    }
    std::size_t used = 0;
    WideView rest = text;
    std::size_t length = 0;
    while (!rest.empty()) {
        used += CharacterWidth(TakeCharacter(rest));
        if (used > width - 1) {
            break;
        }
        length = text.size() - rest.size();
    }
    fitted.resize(length);
    fitted += kEllipsis;
    fitted.append(width - DisplayWidth(fitted.View()), WIDE(' '));
    return fitted;
}
