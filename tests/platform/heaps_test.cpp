// The global heap, private heaps and the question whether memory can be read.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <thread>

#include "platform/memory.h"
#include "support/last_error.h"

namespace {

using support::ErrorOf;

TEST(GlobalHeap, FixedBlocks) {
    for (const SIZE_T size : {SIZE_T{1}, SIZE_T{16}, SIZE_T{1} << 20}) {
        const HGLOBAL block = GlobalAlloc(GPTR, size);
        auto* const bytes = static_cast<unsigned char*>(GlobalLock(block));
        ASSERT_EQ(static_cast<void*>(bytes), block);
        EXPECT_EQ(bytes[0] | bytes[size - 1], 0);
        std::memset(bytes, 0xAA, size);
        EXPECT_EQ(GlobalSize(block), size);
        EXPECT_EQ(GlobalHandle(bytes), block);
        EXPECT_TRUE(GlobalUnlock(block));
        EXPECT_EQ(GlobalFree(block), nullptr);
    }
}

TEST(GlobalHeap, MoveableBlocksCountTheirLocks) {
    constexpr DWORD kNotLocked = 158;
    const HGLOBAL block = GlobalAlloc(GHND, 100);
    void* const data = GlobalLock(block);
    EXPECT_NE(data, block);
    EXPECT_EQ(GlobalHandle(data), block);
    constexpr int kEach = 60;
    const auto lock = [=] {
        for (int i = 0; i < kEach; ++i) EXPECT_EQ(GlobalLock(block), data);
    };
    std::thread other(lock);
    lock();
    other.join();
    for (int i = 0; i < 2 * kEach; ++i) EXPECT_TRUE(GlobalUnlock(block));
    SetLastError(77);
    EXPECT_FALSE(GlobalUnlock(block));
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    EXPECT_EQ(ErrorOf(GlobalUnlock(block)), kNotLocked);
    EXPECT_EQ(GlobalFree(block), nullptr);
}

TEST(GlobalHeap, LimitsAndOddities) {
    for (const SIZE_T size : {~SIZE_T{0}, ~SIZE_T{0} - 15, SIZE_T{1} << 47}) {
        EXPECT_EQ(ErrorOf(GlobalAlloc(GPTR, size)), ERROR_NOT_ENOUGH_MEMORY);
    }
    constexpr DWORD kDiscarded = 157;
    const HGLOBAL discarded = GlobalAlloc(GMEM_MOVEABLE, 0);
    EXPECT_EQ(ErrorOf(GlobalLock(discarded)), kDiscarded);
    const HGLOBAL empty = GlobalAlloc(GMEM_FIXED, 0);
    EXPECT_NE(empty, nullptr);
    for (const HGLOBAL block : {discarded, empty, HGLOBAL{}}) EXPECT_EQ(GlobalFree(block), nullptr);
}

TEST(GlobalHeap, ManyBlocksAtOnce) {
    std::vector<HGLOBAL> blocks;
    for (std::size_t i = 0; i < 20000; ++i) {
        blocks.push_back(GlobalAlloc(i % 2 != 0 ? GHND : GPTR, i % 100 + 1));
        *static_cast<unsigned char*>(GlobalLock(blocks.back())) = static_cast<unsigned char>(i);
    }
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        ASSERT_EQ(GlobalSize(blocks[i]), i % 100 + 1);
        ASSERT_EQ(*static_cast<unsigned char*>(GlobalLock(blocks[i])), static_cast<unsigned char>(i));
        ASSERT_EQ(GlobalFree(blocks[i]), nullptr);
    }
}

TEST(PrivateHeap, KeepsItsBlocksApart) {
    const HANDLE heap = HeapCreate(HEAP_NO_SERIALIZE, 4096, 0);
    const HANDLE other = HeapCreate(0, 0, 0);
    auto* block = static_cast<char*>(HeapAlloc(heap, HEAP_ZERO_MEMORY, 10));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(std::count(block, block + 10, 0), 10);
    EXPECT_EQ(HeapSize(heap, 0, block), 10u);
    std::memset(block, 'x', 10);
    block = static_cast<char*>(HeapReAlloc(heap, HEAP_ZERO_MEMORY, block, 5000));
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
    for (const SIZE_T size : {SIZE_MAX, SIZE_MAX / 2}) EXPECT_TRUE(IsBadReadPtr(text, size));
}

}  // namespace
