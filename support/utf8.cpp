#include "support/utf8.h"

#include "support/characters.h"

namespace {

/// The byte behind the first one of a character that holds its bits from `shift` on.
char Continuation(char32_t character, unsigned shift) {
    return static_cast<char>(0x80U | (character >> shift & 0x3FU));
}

}  // namespace

std::string Utf8FromWide(WideView text) {
    std::string bytes;
    bytes.reserve(text.size());
    while (!text.empty()) {
        const char32_t character = TakeCharacter(text);
        if (character < 0x80) {
            bytes += static_cast<char>(character);
        } else if (character < 0x800) {
            bytes += static_cast<char>(0xC0U | character >> 6U);
            bytes += Continuation(character, 0);
        } else if (character < 0x10000) {
            bytes += static_cast<char>(0xE0U | character >> 12U);
            bytes += Continuation(character, 6);
            bytes += Continuation(character, 0);
        } else {
            bytes += static_cast<char>(0xF0U | character >> 18U);
            bytes += Continuation(character, 12);
            bytes += Continuation(character, 6);
            bytes += Continuation(character, 0);
        }
    }
    return bytes;
}
