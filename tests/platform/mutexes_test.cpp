#include <gtest/gtest.h>

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

}  // namespace
