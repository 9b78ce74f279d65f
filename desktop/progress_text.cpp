#include "desktop/progress_text.h"

#include <algorithm>

CString ProgressText(std::size_t done, std::size_t expected) {
    constexpr std::size_t kBarWidth = 40;
    const std::size_t total = std::max<std::size_t>(expected, 1);
    const std::size_t filled = std::min(done, total) * kBarWidth / total;
    CString text(WIDE("["));
    text.append(filled, WIDE('#'));
    text.append(kBarWidth - filled, WIDE('.'));
    text += WIDE("] ");
    text += CString::FromNumber(static_cast<long long>(done));
    text += WIDE("/");
    text += CString::FromNumber(static_cast<long long>(expected));
    return text;
}
