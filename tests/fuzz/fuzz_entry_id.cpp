// Entry identifiers from bytes of any content: those that have the published layout are read and come back
// byte for byte, and all others are refused.

#include <algorithm>

#include "localstore/entry_id.h"
#include "tests/fuzz/fuzz_input.h"

namespace {

constexpr std::uint8_t kFirstKind = 1;
constexpr std::size_t kSizes[] = {24, 24, 40, 56};

/// The layout of localstore/entry_id.h, looked at byte by byte.
bool IsLaidOut(const std::uint8_t* data, std::size_t size) {
    if (size < kSizes[0]) {
        return false;
    }
    const std::size_t kind = data[21];
    return std::count(data, data + 4, 0) == 4 && data[20] == 1 && data[22] <= 1 && data[23] == 0 &&
           kind >= kFirstKind && kind < kFirstKind + std::size(kSizes) && size == kSizes[kind - kFirstKind];
}

/// An identifier of the names that the text is cut into is one that is read.
void RequireOwn(const CString& text) {
    const WideView view = text;
    localstore::EntryId id;
    id.kind = localstore::EntryKind::Message;
    id.store = localstore::DigestOf(view.substr(0, view.size() / 3));
    id.folder = localstore::DigestOf(view.substr(view.size() / 3));
    id.message = localstore::DigestOf(view);
    id.isLongTerm = !view.empty();
    const localstore::Bytes bytes = id.Encode();
    Require(IsLaidOut(bytes.data(), bytes.size()));
    Require(localstore::EntryId::Decode(bytes.data(), bytes.size()) == id);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::optional<localstore::EntryId> id = localstore::EntryId::Decode(data, size);
    Require(id.has_value() == IsLaidOut(data, size));
    if (id) {
        const localstore::Bytes bytes = id->Encode();
        Require(bytes.size() == size && std::equal(bytes.begin(), bytes.end(), data));
    }
    RequireOwn(TextOf(data, size));
    return 0;
}
