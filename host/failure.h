// What ends a command early. The message is for the user: what failed, and what to do.
#pragma once

#include <stdexcept>

namespace clipfio::host {

inline constexpr int kExitDone = 0;
inline constexpr int kExitFailed = 1;
inline constexpr int kExitUsage = 2;

// The work could not be done: exit status 1.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The command line makes no sense: exit status 2.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace clipfio::host
