#include "platform/process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <limits>

#include "errors.h"
#include "fault_point.h"
#include "handles.h"
#include "mappings.h"

namespace {

using platform::Fail;
using platform::HandleType;
using platform::HandleUse;
using platform::Win32FromErrno;

constexpr DWORD kMemoryAccess = PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE;

bool HasEnded(int pidfd) noexcept {
    pollfd wait{pidfd, POLLIN, 0};
    return poll(&wait, 1, 0) != 0;
}

int OpenPidfd(DWORD id) noexcept { return static_cast<int>(syscall(SYS_pidfd_open, static_cast<pid_t>(id), 0)); }

// Win32 refuses a process when it is opened and not when it is used: so whether it may be used is tried here.
bool MayUse(DWORD id, DWORD access) noexcept {
    char path[64];
    if (access & kMemoryAccess) {
        std::snprintf(path, sizeof path, "/proc/%u/mem", id);
        const int memory = open(path, O_RDWR | O_CLOEXEC);
        if (memory < 0) return false;
        close(memory);
    }
    if (access & PROCESS_DUP_HANDLE) {
        std::snprintf(path, sizeof path, "/proc/%u/fd", id);
        const int folder = open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (folder < 0) return false;
        close(folder);
    }
    return true;
}

// A process that a call works on: this one by its pseudo handle, or the one behind a handle with the rights asked for.
class ProcessUse {
  public:
    ProcessUse(HANDLE process, DWORD access) noexcept : use_(process, HandleType::kProcess) {
        if (process == GetCurrentProcess()) {
            id_ = GetCurrentProcessId();
        } else if (!use_) {
            SetLastError(ERROR_INVALID_HANDLE);
        } else if ((use_.Rights() & access) != access) {
            SetLastError(ERROR_ACCESS_DENIED);
        } else {
            id_ = use_->process.id;
        }
    }
    explicit operator bool() const noexcept { return id_ != 0; }
    [[nodiscard]] DWORD Id() const noexcept { return id_; }
    [[nodiscard]] int Pidfd() const noexcept { return use_ ? use_->number : -1; }
    [[nodiscard]] bool IsThis() const noexcept { return id_ == GetCurrentProcessId(); }
    // The id may be another process's as soon as the process has ended.
    [[nodiscard]] bool IsGone() const noexcept { return use_ && HasEnded(use_->number); }

  private:
    HandleUse use_;
    DWORD id_ = 0;
};

using Transfer = ssize_t (*)(pid_t, const iovec*, unsigned long, const iovec*, unsigned long, unsigned long);

// Moves memory in pieces that the kernel takes whole. A piece that comes short is followed by one more try, which says
// why.
BOOL Move(Transfer transfer, const ProcessUse& process, void* here, std::uintptr_t there, SIZE_T bytes,
          SIZE_T* moved) noexcept {
    constexpr SIZE_T kPiece = SIZE_T{1} << 28;
    SIZE_T done = 0;
    int error = 0;
    while (done < bytes && error == 0) {
        const SIZE_T part = std::min(bytes - done, kPiece);
        const iovec local{static_cast<char*>(here) + done, part};
        const iovec remote{reinterpret_cast<void*>(there + done), part};
        const ssize_t got = transfer(static_cast<pid_t>(process.Id()), &local, 1, &remote, 1, 0);
        if (got > 0) {
            done += static_cast<SIZE_T>(got);
        } else {
            error = got < 0 ? errno : EFAULT;
        }
    }
    if (moved) *moved = done;
    if (error == ESRCH || process.IsGone()) return Fail(ERROR_ACCESS_DENIED);
    if (error == 0) return TRUE;
    return Fail(done != 0 ? ERROR_PARTIAL_COPY : Win32FromErrno(error));
}

// A handle of this process on what `source` names in this process.
HANDLE DuplicateHere(HANDLE source, DWORD access, BOOL inherit, DWORD options) noexcept {
    if (source == GetCurrentProcess()) {
        const int pidfd = OpenPidfd(GetCurrentProcessId());
        if (pidfd < 0) return Fail<HANDLE>(Win32FromErrno(errno), nullptr);
        return platform::NewProcessHandle(pidfd, GetCurrentProcessId(), platform::kAllProcessAccess, false);
    }
    if (platform::IsMappingHandle(source)) return platform::DuplicateMapping(source, inherit);
    HandleUse use(source, HandleType::kNone);
    if (!use) return Fail<HANDLE>(ERROR_INVALID_HANDLE, nullptr);
    if (use->type != HandleType::kFile) {
        const bool same = (options & DUPLICATE_SAME_ACCESS) != 0 || use->type != HandleType::kProcess;
        return platform::NewAliasHandle(source, same ? use.Rights() : use.Rights() & access);
    }
    // The duplicate shares the position, as Win32's does.
    const int descriptor = fcntl(use->number, inherit ? F_DUPFD : F_DUPFD_CLOEXEC, 0);
    if (descriptor < 0) return Fail<HANDLE>(Win32FromErrno(errno), nullptr);
    return platform::NewFileHandle(descriptor, use.Rights());
}

}  // namespace

extern "C" DWORD GetCurrentProcessId() noexcept { return static_cast<DWORD>(getpid()); }
extern "C" HANDLE GetCurrentProcess() noexcept { return INVALID_HANDLE_VALUE; }

extern "C" HANDLE OpenProcess(DWORD access, BOOL, DWORD id) noexcept {
    if (platform::FaultHere()) return Fail<HANDLE>(ERROR_ACCESS_DENIED, nullptr);
    if (id == 0 || id > static_cast<DWORD>(std::numeric_limits<pid_t>::max())) {
        return Fail<HANDLE>(ERROR_INVALID_PARAMETER, nullptr);
    }
    const int pidfd = OpenPidfd(id);
    if (pidfd < 0) {
        const bool none = errno == ESRCH || errno == EINVAL || errno == ENOENT;
        return Fail<HANDLE>(none ? ERROR_INVALID_PARAMETER : Win32FromErrno(errno), nullptr);
    }
    const bool allowed = MayUse(id, access);
    const bool ended = HasEnded(pidfd);
    if (allowed && !ended) return platform::NewProcessHandle(pidfd, id, access, false);
    close(pidfd);
    return Fail<HANDLE>(ended ? ERROR_INVALID_PARAMETER : ERROR_ACCESS_DENIED, nullptr);
}

extern "C" BOOL DuplicateHandle(HANDLE source_process, HANDLE source, HANDLE target_process, HANDLE* target,
                                DWORD access, BOOL inherit, DWORD options) noexcept {
    if (!target) return Fail(ERROR_INVALID_PARAMETER);
    *target = nullptr;
    const ProcessUse from(source_process, PROCESS_DUP_HANDLE);
    if (!from) return FALSE;
    const ProcessUse to(target_process, PROCESS_DUP_HANDLE);
    if (!to) return FALSE;
    if (!to.IsThis() || (options & ~DUPLICATE_SAME_ACCESS) != 0) return Fail(ERROR_NOT_SUPPORTED);
    if (platform::FaultHere()) return Fail(ERROR_ACCESS_DENIED);
    if (from.IsThis()) {
        *target = DuplicateHere(source, access, inherit, options);
    } else if (platform::IsMappingHandle(source)) {
        *target = platform::DuplicateForeignMapping(from.Pidfd(), from.Id(), source, inherit);
        if (*target && from.IsGone()) {
            CloseHandle(*target);
            *target = Fail<HANDLE>(ERROR_INVALID_HANDLE, nullptr);
        }
    } else {
        // What other kinds of handle stand for cannot be seen from here.
        SetLastError(platform::IsTableHandle(source) ? ERROR_NOT_SUPPORTED : ERROR_INVALID_HANDLE);
    }
    return *target ? TRUE : FALSE;
}

extern "C" BOOL ReadProcessMemory(HANDLE process, const void* address, void* data, SIZE_T bytes,
                                  SIZE_T* read) noexcept {
    if (read) *read = 0;
    const ProcessUse use(process, PROCESS_VM_READ);
    if (!use) return FALSE;
    return Move(process_vm_readv, use, data, reinterpret_cast<std::uintptr_t>(address), bytes, read);
}

extern "C" BOOL WriteProcessMemory(HANDLE process, void* address, const void* data, SIZE_T bytes,
                                   SIZE_T* written) noexcept {
    if (written) *written = 0;
    const ProcessUse use(process, PROCESS_VM_WRITE | PROCESS_VM_OPERATION);
    if (!use) return FALSE;
    return Move(process_vm_writev, use, const_cast<void*>(data), reinterpret_cast<std::uintptr_t>(address), bytes,
                written);
}
