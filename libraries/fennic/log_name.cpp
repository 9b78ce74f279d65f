#include "libraries/fennic/log_name.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace {

constexpr std::size_t kLongestModule = 100;
constexpr wide kReplacement = WIDE('_');

/// Surrogates are replaced too, in pairs or alone: a file system need not take a lone one, and a cut could
/// make one.
bool FitsFileName(wide unit) {
    constexpr WideView kForbidden = WIDE("<>:\"/\\|?*\x7F");
    const bool surrogate = unit >= 0xD800 && unit <= 0xDFFF;
    return unit >= WIDE(' ') && !surrogate && kForbidden.find(unit) == WideView::npos;
}

/// True for the names that the platform takes for devices, whatever extension follows.
bool IsDeviceName(const CString& name) {
    constexpr std::array<WideView, 4> kDevices{WIDE("CON"), WIDE("PRN"), WIDE("AUX"), WIDE("NUL")};
    CString stem(name.View().substr(0, name.find(WIDE('.'))));
    stem.Trim();
    // The platform takes raised digits for digits here.
    constexpr WideView kDigits = WIDE("0123456789\u00B9\u00B2\u00B3");
    const bool numbered = stem.size() == 4 && kDigits.find(stem[3]) != WideView::npos;
    if (numbered) {
        stem.pop_back();
        return stem.EqualsNoCase(WIDE("COM")) || stem.EqualsNoCase(WIDE("LPT"));
    }
    return std::any_of(kDevices.begin(), kDevices.end(),
                       [&](WideView device) { return stem.EqualsNoCase(device); });
}

}  // namespace

CString LogFileName(WideView module) {
    CString name(module.substr(0, kLongestModule));
    std::replace_if(
        name.begin(), name.end(), [](wide unit) { return !FitsFileName(unit); }, kReplacement);
    if (name.find_first_not_of(WIDE(". ")) == CString::npos) {
        name = WIDE("unnamed");
    }
    if (IsDeviceName(name)) {
        name.insert(name.begin(), kReplacement);
    }
    return {name + WIDE(".log")};
}
