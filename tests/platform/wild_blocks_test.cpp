#include <gtest/gtest.h>

#include <cstring>

#include "platform/memory.h"

namespace {

// On Windows a wild pointer given to these may end the process.
TEST(WildBlocks, AreRefused) {
    alignas(64) unsigned char on_stack[256] = {};
    const HGLOBAL fixed = GlobalAlloc(GPTR, 64);
    const HGLOBAL moveable = GlobalAlloc(GHND, 64);
    auto* const inside = static_cast<unsigned char*>(fixed) + 16;
    void* const moveable_data = GlobalLock(moveable);
    // A copy of a block with its header is no block.
    std::memcpy(on_stack + 64, static_cast<unsigned char*>(fixed) - 16, 80);
    void* const bad[] = {nullptr,
                         reinterpret_cast<void*>(1),
                         reinterpret_cast<void*>(16),
                         reinterpret_cast<void*>(0x1000),
                         reinterpret_cast<void*>(~std::uintptr_t{0}),
                         reinterpret_cast<void*>(~std::uintptr_t{15}),
                         reinterpret_cast<void*>(0x7000000000000000),
                         on_stack + 128,
                         on_stack + 80,
                         inside,
                         inside + 3,
                         moveable_data};
    for (void* const block : bad) {
        SCOPED_TRACE(block);
        SetLastError(0);
        EXPECT_EQ(GlobalLock(block), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
        EXPECT_FALSE(GlobalUnlock(block));
        EXPECT_EQ(GlobalSize(block), 0u);
        EXPECT_EQ(GlobalFree(block), block);
        if (block != moveable_data) {
            EXPECT_EQ(GlobalHandle(block), nullptr);
        }
    }
    for (const HGLOBAL block : {fixed, moveable}) {
        EXPECT_EQ(GlobalFree(block), nullptr);
        EXPECT_EQ(GlobalFree(block), block);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    }
}

}  // namespace
