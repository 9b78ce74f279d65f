#include "support/base64.h"

#include <cstddef>

#include "support/errors.h"

namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::int32_t kLineLength = 76;

/// The room that is asked for before anything is written.
constexpr std::int32_t RequiredLength(std::int32_t length) {
    const std::int32_t base = length * 4 / 3 + length % 3;
    const std::int32_t rest = base % kLineLength;
    return base - rest + (rest + 3) / 4 * 4;
}

/// Writes the four characters of one to three bytes and returns the position behind them.
char* EncodeGroup(const std::uint8_t* source, std::int32_t count, char* output) {
    const std::uint32_t bits = static_cast<std::uint32_t>(source[0]) << 16 |
                               (count > 1 ? static_cast<std::uint32_t>(source[1]) << 8 : 0U) |
                               (count > 2 ? static_cast<std::uint32_t>(source[2]) : 0U);
    output[0] = kAlphabet[bits >> 18];
    output[1] = kAlphabet[bits >> 12 & 63U];
    output[2] = count > 1 ? kAlphabet[bits >> 6 & 63U] : '=';
    output[3] = count > 2 ? kAlphabet[bits & 63U] : '=';
    return output + 4;
}

}  // namespace

int Base64Encode(const std::uint8_t* source, std::int32_t length, char* output, std::int32_t* capacity) {
    if (output == nullptr || capacity == nullptr) {
        return 0;
    }
    if (length < 0 || static_cast<std::int64_t>(length) * 4 > INT32_MAX) {
        RaiseComError(kErrorFail);
    }
    if (*capacity < RequiredLength(length)) {
        return 0;
    }
    char* position = output;
    for (std::int32_t done = 0; done < length; done += 3) {
        position = EncodeGroup(source + done, length - done, position);
    }
    *capacity = static_cast<std::int32_t>(position - output);
    return 1;
}
