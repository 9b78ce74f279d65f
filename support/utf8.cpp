#include "support/utf8.h"

#include <windows.h>

#include <algorithm>
#include <cstddef>

std::string Utf8FromWide(WideView text) {
    // The platform counts in signed 32 bits, and a unit becomes up to three bytes.
    constexpr std::size_t kLongestPiece = 0x10000000;
    std::string bytes;
    while (!text.empty()) {
        std::size_t length = std::min(text.size(), kLongestPiece);
        const bool cutsPair = length < text.size() && (text[length] & 0xFC00U) == 0xDC00U;
        length -= cutsPair ? 1 : 0;
        const std::size_t done = bytes.size();
        const int units = static_cast<int>(length);
        const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), units, nullptr, 0, nullptr, nullptr);
        bytes.resize(done + static_cast<std::size_t>(size));
        WideCharToMultiByte(CP_UTF8, 0, text.data(), units, bytes.data() + done, size, nullptr, nullptr);
        text.remove_prefix(length);
    }
    return bytes;
}
