// What the picture and the sound of a clip have in common: identity, life, and the way back to the file object.
#pragma once

#include <atomic>
#include <cstdint>
#include <new>

#include "kernel/heap_object.h"
#include "reader/clip_field.h"
#include "reader/com_base.h"
#include "reader/host_interfaces.h"
#include "reader/read_file.h"

namespace clipfio {

// `Stream` derives from this and is made by Make; `Interface` is the host's view of it, under `kId`, and `kKind` its
// kind there. The operations here take no lock.
template <class Stream, class Interface, const IID& kId, uint32_t kKind>
class StreamBase : public Interface, public HeapObject {
  public:
    // With one reference, the file object's; null when out of memory. Neither the file nor `clip`, the address of the
    // file's clip, is counted: both outlive the stream.
    static Stream* Make(CReadFile* file, const ClipField* clip) noexcept {
        auto* stream = new (std::nothrow) Stream(file, clip);
        if (stream && !stream->lock_.IsGood()) stream->Destroy(1), stream = nullptr;
        return stream;
    }

    // The interface with a reference, S_OK for a known id and a null `out`, null and E_NOINTERFACE for others.
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override {
        if (!(id == kId) && !(id == IID_IKtReadStream) && !(id == IID_IUnknown)) {
            if (out) *out = nullptr;
            return E_NOINTERFACE;
        }
        return out ? HandOut(static_cast<Interface*>(this), out) : S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return references_.Increment(); }
    ULONG STDMETHODCALLTYPE Release() override {
        const uint32_t left = references_.Decrement();
        if (left == 0) Destroy(1);
        return left;
    }
    HRESULT STDMETHODCALLTYPE GetFileClass(IKtReadFileClass** out) override {
        return file_ ? file_->GetFileClass(out) : E_UNEXPECTED;
    }
    HRESULT STDMETHODCALLTYPE GetFile(IKtReadFile** out) override {
        if (!out) return E_INVALIDARG;
        if (!file_) return E_FAIL;
        return file_->QueryInterface(IID_IKtReadFile, reinterpret_cast<void**>(out));
    }
    HRESULT STDMETHODCALLTYPE GetKind(uint32_t* kind, uint32_t* second, uint32_t* third) override {
        if (kind) *kind = kKind;
        if (second) *second = 0;
        if (third) *third = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetStartTime(int64_t* out) override {
        if (!out) return E_INVALIDARG;
        *out = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetUserValue(uint32_t value) override {
        user_value_ = value;
        return S_OK;
    }

    // The first of the class's own slots, behind the host's. Bit 0 frees the object as well.
    virtual void* Destroy(uint32_t flags) {
        auto* stream = static_cast<Stream*>(this);
        if (flags & 1) {
            delete stream;
            return nullptr;
        }
        stream->~Stream();
        return this;
    }

    // Keeps the stream from the decoder while the file object loads or closes the clip.
    [[nodiscard]] platform::MutexLock Hold() noexcept { return lock_.Hold(); }

  protected:
    StreamBase(CReadFile* file, const ClipField* clip) noexcept : file_(file), clip_(clip) {}
    ~StreamBase() = default;

    CReadFile* file_;
    const ClipField* clip_;
    ObjectLock lock_;

  private:
    ReferenceCount references_{1};
    std::atomic<uint32_t> user_value_ = 0;
};

}  // namespace clipfio
