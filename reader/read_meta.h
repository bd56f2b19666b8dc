// The metadata of a clip: the timecodes of its first and last frame.
#pragma once

#include "kernel/heap_object.h"
#include "reader/clip_field.h"
#include "reader/com_base.h"
#include "reader/host_interfaces.h"

namespace clipfio {

// A time of hours, minutes, seconds and frames at `rate` frames per second, in units of 100 nanoseconds. Separators are
// not looked at; what cannot be read or passes 32 bits, and all behind it, stays 0; a rate that is not above 0 counts
// no frames; the result is held within its type. E_INVALIDARG and 0 for null.
HRESULT ParseTimecode(const char* text, double rate, int64_t* time) noexcept;

// No lock of its own. IKtReadGenericMeta is implemented and not answered to.
class CReadMeta final : public IKtReadMeta, public IKtReadGenericMeta, public HeapObject {
  public:
    // `clip` is the address of the file object's clip, which outlives this object.
    explicit CReadMeta(const ClipField* clip) noexcept : clip_(clip) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;
    HRESULT STDMETHODCALLTYPE NotServed3() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE NotServed4() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE NotServed5() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetValue(uint32_t key, WCHAR* buffer, int32_t size) override;
    HRESULT STDMETHODCALLTYPE NotServed7() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE NotServedGeneric3() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE NotServedGeneric4() override { return E_NOTIMPL; }

  private:
    ReferenceCount references_{1};  // the file object's reference
    const ClipField* clip_;
};

}  // namespace clipfio
