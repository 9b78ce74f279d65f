// The texts of a contact: no part of a name and no category gets lost, initials are one character of each
// name, and an address of a service is what stands behind its prefix.

#include <algorithm>

#include "contacts/contact_name.h"
#include "contacts/im_address.h"
#include "tests/fuzz/fuzz_input.h"

namespace {

/// The parts of a text between line feeds, up to three.
std::vector<CString> PartsOf(const CString& text) {
    NAMESPACE_COMMON::CStringEx rest(text);
    std::vector<CString> parts(3);
    for (CString& part : parts) {
        part = rest.NextToken(WIDE("\n"));
    }
    return parts;
}

void RequireWholeName(const CString& first, const CString& middle, const CString& last) {
    const CString name = JoinName(first, middle, last);
    CString expected = first;
    for (const CString* const part : {&middle, &last}) {
        if (!expected.empty() && !part->empty()) {
            expected += WIDE(' ');
        }
        expected += *part;
    }
    Require(name == expected);
}

/// Each initial is one unit, or a pair of surrogates, with a full stop behind it.
void RequireInitials(const CString& first, const CString& middle, const CString& last) {
    const CString initials = InitialsOfName(first, middle, last);
    std::size_t names = (first.empty() ? 0U : 1U) + (last.empty() ? 0U : 1U);
    for (std::size_t i = 0; i < middle.size(); ++i) {
        names += i == 0 || middle[i - 1] == WIDE(' ') ? 1U : 0U;
    }
    std::size_t position = 0;
    for (std::size_t name = 0; name < names; ++name) {
        Require(position + 2 <= initials.size());
        position += initials[position + 1] == WIDE('.') ? 2 : 3;
        Require(position <= initials.size() && initials[position - 1] == WIDE('.'));
    }
    Require(position == initials.size());
    Require(first.empty() || initials[0] == first[0]);
}

void RequireAllCategories(const CString& text) {
    CString joined;
    for (const CString& category : CutCategories(text)) {
        Require(category.find(WIDE(';')) == CString::npos);
        joined += category;
        joined += WIDE(';');
    }
    if (!text.ends_with(WIDE(';')) && !text.empty()) {
        Require(joined.ends_with(WIDE(';')));
        joined.pop_back();
    }
    Require(joined == text);
}

void RequireSameAddress(const CString& text) {
    CString address = text;
    const std::int32_t field = SplitIMAddress(address);
    Require(field >= kIMAddressField && field <= 4030);
    const auto* const service = std::find_if(kIMServices.begin(), kIMServices.end(),
                                             [&](const IMService& one) { return one.fieldId == field; });
    Require((service == kIMServices.end()) == (field == kIMAddressField));
    const std::size_t cut = service == kIMServices.end() ? 0 : service->prefix.size();
    Require(address == text.substr(std::min(cut, text.size())));
    Require(cut == 0 || CString(text.substr(0, cut)).EqualsNoCase(service->prefix));
    for (const IMService& one : kIMServices) {
        CString prefixed = CString(one.prefix) + text;
        Require(SplitIMAddress(prefixed) == one.fieldId && prefixed == text);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const CString text = TextOf(data, size);
    const std::vector<CString> parts = PartsOf(text);
    RequireWholeName(parts[0], parts[1], parts[2]);
    RequireInitials(parts[0], parts[1], parts[2]);
    RequireAllCategories(text);
    RequireSameAddress(text);
    return 0;
}
