#include "localstore/property.h"

#include <gtest/gtest.h>

#include "tests/unit/localstore/scarce_memory.h"

using namespace localstore;

namespace {

/// The types of MS-OXCDATA, section 2.11.1, with the bytes of one value and what holds it.
constexpr struct {
    PropertyType type;
    std::size_t size;
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

TEST(PropertyBag, NeedsNoMemoryForThoseThatRoomWasMadeFor) {
    PropertyBag bag;
    bag.Set(Property::OfFixed(0x80050003, 5));
    bag.MakeRoom(3);
    {
        const localstore_test::ScarceMemory scarce(1, true);
        for (const PropertyTag tag : {0x80060003U, 0x80010003U, 0x80030003U}) {
            bag.Set(Property::OfFixed(tag, 1));
        }
        EXPECT_FALSE(scarce.HasFailed());
    }
    EXPECT_EQ(bag.All().size(), 4U);
    EXPECT_EQ(bag.Find(0x8005)->fixed, 5U);
}
