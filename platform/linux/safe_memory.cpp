#include "safe_memory.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

#include "platform/memory.h"

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

extern "C" BOOL IsBadReadPtr(const void* address, ULONG_PTR bytes) noexcept {
    if (bytes == 0) return FALSE;
    const auto first = reinterpret_cast<std::uintptr_t>(address);
    const std::uintptr_t last = first + (bytes - 1);
    if (last < first) return TRUE;
    constexpr std::uintptr_t kPage = 4096;
    for (std::uintptr_t page = first & ~(kPage - 1);; page += kPage) {
        // The page's first word, which lies in no other page.
        if (!platform::IsReadable(reinterpret_cast<const void*>(page))) return TRUE;
        if (last - page < kPage) return FALSE;
    }
}
