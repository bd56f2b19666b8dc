#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "platform/scoped.h"
#include "support/last_error.h"
#include "support/temp_file.h"

namespace {

using support::ErrorOf;

struct Call {
    const char* name;
    bool (*succeeds)(HANDLE handle);
};

const Call kFileCalls[] = {
    {"ReadFile",
     [](HANDLE h) {
         char c = 0;
         DWORD n;
         return ReadFile(h, &c, 1, &n, nullptr) != FALSE;
     }},
    {"WriteFile",
     [](HANDLE h) {
         DWORD n;
         return WriteFile(h, "x", 1, &n, nullptr) != FALSE;
     }},
    {"SetFilePointerEx", [](HANDLE h) { return SetFilePointerEx(h, {}, nullptr, FILE_BEGIN) != FALSE; }},
    {"GetFileSize", [](HANDLE h) { return GetFileSize(h, nullptr) != INVALID_FILE_SIZE; }},
};
const Call kMutexCalls[] = {
    {"WaitForSingleObject", [](HANDLE h) { return WaitForSingleObject(h, 0) != WAIT_FAILED; }},
    {"ReleaseMutex", [](HANDLE h) { return ReleaseMutex(h) != FALSE; }},
};
const Call kOtherCalls[] = {
    {"MapViewOfFile", [](HANDLE h) { return MapViewOfFile(h, FILE_MAP_READ, 0, 0, 0) != nullptr; }},
    {"GetExitCodeProcess",
     [](HANDLE h) {
         DWORD code;
         return GetExitCodeProcess(h, &code) != FALSE;
     }},
    {"TerminateProcess", [](HANDLE h) { return TerminateProcess(h, 1) != FALSE; }},
    {"ReadProcessMemory",
     [](HANDLE h) {
         char c = 0;
         return ReadProcessMemory(h, &c, &c, 1, nullptr) != FALSE;
     }},
};

template <class Calls>
void ExpectRefused(const Calls& calls, HANDLE handle) {
    for (const Call& call : calls) {
        SCOPED_TRACE(call.name);
        SetLastError(0);
        EXPECT_EQ(ErrorOf(call.succeeds(handle)), ERROR_INVALID_HANDLE);
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
    ASSERT_TRUE(file && mutex && mapping);
    ExpectRefused(kMutexCalls, file.Get());
    ExpectRefused(kOtherCalls, file.Get());
    ExpectRefused(kFileCalls, mutex.Get());
    ExpectRefused(kOtherCalls, mutex.Get());
    ExpectRefused(kFileCalls, mapping.Get());
    ExpectRefused(kMutexCalls, mapping.Get());
}

TEST(HandleTable, ClosedHandlesStayClosed) {
    const auto make_mutex = [] { return CreateMutexW(nullptr, FALSE, nullptr); };
    const auto make_mapping = [] {
        return CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 4096, nullptr);
    };
    for (HANDLE (*const make)() : {+make_mutex, +make_mapping}) {
        const HANDLE closed = make();
        ASSERT_TRUE(CloseHandle(closed));
        EXPECT_FALSE(CloseHandle(closed));
        // The next one takes the same place, and is not reached through the old value.
        platform::ScopedHandle next(make());
        EXPECT_NE(next.Get(), closed);
        ExpectRefused(kMutexCalls, closed);
        ExpectRefused(kOtherCalls, closed);
        EXPECT_EQ(ErrorOf(CloseHandle(closed)), ERROR_INVALID_HANDLE);
    }
}

TEST(HandleTable, ADuplicatedFileSharesThePosition) {
    support::TempFile name;
    platform::ScopedHandle first(
        CreateFileW(name.Path(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    platform::ScopedHandle second;
    ASSERT_TRUE(DuplicateHandle(GetCurrentProcess(), first.Get(), GetCurrentProcess(), second.Out(), 0, FALSE,
                                DUPLICATE_SAME_ACCESS));
    DWORD count = 0;
    EXPECT_TRUE(WriteFile(first.Get(), "abc", 3, &count, nullptr));
    first.Reset();
    LARGE_INTEGER at{};
    EXPECT_TRUE(SetFilePointerEx(second.Get(), {}, &at, FILE_CURRENT));
    EXPECT_EQ(at.QuadPart, 3);
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
    std::thread first(use);
    std::thread second(use);
    for (int i = 0; i < kClosedDuringUse; ++i) {
        const HANDLE mutex = CreateMutexW(nullptr, FALSE, nullptr);
        ASSERT_NE(mutex, nullptr);
        published = AsNumber(mutex);
        WaitForSingleObject(mutex, 0);
        EXPECT_TRUE(CloseHandle(mutex));
        EXPECT_FALSE(CloseHandle(mutex));
    }
    done = true;
    first.join();
    second.join();
}

TEST(HandleTable, OneOfTwoClosesWins) {
    for (int i = 0; i < 500; ++i) {
        const HANDLE handles[] = {
            CreateMutexW(nullptr, FALSE, nullptr),
            CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 1, nullptr),
        };
        std::atomic<int> closed{0};
        const auto close_all = [&] {
            for (const HANDLE handle : handles) closed += CloseHandle(handle) ? 1 : 0;
        };
        std::thread other(close_all);
        close_all();
        other.join();
        ASSERT_EQ(closed, 2);
    }
}

}  // namespace
