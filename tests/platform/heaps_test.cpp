// Private heaps and the question whether memory can be read.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "platform/memory.h"

namespace {

TEST(PrivateHeap, KeepsItsBlocksApart) {
    const HANDLE heap = HeapCreate(HEAP_NO_SERIALIZE, 4096, 0);
    const HANDLE other = HeapCreate(0, 0, 0);
    ASSERT_TRUE(heap && other);
    auto* block = static_cast<char*>(HeapAlloc(heap, HEAP_ZERO_MEMORY, 10));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(std::count(block, block + 10, 0), 10);
    EXPECT_EQ(HeapSize(heap, 0, block), 10u);
    std::memset(block, 'x', 10);
    block = static_cast<char*>(HeapReAlloc(heap, HEAP_ZERO_MEMORY, block, 5000));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(std::count(block, block + 10, 'x'), 10);
    EXPECT_EQ(std::count(block + 10, block + 5000, 0), 4990);
    EXPECT_EQ(HeapReAlloc(heap, 0, block, SIZE_MAX), nullptr);
    EXPECT_EQ(HeapSize(heap, 0, block), 5000u);
    EXPECT_EQ(HeapAlloc(heap, 0, SIZE_MAX - 40), nullptr);
    EXPECT_TRUE(HeapFree(heap, 0, block));
    EXPECT_TRUE(HeapFree(heap, 0, nullptr));
    for (int i = 0; i < 100; ++i) EXPECT_NE(HeapAlloc(other, 0, 100), nullptr);
    EXPECT_TRUE(HeapDestroy(other));  // with what it holds
    EXPECT_TRUE(HeapDestroy(heap));
}

TEST(ReadableMemory, IsToldByBothEnds) {
    const char text[3 * 4096] = {};
    EXPECT_FALSE(IsBadReadPtr(text, sizeof text));
    EXPECT_FALSE(IsBadReadPtr(nullptr, 0));
    EXPECT_TRUE(IsBadReadPtr(nullptr, 1));
    EXPECT_TRUE(IsBadReadPtr(reinterpret_cast<const void*>(uintptr_t{16}), 1));
    EXPECT_TRUE(IsBadReadPtr(text, SIZE_MAX));
    EXPECT_TRUE(IsBadReadPtr(text, SIZE_MAX / 2));
}

}  // namespace
