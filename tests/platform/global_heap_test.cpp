#include <gtest/gtest.h>

#include <cstring>
#include <thread>

#include "platform/memory.h"
#include "support/last_error.h"

namespace {

using support::ErrorOf;

constexpr DWORD kNotLocked = 158;
constexpr DWORD kDiscarded = 157;

TEST(GlobalHeap, FixedBlocks) {
    for (const SIZE_T size : {SIZE_T{1}, SIZE_T{16}, SIZE_T{4096}, SIZE_T{1} << 20}) {
        const HGLOBAL block = GlobalAlloc(GPTR, size);
        ASSERT_NE(block, nullptr);
        auto* const bytes = static_cast<unsigned char*>(GlobalLock(block));
        EXPECT_EQ(static_cast<void*>(bytes), block);
        EXPECT_EQ(bytes[0] | bytes[size - 1], 0);
        std::memset(bytes, 0xAA, size);
        EXPECT_EQ(GlobalSize(block), size);
        EXPECT_EQ(GlobalHandle(bytes), block);
        EXPECT_TRUE(GlobalUnlock(block));
        EXPECT_EQ(GlobalFree(block), nullptr);
    }
}

TEST(GlobalHeap, MoveableBlocksCountTheirLocks) {
    const HGLOBAL block = GlobalAlloc(GHND, 100);
    ASSERT_NE(block, nullptr);
    void* const data = GlobalLock(block);
    EXPECT_NE(data, block);
    EXPECT_EQ(GlobalLock(block), data);
    EXPECT_EQ(GlobalHandle(data), block);
    EXPECT_TRUE(GlobalUnlock(block));
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
    const HGLOBAL empty = GlobalAlloc(GMEM_FIXED, 0);
    EXPECT_NE(empty, nullptr);
    EXPECT_EQ(GlobalFree(empty), nullptr);
    const HGLOBAL discarded = GlobalAlloc(GMEM_MOVEABLE, 0);
    EXPECT_EQ(ErrorOf(GlobalLock(discarded)), kDiscarded);
    EXPECT_EQ(GlobalFree(discarded), nullptr);
    EXPECT_EQ(GlobalFree(nullptr), nullptr);
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

TEST(GlobalHeap, LocksCountAcrossThreads) {
    const HGLOBAL block = GlobalAlloc(GHND, 8);
    constexpr int kEach = 60;
    const auto lock = [block] {
        for (int i = 0; i < kEach; ++i) GlobalLock(block);
    };
    std::thread other(lock);
    lock();
    other.join();
    for (int i = 1; i < 2 * kEach; ++i) EXPECT_TRUE(GlobalUnlock(block));
    EXPECT_FALSE(GlobalUnlock(block));
    GlobalFree(block);
}

}  // namespace
