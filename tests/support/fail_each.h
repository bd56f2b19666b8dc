// Every call of the platform, or every allocation, fails once.
#pragma once

#include <gtest/gtest.h>

#include "platform/faults.h"
#include "support/failing_new.h"

namespace support {

// While it lives, `n` calls of the platform that can fail go through and the one after them fails, once.
class FailingCall {
  public:
    explicit FailingCall(int n) noexcept { platform::faults::FailAfter(n); }
    ~FailingCall() { platform::faults::Clear(); }
    FailingCall(const FailingCall&) = delete;
    FailingCall& operator=(const FailingCall&) = delete;
    [[nodiscard]] bool Hit() const noexcept { return platform::faults::Hit(); }
};

// Runs the operation with its first call failing, then its second, and lastly with none. `check` gets the result and
// whether a call failed. Gives the number of calls that failed.
template <class Failing, class Operation, class Check>
int FailEach(Operation operation, Check check) {
    constexpr int kEndless = 2000;
    bool hit = true;
    int n = 0;
    for (; hit && n < kEndless; ++n) {
        SCOPED_TRACE(testing::Message() << "call " << n);
        const auto result = [&] {
            const Failing fail(n);
            auto of_operation = operation();
            hit = fail.Hit();
            return of_operation;
        }();
        check(result, hit);
    }
    EXPECT_LT(n, kEndless);
    return n - 1;
}

}  // namespace support
