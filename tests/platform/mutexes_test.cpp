#include <gtest/gtest.h>

#include <future>
#include <thread>

#include "platform/scoped.h"
#include "support/last_error.h"

namespace {

using support::ErrorOf;

TEST(Mutexes, AreRecursiveAndKnowTheirHolder) {
    platform::ScopedHandle mutex(CreateMutexW(nullptr, FALSE, nullptr));
    ASSERT_TRUE(mutex);
    EXPECT_EQ(ErrorOf(ReleaseMutex(mutex.Get())), ERROR_NOT_OWNER);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(WaitForSingleObject(mutex.Get(), INFINITE), WAIT_OBJECT_0);
    std::thread([&mutex] {
        EXPECT_EQ(WaitForSingleObject(mutex.Get(), 0), WAIT_TIMEOUT);
        EXPECT_EQ(WaitForSingleObject(mutex.Get(), 1), WAIT_TIMEOUT);
        EXPECT_EQ(ErrorOf(ReleaseMutex(mutex.Get())), ERROR_NOT_OWNER);
    }).join();
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(ReleaseMutex(mutex.Get()));
    EXPECT_FALSE(ReleaseMutex(mutex.Get()));
    std::thread([&mutex] {
        EXPECT_EQ(WaitForSingleObject(mutex.Get(), 0), WAIT_OBJECT_0);
        EXPECT_TRUE(ReleaseMutex(mutex.Get()));
    }).join();
}

TEST(Mutexes, MadeOwnedAndAbandoned) {
    platform::ScopedHandle mutex;
    std::thread([&mutex] { mutex.Reset(CreateMutexW(nullptr, TRUE, nullptr)); }).join();
    EXPECT_EQ(WaitForSingleObject(mutex.Get(), INFINITE), WAIT_ABANDONED);
    EXPECT_EQ(WaitForSingleObject(mutex.Get(), INFINITE), WAIT_OBJECT_0);
    EXPECT_TRUE(ReleaseMutex(mutex.Get()));
    EXPECT_TRUE(ReleaseMutex(mutex.Get()));
    EXPECT_FALSE(ReleaseMutex(mutex.Get()));
}

TEST(Mutexes, ADuplicateIsTheSameMutex) {
    platform::ScopedHandle first(CreateMutexW(nullptr, TRUE, nullptr));
    platform::ScopedHandle second;
    ASSERT_TRUE(DuplicateHandle(GetCurrentProcess(), first.Get(), GetCurrentProcess(), second.Out(), 0, FALSE,
                                DUPLICATE_SAME_ACCESS));
    first.Reset();
    std::thread([&second] { EXPECT_EQ(WaitForSingleObject(second.Get(), 0), WAIT_TIMEOUT); }).join();
    EXPECT_TRUE(ReleaseMutex(second.Get()));
    EXPECT_FALSE(ReleaseMutex(second.Get()));
}

TEST(Mutexes, ClosedWhileHeld) {
    // By this thread, by another one, and by one that ends afterwards: whatever is made later works as ever.
    HANDLE mine = CreateMutexW(nullptr, TRUE, nullptr);
    WaitForSingleObject(mine, INFINITE);
    EXPECT_TRUE(CloseHandle(mine));
    std::promise<HANDLE> held;
    std::promise<void> closed;
    std::thread other([&] {
        held.set_value(CreateMutexW(nullptr, TRUE, nullptr));
        closed.get_future().wait();
    });
    EXPECT_TRUE(CloseHandle(held.get_future().get()));
    std::vector<platform::ScopedHandle> later;
    for (int i = 0; i < 8; ++i) {
        later.emplace_back(CreateMutexW(nullptr, FALSE, nullptr));
        EXPECT_EQ(WaitForSingleObject(later.back().Get(), 0), WAIT_OBJECT_0);
    }
    closed.set_value();
    other.join();
    for (const auto& mutex : later) EXPECT_TRUE(ReleaseMutex(mutex.Get()));
}

TEST(Mutexes, ExcludeEachOther) {
    platform::ScopedHandle mutex(CreateMutexW(nullptr, FALSE, nullptr));
    CRITICAL_SECTION section;
    InitializeCriticalSection(&section);
    int by_mutex = 0;
    int by_section = 0;
    constexpr int kTurns = 2000;
    const auto work = [&] {
        for (int i = 0; i < kTurns; ++i) {
            {
                platform::MutexLock lock(mutex.Get());
                ++by_mutex;
            }
            platform::CriticalSectionLock outer(section);
            platform::CriticalSectionLock inner(section);
            ++by_section;
        }
    };
    std::thread other(work);
    work();
    other.join();
    DeleteCriticalSection(&section);
    EXPECT_EQ(by_mutex, 2 * kTurns);
    EXPECT_EQ(by_section, 2 * kTurns);
}

}  // namespace
