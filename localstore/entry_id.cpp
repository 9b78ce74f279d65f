#include "localstore/entry_id.h"

#include <algorithm>

#include "localstore/sha256.h"

namespace localstore {

namespace {

constexpr std::size_t kFlags = 4;
constexpr std::size_t kDigest = 16;
constexpr std::size_t kVersionAt = 20;
constexpr std::size_t kKindAt = 21;
constexpr std::size_t kFormAt = 22;
constexpr std::size_t kHead = 24;
constexpr std::uint8_t kVersion = 1;

std::size_t SizeOf(EntryKind kind) {
    switch (kind) {
        case EntryKind::Folder:
            return kHead + kDigest;
        case EntryKind::Message:
            return kHead + 2 * kDigest;
        default:
            return kHead;
    }
}

}  // namespace

NameDigest DigestOf(std::basic_string_view<wide> name) {
    const std::array<std::uint8_t, 32> whole = Sha256(BytesOfText(name));
    NameDigest digest{};
    std::copy_n(whole.begin(), digest.size(), digest.begin());
    return digest;
}

Bytes EntryId::Encode() const {
    Bytes bytes(kLongestEntryId);
    std::copy(store.begin(), store.end(), bytes.begin() + kFlags);
    bytes[kVersionAt] = kVersion;
    bytes[kKindAt] = static_cast<std::uint8_t>(kind);
    bytes[kFormAt] = isLongTerm ? 1 : 0;
    std::copy(folder.begin(), folder.end(), bytes.begin() + kHead);
    std::copy(message.begin(), message.end(), bytes.begin() + kHead + kDigest);
    bytes.resize(SizeOf(kind));
    return bytes;
}

std::optional<EntryId> EntryId::Decode(const std::uint8_t* bytes, std::size_t size) {
    if (bytes == nullptr || size < kHead || size > kLongestEntryId) {
        return std::nullopt;
    }
    Bytes whole(bytes, bytes + size);
    EntryId id;
    id.kind = static_cast<EntryKind>(whole[kKindAt]);
    if (whole[kKindAt] < static_cast<std::uint8_t>(EntryKind::Store) ||
        whole[kKindAt] > static_cast<std::uint8_t>(EntryKind::Message)) {
        return std::nullopt;
    }
    id.isLongTerm = whole[kFormAt] == 1;
    std::copy_n(bytes + kFlags, kDigest, id.store.begin());
    whole.resize(kLongestEntryId);
    std::copy_n(whole.begin() + kHead, kDigest, id.folder.begin());
    std::copy_n(whole.begin() + kHead + kDigest, kDigest, id.message.begin());
    const Bytes again = id.Encode();
    return again.size() == size && std::equal(again.begin(), again.end(), bytes) ? std::optional(id)
                                                                                 : std::nullopt;
}

}  // namespace localstore
