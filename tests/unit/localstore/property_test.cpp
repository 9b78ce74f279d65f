#include "localstore/property.h"

#include <gtest/gtest.h>

#include "tests/unit/localstore/scarce_memory.h"

using namespace localstore;

namespace {

/// The types of MS-OXCDATA, section 2.11.1, with the bytes of one value and what holds it.
constexpr struct {
    PropertyType type;
    std::uint16_t size;
    ValueShape shape;
    bool canBeMultiple;
} kTypes[] = {
    {0x0002, 2, ValueShape::Fixed, true},    {0x0003, 4, ValueShape::Fixed, true},
    {0x0004, 4, ValueShape::Fixed, true},    {0x0005, 8, ValueShape::Fixed, true},
    {0x0006, 8, ValueShape::Fixed, true},    {0x0007, 8, ValueShape::Fixed, true},
    {0x000A, 4, ValueShape::Fixed, false},   {0x000B, 2, ValueShape::Fixed, false},
    {0x0014, 8, ValueShape::Fixed, true},    {0x0040, 8, ValueShape::Fixed, true},
    {0x001E, 0, ValueShape::Variable, true}, {0x001F, 0, ValueShape::Variable, true},
    {0x0102, 0, ValueShape::Variable, true}, {0x000D, 0, ValueShape::Unknown, false},
    {0x0000, 0, ValueShape::Unknown, false}, {0x0001, 0, ValueShape::Unknown, false},
    {0x00FB, 0, ValueShape::Unknown, false},
};

}  // namespace

TEST(PropertyType, EveryPublishedOneHasItsSizeAndShape) {
    for (const auto& one : kTypes) {
        EXPECT_EQ(FixedSizeOf(one.type), one.size) << one.type;
        EXPECT_EQ(ShapeOf(one.type), one.shape) << one.type;
        if (one.canBeMultiple) {
            const auto multiple = static_cast<PropertyType>(one.type | 0x1000U);
            EXPECT_EQ(FixedSizeOf(multiple), one.size) << one.type;
            EXPECT_EQ(ShapeOf(multiple),
                      one.size != 0 ? ValueShape::MultipleFixed : ValueShape::MultipleVariable)
                << one.type;
        }
    }
}

TEST(PropertyType, AGuidHasAStreamAloneAndSixteenBytesAmongOthers) {
    EXPECT_EQ(FixedSizeOf(0x0048), 0U);
    EXPECT_EQ(ShapeOf(0x0048), ValueShape::Variable);
    EXPECT_EQ(FixedSizeOf(0x1048), 16U);
    EXPECT_EQ(ShapeOf(0x1048), ValueShape::MultipleFixed);
}

TEST(PropertyType, TwoOfThemAreStrings) {
    for (const auto& one : kTypes) {
        EXPECT_EQ(IsString(one.type), one.type == 0x001E || one.type == 0x001F) << one.type;
    }
}

TEST(Property, IsTheSameIfAllOfItsValueIs) {
    const Property number = Property::OfFixed(0x00170003, 1);
    EXPECT_TRUE(number.SameValue(number));
    EXPECT_FALSE(number.SameValue(Property::OfFixed(0x00180003, 1)));
    EXPECT_FALSE(number.SameValue(Property::OfFixed(0x00170003, 2)));
    const Property bytes = Property::OfBytes(0x37010102, {1, 2});
    EXPECT_TRUE(bytes.SameValue(Property::OfBytes(0x37010102, {1, 2})));
    EXPECT_FALSE(bytes.SameValue(Property::OfBytes(0x37010102, {1, 3})));
    Property words = Property::OfFixed(0x8001101F, 0);
    const Property none = words;
    words.items.push_back(std::make_shared<const Bytes>(Bytes{1}));
    EXPECT_TRUE(words.SameValue(words));
    EXPECT_FALSE(words.SameValue(none));
}

TEST(Property, WithoutBytesHasNone) {
    EXPECT_TRUE(Property::OfFixed(0x00170003, 1).Data().empty());
    // Nothing is the same as no bytes.
    EXPECT_TRUE(Property::OfBytes(0x37010102, {}).SameValue(Property::OfFixed(0x37010102, 0)));
}

TEST(PropertyBag, FindsWhatIsThereOnly) {
    PropertyBag bag;
    bag.Set(Property::OfFixed(0x00170003, 1));
    EXPECT_NE(bag.Find(0x0017), nullptr);
    EXPECT_EQ(bag.Find(0x0016), nullptr);
    EXPECT_EQ(bag.Find(0x0018), nullptr);
}

TEST(PropertyBag, NeedsNoMemoryForThoseThatRoomWasMadeFor) {
    PropertyBag bag;
    bag.Set(Property::OfFixed(0x80050003, 5));
    bag.MakeRoom(3);
    {
        const localstore_test::ScarceMemory scarce(1, true);
        for (const PropertyTag tag : {0x80060003U, 0x80010003U, 0x80030003U}) {
            bag.Set(Property::OfFixed(tag, 1));
        }
        bag.MakeRoom(0);
        EXPECT_FALSE(scarce.HasFailed());
    }
    EXPECT_EQ(bag.All().size(), 4U);
    EXPECT_EQ(bag.Find(0x8005)->fixed, 5U);
}
