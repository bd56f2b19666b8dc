#include "safe_memory.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

namespace platform {

bool IsReadable(const void* address) noexcept {
    // The kernel copies the signal set before it looks at `how`, which is no operation: EFAULT when it cannot be read,
    // else EINVAL, and nothing changes in either case.
    constexpr int kNoOperation = ~0;
    const int before = errno;
    const bool readable =
        syscall(SYS_rt_sigprocmask, kNoOperation, address, nullptr, 8) == -1 && errno == EINVAL && address != nullptr;
    errno = before;
    return readable;
}

}  // namespace platform
