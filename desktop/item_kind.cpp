#include "desktop/item_kind.h"

#include <windows.h>

#include <rpc.h>

#include <algorithm>
#include <iterator>

#include "desktop/contact_row.h"

extern "C" {
#include "command.h"
}

namespace {

constexpr ItemKind kKinds[] = {
    {L"contacts", L"contact", L"Contact", "[contact pim]", GetContactCount, SetContactFolder, ReadContacts,
     WriteContacts, ContactHeadings, ContactRow},
};

}  // namespace

const ItemKind* FindItemKind(WideView word) {
    const auto* kind = std::find_if(std::begin(kKinds), std::end(kKinds),
                                    [word](const ItemKind& candidate) { return word == candidate.word; });
    return kind == std::end(kKinds) ? nullptr : kind;
}
