#include "platform/sync.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <limits>

#include "errors.h"
#include "fault_point.h"
#include "handles.h"

namespace {

using platform::Fail;
using platform::HandleSlot;
using platform::HandleType;
using platform::HandleUse;

std::int32_t ThreadId() noexcept {
    thread_local const std::int32_t id = gettid();
    return id;
}

std::int32_t HolderOf(HandleSlot& slot) noexcept {
    return std::atomic_ref(slot.number).load(std::memory_order_relaxed);
}

timespec After(clockid_t clock, DWORD milliseconds) noexcept {
    constexpr long kNanosPerSecond = 1'000'000'000;
    timespec at{};
    clock_gettime(clock, &at);
    at.tv_sec += milliseconds / 1000;
    at.tv_nsec += static_cast<long>(milliseconds % 1000) * 1'000'000;
    if (at.tv_nsec >= kNanosPerSecond) {
        at.tv_nsec -= kNanosPerSecond;
        ++at.tv_sec;
    }
    return at;
}

int LockFor(pthread_mutex_t& mutex, DWORD milliseconds) noexcept {
    if (milliseconds == INFINITE) return pthread_mutex_lock(&mutex);
    if (milliseconds == 0) return pthread_mutex_trylock(&mutex);
#ifdef __SANITIZE_THREAD__
    // The thread sanitizer of this compiler knows the older call only.
    const timespec until = After(CLOCK_REALTIME, milliseconds);
    return pthread_mutex_timedlock(&mutex, &until);
#else
    const timespec until = After(CLOCK_MONOTONIC, milliseconds);
    return pthread_mutex_clocklock(&mutex, CLOCK_MONOTONIC, &until);
#endif
}

DWORD WaitForMutex(HandleSlot& slot, DWORD milliseconds) noexcept {
    const int result = LockFor(slot.mutex, milliseconds);
    switch (result) {
        case 0:
            ++slot.flags;
            break;
        case EOWNERDEAD:
            pthread_mutex_consistent(&slot.mutex);
            slot.flags = 1;
            break;
        case EBUSY:
        case ETIMEDOUT:
            return WAIT_TIMEOUT;
        default:
            return Fail(platform::Win32FromErrno(result), WAIT_FAILED);
    }
    std::atomic_ref(slot.number).store(ThreadId(), std::memory_order_relaxed);
    return result == 0 ? WAIT_OBJECT_0 : WAIT_ABANDONED;
}

DWORD WaitForProcess(HandleSlot& slot, DWORD milliseconds) noexcept {
    const timespec until = After(CLOCK_MONOTONIC, milliseconds == INFINITE ? 0 : milliseconds);
    DWORD left = milliseconds;
    for (;;) {
        pollfd wait{slot.number, POLLIN, 0};
        constexpr DWORD kLongest = std::numeric_limits<int>::max();
        const int timeout = milliseconds == INFINITE ? -1 : static_cast<int>(left < kLongest ? left : kLongest);
        const int result = poll(&wait, 1, timeout);
        if (result > 0) return WAIT_OBJECT_0;
        if (result < 0 && errno != EINTR) return Fail(platform::Win32FromErrno(errno), WAIT_FAILED);
        if (milliseconds == INFINITE) continue;
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        const std::int64_t remaining =
            (until.tv_sec - now.tv_sec) * std::int64_t{1000} + (until.tv_nsec - now.tv_nsec) / 1'000'000;
        if (remaining <= 0) return WAIT_TIMEOUT;
        left = static_cast<DWORD>(remaining);
    }
}

pthread_mutex_t& MutexOf(CRITICAL_SECTION* section) noexcept {
    static_assert(sizeof(CRITICAL_SECTION) >= sizeof(pthread_mutex_t));
    return *reinterpret_cast<pthread_mutex_t*>(section->state);
}

}  // namespace

extern "C" HANDLE CreateMutexW(SECURITY_ATTRIBUTES*, BOOL owned, const WCHAR* name) noexcept {
    if (name) return Fail<HANDLE>(ERROR_NOT_SUPPORTED, nullptr);
    if (platform::FaultHere()) return Fail<HANDLE>(ERROR_NOT_ENOUGH_MEMORY, nullptr);
    const HANDLE mutex = platform::NewMutexHandle();
    if (mutex && owned) WaitForSingleObject(mutex, 0);
    if (mutex) SetLastError(ERROR_SUCCESS);
    return mutex;
}

extern "C" BOOL ReleaseMutex(HANDLE mutex) noexcept {
    HandleUse use(mutex, HandleType::kMutex);
    if (!use) return Fail(ERROR_INVALID_HANDLE);
    HandleSlot& slot = *use;
    if (HolderOf(slot) != ThreadId()) return Fail(ERROR_NOT_OWNER);
    if (--slot.flags == 0) std::atomic_ref(slot.number).store(0, std::memory_order_relaxed);
    return pthread_mutex_unlock(&slot.mutex) == 0 ? TRUE : Fail(ERROR_NOT_OWNER);
}

extern "C" DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) noexcept {
    HandleUse use(handle, HandleType::kNone);
    if (!use) return Fail(ERROR_INVALID_HANDLE, WAIT_FAILED);
    switch (use->type) {
        case HandleType::kMutex:
            return WaitForMutex(*use, milliseconds);
        case HandleType::kProcess:
            return WaitForProcess(*use, milliseconds);
        default:
            return Fail(ERROR_INVALID_HANDLE, WAIT_FAILED);
    }
}

extern "C" void InitializeCriticalSection(CRITICAL_SECTION* section) noexcept {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&MutexOf(section), &attributes);
    pthread_mutexattr_destroy(&attributes);
}

extern "C" void EnterCriticalSection(CRITICAL_SECTION* section) noexcept { pthread_mutex_lock(&MutexOf(section)); }
extern "C" void LeaveCriticalSection(CRITICAL_SECTION* section) noexcept { pthread_mutex_unlock(&MutexOf(section)); }
extern "C" void DeleteCriticalSection(CRITICAL_SECTION* section) noexcept { pthread_mutex_destroy(&MutexOf(section)); }

extern "C" DWORD GetCurrentThreadId() noexcept { return static_cast<DWORD>(ThreadId()); }
