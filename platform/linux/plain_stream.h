// What streams that only one thread uses at a time have in common: the count, their identity, copying, and the parts of
// IStream that none of them has.
#pragma once

#include <algorithm>
#include <atomic>

#include "platform/com.h"

namespace platform {

inline constexpr DWORD kStreamType = 2;   // STGTY_STREAM
inline constexpr DWORD kWithoutName = 1;  // STATFLAG_NONAME

class PlainStream : public IStream {
  public:
    PlainStream(const PlainStream&) = delete;
    PlainStream& operator=(const PlainStream&) = delete;

    HRESULT QueryInterface(REFIID id, void** out) override {
        if (!out) return E_POINTER;
        const bool known = id == IID_IUnknown || id == IID_ISequentialStream || id == IID_IStream;
        *out = known ? static_cast<IStream*>(this) : nullptr;
        if (!known) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG AddRef() override { return ++references_; }
    ULONG Release() override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }

    // The end of the stream ends the copy, and is no failure.
    HRESULT CopyTo(IStream* target, ULARGE_INTEGER bytes, ULARGE_INTEGER* read, ULARGE_INTEGER* written) override {
        ULONGLONG total_read = 0;
        ULONGLONG total_written = 0;
        HRESULT hr = target ? S_OK : STG_E_INVALIDPOINTER;
        unsigned char piece[4096];
        while (hr == S_OK && total_read < bytes.QuadPart) {
            ULONG got = 0;
            hr = Read(piece, static_cast<ULONG>(std::min<ULONGLONG>(sizeof piece, bytes.QuadPart - total_read)), &got);
            total_read += got;
            if (FAILED(hr) || got == 0) break;
            ULONG put = 0;
            const HRESULT result = target->Write(piece, got, &put);
            total_written += put;
            if (FAILED(result)) hr = result;
        }
        if (read) read->QuadPart = total_read;
        if (written) written->QuadPart = total_written;
        return FAILED(hr) ? hr : S_OK;
    }
    HRESULT Revert() override { return E_NOTIMPL; }
    HRESULT LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT Clone(IStream** out) override {
        if (out) *out = nullptr;
        return E_NOTIMPL;
    }

  protected:
    PlainStream() = default;
    virtual ~PlainStream() = default;

  private:
    std::atomic<ULONG> references_{1};
};

}  // namespace platform
