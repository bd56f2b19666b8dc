// The place in a call where a test may make it fail.
#pragma once

#include "process_shared.h"

namespace platform {

namespace detail {
bool CountDownFault(ProcessShared& shared) noexcept;
}

// True when this call is the one to fail. One relaxed load while no test asks for failures.
inline bool FaultHere() noexcept {
    ProcessShared& shared = Shared();
    if (shared.fault_countdown.load(std::memory_order_relaxed) == 0) [[likely]]
        return false;
    return detail::CountDownFault(shared);
}

}  // namespace platform
