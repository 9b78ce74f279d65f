// What is permitted in XML is a subsequence of the text made of permitted characters only, it is all of them,
// and permitting twice changes nothing. A document type is seen behind any prolog.

#include "support/xml_text.h"
#include "tests/fuzz/fuzz_input.h"

namespace {

/// The code point at a position and the units that it takes; a lone surrogate is one of its own.
std::uint32_t CodePointAt(WideView text, std::size_t position, std::size_t& units) {
    const std::uint32_t first = text[position];
    units = 1;
    if (first >= 0xD800 && first < 0xDC00 && position + 1 < text.size()) {
        const std::uint32_t second = text[position + 1];
        if (second >= 0xDC00 && second < 0xE000) {
            units = 2;
            return 0x10000U + ((first - 0xD800U) << 10) + (second - 0xDC00U);
        }
    }
    return first;
}

/// XML 1.0, production 2.
bool IsChar(std::uint32_t code) {
    return code == 0x9 || code == 0xA || code == 0xD || (code >= 0x20 && code <= 0xD7FF) ||
           (code >= 0xE000 && code <= 0xFFFD) || (code >= 0x10000 && code <= 0x10FFFF);
}

CString PermittedByProduction(WideView text) {
    CString result;
    std::size_t units = 0;
    for (std::size_t i = 0; i < text.size(); i += units) {
        if (IsChar(CodePointAt(text, i, units))) {
            result += text.substr(i, units);
        }
    }
    return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const CString text = TextOf(data, size);
    CString room;
    const WideView permitted = PermittedXmlText(text, room);
    Require(permitted == PermittedByProduction(text).View());
    Require((permitted.data() == text.data()) == (permitted.size() == text.size()));
    CString noRoom;
    Require(PermittedXmlText(permitted, noRoom).data() == permitted.data());

    // A comment around the text cannot hide a document type behind it, unless the text itself ends the
    // comment.
    if (text.find(WIDE("--")) == CString::npos && !text.ends_with(WIDE('-'))) {
        const CString prolog = WIDE("<?xml version='1.0'?><!--") + text + WIDE("-->\n");
        Require(HasDocumentType(CString(prolog + WIDE("<!DOCTYPE a><a/>"))));
        Require(!HasDocumentType(CString(prolog + WIDE("<a/>"))));
    }
    static_cast<void>(HasDocumentType(text));
    return 0;
}
