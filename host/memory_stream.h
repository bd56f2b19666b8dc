// An IStream of ours over bytes in memory.
#pragma once

#include <atomic>
#include <string>

#include "platform/com.h"

namespace clipfio::host {

// Lives where it is declared: its count is kept for the module's sake and frees nothing, so that a stream outlives all
// uses of it by the module. One thread at a time.
class MemoryStream final : public IStream {
  public:
    MemoryStream() = default;
    explicit MemoryStream(std::string bytes) : bytes_(std::move(bytes)) {}
    [[nodiscard]] const std::string& Bytes() const { return bytes_; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) noexcept override;
    ULONG STDMETHODCALLTYPE AddRef() noexcept override;
    ULONG STDMETHODCALLTYPE Release() noexcept override;
    HRESULT STDMETHODCALLTYPE Read(void* data, ULONG bytes, ULONG* read) noexcept override;
    HRESULT STDMETHODCALLTYPE Write(const void* data, ULONG bytes, ULONG* written) noexcept override;
    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) noexcept override;
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) noexcept override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Commit(DWORD) noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Revert() noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) noexcept override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Stat(STATSTG*, DWORD) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Clone(IStream**) noexcept override { return E_NOTIMPL; }

  private:
    std::string bytes_;
    std::size_t position_ = 0;
    std::atomic<ULONG> count_{1};
};

}  // namespace clipfio::host
