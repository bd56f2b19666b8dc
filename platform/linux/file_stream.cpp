// SHCreateStreamOnFileW: a counted stream over a file, with one buffer that holds either what was read ahead or what
// is still to be written.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

#include "errors.h"
#include "fault_point.h"
#include "paths.h"
#include "plain_stream.h"

namespace {

constexpr std::size_t kBufferSize = 64 * 1024;
constexpr DWORD kAccessMask = 3;
constexpr DWORD kShareMask = 0x70;
constexpr HRESULT STG_E_INVALIDFLAG = static_cast<HRESULT>(0x800300FFu);

HRESULT ResultOf(int error) noexcept {
    switch (error) {
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            return STG_E_MEDIUMFULL;
        case EFAULT:
            return STG_E_INVALIDPOINTER;
        default:
            return HRESULT_FROM_WIN32(platform::Win32FromErrno(error));
    }
}

FILETIME FileTimeOf(const timespec& time) noexcept {
    constexpr std::int64_t kFrom1601To1970 = 11'644'473'600;
    const auto ticks = static_cast<std::uint64_t>((time.tv_sec + kFrom1601To1970) * 10'000'000 + time.tv_nsec / 100);
    return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

// Moves `bytes` at `offset` of the file by `call`, which is pread or pwrite. Gives how many were moved; fewer than
// asked for with errno 0 is the end of the file.
template <class Call, class Byte>
std::size_t MoveAll(Call call, int descriptor, Byte* data, std::size_t bytes, std::int64_t offset) noexcept {
    std::size_t done = 0;
    errno = 0;
    while (done < bytes) {
        const ssize_t moved = call(descriptor, data + done, bytes - done, offset + static_cast<off_t>(done));
        if (moved < 0 && errno == EINTR) continue;
        if (moved <= 0) {
            if (moved == 0) errno = 0;
            break;
        }
        done += static_cast<std::size_t>(moved);
    }
    return done;
}

class FileStream final : public platform::PlainStream {
  public:
    FileStream(int descriptor, DWORD mode, WString path) noexcept
        : descriptor_(descriptor), mode_(mode), path_(std::move(path)) {}

    HRESULT Read(void* data, ULONG bytes, ULONG* read) override;
    HRESULT Write(const void* data, ULONG bytes, ULONG* written) override;
    HRESULT Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) override;
    HRESULT SetSize(ULARGE_INTEGER size) override;
    // Nothing is held back after a success, but nothing is forced to the disk either.
    HRESULT Commit(DWORD) override { return Flush(); }
    HRESULT Stat(STATSTG* stat, DWORD flags) override;

  private:
    ~FileStream() override {
        static_cast<void>(Flush());
        close(descriptor_);
    }

    [[nodiscard]] bool CanRead() const noexcept { return (mode_ & kAccessMask) != STGM_WRITE; }
    [[nodiscard]] bool CanWrite() const noexcept { return (mode_ & kAccessMask) != STGM_READ; }
    [[nodiscard]] std::int64_t Position() const noexcept { return start_ + static_cast<std::int64_t>(at_); }

    // Forgets what was read ahead; nothing may wait to be written.
    void MoveTo(std::int64_t position) noexcept {
        start_ = position;
        at_ = filled_ = 0;
    }
    [[nodiscard]] bool MakeBuffer() noexcept {
        if (!buffer_) buffer_.reset(new (std::nothrow) unsigned char[kBufferSize]);
        return buffer_ != nullptr;
    }
    [[nodiscard]] HRESULT Flush() noexcept;
    [[nodiscard]] HRESULT ReadMore(unsigned char* to, std::size_t bytes, std::size_t& done) noexcept;
    [[nodiscard]] HRESULT WriteMore(const unsigned char* from, std::size_t bytes, std::size_t& done) noexcept;

    int descriptor_;
    DWORD mode_;
    bool dirty_ = false;      // the buffer's first at_ bytes belong at start_ of the file, and are not there yet
    std::int64_t start_ = 0;  // where in the file the buffer begins
    std::size_t at_ = 0;      // the stream's position, from start_
    std::size_t filled_ = 0;  // bytes that were read ahead
    std::unique_ptr<unsigned char[]> buffer_;
    WString path_;
};

// What could not be written stays in the buffer, and the next flush tries it again.
HRESULT FileStream::Flush() noexcept {
    if (!dirty_) return S_OK;
    const std::size_t done = MoveAll(pwrite, descriptor_, buffer_.get(), at_, start_);
    const int error = errno;
    start_ += static_cast<std::int64_t>(done);
    at_ -= done;
    if (at_ != 0) {
        std::memmove(buffer_.get(), buffer_.get() + done, at_);
        return ResultOf(error ? error : ENOSPC);
    }
    dirty_ = false;
    filled_ = 0;
    return S_OK;
}

HRESULT FileStream::Read(void* data, ULONG bytes, ULONG* read) {
    if (read) *read = 0;
    if (!data && bytes != 0) return STG_E_INVALIDPOINTER;
    if (platform::FaultHere()) return HRESULT_FROM_WIN32(platform::ERROR_IO_DEVICE);
    if (!dirty_ && bytes <= filled_ - at_ && bytes != 0) [[likely]] {
        std::memcpy(data, buffer_.get() + at_, bytes);
        at_ += bytes;
        if (read) *read = bytes;
        return S_OK;
    }
    if (!CanRead()) return STG_E_ACCESSDENIED;
    if (const HRESULT hr = Flush(); FAILED(hr)) return hr;
    std::size_t done = 0;
    const HRESULT hr = ReadMore(static_cast<unsigned char*>(data), bytes, done);
    if (read) *read = static_cast<ULONG>(done);
    return hr;
}

// Reads through the buffer in small pieces and around it in large ones.
HRESULT FileStream::ReadMore(unsigned char* to, std::size_t bytes, std::size_t& done) noexcept {
    if (!MakeBuffer()) return E_OUTOFMEMORY;
    while (done < bytes) {
        if (at_ < filled_) {
            const std::size_t part = std::min(bytes - done, filled_ - at_);
            std::memcpy(to + done, buffer_.get() + at_, part);
            at_ += part;
            done += part;
            continue;
        }
        MoveTo(Position());
        const std::size_t left = bytes - done;
        const bool around = left >= kBufferSize;
        unsigned char* const place = around ? to + done : buffer_.get();
        const std::size_t got = MoveAll(pread, descriptor_, place, around ? left : kBufferSize, start_);
        const int error = errno;
        if (around) {
            MoveTo(start_ + static_cast<std::int64_t>(got));
            done += got;
        } else {
            filled_ = got;
        }
        if (got == 0 || (around && done < bytes)) return error ? ResultOf(error) : S_FALSE;
    }
    return S_OK;
}

HRESULT FileStream::Write(const void* data, ULONG bytes, ULONG* written) {
    if (written) *written = 0;
    if (!data && bytes != 0) return STG_E_INVALIDPOINTER;
    if (!CanWrite()) return STG_E_ACCESSDENIED;
    if (platform::FaultHere()) return STG_E_MEDIUMFULL;
    if (bytes == 0) return S_OK;
    if (!MakeBuffer()) return E_OUTOFMEMORY;
    if (!dirty_) {
        MoveTo(Position());
        dirty_ = true;
    }
    std::size_t done = 0;
    const HRESULT hr = WriteMore(static_cast<const unsigned char*>(data), bytes, done);
    if (written) *written = static_cast<ULONG>(done);
    return hr;
}

HRESULT FileStream::WriteMore(const unsigned char* from, std::size_t bytes, std::size_t& done) noexcept {
    while (done < bytes) {
        if (at_ == kBufferSize) {
            if (const HRESULT hr = Flush(); FAILED(hr)) return hr;
            dirty_ = true;
        }
        const std::size_t part = std::min(bytes - done, kBufferSize - at_);
        std::memcpy(buffer_.get() + at_, from + done, part);
        at_ += part;
        done += part;
    }
    return S_OK;
}

HRESULT FileStream::Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) {
    std::int64_t from = 0;
    if (origin == STREAM_SEEK_CUR) {
        from = Position();
    } else if (origin == STREAM_SEEK_END) {
        if (const HRESULT hr = Flush(); FAILED(hr)) return hr;
        struct stat facts {};
        if (fstat(descriptor_, &facts) != 0) return ResultOf(errno);
        from = facts.st_size;
    } else if (origin != STREAM_SEEK_SET) {
        return STG_E_INVALIDFUNCTION;
    }
    std::int64_t to = 0;
    if (__builtin_add_overflow(from, move.QuadPart, &to) || to < 0) return STG_E_INVALIDFUNCTION;
    if (to != Position()) {
        if (const HRESULT hr = Flush(); FAILED(hr)) return hr;
        if (to >= start_ && to <= start_ + static_cast<std::int64_t>(filled_)) {
            at_ = static_cast<std::size_t>(to - start_);
        } else {
            MoveTo(to);
        }
    }
    if (position) position->QuadPart = static_cast<ULONGLONG>(to);
    return S_OK;
}

HRESULT FileStream::SetSize(ULARGE_INTEGER size) {
    if (!CanWrite()) return STG_E_ACCESSDENIED;
    if (const HRESULT hr = Flush(); FAILED(hr)) return hr;
    MoveTo(Position());
    if (size.QuadPart > static_cast<ULONGLONG>(std::numeric_limits<off_t>::max())) return STG_E_MEDIUMFULL;
    return ftruncate(descriptor_, static_cast<off_t>(size.QuadPart)) == 0 ? S_OK : ResultOf(errno);
}

HRESULT FileStream::Stat(STATSTG* stat, DWORD flags) {
    if (!stat) return STG_E_INVALIDPOINTER;
    *stat = {};
    if (const HRESULT hr = Flush(); FAILED(hr)) return hr;
    struct stat facts {};
    if (fstat(descriptor_, &facts) != 0) return ResultOf(errno);
    if ((flags & platform::kWithoutName) == 0) {
        const std::size_t bytes = (path_.size() + 1) * sizeof(WCHAR);
        stat->pwcsName = static_cast<WCHAR*>(std::malloc(bytes));
        if (!stat->pwcsName) return E_OUTOFMEMORY;
        std::memcpy(stat->pwcsName, path_.c_str(), bytes);
    }
    stat->type = platform::kStreamType;
    stat->cbSize.QuadPart = static_cast<ULONGLONG>(facts.st_size);
    stat->mtime = FileTimeOf(facts.st_mtim);
    stat->ctime = FileTimeOf(facts.st_ctim);
    stat->atime = FileTimeOf(facts.st_atim);
    stat->grfMode = mode_;
    return S_OK;
}

int OpenFlags(DWORD mode) noexcept {
    constexpr int kAccess[] = {O_RDONLY, O_WRONLY, O_RDWR};
    const int create = mode & STGM_CREATE ? O_CREAT | O_TRUNC : 0;
    return kAccess[mode & kAccessMask] | create | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
}

HRESULT CreateStream(const WCHAR* path, DWORD mode, IStream** out) {
    const auto posix = platform::PosixPath(path);
    if (!posix) return HRESULT_FROM_WIN32(GetLastError());
    WString name(path);
    const int descriptor = open(posix->c_str(), OpenFlags(mode), 0666);
    if (descriptor < 0) return HRESULT_FROM_WIN32(platform::PathError(errno, *posix));
    struct stat facts {};
    // The buffer works on positions, which only a plain file has.
    if (fstat(descriptor, &facts) != 0 || !S_ISREG(facts.st_mode)) {
        close(descriptor);
        return HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED);
    }
    *out = new (std::nothrow) FileStream(descriptor, mode, std::move(name));
    if (*out) return S_OK;
    close(descriptor);
    return E_OUTOFMEMORY;
}

}  // namespace

extern "C" HRESULT SHCreateStreamOnFileW(const WCHAR* path, DWORD mode, IStream** out) noexcept {
    if (!out) return E_POINTER;
    *out = nullptr;
    if ((mode & ~(kAccessMask | kShareMask | STGM_CREATE)) != 0 || (mode & kAccessMask) == kAccessMask) {
        return STG_E_INVALIDFLAG;
    }
    if (platform::FaultHere()) return HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED);
    try {
        return CreateStream(path, mode, out);
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}
