#include "localstore/msg_names.h"

#include <gtest/gtest.h>

#include "localstore/little_endian.h"
#include "localstore/msg_properties.h"
#include "tests/unit/localstore/scarce_memory.h"

using namespace localstore;

namespace {

constexpr GuidBytes kAddress = {0x04, 0x20, 0x06, 0, 0, 0, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46};

PropertyName Number(const GuidBytes& set, std::uint32_t number) {
    PropertyName name;
    name.set = set;
    name.number = number;
    return name;
}

PropertyName Word(const GuidBytes& set, const wide* text) {
    PropertyName name;
    name.set = set;
    name.isText = true;
    name.text = text;
    return name;
}

NameMap Again(const NameMap& names) {
    StorageTree top;
    names.AddTo(top);
    NameMap read;
    EXPECT_TRUE(read.Take(top));
    EXPECT_TRUE(top.storages.empty());
    return read;
}

/// A mapping with raw streams.
StorageTree Raw(const Bytes& sets, const Bytes& entries, const Bytes& texts) {
    StorageTree top;
    StorageTree& names = top.storages[kNamesStorageName];
    names.AddStream(ValueStreamName(0x00020102), sets);
    names.AddStream(ValueStreamName(0x00030102), entries);
    names.AddStream(ValueStreamName(0x00040102), texts);
    return top;
}

Bytes Entry(std::uint32_t value, std::uint16_t kindAndSet, std::uint16_t index) {
    Bytes bytes;
    AppendU32(bytes, value);
    AppendU16(bytes, kindAndSet);
    AppendU16(bytes, index);
    return bytes;
}

}  // namespace

TEST(NameMap, NumbersNamesFrom8000) {
    NameMap names;
    EXPECT_EQ(names.Add(Number(kAddress, 0x8005), 0), 0x8000);
    EXPECT_EQ(names.Add(Word(kPropertySetPublicStrings, WIDE("Keywords")), 0), 0x8001);
    EXPECT_EQ(names.Add(Number(kAddress, 0x8005), 0), 0x8000);
    EXPECT_EQ(names.NameOf(0x8001)->text, WIDE("Keywords"));
    EXPECT_EQ(names.NameOf(0x8002), nullptr);
}

TEST(NameMap, ComesBackFromItsStorage) {
    NameMap names;
    names.Add(Number(kAddress, 0x8005), 0);
    names.Add(Word(kPropertySetPublicStrings, WIDE("Keywords")), 0);
    names.Add(Word(kAddress, WIDE("odd")), 0);
    names.Add(Number(kPropertySetMapi, 0x9000), 0);
    const NameMap read = Again(names);
    EXPECT_EQ(read.IdOfName(Number(kAddress, 0x8005)), 0x8000);
    EXPECT_EQ(read.IdOfName(Word(kPropertySetPublicStrings, WIDE("Keywords"))), 0x8001);
    EXPECT_EQ(read.IdOfName(Word(kAddress, WIDE("odd"))), 0x8002);
    EXPECT_EQ(read.IdOfName(Number(kPropertySetMapi, 0x9000)), 0x8003);
}

TEST(NameMap, WritesLookUpStreamsAsPublished) {
    NameMap names;
    names.Add(Number(kAddress, 0x8010), 0);
    StorageTree top;
    names.AddTo(top);
    // Set number 3 and kind 0 make 6; 0x8010 ^ 6 is 0x8016, and that modulo 31 is 0x17.
    const StorageTree& storage = top.storages[kNamesStorageName];
    const auto stream = storage.streams.find(ValueStreamName(0x10170102));
    ASSERT_NE(stream, storage.streams.end());
    EXPECT_EQ(*stream->second, Entry(0x8010, 6, 0));
}

TEST(NameMap, KeepsTheStorageThatItReadAsLongAsNothingIsAdded) {
    StorageTree top = Raw(Bytes(16, 1), Entry(7, 6, 0), {});
    top.storages[kNamesStorageName].AddStream(WIDE("unknown"), {1, 2, 3});
    const StorageTree before = top;
    NameMap names;
    ASSERT_TRUE(names.Take(top));
    names.Add(Number(GuidBytes{1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}, 7), 0);
    StorageTree after;
    names.AddTo(after);
    EXPECT_EQ(after, before);
}

TEST(NameMap, KeepsIdentifiersWhenANameIsAdded) {
    Bytes entries = Entry(5, 6, 0);
    const Bytes broken = Entry(500, 0x0201, 1);
    const Bytes third = Entry(6, 4, 2);
    entries.insert(entries.end(), broken.begin(), broken.end());
    entries.insert(entries.end(), third.begin(), third.end());
    StorageTree top = Raw(Bytes(16, 9), entries, {});
    NameMap names;
    ASSERT_TRUE(names.Take(top));
    EXPECT_EQ(names.Add(Number(kAddress, 1), 0), 0x8003);
    const NameMap read = Again(names);
    EXPECT_EQ(read.NameOf(0x8000)->number, 5U);
    EXPECT_EQ(read.NameOf(0x8001), nullptr);
    EXPECT_EQ(read.NameOf(0x8002)->set, kPropertySetPublicStrings);
    EXPECT_EQ(read.IdOfName(Number(kAddress, 1)), 0x8003);
}

TEST(NameMap, GivesDamagedEntriesNoMeaningWhenANameIsAdded) {
    // The third set and the first text are not there yet; the name that is added brings both.
    StorageTree top = Raw({}, Entry(0, 7, 0), {});
    NameMap names;
    ASSERT_TRUE(names.Take(top));
    const std::optional<PropertyId> id = names.Add(Word(kAddress, WIDE("added")), 0);
    const NameMap read = Again(names);
    EXPECT_EQ(read.NameOf(0x8000), nullptr);
    EXPECT_EQ(read.IdOfName(Word(kAddress, WIDE("added"))), id);
}

TEST(NameMap, HasNoHalfNameWhereMemoryIsScarce) {
    const PropertyName first = Number(kAddress, 1);
    const PropertyName added = Word(kAddress, WIDE("a text that is too long to stand in its own object"));
    bool failed = true;
    for (std::size_t n = 1; failed; ++n) {
        NameMap names;
        names.Add(first, 0);
        {
            const localstore_test::ScarceMemory scarce(n, false);
            try {
                names.Add(added, 0);
            } catch (const std::bad_alloc&) {
            }
            failed = scarce.HasFailed();
        }
        if (failed) {
            EXPECT_FALSE(names.IdOfName(added)) << n;
            EXPECT_EQ(names.NameOf(0x8001), nullptr) << n;
            EXPECT_EQ(Again(names).NameOf(0x8001), nullptr) << n;
        }
        // A failure takes nothing away from the next try.
        EXPECT_EQ(names.Add(added, 0), 0x8001) << n;
        EXPECT_EQ(Again(names).IdOfName(added), 0x8001) << n;
        EXPECT_EQ(Again(names).IdOfName(first), 0x8000) << n;
    }
}

TEST(NameMap, GivesNoIdentifierThatTheFileUsesWithoutAName) {
    NameMap names;
    EXPECT_EQ(names.Add(Number(kAddress, 1), 0x8123), 0x8123);
    EXPECT_EQ(names.Add(Number(kAddress, 2), 0x8000), 0x8124);
    EXPECT_EQ(Again(names).IdOfName(Number(kAddress, 2)), 0x8124);
}

TEST(NameMap, ReadsDamagedEntriesAsNoNames) {
    Bytes texts;
    AppendU32(texts, 0xFFFFFFFF);
    AppendU32(texts, 1);
    texts.push_back('a');
    const struct {
        const char* what;
        Bytes entry;
    } cases[] = {
        {"set beyond the stream", Entry(5, 4 * 2, 0)},       {"set 0", Entry(5, 0, 0)},
        {"text beyond the stream", Entry(0xFFFFFFF0, 5, 0)}, {"text longer than the stream", Entry(0, 5, 0)},
        {"identifier beyond FFFF", Entry(5, 4, 0x8000)},     {"text of half a unit", Entry(4, 5, 0)},
        {"text where the stream ends", Entry(9, 5, 0)},
    };
    for (const auto& one : cases) {
        StorageTree top = Raw(Bytes(16), one.entry, texts);
        NameMap names;
        ASSERT_TRUE(names.Take(top)) << one.what;
        EXPECT_EQ(names.NameOf(0x8000), nullptr) << one.what;
    }
}

TEST(NameMap, ReadsEntriesWhoseStreamsAreMissingAsNoNames) {
    StorageTree top;
    Bytes entries = Entry(0, 5, 0);
    const Bytes number = Entry(9, 4, 1);
    entries.insert(entries.end(), number.begin(), number.end());
    top.storages[kNamesStorageName].AddStream(ValueStreamName(0x00030102), entries);
    NameMap names;
    ASSERT_TRUE(names.Take(top));
    EXPECT_EQ(names.NameOf(0x8000), nullptr);
    ASSERT_NE(names.NameOf(0x8001), nullptr);
    EXPECT_EQ(names.NameOf(0x8001)->number, 9U);
}

TEST(NameMap, RefusesMoreEntriesThanThereAreIdentifiers) {
    StorageTree top = Raw({}, Bytes(std::size_t{0x8001} * 8), {});
    NameMap names;
    EXPECT_FALSE(names.Take(top));
}

TEST(NameMap, SaysWhenAllIdentifiersAreUsedUp) {
    NameMap names;
    EXPECT_EQ(names.Add(Number(kAddress, 1), 0xFFFE), 0xFFFE);
    EXPECT_FALSE(names.Add(Number(kAddress, 2), 0));
}

TEST(NameMap, SaysWhenAllEntriesAreUsedUp) {
    // Entries without a name take up numbers too.
    StorageTree top = Raw({}, Bytes(std::size_t{0x7FFF} * 8), {});
    NameMap names;
    ASSERT_TRUE(names.Take(top));
    EXPECT_FALSE(names.Add(Number(kAddress, 2), 0));
}

TEST(NameMap, IsEmptyForAFileWithoutOne) {
    StorageTree top;
    NameMap names;
    EXPECT_TRUE(names.Take(top));
    EXPECT_FALSE(names.IdOfName(Number(kAddress, 1)));
}
