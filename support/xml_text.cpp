#include "support/xml_text.h"

#include <cstddef>

namespace {

constexpr WideView kXmlSpace = WIDE(" \t\r\n");

constexpr bool IsHighSurrogate(wide unit) noexcept {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
constexpr bool IsLowSurrogate(wide unit) noexcept {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// The number of units of the permitted character at a position: 1, 2 for a surrogate pair, 0 where there is
/// none.
std::size_t PermittedUnits(WideView text, std::size_t position) noexcept {
    const wide unit = text[position];
    if (unit < 0x20) {
        return unit == WIDE('\t') || unit == WIDE('\n') || unit == WIDE('\r') ? 1 : 0;
    }
    if (unit < 0xD800) {
        return 1;
    }
    if (IsHighSurrogate(unit)) {
        return position + 1 < text.size() && IsLowSurrogate(text[position + 1]) ? 2 : 0;
    }
    return IsLowSurrogate(unit) || unit >= 0xFFFE ? 0 : 1;
}

/// True if all units are white space or lie between the control characters and the surrogates, as those of
/// nearly every text. Without a branch for each unit, so that the compiler can look at several at once.
bool IsPlain(WideView text) noexcept {
    wide others = 0;
    for (const wide unit : text) {
        const bool isSpace = (unit == WIDE('\t')) | (unit == WIDE('\n')) | (unit == WIDE('\r'));
        const bool isControl = unit < 0x20;
        const bool isFromSurrogates = unit >= 0xD800;
        others |= static_cast<wide>((isControl && !isSpace) || isFromSurrogates);
    }
    return others == 0;
}

/// The position of the first unit at or behind `position` that is not part of a permitted character.
std::size_t EndOfPermitted(WideView text, std::size_t position) noexcept {
    while (position < text.size()) {
        const std::size_t units = PermittedUnits(text, position);
        if (units == 0) {
            break;
        }
        position += units;
    }
    return position;
}

/// The position behind the first occurrence of `end`, or the end of the text.
std::size_t Behind(WideView text, WideView end, std::size_t position) noexcept {
    const std::size_t found = text.find(end, position);
    return found == WideView::npos ? text.size() : found + end.size();
}

}  // namespace

WideView PermittedXmlText(WideView text, CString& room) {
    if (IsPlain(text)) {
        return text;
    }
    std::size_t position = EndOfPermitted(text, 0);
    if (position == text.size()) {
        return text;
    }
    room.assign(text.substr(0, position));
    room.reserve(text.size() - 1);
    while (position < text.size()) {
        const std::size_t begin = position + 1;
        position = EndOfPermitted(text, begin);
        room.append(text.substr(begin, position - begin));
    }
    return room.View();
}

bool HasDocumentType(WideView document) noexcept {
    constexpr WideView kComment = WIDE("<!--");
    constexpr WideView kInstruction = WIDE("<?");
    constexpr wide kByteOrderMark = 0xFEFF;

    std::size_t position = document.starts_with(kByteOrderMark) ? 1 : 0;
    while ((position = document.find_first_not_of(kXmlSpace, position)) != WideView::npos) {
        const WideView rest = document.substr(position);
        if (rest.starts_with(kComment)) {
            position = Behind(document, WIDE("-->"), position + kComment.size());
        } else if (rest.starts_with(kInstruction)) {
            position = Behind(document, WIDE("?>"), position + kInstruction.size());
        } else {
            return rest.starts_with(WIDE("<!DOCTYPE"));
        }
    }
    return false;
}
