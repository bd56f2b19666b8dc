#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "platform/scoped.h"
#include "support/last_error.h"
#include "support/temp_file.h"

namespace {

using support::ErrorOf;

char g_byte = 0;
DWORD g_count = 0;
using Calls = std::vector<bool (*)(HANDLE handle)>;

const Calls kFileCalls = {
    [](HANDLE h) { return ReadFile(h, &g_byte, 1, &g_count, nullptr) != FALSE; },
    [](HANDLE h) { return WriteFile(h, "x", 1, &g_count, nullptr) != FALSE; },
    [](HANDLE h) { return SetFilePointerEx(h, {}, nullptr, FILE_BEGIN) != FALSE; },
    [](HANDLE h) { return GetFileSize(h, nullptr) != INVALID_FILE_SIZE; },
};
const Calls kMutexCalls = {
    [](HANDLE h) { return WaitForSingleObject(h, 0) != WAIT_FAILED; },
    [](HANDLE h) { return ReleaseMutex(h) != FALSE; },
};
const Calls kOtherCalls = {
    [](HANDLE h) { return MapViewOfFile(h, FILE_MAP_READ, 0, 0, 0) != nullptr; },
    [](HANDLE h) { return GetExitCodeProcess(h, &g_count) != FALSE; },
    [](HANDLE h) { return TerminateProcess(h, 1) != FALSE; },
    [](HANDLE h) { return ReadProcessMemory(h, &g_byte, &g_byte, 1, nullptr) != FALSE; },
};

void ExpectRefused(const Calls& calls, HANDLE handle) {
    for (std::size_t i = 0; i < calls.size(); ++i) {
        SetLastError(0);
        EXPECT_EQ(ErrorOf(calls[i](handle)), ERROR_INVALID_HANDLE) << "call " << i;
    }
}

HANDLE AsHandle(std::uint64_t value) { return reinterpret_cast<HANDLE>(value); }
std::uint64_t AsNumber(HANDLE handle) { return reinterpret_cast<std::uint64_t>(handle); }

TEST(HandleTable, WildValuesAreRefused) {
    int local = 0;
    platform::ScopedHandle mutex(CreateMutexW(nullptr, FALSE, nullptr));
    const std::uint64_t live = AsNumber(mutex.Get());
    std::vector<std::uint64_t> wild = {0, 1, 4, 0x1234, 0xFFFFFFFF, AsNumber(&local), ~0ull << 1, live + 1, live + 2};
    // Each single bit turned makes another slot, another generation, or no handle at all.
    for (int bit = 0; bit < 64; ++bit) wild.push_back(live ^ 1ull << bit);
    for (const std::uint64_t value : wild) {
        SCOPED_TRACE(value);
        ExpectRefused(kFileCalls, AsHandle(value));
        ExpectRefused(kMutexCalls, AsHandle(value));
        ExpectRefused(kOtherCalls, AsHandle(value));
        EXPECT_EQ(ErrorOf(CloseHandle(AsHandle(value))), ERROR_INVALID_HANDLE);
    }
    EXPECT_EQ(WaitForSingleObject(mutex.Get(), 0), WAIT_OBJECT_0);
    EXPECT_TRUE(ReleaseMutex(mutex.Get()));
}

TEST(HandleTable, WrongKindsAreRefused) {
    support::TempFile name;
    platform::ScopedHandle file(
        CreateFileW(name.Path(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    platform::ScopedHandle mutex(CreateMutexW(nullptr, FALSE, nullptr));
    platform::ScopedHandle mapping(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 1, nullptr));
    for (const HANDLE handle : {file.Get(), mutex.Get(), mapping.Get()}) {
        if (handle != file.Get()) ExpectRefused(kFileCalls, handle);
        if (handle != mutex.Get()) ExpectRefused(kMutexCalls, handle);
        if (handle != mapping.Get()) ExpectRefused(kOtherCalls, handle);
    }
}

TEST(HandleTable, ClosedHandlesStayClosed) {
    for (int i = 0; i < 2; ++i) {
        const auto make = [i] {
            return i == 0 ? CreateMutexW(nullptr, FALSE, nullptr)
                          : CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 4096, nullptr);
        };
        const HANDLE closed = make();
        ASSERT_TRUE(CloseHandle(closed));
        // The next one takes the same place, and is not reached through the old value.
        const platform::ScopedHandle next(make());
        EXPECT_NE(next.Get(), closed);
        ExpectRefused(kMutexCalls, closed);
        ExpectRefused(kOtherCalls, closed);
        EXPECT_EQ(ErrorOf(CloseHandle(closed)), ERROR_INVALID_HANDLE);
    }
}

#ifdef __SANITIZE_THREAD__
// A mutex whose last use another thread ends stays held, and the sanitizer follows 64 held ones a thread.
constexpr int kClosedDuringUse = 60;
#else
constexpr int kClosedDuringUse = 3000;
#endif

TEST(HandleTable, ClosingDuringUseOnOtherThreads) {
    std::atomic<std::uint64_t> published{0};
    std::atomic<bool> done{false};
    const auto use = [&] {
        while (!done) {
            const HANDLE handle = AsHandle(published.load());
            const DWORD result = WaitForSingleObject(handle, 0);
            if (result == WAIT_OBJECT_0 || result == WAIT_ABANDONED) ReleaseMutex(handle);
        }
    };
    std::thread first(use), second(use);
    for (int i = 0; i < kClosedDuringUse; ++i) {
        const HANDLE mutex = CreateMutexW(nullptr, FALSE, nullptr);
        published = AsNumber(mutex);
        WaitForSingleObject(mutex, 0);
        EXPECT_TRUE(CloseHandle(mutex));
        EXPECT_FALSE(CloseHandle(mutex));
    }
    done = true;
    first.join();
    second.join();
}

}  // namespace
