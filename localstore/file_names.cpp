#include "localstore/file_names.h"

#include <algorithm>
#include <array>

namespace localstore {

namespace {

using View = std::basic_string_view<wide>;

constexpr std::size_t kLongestName = 80;

wide UpperCase(wide unit) {
    return unit >= WIDE('a') && unit <= WIDE('z') ? static_cast<wide>(unit - WIDE('a') + WIDE('A')) : unit;
}

bool EqualsNoCase(View left, View right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](wide one, wide other) { return UpperCase(one) == UpperCase(other); });
}

bool IsForbidden(wide unit) {
    return unit < 0x20 || unit == 0x7F || View(WIDE("<>:\"/\\|?*")).find(unit) != View::npos;
}

bool IsSurrogate(wide unit) {
    return (unit & 0xF800) == 0xD800;
}

/// The platform takes raised digits for digits here.
bool IsDeviceDigit(wide unit) {
    return View(WIDE("0123456789\u00B9\u00B2\u00B3")).find(unit) != View::npos;
}

/// Device names are taken whatever the extension, and with blanks in front of it.
bool IsDeviceName(View name) {
    constexpr std::array<View, 4> plain = {WIDE("CON"), WIDE("PRN"), WIDE("AUX"), WIDE("NUL")};
    View stem = name.substr(0, name.find(WIDE('.')));
    stem = stem.substr(0, stem.find_last_not_of(WIDE(' ')) + 1);
    const bool isPlain =
        std::any_of(plain.begin(), plain.end(), [&](View one) { return EqualsNoCase(stem, one); });
    return isPlain ||
           (stem.size() == 4 && IsDeviceDigit(stem[3]) &&
            (EqualsNoCase(stem.substr(0, 3), WIDE("COM")) || EqualsNoCase(stem.substr(0, 3), WIDE("LPT"))));
}

}  // namespace

bool IsMessageFileName(View name) {
    return name.size() > 4 && EqualsNoCase(name.substr(name.size() - 4), WIDE(".msg"));
}

Text FileNameOfTitle(View title) {
    Text name;
    for (const wide unit : title.substr(0, kLongestName)) {
        // Surrogates are left out one by one: a cut could part a pair, and a lone one is no valid name
        // everywhere.
        if (!IsSurrogate(unit)) {
            name.push_back(IsForbidden(unit) ? WIDE('_') : unit);
        }
    }
    // Leading points and blanks hide a file or get lost.
    name.erase(0, std::min(name.find_first_not_of(WIDE(" .")), name.size()));
    if (IsDeviceName(name)) {
        name.insert(name.begin(), WIDE('_'));
        name.resize(std::min(name.size(), kLongestName));
    }
    while (!name.empty() && (name.back() == WIDE(' ') || name.back() == WIDE('.'))) {
        name.pop_back();
    }
    return name.empty() ? WIDE("Message") : name;
}

}  // namespace localstore
