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
    if (bytes == nullptr || size < kHead) {
        return std::nullopt;
    }
    const bool hasKind = bytes[kKindAt] >= static_cast<std::uint8_t>(EntryKind::Store) &&
                         bytes[kKindAt] <= static_cast<std::uint8_t>(EntryKind::Message);
    const bool isUsual = std::all_of(bytes, bytes + kFlags, [](std::uint8_t flag) { return flag == 0; }) &&
                         bytes[kVersionAt] == kVersion && bytes[kFormAt] <= 1 && bytes[kFormAt + 1] == 0;
    if (!hasKind || !isUsual) {
        return std::nullopt;
    }
    EntryId id;
    id.kind = static_cast<EntryKind>(bytes[kKindAt]);
    if (size != SizeOf(id.kind)) {
        return std::nullopt;
    }
    id.isLongTerm = bytes[kFormAt] == 1;
    std::copy_n(bytes + kFlags, kDigest, id.store.begin());
    if (size > kHead) {
        std::copy_n(bytes + kHead, kDigest, id.folder.begin());
    }
    if (size > kHead + kDigest) {
        std::copy_n(bytes + kHead + kDigest, kDigest, id.message.begin());
    }
    return id;
}

}  // namespace localstore
