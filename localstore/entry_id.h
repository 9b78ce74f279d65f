#pragma once

// Entry identifiers. They are made of names alone, so the same path gives the same identifier in every run
// and on every machine:
//
//   offset  size  field
//   0       4     flags, zero: usable in every session
//   4       16    the store: the first half of SHA-256 over "profile\store"
//   20      1     version, 1
//   21      1     kind
//   22      1     1 in a long-term identifier of a table, otherwise 0
//   23      1     zero
//   24      16    the folder: the same digest over its path below the store ("" is the top)
//   40      16    the message: the same digest over its file name
//
// A store or root identifier ends behind the first 24 bytes, a folder's behind 40 and a message's behind 56.
// Digests and not the names stand in it because identifiers travel as hexadecimal text of at most 399
// characters; 128 bits make a collision of two names of one folder a matter of no concern. The way back is an
// index of the names that are there.

#include <optional>

#include "localstore/msg_names.h"

namespace localstore {

using NameDigest = std::array<std::uint8_t, 16>;

/// The digest of a name or path, of its 16-bit units as they are.
NameDigest DigestOf(std::basic_string_view<wide> name);

enum class EntryKind : std::uint8_t {
    Store = 1,
    Root = 2,
    Folder = 3,
    Message = 4,
};

struct EntryId {
    NameDigest store{};
    EntryKind kind = EntryKind::Store;
    bool isLongTerm = false;
    NameDigest folder{};
    NameDigest message{};

    [[nodiscard]] Bytes Encode() const;
    /// Nothing unless the bytes are exactly what Encode makes.
    static std::optional<EntryId> Decode(const std::uint8_t* bytes, std::size_t size);

    friend bool operator==(const EntryId&, const EntryId&) = default;
};

/// The longest identifier.
constexpr std::size_t kLongestEntryId = 56;

}  // namespace localstore
