#include "substitutes/decoder/file_access.h"

#include <algorithm>

#include "platform/files.h"

namespace clipfio::decoder {
namespace {

// One call moves at most this much, well within its 32-bit count.
constexpr size_t kBytesPerCall = size_t{1} << 28;

bool Seek(HANDLE file, uint64_t offset) noexcept {
    LARGE_INTEGER move;
    move.QuadPart = static_cast<LONGLONG>(offset);
    return offset <= static_cast<uint64_t>(INT64_MAX) && SetFilePointerEx(file, move, nullptr, FILE_BEGIN);
}

}  // namespace

bool InputFile::Open(const WString& path) noexcept {
    file_.Reset(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                            FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file_) return false;
    DWORD high = 0;
    SetLastError(ERROR_SUCCESS);
    const DWORD low = GetFileSize(file_.Get(), &high);
    if (low == INVALID_FILE_SIZE && GetLastError() != ERROR_SUCCESS) {
        file_.Reset();
        return false;
    }
    size_ = (uint64_t{high} << 32) | low;
    return true;
}

void InputFile::Close() noexcept { file_.Reset(); }

size_t InputFile::ReadAt(uint64_t offset, void* data, size_t bytes) noexcept {
    const std::lock_guard hold(lock_);
    if (!file_ || !Seek(file_.Get(), offset)) return 0;
    auto* out = static_cast<std::byte*>(data);
    size_t done = 0;
    while (done < bytes) {
        const auto part = static_cast<DWORD>(std::min(bytes - done, kBytesPerCall));
        DWORD read = 0;
        if (!ReadFile(file_.Get(), out + done, part, &read, nullptr) || read == 0) break;
        done += read;
    }
    return done;
}

bool OutputFile::Create(const WString& path) noexcept {
    file_.Reset(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    return IsOpen();
}

bool OutputFile::Write(const void* data, size_t bytes) noexcept {
    const auto* from = static_cast<const std::byte*>(data);
    size_t done = 0;
    while (done < bytes) {
        const auto part = static_cast<DWORD>(std::min(bytes - done, kBytesPerCall));
        DWORD written = 0;
        if (!WriteFile(file_.Get(), from + done, part, &written, nullptr) || written == 0) return false;
        done += written;
    }
    return true;
}

bool OutputFile::Rewind() noexcept { return Seek(file_.Get(), 0); }

bool OutputFile::Close() noexcept {
    const HANDLE file = file_.Release();
    return CloseHandle(file) != FALSE;
}

}  // namespace clipfio::decoder
