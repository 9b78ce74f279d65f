#include "support/containers.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(CArray, GivesBackWhatWasAdded) {
    CArray<int> array;
    array.Add(7);
    array.Add(9);
    ASSERT_EQ(array.GetSize(), 2U);
    EXPECT_EQ(array[0], 7);
    EXPECT_EQ(array[1], 9);
}

TEST(CArray, IndexOutsideRaises) {
    CArray<int> array;
    EXPECT_THROW(static_cast<void>(array[0]), CInvalidArgException);
    array.Add(1);
    EXPECT_NO_THROW(static_cast<void>(array[0]));
    EXPECT_THROW(static_cast<void>(array[1]), CInvalidArgException);
    EXPECT_THROW(static_cast<void>(array[static_cast<std::size_t>(-1)]), CInvalidArgException);
}

TEST(CArray, IndexOutsideAConstantArrayRaises) {
    const CArray<int> array;
    EXPECT_THROW(static_cast<void>(array[0]), CInvalidArgException);
}

TEST(CArray, GivesAConstantElement) {
    CArray<int> array;
    array.Add(7);
    const CArray<int>& constant = array;
    EXPECT_EQ(constant[0], 7);
    EXPECT_THROW(static_cast<void>(constant[1]), CInvalidArgException);
}

TEST(CArray, NewElementsOfSetSizeAreEmpty) {
    CArray<int> array;
    array.Add(5);
    array.SetSize(3);
    ASSERT_EQ(array.GetSize(), 3U);
    EXPECT_EQ(array[0], 5);
    EXPECT_EQ(array[2], 0);
}

TEST(CArray, RemoveAllLeavesNothing) {
    CArray<std::string> array;
    array.Add("x");
    array.RemoveAll();
    EXPECT_TRUE(array.IsEmpty());
    EXPECT_THROW(static_cast<void>(array[0]), CInvalidArgException);
}

TEST(CMap, FindsByKey) {
    CMap<int, std::string> map;
    map[3] = "three";
    EXPECT_EQ(map.count(3), 1U);
    EXPECT_EQ(map.count(4), 0U);
    EXPECT_EQ(map.at(3), "three");
}

TEST(ProcessHeap, SizeThatWrapsRaises) {
    ProcessHeapAllocator<std::uint64_t> allocator;
    EXPECT_THROW(static_cast<void>(allocator.allocate(SIZE_MAX / 4)), std::bad_alloc);
}

TEST(ProcessHeap, WhatOneAllocatorTookAnotherMayFree) {
    EXPECT_TRUE(ProcessHeapAllocator<char>() == ProcessHeapAllocator<char>());
    int* const number = ProcessHeapAllocator<int>().allocate(1);
    ProcessHeapAllocator<int>().deallocate(number, 1);
}

TEST(ProcessHeap, NullMayBeFreed) {
    ProcessHeapFree(nullptr);
}

}  // namespace
