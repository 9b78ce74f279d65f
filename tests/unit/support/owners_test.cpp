#include "support/owners.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

std::vector<int> closed;

struct NumberTraits {
    using Type = int;
    static Type Empty() noexcept { return -1; }
    static void Close(Type number) noexcept { closed.push_back(number); }
};
using Number = Owner<NumberTraits>;

class OwnerTest : public testing::Test {
  protected:
    void SetUp() override { closed.clear(); }
};

TEST_F(OwnerTest, ClosesWhatItHoldsOnce) {
    { const Number number(5); }
    EXPECT_EQ(closed, std::vector<int>{5});
}

TEST_F(OwnerTest, NothingHeldIsNotClosed) {
    {
        const Number number;
        EXPECT_FALSE(number);
    }
    EXPECT_TRUE(closed.empty());
}

TEST_F(OwnerTest, AMoveHandsOver) {
    Number first(5);
    Number second(std::move(first));
    EXPECT_EQ(second.Get(), 5);
    Number third(6);
    third = std::move(second);
    EXPECT_EQ(closed, std::vector<int>{6});
    EXPECT_EQ(third.Detach(), 5);
    EXPECT_FALSE(third);
    EXPECT_EQ(closed, std::vector<int>{6});
}

TEST_F(OwnerTest, PutFreesWhatWasHeldAndTakesTheNew) {
    {
        Number number(5);
        *number.Put() = 6;
        EXPECT_EQ(closed, std::vector<int>{5});
    }
    EXPECT_EQ(closed, (std::vector<int>{5, 6}));
}

TEST(Handle, ClosesTheKernelHandle) {
    HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    DWORD flags = 0;
    {
        const Handle owner(event);
        EXPECT_TRUE(GetHandleInformation(event, &flags));
    }
    EXPECT_FALSE(GetHandleInformation(event, &flags));
}

}  // namespace
