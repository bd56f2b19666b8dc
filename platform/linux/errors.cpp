#include "errors.h"

#include <cerrno>

namespace {
thread_local DWORD t_last_error = ERROR_SUCCESS;
}

extern "C" DWORD GetLastError() noexcept { return t_last_error; }
extern "C" void SetLastError(DWORD error) noexcept { t_last_error = error; }

namespace platform {
namespace {

struct ErrnoRow {
    int error;
    DWORD win32;
};

constexpr ErrnoRow kErrnoRows[] = {
    {0, ERROR_SUCCESS},
    {EPERM, ERROR_ACCESS_DENIED},
    {ENOENT, ERROR_FILE_NOT_FOUND},
    {ESRCH, ERROR_INVALID_PARAMETER},
    {EIO, ERROR_IO_DEVICE},
    {ENXIO, ERROR_FILE_NOT_FOUND},
    {E2BIG, ERROR_FILENAME_EXCED_RANGE},
    {ENOEXEC, ERROR_BAD_EXE_FORMAT},
    {EBADF, ERROR_INVALID_HANDLE},
    {EAGAIN, ERROR_NOT_ENOUGH_MEMORY},
    {ENOMEM, ERROR_NOT_ENOUGH_MEMORY},
    {EACCES, ERROR_ACCESS_DENIED},
    {EFAULT, ERROR_NOACCESS},
    {EBUSY, ERROR_BUSY},
    {EEXIST, ERROR_FILE_EXISTS},
    {ENODEV, ERROR_FILE_NOT_FOUND},
    {ENOTDIR, ERROR_PATH_NOT_FOUND},
    {EISDIR, ERROR_ACCESS_DENIED},
    {EINVAL, ERROR_INVALID_PARAMETER},
    {ENFILE, ERROR_TOO_MANY_OPEN_FILES},
    {EMFILE, ERROR_TOO_MANY_OPEN_FILES},
    {ETXTBSY, ERROR_SHARING_VIOLATION},
    {EFBIG, ERROR_DISK_FULL},
    {ENOSPC, ERROR_DISK_FULL},
    {EDQUOT, ERROR_DISK_FULL},
    {ESPIPE, ERROR_SEEK_ON_DEVICE},
    {EROFS, ERROR_ACCESS_DENIED},
    {EPIPE, ERROR_BROKEN_PIPE},
    {ENAMETOOLONG, ERROR_FILENAME_EXCED_RANGE},
    {ENOSYS, ERROR_NOT_SUPPORTED},
    {ELOOP, ERROR_PATH_NOT_FOUND},
    {EOVERFLOW, ERROR_INVALID_PARAMETER},
    {EILSEQ, ERROR_NO_UNICODE_TRANSLATION},
    {EOPNOTSUPP, ERROR_NOT_SUPPORTED},
};

}  // namespace

DWORD Win32FromErrno(int error) noexcept {
    for (const ErrnoRow& row : kErrnoRows) {
        if (row.error == error) return row.win32;
    }
    return ERROR_INTERNAL_ERROR;
}

}  // namespace platform
