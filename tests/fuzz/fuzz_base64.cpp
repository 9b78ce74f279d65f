// The base64 of any bytes has the length that RFC 4648 gives it, decodes to them, and never writes past its
// capacity.

#include <string>
#include <vector>

#include "support/base64.h"
#include "tests/fuzz/fuzz_input.h"

namespace {

/// The value of a character of the alphabet; 64 for any other.
unsigned SextetOf(char character) {
    static const std::string kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const std::size_t position = kAlphabet.find(character);
    return position == std::string::npos ? 64U : static_cast<unsigned>(position);
}

std::vector<std::uint8_t> Decode(const std::string& text) {
    std::vector<std::uint8_t> bytes;
    unsigned bits = 0;
    unsigned count = 0;
    for (const char character : text.substr(0, text.find('='))) {
        const unsigned sextet = SextetOf(character);
        Require(sextet < 64);
        bits = (bits << 6 | sextet) & 0xFFFFU;
        count += 6;
        if (count >= 8) {
            count -= 8;
            bytes.push_back(static_cast<std::uint8_t>(bits >> count & 0xFFU));
        }
    }
    Require((bits & ((1U << count) - 1)) == 0);
    return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::size_t needed = (size + 2) / 3 * 4;
    std::string text(needed, '.');
    auto capacity = static_cast<std::int32_t>(needed);
    Require(Base64Encode(data, static_cast<std::int32_t>(size), text.data(), &capacity) == 1);
    Require(static_cast<std::size_t>(capacity) == needed);
    Require(Decode(text) == std::vector<std::uint8_t>(data, data + size));

    if (needed > 0) {
        const std::string before(needed - 1, '.');
        std::string tooSmall = before;
        capacity = static_cast<std::int32_t>(needed - 1);
        Require(Base64Encode(data, static_cast<std::int32_t>(size), tooSmall.data(), &capacity) == 0);
        Require(tooSmall == before);
    }
    return 0;
}
