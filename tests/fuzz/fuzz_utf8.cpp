// The UTF-8 of any text: a decoder gives the text back, but U+FFFD for each lone surrogate.

#include <string>

#include "support/utf8.h"
#include "tests/fuzz/fuzz_input.h"

namespace {

/// The character at the front of UTF-8, which is removed. The form has to be the shortest one (RFC 3629).
std::uint32_t TakeEncoded(std::string_view& bytes) {
    const auto first = static_cast<std::uint8_t>(bytes.front());
    std::size_t length = 1;
    for (const std::uint32_t lead : {0xC0U, 0xE0U, 0xF0U}) {
        length += first >= lead ? 1U : 0U;
    }
    constexpr std::uint32_t leads[] = {0, 0xC0, 0xE0, 0xF0};
    constexpr std::uint32_t least[] = {0, 0x80, 0x800, 0x10000};
    Require(bytes.size() >= length && (length > 1 || first < 0x80));
    std::uint32_t character = first - leads[length - 1];
    for (std::size_t i = 1; i < length; ++i) {
        const auto byte = static_cast<std::uint8_t>(bytes[i]);
        Require(byte >= 0x80 && byte <= 0xBF);
        character = character * 64 + (byte - 0x80U);
    }
    Require(character >= least[length - 1] && character <= 0x10FFFF);
    bytes.remove_prefix(length);
    return character;
}

CString Decoded(std::string_view bytes) {
    CString text;
    while (!bytes.empty()) {
        const std::uint32_t character = TakeEncoded(bytes);
        if (character >= 0x10000) {
            text += static_cast<wide>(0xD800 + (character - 0x10000) / 0x400);
            text += static_cast<wide>(0xDC00 + (character - 0x10000) % 0x400);
        } else {
            Require(character < 0xD800 || character > 0xDFFF);
            text += static_cast<wide>(character);
        }
    }
    return text;
}

/// The text with U+FFFD in place of each surrogate that does not stand in a pair.
CString WithoutHalves(CString text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool high = text[i] >= 0xD800 && text[i] <= 0xDBFF;
        if (high && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] <= 0xDFFF) {
            ++i;
        } else if (text[i] >= 0xD800 && text[i] <= 0xDFFF) {
            text[i] = 0xFFFD;
        }
    }
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const CString text = TextOf(data, size);
    Require(Decoded(Utf8FromWide(text)) == WithoutHalves(text));
    return 0;
}
