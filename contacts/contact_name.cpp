#include "contacts/contact_name.h"

#include <cstddef>

namespace {

constexpr bool IsHighSurrogate(wide unit) noexcept {
    return unit >= 0xD800 && unit < 0xDC00;
}

constexpr bool IsLowSurrogate(wide unit) noexcept {
    return unit >= 0xDC00 && unit < 0xE000;
}

/// Appends the character at a place of a text, which can be a pair of units, and a full stop.
void AppendInitial(CString& initials, WideView text, std::size_t place) {
    const bool isPair =
        place + 1 < text.size() && IsHighSurrogate(text[place]) && IsLowSurrogate(text[place + 1]);
    initials.append(text.substr(place, isPair ? 2 : 1));
    initials += WIDE('.');
}

}  // namespace

CString JoinName(const CString& first, const CString& middle, const CString& last) {
    CString name;
    for (const CString* const part : {&first, &middle, &last}) {
        if (!name.empty() && !part->empty()) {
            name += WIDE(' ');
        }
        name += *part;
    }
    return name;
}

CString InitialsOfName(const CString& first, const CString& middle, const CString& last) {
    CString initials;
    if (!first.empty()) {
        AppendInitial(initials, first.View(), 0);
    }
    for (std::size_t i = 0; i < middle.size(); ++i) {
        if (i == 0 || middle[i - 1] == WIDE(' ')) {
            AppendInitial(initials, middle.View(), i);
        }
    }
    if (!last.empty()) {
        AppendInitial(initials, last.View(), 0);
    }
    return initials;
}

std::vector<CString> CutCategories(const CString& text) {
    std::vector<CString> categories;
    WideView rest = text.View();
    while (!rest.empty()) {
        const std::size_t end = rest.find(WIDE(';'));
        categories.emplace_back(rest.substr(0, end));
        rest.remove_prefix(end == WideView::npos ? rest.size() : end + 1);
    }
    return categories;
}
