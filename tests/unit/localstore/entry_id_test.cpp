#include "localstore/entry_id.h"

#include <gtest/gtest.h>

#include "localstore/sha256.h"

using namespace localstore;

namespace {

Bytes Ascii(std::string_view text) {
    return {text.begin(), text.end()};
}

std::string Hex(const std::array<std::uint8_t, 32>& digest) {
    std::string text;
    for (const std::uint8_t byte : digest) {
        constexpr char digits[] = "0123456789abcdef";
        text += digits[byte >> 4U];
        text += digits[byte & 15U];
    }
    return text;
}

EntryId SomeMessage() {
    EntryId id;
    id.store = DigestOf(WIDE("Work\\Mail"));
    id.kind = EntryKind::Message;
    id.folder = DigestOf(WIDE("Contacts"));
    id.message = DigestOf(WIDE("John Doe.msg"));
    return id;
}

}  // namespace

TEST(Sha256, GivesThePublishedDigests) {
    EXPECT_EQ(Hex(Sha256({})), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(Hex(Sha256(Ascii("abc"))), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(Hex(Sha256(Ascii("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"))),
              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
    EXPECT_EQ(Hex(Sha256(Bytes(1'000'000, 'a'))),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(EntryIdOfTheStore, ComesBackFromItsBytes) {
    for (const EntryKind kind : {EntryKind::Store, EntryKind::Root}) {
        EntryId id;
        id.store = DigestOf(WIDE("Work\\Mail"));
        id.kind = kind;
        const Bytes bytes = id.Encode();
        EXPECT_EQ(bytes.size(), 24U);
        EXPECT_EQ(EntryId::Decode(bytes.data(), bytes.size()), id);
    }
    EntryId folder = SomeMessage();
    folder.kind = EntryKind::Folder;
    folder.message = {};
    const Bytes folderBytes = folder.Encode();
    EXPECT_EQ(folderBytes.size(), 40U);
    EXPECT_EQ(EntryId::Decode(folderBytes.data(), folderBytes.size()), folder);
    const Bytes messageBytes = SomeMessage().Encode();
    EXPECT_EQ(messageBytes.size(), 56U);
    EXPECT_EQ(EntryId::Decode(messageBytes.data(), messageBytes.size()), SomeMessage());
}

TEST(EntryIdOfTheStore, IsTheSameInEveryRun) {
    // The bytes themselves: identifiers are kept by programs for years.
    EXPECT_EQ(Hex(Sha256(SomeMessage().Encode())),
              "b3dfd764716a9b06c5b20c40581675369e078abc0284e49e85f151d85f76c58f");
    EXPECT_EQ(SomeMessage().Encode()[20], 1);
}

TEST(EntryIdOfTheStore, LongTermFormDiffersInOneByte) {
    EntryId longTerm = SomeMessage();
    longTerm.isLongTerm = true;
    Bytes bytes = longTerm.Encode();
    EXPECT_EQ(EntryId::Decode(bytes.data(), bytes.size()), longTerm);
    bytes[22] = 0;
    EXPECT_EQ(bytes, SomeMessage().Encode());
}

TEST(EntryIdOfTheStore, RefusesAKindThatThereIsNot) {
    for (const int kind : {0, 5, 255}) {
        Bytes bytes = SomeMessage().Encode();
        bytes[21] = static_cast<std::uint8_t>(kind);
        EXPECT_FALSE(EntryId::Decode(bytes.data(), bytes.size())) << kind;
    }
}

TEST(EntryIdOfTheStore, IsAnotherOneWithAnyOtherField) {
    std::array<EntryId, 5> others{};
    others.fill(SomeMessage());
    others[0].store[15] ^= 1U;
    others[1].kind = EntryKind::Folder;
    others[2].isLongTerm = true;
    others[3].folder[0] ^= 1U;
    others[4].message[7] ^= 1U;
    for (const EntryId& other : others) {
        EXPECT_NE(other, SomeMessage());
        EXPECT_NE(other.Encode(), SomeMessage().Encode());
    }
}

TEST(EntryIdOfTheStore, RefusesEveryOtherLength) {
    const Bytes bytes = SomeMessage().Encode();
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        EXPECT_FALSE(EntryId::Decode(bytes.data(), size)) << size;
    }
    Bytes longer = bytes;
    longer.push_back(0);
    EXPECT_FALSE(EntryId::Decode(longer.data(), longer.size()));
    EXPECT_FALSE(EntryId::Decode(nullptr, 0));
}

TEST(EntryIdOfTheStore, RefusesTheLengthOfAnotherKind) {
    for (const EntryKind kind : {EntryKind::Store, EntryKind::Root, EntryKind::Folder}) {
        Bytes bytes = SomeMessage().Encode();
        bytes[21] = static_cast<std::uint8_t>(kind);
        const std::size_t right = kind == EntryKind::Folder ? 40 : 24;
        for (std::size_t size = 0; size <= bytes.size(); ++size) {
            EXPECT_EQ(EntryId::Decode(bytes.data(), size).has_value(), size == right) << size;
        }
    }
}

TEST(EntryIdOfTheStore, RefusesAnyChangeOfItsHead) {
    const Bytes bytes = SomeMessage().Encode();
    for (const std::size_t offset : {0U, 1U, 2U, 3U, 20U, 21U, 22U, 23U}) {
        Bytes changed = bytes;
        changed[offset] ^= 0x40U;
        EXPECT_FALSE(EntryId::Decode(changed.data(), changed.size())) << offset;
    }
}

TEST(EntryIdOfTheStore, TellsNamesApartThatDifferInCaseOnly) {
    EXPECT_NE(DigestOf(WIDE("a")), DigestOf(WIDE("A")));
    EXPECT_NE(DigestOf(WIDE("")), DigestOf(WIDE("a")));
}
