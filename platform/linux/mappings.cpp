// Shared mappings, as sealed memory files. The handle's value holds the descriptor and a part of the file's inode
// number, so that neither a closed handle nor a descriptor that stands for something else meanwhile is taken for one.
#include "mappings.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/sysinfo.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <limits>

#include "errors.h"
#include "fault_point.h"
#include "platform/process.h"
#include "process_shared.h"
#include "safe_memory.h"

namespace platform {
namespace {

constexpr std::uint64_t kTag = 0x1C1ull << 52;
constexpr std::uint64_t kTagMask = 0xFFFull << 52;
constexpr unsigned kInodeShift = 26;
constexpr std::uint64_t kInodeMask = (1ull << 26) - 1;
constexpr unsigned kDescriptorShift = 2;
constexpr std::uint64_t kDescriptorMask = (1ull << 24) - 1;

// What makes a memory file one of ours, and keeps a view from losing its pages: its size is fixed for good.
constexpr int kSeals = F_SEAL_SEAL | F_SEAL_SHRINK | F_SEAL_GROW;

std::uint64_t ValueOf(HANDLE handle) noexcept { return reinterpret_cast<std::uintptr_t>(handle); }

int DescriptorOf(HANDLE handle) noexcept {
    return static_cast<int>(ValueOf(handle) >> kDescriptorShift & kDescriptorMask);
}

HANDLE Encode(int descriptor, ino_t inode) noexcept {
    const auto number = static_cast<std::uint64_t>(descriptor);
    return reinterpret_cast<HANDLE>(kTag | (inode & kInodeMask) << kInodeShift | number << kDescriptorShift);
}

// True when `descriptor` is open on the very memory file that the handle was made for.
bool IsFileOf(HANDLE handle, int descriptor, std::uint64_t& size) noexcept {
    struct stat facts {};
    if (fstat(descriptor, &facts) != 0 || !S_ISREG(facts.st_mode)) return false;
    if ((facts.st_ino & kInodeMask) != (ValueOf(handle) >> kInodeShift & kInodeMask)) return false;
    size = static_cast<std::uint64_t>(facts.st_size);
    return fcntl(descriptor, F_GET_SEALS) == kSeals;
}

// Takes over the descriptor.
HANDLE HandleOf(int descriptor) noexcept {
    struct stat facts {};
    if (fstat(descriptor, &facts) == 0 && static_cast<std::uint64_t>(descriptor) <= kDescriptorMask) {
        return Encode(descriptor, facts.st_ino);
    }
    close(descriptor);
    return Fail<HANDLE>(ERROR_TOO_MANY_OPEN_FILES, nullptr);
}

// Takes over the descriptor that stands for the mapping of `foreign` if it does.
HANDLE Adopt(int descriptor, HANDLE foreign, BOOL inherit) noexcept {
    std::uint64_t size = 0;
    if (!IsFileOf(foreign, descriptor, size)) {
        close(descriptor);
        return Fail<HANDLE>(ERROR_INVALID_HANDLE, nullptr);
    }
    if (inherit) fcntl(descriptor, F_SETFD, 0);
    return HandleOf(descriptor);
}

// Other processes of the user are meant to reach this memory, and a plain address of ours as well. Where the kernel
// lets only a parent look into a process, this opens it to the others, as they are open to each other on Windows. A
// process that hands out plain addresses and never makes a mapping has to do so itself.
void AllowOtherProcesses() noexcept { prctl(PR_SET_PTRACER, PR_SET_PTRACER_ANY, 0, 0, 0); }

// Memory files grow as they are written to and end the process when nothing is left, so what can never be had is
// refused at once.
bool CanEverFit(std::uint64_t bytes) noexcept {
    struct sysinfo facts {};
    if (bytes > static_cast<std::uint64_t>(std::numeric_limits<off_t>::max())) return false;
    if (sysinfo(&facts) != 0) return true;
    return bytes / facts.mem_unit <= static_cast<std::uint64_t>(facts.totalram) + facts.totalswap;
}

HANDLE MakeMapping(std::uint64_t bytes, bool inherit) noexcept {
    if (!CanEverFit(bytes)) return Fail<HANDLE>(ERROR_COMMITMENT_LIMIT, nullptr);
    const int descriptor = memfd_create("clipfio", MFD_CLOEXEC | MFD_ALLOW_SEALING);
    if (descriptor < 0) return Fail<HANDLE>(Win32FromErrno(errno), nullptr);
    if (ftruncate(descriptor, static_cast<off_t>(bytes)) != 0 || fcntl(descriptor, F_ADD_SEALS, kSeals) != 0) {
        const DWORD error = Win32FromErrno(errno);
        close(descriptor);
        return Fail<HANDLE>(error, nullptr);
    }
    if (inherit) fcntl(descriptor, F_SETFD, 0);
    AllowOtherProcesses();
    return HandleOf(descriptor);
}

// In front of each view lies a page that says what belongs to it. So any copy of this code can unmap a view, and knows
// an address that is none.
struct ViewHeader {
    std::uint64_t cookie;
    std::uint64_t mapped;  // bytes of the whole, header page included
};
constexpr std::uint64_t kViewCookie = 0xC1A0B10C51E30002;
constexpr std::size_t kPage = 4096;
constexpr std::uint64_t kGranularity = 64 * 1024;

std::uint64_t CookieOf(const ViewHeader* header) noexcept {
    return kViewCookie ^ reinterpret_cast<std::uintptr_t>(header);
}

__attribute__((no_sanitize("address", "thread"))) bool HasCookie(const ViewHeader* header) noexcept {
    return *const_cast<const volatile std::uint64_t*>(&header->cookie) == CookieOf(header);
}

void* MakeView(int descriptor, int protection, std::uint64_t offset, std::size_t bytes) noexcept {
    const std::size_t whole = kPage + bytes;
    void* const base = mmap(nullptr, whole, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (base == MAP_FAILED) return Fail<void*>(Win32FromErrno(errno), nullptr);
    void* const view = static_cast<char*>(base) + kPage;
    if (mmap(view, bytes, protection, MAP_SHARED | MAP_FIXED, descriptor, static_cast<off_t>(offset)) == MAP_FAILED) {
        const DWORD error = Win32FromErrno(errno);
        munmap(base, whole);
        return Fail<void*>(error, nullptr);
    }
    auto* const header = static_cast<ViewHeader*>(base);
    header->cookie = CookieOf(header);
    header->mapped = whole;
    return view;
}

}  // namespace

bool IsMappingHandle(HANDLE handle) noexcept { return (ValueOf(handle) & kTagMask) == kTag; }

int LiveMappingDescriptor(HANDLE handle) noexcept {
    std::uint64_t size = 0;
    const int descriptor = DescriptorOf(handle);
    return IsMappingHandle(handle) && IsFileOf(handle, descriptor, size) ? descriptor : -1;
}

BOOL CloseMapping(HANDLE handle) noexcept {
    // Of two closes at once the second must find the descriptor gone, and not close what took its place.
    PthreadLock lock(Shared().mapping_lock);
    std::uint64_t size = 0;
    if (!IsFileOf(handle, DescriptorOf(handle), size)) return Fail(ERROR_INVALID_HANDLE);
    close(DescriptorOf(handle));
    return TRUE;
}

HANDLE DuplicateMapping(HANDLE handle, BOOL inherit) noexcept {
    const int descriptor = fcntl(DescriptorOf(handle), F_DUPFD_CLOEXEC, 0);
    if (descriptor < 0) return Fail<HANDLE>(Win32FromErrno(errno), nullptr);
    return Adopt(descriptor, handle, inherit);
}

HANDLE DuplicateForeignMapping(int pidfd, DWORD id, HANDLE handle, BOOL inherit) noexcept {
    auto descriptor = static_cast<int>(syscall(SYS_pidfd_getfd, pidfd, DescriptorOf(handle), 0));
    if (descriptor < 0 && (errno == EPERM || errno == ENOSYS)) {
        // Where debugging rights are narrowed to parents, the folder of open files still serves the same user.
        char path[64];
        std::snprintf(path, sizeof path, "/proc/%u/fd/%d", id, DescriptorOf(handle));
        descriptor = open(path, O_RDWR | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    }
    if (descriptor < 0) {
        const bool nothing_there = errno == EBADF || errno == ENOENT || errno == ENXIO;
        return Fail<HANDLE>(nothing_there ? ERROR_INVALID_HANDLE : Win32FromErrno(errno), nullptr);
    }
    return Adopt(descriptor, handle, inherit);
}

}  // namespace platform

extern "C" HANDLE CreateFileMappingW(HANDLE file, SECURITY_ATTRIBUTES* security, DWORD protect, DWORD size_high,
                                     DWORD size_low, const WCHAR* name) noexcept {
    using platform::Fail;
    if (file != INVALID_HANDLE_VALUE || name) return Fail<HANDLE>(ERROR_NOT_SUPPORTED, nullptr);
    const std::uint64_t bytes = static_cast<std::uint64_t>(size_high) << 32 | size_low;
    if (protect != PAGE_READWRITE || bytes == 0) return Fail<HANDLE>(ERROR_INVALID_PARAMETER, nullptr);
    if (platform::FaultHere()) return Fail<HANDLE>(platform::ERROR_COMMITMENT_LIMIT, nullptr);
    const HANDLE mapping = platform::MakeMapping(bytes, security && security->bInheritHandle);
    if (mapping) SetLastError(ERROR_SUCCESS);
    return mapping;
}

extern "C" void* MapViewOfFile(HANDLE mapping, DWORD access, DWORD offset_high, DWORD offset_low,
                               SIZE_T bytes) noexcept {
    using platform::Fail;
    const int descriptor = platform::DescriptorOf(mapping);
    std::uint64_t size = 0;
    if (!platform::IsMappingHandle(mapping) || !platform::IsFileOf(mapping, descriptor, size)) {
        return Fail<void*>(ERROR_INVALID_HANDLE, nullptr);
    }
    const std::uint64_t offset = static_cast<std::uint64_t>(offset_high) << 32 | offset_low;
    const int protection = access & FILE_MAP_WRITE ? PROT_READ | PROT_WRITE : PROT_READ;
    if ((access & ~(FILE_MAP_READ | FILE_MAP_WRITE)) != 0 || access == 0) {
        return Fail<void*>(ERROR_INVALID_PARAMETER, nullptr);
    }
    if (offset % platform::kGranularity != 0) return Fail<void*>(platform::ERROR_MAPPED_ALIGNMENT, nullptr);
    if (offset > size || bytes > size - offset || (bytes == 0 && offset == size)) {
        return Fail<void*>(ERROR_ACCESS_DENIED, nullptr);
    }
    if (platform::FaultHere()) return Fail<void*>(ERROR_NOT_ENOUGH_MEMORY, nullptr);
    return platform::MakeView(descriptor, protection, offset, bytes != 0 ? bytes : size - offset);
}

extern "C" BOOL UnmapViewOfFile(const void* view) noexcept {
    using platform::Fail;
    const auto address = reinterpret_cast<std::uintptr_t>(view);
    if (address % platform::kPage != 0 || address < 2 * platform::kPage) return Fail(ERROR_INVALID_ADDRESS);
    auto* const header = reinterpret_cast<platform::ViewHeader*>(address - platform::kPage);
    if (!platform::IsReadable(header) || !platform::HasCookie(header)) return Fail(ERROR_INVALID_ADDRESS);
    header->cookie = 0;
    munmap(header, header->mapped);
    return TRUE;
}
