#include "mapi/hex_text.h"

#include <new>

namespace {

constexpr int kNoDigit = -1;

constexpr int DigitValue(wide unit) noexcept {
    if (unit >= WIDE('0') && unit <= WIDE('9')) {
        return unit - WIDE('0');
    }
    if (unit >= WIDE('A') && unit <= WIDE('F')) {
        return unit - WIDE('A') + 10;
    }
    if (unit >= WIDE('a') && unit <= WIDE('f')) {
        return unit - WIDE('a') + 10;
    }
    return kNoDigit;
}

/// The number in front of the first character that is no digit.
constexpr std::uint8_t PairValue(WideView pair) noexcept {
    int value = 0;
    for (const wide unit : pair) {
        const int digit = DigitValue(unit);
        if (digit == kNoDigit) {
            break;
        }
        value = value * 16 + digit;
    }
    return static_cast<std::uint8_t>(value);
}

constexpr bool IsPrefixLetter(wide unit) noexcept {
    return unit == WIDE('x') || unit == WIDE('X');
}

constexpr std::size_t FirstDigit(WideView text) noexcept {
    if (IsPrefixLetter(text[1])) {
        return 2;
    }
    return IsPrefixLetter(text[0]) ? 1 : 0;
}

}  // namespace

CString BinaryToHexString(const std::uint8_t* bytes, std::size_t count) {
    static constexpr wide kDigits[] = WIDE("0123456789ABCDEF");
    CString text;
    if (bytes == nullptr) {
        return text;
    }
    text.reserve(count * 2);
    for (std::size_t i = 0; i < count; ++i) {
        text += kDigits[bytes[i] >> 4U];
        text += kDigits[bytes[i] & 15U];
    }
    return text;
}

std::vector<std::uint8_t> HexStringToBinary(WideView text) {
    if (text.size() < 2) {
        return {};
    }
    std::vector<std::uint8_t> bytes;
    try {
        bytes.resize(text.size() / 2);
    } catch (const std::bad_alloc&) {
        return {};
    }
    std::size_t position = FirstDigit(text);
    for (std::uint8_t& byte : bytes) {
        if (position >= text.size()) {
            break;
        }
        byte = PairValue(text.substr(position, 2));
        position += 2;
    }
    return bytes;
}
