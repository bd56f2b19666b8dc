#include "platform/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>

#include "errors.h"
#include "fault_point.h"
#include "handles.h"
#include "paths.h"

namespace {

using platform::Fail;
using platform::Guarded;
using platform::HandleType;
using platform::HandleUse;
using platform::Win32FromErrno;

// Of the flags only hints can be followed; attributes (the low 16 bits) matter to a new file alone.
constexpr DWORD kServedFlags = 0xFFFF | FILE_FLAG_SEQUENTIAL_SCAN;
// The kernel moves no more in one call.
constexpr DWORD kMaxTransfer = 0x7FFFF000;

struct Opened {
    int descriptor = -1;
    bool was_there = true;
};

int OpenRetrying(const char* path, int flags, mode_t mode) noexcept {
    int descriptor = -1;
    do {
        descriptor = open(path, flags, mode);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

// Makes the file, or opens the one that is there with `flags_there`, and says which of the two happened.
Opened CreateOrOpen(const char* path, int flags, int flags_there, mode_t mode) noexcept {
    for (int attempt = 0; attempt < 8; ++attempt) {
        const int made = OpenRetrying(path, flags | O_CREAT | O_EXCL, mode);
        if (made >= 0 || errno != EEXIST) return {made, false};
        const int found = OpenRetrying(path, flags | flags_there, mode);
        // It may have gone between the two calls.
        if (found >= 0 || errno != ENOENT) return {found, true};
    }
    // A link that leads nowhere is there for the first call and not for the second.
    return {OpenRetrying(path, flags | flags_there | O_CREAT, mode), false};
}

Opened OpenAs(const char* path, int flags, DWORD disposition, DWORD attributes) noexcept {
    const mode_t mode = attributes & FILE_ATTRIBUTE_READONLY ? 0444 : 0666;
    switch (disposition) {
        case CREATE_NEW:
            return {OpenRetrying(path, flags | O_CREAT | O_EXCL, mode), false};
        case CREATE_ALWAYS:
            return CreateOrOpen(path, flags, O_TRUNC, mode);
        case OPEN_ALWAYS:
            return CreateOrOpen(path, flags, 0, mode);
        case TRUNCATE_EXISTING:
            return {OpenRetrying(path, flags | O_TRUNC, mode), true};
        default:
            return {OpenRetrying(path, flags, mode), true};
    }
}

int OpenFlags(DWORD access) noexcept {
    // Without waiting for the other end of a named pipe: no call of ours may hang on what a path happens to name.
    constexpr int kAlways = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    if ((access & GENERIC_WRITE) == 0) return kAlways | O_RDONLY;
    return kAlways | (access & GENERIC_READ ? O_RDWR : O_WRONLY);
}

// Writing to a pipe that nobody reads must be an error and not the end of the process.
class NoPipeSignal {
  public:
    NoPipeSignal() noexcept {
        sigemptyset(&pipe_);
        sigaddset(&pipe_, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        was_pending_ = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &pipe_, &before_);
    }
    ~NoPipeSignal() {
        const int saved = errno;
        const timespec now{};
        if (!was_pending_ && saved == EPIPE) sigtimedwait(&pipe_, nullptr, &now);
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
        errno = saved;
    }
    NoPipeSignal(const NoPipeSignal&) = delete;
    NoPipeSignal& operator=(const NoPipeSignal&) = delete;

  private:
    sigset_t pipe_{};
    sigset_t before_{};
    bool was_pending_ = false;
};

ssize_t WriteSome(int descriptor, const void* data, std::size_t bytes, bool regular) noexcept {
    if (regular) return write(descriptor, data, bytes);
    errno = 0;
    NoPipeSignal guard;
    return write(descriptor, data, bytes);
}

// Gives the descriptor to the table, or refuses what a file handle cannot stand for.
HANDLE HandleOfOpened(int descriptor, DWORD access, DWORD flags) noexcept {
    struct stat facts {};
    if (fstat(descriptor, &facts) != 0 || S_ISDIR(facts.st_mode)) {
        close(descriptor);
        return Fail(ERROR_ACCESS_DENIED, INVALID_HANDLE_VALUE);
    }
    std::uint32_t rights = 0;
    if (access & GENERIC_READ) rights |= platform::kFileReadable;
    if (access & GENERIC_WRITE) rights |= platform::kFileWritable;
    if (S_ISFIFO(facts.st_mode) || S_ISSOCK(facts.st_mode)) rights |= platform::kFilePipe;
    if (S_ISREG(facts.st_mode)) {
        rights |= platform::kFileRegular;
        if (flags & FILE_FLAG_SEQUENTIAL_SCAN) posix_fadvise(descriptor, 0, 0, POSIX_FADV_SEQUENTIAL);
    } else {
        fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) & ~O_NONBLOCK);
    }
    const HANDLE file = platform::NewFileHandle(descriptor, rights);
    return file ? file : INVALID_HANDLE_VALUE;
}

HANDLE CreateFileChecked(const WCHAR* path, DWORD access, DWORD disposition, DWORD flags, bool inherit) {
    if (disposition < CREATE_NEW || disposition > TRUNCATE_EXISTING) {
        return Fail(ERROR_INVALID_PARAMETER, INVALID_HANDLE_VALUE);
    }
    if (disposition == TRUNCATE_EXISTING && (access & GENERIC_WRITE) == 0) {
        return Fail(ERROR_INVALID_PARAMETER, INVALID_HANDLE_VALUE);
    }
    if ((access & ~(GENERIC_READ | GENERIC_WRITE)) != 0 || (flags & ~kServedFlags) != 0) {
        return Fail(ERROR_NOT_SUPPORTED, INVALID_HANDLE_VALUE);
    }
    const auto posix = platform::PosixPath(path);
    if (!posix) return INVALID_HANDLE_VALUE;
    const Opened opened = OpenAs(posix->c_str(), OpenFlags(access), disposition, flags);
    if (opened.descriptor < 0) {
        const DWORD error = errno == ENXIO ? ERROR_ACCESS_DENIED : platform::PathError(errno, *posix);
        return Fail(error, INVALID_HANDLE_VALUE);
    }
    if (inherit) fcntl(opened.descriptor, F_SETFD, 0);
    const HANDLE file = HandleOfOpened(opened.descriptor, access, flags);
    if (file != INVALID_HANDLE_VALUE) {
        const bool tells = disposition == CREATE_ALWAYS || disposition == OPEN_ALWAYS;
        SetLastError(tells && opened.was_there ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
    }
    return file;
}

bool IsReadOnly(mode_t mode) noexcept { return (mode & 0222) == 0; }

// The facts of a file, or false with the last error set.
bool FactsOf(const std::string& posix, struct stat& facts) noexcept {
    if (stat(posix.c_str(), &facts) == 0) return true;
    return Fail(platform::PathError(errno, posix), false);
}

}  // namespace

extern "C" HANDLE CreateFileW(const WCHAR* path, DWORD access, DWORD, SECURITY_ATTRIBUTES* security, DWORD disposition,
                              DWORD flags, HANDLE) noexcept {
    if (platform::FaultHere()) return Fail(ERROR_ACCESS_DENIED, INVALID_HANDLE_VALUE);
    const bool inherit = security && security->bInheritHandle;
    return Guarded(INVALID_HANDLE_VALUE, [&] { return CreateFileChecked(path, access, disposition, flags, inherit); });
}

extern "C" BOOL ReadFile(HANDLE file, void* data, DWORD bytes, DWORD* read, OVERLAPPED* overlapped) noexcept {
    if (!read) return Fail(ERROR_INVALID_PARAMETER);
    *read = 0;
    HandleUse use(file, HandleType::kFile);
    if (!use) return Fail(ERROR_INVALID_HANDLE);
    if (overlapped) return Fail(ERROR_NOT_SUPPORTED);
    if ((use.Rights() & platform::kFileReadable) == 0) return Fail(ERROR_ACCESS_DENIED);
    if (platform::FaultHere()) return Fail(platform::ERROR_IO_DEVICE);
    const bool regular = (use.Rights() & platform::kFileRegular) != 0;
    const bool pipe = (use.Rights() & platform::kFilePipe) != 0;
    auto* to = static_cast<unsigned char*>(data);
    while (*read < bytes) {
        const ssize_t got = ::read(use->number, to + *read, std::min(bytes - *read, kMaxTransfer));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return Fail(Win32FromErrno(errno));
        // A pipe without writers is broken, not at an end.
        if (got == 0) return pipe ? Fail(ERROR_BROKEN_PIPE) : TRUE;
        *read += static_cast<DWORD>(got);
        if (!regular) break;
    }
    return TRUE;
}

extern "C" BOOL WriteFile(HANDLE file, const void* data, DWORD bytes, DWORD* written, OVERLAPPED* overlapped) noexcept {
    if (!written) return Fail(ERROR_INVALID_PARAMETER);
    *written = 0;
    HandleUse use(file, HandleType::kFile);
    if (!use) return Fail(ERROR_INVALID_HANDLE);
    if (overlapped) return Fail(ERROR_NOT_SUPPORTED);
    if ((use.Rights() & platform::kFileWritable) == 0) return Fail(ERROR_ACCESS_DENIED);
    if (platform::FaultHere()) return Fail(ERROR_DISK_FULL);
    const bool regular = (use.Rights() & platform::kFileRegular) != 0;
    const auto* from = static_cast<const unsigned char*>(data);
    while (*written < bytes) {
        const std::size_t part = std::min(bytes - *written, kMaxTransfer);
        const ssize_t put = WriteSome(use->number, from + *written, part, regular);
        if (put < 0 && errno == EINTR) continue;
        if (put < 0) return Fail(Win32FromErrno(errno));
        *written += static_cast<DWORD>(put);
    }
    return TRUE;
}

extern "C" BOOL SetFilePointerEx(HANDLE file, LARGE_INTEGER move, LARGE_INTEGER* position, DWORD origin) noexcept {
    HandleUse use(file, HandleType::kFile);
    if (!use) return Fail(ERROR_INVALID_HANDLE);
    static_assert(FILE_BEGIN == SEEK_SET && FILE_CURRENT == SEEK_CUR && FILE_END == SEEK_END);
    if (origin > FILE_END) return Fail(ERROR_INVALID_PARAMETER);
    const off_t at = lseek(use->number, move.QuadPart, static_cast<int>(origin));
    const bool negative = at < 0 && errno == EINVAL && move.QuadPart < 0;
    if (at < 0) return Fail(negative ? ERROR_NEGATIVE_SEEK : Win32FromErrno(errno));
    if (position) position->QuadPart = at;
    return TRUE;
}

extern "C" DWORD GetFileSize(HANDLE file, DWORD* high) noexcept {
    HandleUse use(file, HandleType::kFile);
    if (!use) return Fail(ERROR_INVALID_HANDLE, INVALID_FILE_SIZE);
    struct stat facts {};
    if (fstat(use->number, &facts) != 0) return Fail(Win32FromErrno(errno), INVALID_FILE_SIZE);
    if (!S_ISREG(facts.st_mode)) return Fail(platform::ERROR_INVALID_FUNCTION, INVALID_FILE_SIZE);
    const auto size = static_cast<std::uint64_t>(facts.st_size);
    if (high) *high = static_cast<DWORD>(size >> 32);
    // The low half of a size may look like the failure value: the last error tells them apart.
    return Fail(ERROR_SUCCESS, static_cast<DWORD>(size));
}

extern "C" BOOL DeleteFileW(const WCHAR* path) noexcept {
    return Guarded(FALSE, [path] {
        const auto posix = platform::PosixPath(path);
        if (!posix) return FALSE;
        struct stat facts {};
        if (lstat(posix->c_str(), &facts) != 0) return Fail(platform::PathError(errno, *posix));
        const bool refused = S_ISDIR(facts.st_mode) || (!S_ISLNK(facts.st_mode) && IsReadOnly(facts.st_mode));
        if (refused) return Fail(ERROR_ACCESS_DENIED);
        return unlink(posix->c_str()) == 0 ? TRUE : Fail(platform::PathError(errno, *posix));
    });
}

extern "C" BOOL MoveFileExW(const WCHAR* path, const WCHAR* new_path, DWORD flags) noexcept {
    if (flags != MOVEFILE_REPLACE_EXISTING) return Fail(ERROR_NOT_SUPPORTED);
    if (platform::FaultHere()) return Fail(ERROR_ACCESS_DENIED);
    return Guarded(FALSE, [=] {
        const auto from = platform::PosixPath(path);
        const auto to = from ? platform::PosixPath(new_path) : std::nullopt;
        if (!to) return FALSE;
        struct stat facts {};
        if (lstat(from->c_str(), &facts) != 0) return Fail(platform::PathError(errno, *from));
        const bool is_there = lstat(to->c_str(), &facts) == 0;
        const bool read_only = is_there && !S_ISLNK(facts.st_mode) && IsReadOnly(facts.st_mode);
        if (is_there && (S_ISDIR(facts.st_mode) || read_only)) return Fail(ERROR_ACCESS_DENIED);
        return rename(from->c_str(), to->c_str()) == 0 ? TRUE : Fail(platform::PathError(errno, *to));
    });
}

extern "C" DWORD GetFileAttributesW(const WCHAR* path) noexcept {
    return Guarded(INVALID_FILE_ATTRIBUTES, [path] {
        struct stat facts {};
        const auto posix = platform::PosixPath(path);
        if (!posix || !FactsOf(*posix, facts)) return INVALID_FILE_ATTRIBUTES;
        DWORD attributes = 0;
        if (S_ISDIR(facts.st_mode)) attributes |= FILE_ATTRIBUTE_DIRECTORY;
        if (IsReadOnly(facts.st_mode)) attributes |= FILE_ATTRIBUTE_READONLY;
        return attributes ? attributes : FILE_ATTRIBUTE_NORMAL;
    });
}

extern "C" BOOL GetDiskFreeSpaceExW(const WCHAR* folder, ULARGE_INTEGER* free_for_caller, ULARGE_INTEGER* all,
                                    ULARGE_INTEGER* all_free) noexcept {
    return Guarded(FALSE, [=]() -> BOOL {
        struct statvfs facts {};
        const auto posix = platform::PosixPath(folder);
        if (!posix) return FALSE;
        if (statvfs(posix->c_str(), &facts) != 0) return Fail(platform::PathError(errno, *posix));
        if (free_for_caller) free_for_caller->QuadPart = facts.f_bavail * facts.f_frsize;
        if (all) all->QuadPart = facts.f_blocks * facts.f_frsize;
        if (all_free) all_free->QuadPart = facts.f_bfree * facts.f_frsize;
        return TRUE;
    });
}

extern "C" DWORD GetShortPathNameW(const WCHAR* path, WCHAR* out, DWORD size) noexcept {
    return Guarded(DWORD{0}, [=] {
        struct stat facts {};
        const auto posix = platform::PosixPath(path);
        if (!posix || !FactsOf(*posix, facts)) return DWORD{0};
        return platform::CopyOut(path, out, size);
    });
}

extern "C" DWORD GetTempPathW(DWORD size, WCHAR* out) noexcept {
    return Guarded(DWORD{0}, [=] {
        std::string folder = platform::Environment("TMPDIR").value_or("");
        if (!folder.starts_with('/')) folder = "/tmp";
        WString path = platform::DrivePath(folder);
        const WCHAR separator = path.front() == u'/' ? u'/' : u'\\';
        if (path.back() != separator) path.push_back(separator);
        return platform::CopyOut(path, out, size);
    });
}
