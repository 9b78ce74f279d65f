#include "localstore/msg_properties.h"

#include <gtest/gtest.h>

#include "localstore/little_endian.h"

using namespace localstore;

namespace {

/// A property stream with an 8-byte header, built entry by entry.
class Builder {
  public:
    Builder& Entry(PropertyTag tag, std::uint64_t value, std::uint32_t flags = 6) {
        AppendU32(m_stream, tag);
        AppendU32(m_stream, flags);
        AppendNumber(m_stream, value, 8);
        return *this;
    }
    Builder& Value(PropertyTag tag, Bytes bytes) {
        m_tree.AddStream(ValueStreamName(tag), std::move(bytes));
        return *this;
    }
    Builder& Stream(const wide* name, Bytes bytes) {
        m_tree.AddStream(name, std::move(bytes));
        return *this;
    }
    StorageTree Tree() {
        m_tree.AddStream(kPropertyStreamName, m_stream);
        return m_tree;
    }

  private:
    Bytes m_stream = Bytes(kAttachmentHeader);
    StorageTree m_tree;
};

PropertyBag Read(Builder& builder) {
    StorageTree tree = builder.Tree();
    std::optional<ObjectProperties> read = TakePropertyStream(tree, kAttachmentHeader);
    EXPECT_TRUE(read);
    return read ? read->properties : PropertyBag();
}

constexpr PropertyTag kSubject = 0x0037001F;
constexpr PropertyTag kSubject8 = 0x0037001E;
constexpr PropertyTag kNumber = 0x00170003;
constexpr PropertyTag kData = 0x37010102;
constexpr PropertyTag kWords = 0x8001101F;

}  // namespace

TEST(PropertyStream, ReadsFixedValuesAndIgnoresTheRestOfTheEntry) {
    const PropertyBag bag =
        Read(Builder().Entry(kNumber, 0xFFFFFFFF00000007).Entry(0x0E1B000B, 0xABCD00000001));
    EXPECT_EQ(bag.Find(0x0017)->fixed, 7U);
    EXPECT_EQ(bag.Find(0x0E1B)->fixed, 1U);
}

TEST(PropertyStream, ReadsStringsWithAndWithoutTerminator) {
    const Bytes text = {'a', 0, 'b', 0};
    EXPECT_EQ(Read(Builder().Entry(kSubject, 6).Value(kSubject, text)).Find(0x0037)->Data(), text);
    EXPECT_EQ(Read(Builder().Entry(kSubject, 8).Value(kSubject, {'a', 0, 'b', 0, 0, 0})).Find(0x0037)->Data(),
              text);
    EXPECT_EQ(Read(Builder().Entry(kSubject8, 3).Value(kSubject8, {'a', 'b', 0})).Find(0x0037)->Data(),
              (Bytes{'a', 'b'}));
}

TEST(PropertyStream, KeepsZerosAtTheEndOfABinary) {
    EXPECT_EQ(Read(Builder().Entry(kData, 3).Value(kData, {1, 0, 0})).Find(0x3701)->Data(), (Bytes{1, 0, 0}));
}

TEST(PropertyStream, TakesAMissingStreamForAnEmptyTextIfItsSizeSaysSo) {
    const PropertyBag bag = Read(Builder().Entry(kSubject, 2).Entry(kSubject8 + 0x10000, 1).Entry(kData, 0));
    EXPECT_TRUE(bag.Find(0x0037)->Data().empty());
    EXPECT_TRUE(bag.Find(0x0038)->Data().empty());
    EXPECT_TRUE(bag.Find(0x3701)->Data().empty());
    EXPECT_EQ(Read(Builder().Entry(kSubject, 20)).Find(0x0037), nullptr);
}

TEST(PropertyStream, ReadsMultipleStrings) {
    const PropertyBag bag = Read(Builder()
                                     .Entry(kWords, 8)
                                     .Value(kWords, {4, 0, 0, 0, 6, 0, 0, 0})
                                     .Stream(WIDE("__substg1.0_8001101F-00000000"), {'a', 0, 0, 0})
                                     .Stream(WIDE("__substg1.0_8001101F-00000001"), {'b', 0, 'c', 0}));
    const Property* words = bag.Find(0x8001);
    ASSERT_EQ(words->Count(), 2U);
    EXPECT_EQ(*words->items[0], (Bytes{'a', 0}));
    EXPECT_EQ(*words->items[1], (Bytes{'b', 0, 'c', 0}));
}

TEST(PropertyStream, ReadsMultipleNumbersAndBinaries) {
    constexpr PropertyTag numbers = 0x80021003;
    constexpr PropertyTag binaries = 0x80031102;
    const PropertyBag bag = Read(Builder()
                                     .Entry(numbers, 8)
                                     .Value(numbers, {1, 0, 0, 0, 2, 0, 0, 0})
                                     .Entry(binaries, 8)
                                     .Value(binaries, {3, 0, 0, 0, 0, 0, 0, 0})
                                     .Stream(WIDE("__substg1.0_80031102-00000000"), {7, 0, 0}));
    EXPECT_EQ(bag.Find(0x8002)->Count(), 2U);
    ASSERT_EQ(bag.Find(0x8003)->Count(), 1U);
    EXPECT_EQ(*bag.Find(0x8003)->items[0], (Bytes{7, 0, 0}));
}

TEST(PropertyStream, ReadsValuesOfEightBytesWhole) {
    EXPECT_EQ(Read(Builder().Entry(0x30070040, 0xFFFFFFFF00000007)).Find(0x3007)->fixed, 0xFFFFFFFF00000007U);
}

TEST(PropertyStream, TakesTextsWithoutRoomForATerminatorAsTheyAre) {
    const PropertyBag bag = Read(Builder()
                                     .Entry(kSubject, 1)
                                     .Value(kSubject, {0})
                                     .Entry(kSubject8 + 0x10000, 0)
                                     .Value(kSubject8 + 0x10000, {}));
    EXPECT_EQ(bag.Find(0x0037)->Data(), (Bytes{0}));
    EXPECT_TRUE(bag.Find(0x0038)->Data().empty());
    EXPECT_EQ(Read(Builder().Entry(kSubject, 3).Value(kSubject, {1, 0, 0})).Find(0x0037)->Data(),
              (Bytes{1, 0, 0}));
}

TEST(PropertyStream, ReadsAMissingOneOfMultipleStringsAsEmpty) {
    const PropertyBag bag = Read(Builder()
                                     .Entry(kWords, 8)
                                     .Value(kWords, {4, 0, 0, 0, 4, 0, 0, 0})
                                     .Stream(WIDE("__substg1.0_8001101F-00000001"), {'b', 0, 0, 0}));
    ASSERT_EQ(bag.Find(0x8001)->Count(), 2U);
    EXPECT_TRUE(bag.Find(0x8001)->items[0]->empty());
    EXPECT_EQ(*bag.Find(0x8001)->items[1], (Bytes{'b', 0}));
}

TEST(PropertyStream, WritesMultipleBinariesWithoutTerminators) {
    constexpr PropertyTag binaries = 0x80031102;
    StorageTree tree = Builder()
                           .Entry(binaries, 16)
                           .Value(binaries, {3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0})
                           .Stream(WIDE("__substg1.0_80031102-00000000"), {7, 0, 0})
                           .Stream(WIDE("__substg1.0_80031102-00000001"), {})
                           .Tree();
    const StorageTree before = tree;
    const std::optional<ObjectProperties> read = TakePropertyStream(tree, kAttachmentHeader);
    ASSERT_TRUE(read);
    AddPropertyStream(tree, read->header, read->properties);
    EXPECT_EQ(tree, before);
}

TEST(PropertyStream, RefusesAStreamShorterThanItsHeader) {
    for (std::size_t size = 0; size < kTopLevelHeader; ++size) {
        StorageTree tree;
        tree.AddStream(kPropertyStreamName, Bytes(size));
        EXPECT_FALSE(TakePropertyStream(tree, kTopLevelHeader)) << size;
        EXPECT_EQ(tree.streams.size(), 1U);
    }
    StorageTree none;
    EXPECT_FALSE(TakePropertyStream(none, kAttachmentHeader));
}

TEST(PropertyStream, IgnoresHalfAnEntryAtItsEnd) {
    StorageTree tree = Builder().Entry(kNumber, 5).Tree();
    Bytes longer = *tree.streams[kPropertyStreamName];
    longer.resize(longer.size() + 15);
    tree.AddStream(kPropertyStreamName, longer);
    EXPECT_EQ(TakePropertyStream(tree, kAttachmentHeader)->properties.All().size(), 1U);
}

TEST(PropertyStream, RefusesMoreEntriesThanTheLimit) {
    StorageTree tree;
    tree.AddStream(kPropertyStreamName, Bytes(kAttachmentHeader + (kMostEntries + 1) * 16));
    EXPECT_FALSE(TakePropertyStream(tree, kAttachmentHeader));
}

TEST(PropertyStream, LeavesOutMultipleValuesWithoutAStream) {
    const PropertyBag bag = Read(Builder().Entry(kWords, 8).Entry(0x80021003, 8).Entry(kNumber, 1));
    EXPECT_EQ(bag.Find(0x8001), nullptr);
    EXPECT_EQ(bag.Find(0x8002), nullptr);
    EXPECT_NE(bag.Find(0x0017), nullptr);
}

TEST(PropertyStream, LeavesOutMultipleStringsBeyondTheLimit) {
    Builder builder;
    builder.Entry(kWords, 8).Value(kWords, Bytes((kMostEntries + 1) * 4)).Entry(kNumber, 1);
    const PropertyBag bag = Read(builder);
    EXPECT_EQ(bag.Find(0x8001), nullptr);
    EXPECT_NE(bag.Find(0x0017), nullptr);
}

TEST(PropertyStream, LeavesOutMultipleNumbersBeyondTheLimit) {
    constexpr PropertyTag numbers = 0x80021002;
    const PropertyBag most = Read(Builder().Entry(numbers, 0).Value(numbers, Bytes(kMostEntries * 2)));
    EXPECT_EQ(most.Find(0x8002)->Count(), kMostEntries);
    EXPECT_EQ(Read(Builder().Entry(numbers, 0).Value(numbers, Bytes(kMostEntries * 2 + 2))).Find(0x8002),
              nullptr);
}

TEST(PropertyStream, LeavesOutAGuidOfAnotherLength) {
    constexpr PropertyTag guid = 0x80050048;
    EXPECT_EQ(Read(Builder().Entry(guid, 15).Value(guid, Bytes(15))).Find(0x8005), nullptr);
    EXPECT_EQ(Read(Builder().Entry(guid, 16).Value(guid, Bytes(16))).Find(0x8005)->Data().size(), 16U);
    EXPECT_EQ(Read(Builder().Entry(guid, 0)).Find(0x8005), nullptr);
}

TEST(PropertyStream, KeepsTheFirstOfTwoEqualTags) {
    EXPECT_EQ(Read(Builder().Entry(kNumber, 1).Entry(kNumber, 2)).Find(0x0017)->fixed, 1U);
}

TEST(PropertyStream, WritesWhatItRead) {
    StorageTree tree = Builder()
                           .Entry(kNumber, 7, 2)
                           .Entry(kSubject, 6)
                           .Value(kSubject, {'a', 0, 'b', 0})
                           .Entry(kSubject8 + 0x10000, 5)
                           .Value(kSubject8 + 0x10000, {'a', 'b', 'c', 0})
                           .Entry(kData, 3)
                           .Value(kData, {1, 2, 3})
                           .Entry(0x3701000D, 0x00000001FFFFFFFF)
                           .Entry(0x80020099, 0x1122334455667788)
                           .Value(0x80020099, {9})
                           .Entry(kWords, 4)
                           .Value(kWords, {4, 0, 0, 0})
                           .Stream(WIDE("__substg1.0_8001101F-00000000"), {'a', 0, 0, 0})
                           .Entry(0x80031003, 8)
                           .Value(0x80031003, {1, 0, 0, 0, 2, 0, 0, 0})
                           .Stream(WIDE("something else"), {5})
                           .Tree();
    StorageTree rest = tree;
    const std::optional<ObjectProperties> read = TakePropertyStream(rest, kAttachmentHeader);
    ASSERT_TRUE(read);
    StorageTree written = rest;
    AddPropertyStream(written, read->header, read->properties);
    StorageTree again = written;
    const std::optional<ObjectProperties> readAgain = TakePropertyStream(again, kAttachmentHeader);
    ASSERT_TRUE(readAgain);
    EXPECT_EQ(again, rest);
    ASSERT_EQ(readAgain->properties.All().size(), read->properties.All().size());
    for (std::size_t i = 0; i < read->properties.All().size(); ++i) {
        EXPECT_TRUE(readAgain->properties.All()[i].SameValue(read->properties.All()[i])) << i;
        EXPECT_EQ(readAgain->properties.All()[i].flags, read->properties.All()[i].flags) << i;
    }
    // All streams but the property stream, whose entries are put in order, are those that were read.
    tree.streams.erase(kPropertyStreamName);
    written.streams.erase(kPropertyStreamName);
    EXPECT_EQ(written, tree);
}

TEST(PropertyStream, HalfAUnitAtTheEndOfATextAmongOthersStaysAsItIs) {
    StorageTree tree = Builder()
                           .Entry(kWords, 8)
                           .Value(kWords, {3, 0, 0, 0, 4, 0, 0, 0})
                           .Stream(WIDE("__substg1.0_8001101F-00000000"), {'a', 0, 'b'})
                           .Stream(WIDE("__substg1.0_8001101F-00000001"), {'c', 0, 0, 0})
                           .Tree();
    const StorageTree before = tree;
    const std::optional<ObjectProperties> read = TakePropertyStream(tree, kAttachmentHeader);
    ASSERT_TRUE(read);
    EXPECT_EQ(*read->properties.Find(0x8001)->items[0], (Bytes{'a', 0, 'b'}));
    StorageTree written;
    AddPropertyStream(written, read->header, read->properties);
    EXPECT_EQ(written, before);
}

TEST(PropertyStream, WritesSizesWithTheTerminator) {
    PropertyBag bag;
    bag.Set(Property::OfText(kSubject, WIDE("ab")));
    StorageTree tree;
    AddPropertyStream(tree, Bytes(kAttachmentHeader), bag);
    const Bytes& stream = *tree.streams[kPropertyStreamName];
    EXPECT_EQ(ReadU32(stream, kAttachmentHeader), kSubject);
    EXPECT_EQ(ReadU32(stream, kAttachmentHeader + 8), 6U);
    EXPECT_EQ(*tree.streams[ValueStreamName(kSubject)], (Bytes{'a', 0, 'b', 0}));
}

TEST(PropertyBag, KeepsOneValueForAnIdentifier) {
    PropertyBag bag;
    bag.Set(Property::OfBytes(kSubject8, {'x'}));
    bag.Set(Property::OfText(kSubject, WIDE("y")));
    ASSERT_EQ(bag.All().size(), 1U);
    EXPECT_EQ(bag.Find(0x0037)->tag, kSubject);
    EXPECT_TRUE(bag.Remove(0x0037));
    EXPECT_FALSE(bag.Remove(0x0037));
    EXPECT_TRUE(bag.IsEmpty());
}

TEST(HexDigits, AreEightAndUpperCase) {
    EXPECT_EQ(HexDigits(0), WIDE("00000000"));
    EXPECT_EQ(HexDigits(0x37010FaBU), WIDE("37010FAB"));
}
