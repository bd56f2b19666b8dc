#include "platform/faults.h"

#include <algorithm>
#include <limits>

#include "fault_point.h"

namespace platform {

namespace detail {

// The countdown is 0 when off and 1 when the next call is to fail.
bool CountDownFault(ProcessShared& shared) noexcept {
    std::int32_t left = shared.fault_countdown.load();
    while (left > 0) {
        if (shared.fault_countdown.compare_exchange_weak(left, left - 1)) {
            if (left == 1) shared.fault_hit.store(1);
            return left == 1;
        }
    }
    return false;
}

}  // namespace detail

namespace faults {

void FailAfter(int n) noexcept {
    Shared().fault_hit.store(0);
    Shared().fault_countdown.store(std::clamp(n, 0, std::numeric_limits<int>::max() - 1) + 1);
}

void Clear() noexcept {
    Shared().fault_countdown.store(0);
    Shared().fault_hit.store(0);
}

bool Hit() noexcept { return Shared().fault_hit.load() != 0; }

}  // namespace faults
}  // namespace platform
