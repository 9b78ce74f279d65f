#include "desktop/progress_text.h"

#include <algorithm>

CString ProgressText(std::size_t done, std::size_t expected) {
    constexpr std::size_t kBarWidth = 40;
    if (expected == 0) {
        return CString::FromNumber(static_cast<long long>(done));
    }
    const std::size_t filled = std::min(done, expected) * kBarWidth / expected;
    CString text(WIDE("["));
    text.append(filled, WIDE('#'));
    text.append(kBarWidth - filled, WIDE('.'));
    text += WIDE("] ");
    text += CString::FromNumber(static_cast<long long>(done));
    text += WIDE("/");
    text += CString::FromNumber(static_cast<long long>(expected));
    return text;
}
