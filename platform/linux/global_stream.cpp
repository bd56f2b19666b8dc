// CreateStreamOnHGlobal: a counted stream over a block of the global heap.
#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

#include "fault_point.h"
#include "plain_stream.h"
#include "platform/memory.h"

namespace {

// By this a stream is known as one of these, whichever copy of this library made it.
constexpr IID kGlobalStream = {0x6D1C6F2A, 0x9A35, 0x4B0E, {0x8E, 0x51, 0x27, 0xC4, 0x0B, 0x9D, 0x73, 0xE6}};
struct IGlobalStream : IUnknown {
    virtual HGLOBAL Block() noexcept = 0;
};

class GlobalStream final : public platform::PlainStream {
  public:
    GlobalStream(HGLOBAL block, bool frees_block) noexcept
        : block_(block), size_(GlobalSize(block)), room_(size_), frees_block_(frees_block) {}

    HRESULT QueryInterface(REFIID id, void** out) override {
        if (!out || !(id == kGlobalStream)) return PlainStream::QueryInterface(id, out);
        *out = static_cast<IGlobalStream*>(&identity_);
        AddRef();
        return S_OK;
    }

    HRESULT Read(void* data, ULONG bytes, ULONG* read) override;
    HRESULT Write(const void* data, ULONG bytes, ULONG* written) override;
    HRESULT Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) override;
    HRESULT SetSize(ULARGE_INTEGER size) override;
    HRESULT Commit(DWORD) override { return S_OK; }
    HRESULT Stat(STATSTG* stat, DWORD flags) override;

  private:
    struct Identity final : IGlobalStream {
        explicit Identity(GlobalStream& owner) noexcept : stream(owner) {}
        HRESULT QueryInterface(REFIID id, void** out) override { return stream.QueryInterface(id, out); }
        ULONG AddRef() override { return stream.AddRef(); }
        ULONG Release() override { return stream.Release(); }
        HGLOBAL Block() noexcept override { return stream.block_; }
        GlobalStream& stream;
    };

    ~GlobalStream() override {
        if (frees_block_) GlobalFree(block_);
    }
    [[nodiscard]] bool MakeRoom(std::uint64_t bytes) noexcept;

    Identity identity_{*this};
    HGLOBAL block_;
    std::uint64_t size_;
    std::uint64_t room_;
    std::uint64_t position_ = 0;
    bool frees_block_;
};

bool GlobalStream::MakeRoom(std::uint64_t bytes) noexcept {
    if (bytes <= room_) return true;
    const std::uint64_t room = std::max(bytes, room_ < bytes / 2 ? bytes : room_ * 2);
    const HGLOBAL larger = GlobalAlloc(GHND, room);
    if (!larger) return false;
    if (size_ != 0) {
        std::memcpy(GlobalLock(larger), GlobalLock(block_), size_);
        GlobalUnlock(larger);
        GlobalUnlock(block_);
    }
    GlobalFree(block_);
    block_ = larger;
    room_ = room;
    return true;
}

HRESULT GlobalStream::Read(void* data, ULONG bytes, ULONG* read) {
    if (read) *read = 0;
    if (!data && bytes != 0) return STG_E_INVALIDPOINTER;
    if (platform::FaultHere()) return STG_E_ACCESSDENIED;
    const std::uint64_t left = position_ < size_ ? size_ - position_ : 0;
    const auto part = static_cast<ULONG>(std::min<std::uint64_t>(bytes, left));
    if (part != 0) {
        std::memcpy(data, static_cast<const char*>(GlobalLock(block_)) + position_, part);
        GlobalUnlock(block_);
    }
    position_ += part;
    if (read) *read = part;
    return S_OK;
}

HRESULT GlobalStream::Write(const void* data, ULONG bytes, ULONG* written) {
    if (written) *written = 0;
    if (!data && bytes != 0) return STG_E_INVALIDPOINTER;
    if (bytes == 0) return S_OK;
    if (platform::FaultHere()) return STG_E_MEDIUMFULL;
    const std::uint64_t end = position_ + bytes;
    if (!MakeRoom(end)) return E_OUTOFMEMORY;
    auto* const start = static_cast<char*>(GlobalLock(block_));
    if (position_ > size_) std::memset(start + size_, 0, position_ - size_);
    std::memcpy(start + position_, data, bytes);
    GlobalUnlock(block_);
    position_ = end;
    size_ = std::max(size_, end);
    if (written) *written = bytes;
    return S_OK;
}

HRESULT GlobalStream::Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) {
    std::int64_t from = 0;
    if (origin == STREAM_SEEK_CUR) {
        from = static_cast<std::int64_t>(position_);
    } else if (origin == STREAM_SEEK_END) {
        from = static_cast<std::int64_t>(size_);
    } else if (origin != STREAM_SEEK_SET) {
        return STG_E_INVALIDFUNCTION;
    }
    std::int64_t to = 0;
    // As far as a block could ever reach.
    if (__builtin_add_overflow(from, move.QuadPart, &to) || to < 0 || to > std::numeric_limits<std::int32_t>::max()) {
        return STG_E_INVALIDFUNCTION;
    }
    position_ = static_cast<std::uint64_t>(to);
    if (position) position->QuadPart = position_;
    return S_OK;
}

HRESULT GlobalStream::SetSize(ULARGE_INTEGER size) {
    if (size.QuadPart > std::numeric_limits<std::int32_t>::max() || !MakeRoom(size.QuadPart)) return E_OUTOFMEMORY;
    if (size.QuadPart > size_) {
        std::memset(static_cast<char*>(GlobalLock(block_)) + size_, 0, size.QuadPart - size_);
        GlobalUnlock(block_);
    }
    size_ = size.QuadPart;
    return S_OK;
}

HRESULT GlobalStream::Stat(STATSTG* stat, DWORD) {
    if (!stat) return STG_E_INVALIDPOINTER;
    *stat = {};
    stat->type = platform::kStreamType;
    stat->cbSize.QuadPart = size_;
    return S_OK;
}

}  // namespace

extern "C" HRESULT CreateStreamOnHGlobal(HGLOBAL block, BOOL free_block, IStream** out) noexcept {
    if (!out) return E_INVALIDARG;
    *out = nullptr;
    if (platform::FaultHere()) return E_OUTOFMEMORY;
    const HGLOBAL used = block ? block : GlobalAlloc(GHND, 0);
    if (!used) return E_OUTOFMEMORY;
    SetLastError(ERROR_SUCCESS);
    if (GlobalSize(used) == 0 && GetLastError() == ERROR_INVALID_HANDLE) return E_INVALIDARG;
    *out = new (std::nothrow) GlobalStream(used, free_block != FALSE);
    if (*out) return S_OK;
    if (!block) GlobalFree(used);
    return E_OUTOFMEMORY;
}

// The stream may come from another copy of the layer in the process, whose type is another one to the sanitizer.
extern "C" __attribute__((no_sanitize("vptr"))) HRESULT GetHGlobalFromStream(IStream* stream, HGLOBAL* out) noexcept {
    if (!stream || !out) return E_INVALIDARG;
    void* known = nullptr;
    if (FAILED(stream->QueryInterface(kGlobalStream, &known))) return E_INVALIDARG;
    auto* const global = static_cast<IGlobalStream*>(known);
    *out = global->Block();
    global->Release();
    return S_OK;
}
