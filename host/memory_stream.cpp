#include "host/memory_stream.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace clipfio::host {

HRESULT MemoryStream::QueryInterface(REFIID id, void** out) noexcept {
    if (out == nullptr) return E_POINTER;
    const bool known = id == IID_IUnknown || id == IID_ISequentialStream || id == IID_IStream;
    *out = known ? static_cast<IStream*>(this) : nullptr;
    if (!known) return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

ULONG MemoryStream::AddRef() noexcept { return ++count_; }
ULONG MemoryStream::Release() noexcept { return --count_; }

HRESULT MemoryStream::Read(void* data, ULONG bytes, ULONG* read) noexcept {
    if (read != nullptr) *read = 0;
    if (data == nullptr) return STG_E_INVALIDPOINTER;
    const auto count = static_cast<ULONG>(std::min<std::size_t>(bytes, bytes_.size() - position_));
    std::memcpy(data, bytes_.data() + position_, count);
    position_ += count;
    if (read != nullptr) *read = count;
    return count == bytes ? S_OK : S_FALSE;
}

HRESULT MemoryStream::Write(const void* data, ULONG bytes, ULONG* written) noexcept {
    if (written != nullptr) *written = 0;
    if (data == nullptr) return STG_E_INVALIDPOINTER;
    try {
        bytes_.resize(std::max(bytes_.size(), position_ + bytes));
    } catch (...) {
        return STG_E_MEDIUMFULL;
    }
    std::memcpy(bytes_.data() + position_, data, bytes);
    position_ += bytes;
    if (written != nullptr) *written = bytes;
    return S_OK;
}

HRESULT MemoryStream::Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) noexcept {
    int64_t base = 0;
    if (origin == STREAM_SEEK_CUR) {
        base = static_cast<int64_t>(position_);
    } else if (origin == STREAM_SEEK_END) {
        base = static_cast<int64_t>(bytes_.size());
    } else if (origin != STREAM_SEEK_SET) {
        return STG_E_INVALIDFUNCTION;
    }
    // Nowhere but in the bytes that are there: the module only writes on or reads from the start.
    const int64_t room = static_cast<int64_t>(bytes_.size()) - base;
    if (move.QuadPart < -base || move.QuadPart > room) return STG_E_INVALIDFUNCTION;
    position_ = static_cast<std::size_t>(base + move.QuadPart);
    if (position != nullptr) position->QuadPart = position_;
    return S_OK;
}

}  // namespace clipfio::host
