// The text of a folder selection, of any content: the calendar part is what a search from the front finds,
// and what is put around an identifier comes off again.

#include "mapi/folder_selection_text.h"
#include "tests/fuzz/fuzz_input.h"

namespace {

constexpr WideView kWhiteSpace = WIDE(" \t\n\v\f\r");

/// The first place of a mark; the length of the text if there is none.
std::size_t PlaceOf(WideView text, WideView mark) {
    std::size_t place = 0;
    while (place < text.size() && !text.substr(place).starts_with(mark)) {
        ++place;
    }
    return place;
}

CString Expected(WideView text) {
    while (!text.empty() && kWhiteSpace.find(text.front()) != WideView::npos) {
        text.remove_prefix(1);
    }
    while (!text.empty() && kWhiteSpace.find(text.back()) != WideView::npos) {
        text.remove_suffix(1);
    }
    const std::size_t begin = PlaceOf(text, WIDE("<event>")) + 7;
    const std::size_t end = PlaceOf(text, WIDE("</event>"));
    if (end == text.size() || end <= begin) {
        return {};
    }
    const CString part(text.substr(begin, end - begin));
    const bool wrapped = text.starts_with(WIDE("<id>")) && text.ends_with(WIDE("</id>"));
    return wrapped ? CString(WIDE("<id>") + part + WIDE("</id>")) : part;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Bytes as units: what matters in a selection is ASCII.
    CString text;
    text.assign(data, data + size);
    Require(ExtractEventFolderId(text) == Expected(text));

    if (text.find(WIDE("event>")) == CString::npos) {
        const CString bare = WIDE("<contact>x</contact><event>") + text + WIDE("</event>");
        Require(ExtractEventFolderId(bare) == text);
        const CString whole = WIDE(" <id>") + bare + WIDE("</id>\r\n");
        const CString id = ExtractEventFolderId(whole);
        Require(id == (text.empty() ? CString() : CString(WIDE("<id>") + text + WIDE("</id>"))));
    }
    return 0;
}
