// The file class: describes the file type, recognises clips, makes file objects.
#pragma once

#include "kernel/heap_object.h"
#include "reader/com_base.h"
#include "reader/host_interfaces.h"

namespace clipfio {

class CReadFileClass final : public IKtReadFileClass, public HeapObject {
  public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;
    HRESULT STDMETHODCALLTYPE SetClassIndex(uint32_t index) override;
    HRESULT STDMETHODCALLTYPE GetClassIndex(uint32_t* out) override;
    HRESULT STDMETHODCALLTYPE SetSite(IKtHostSite* site) override;
    HRESULT STDMETHODCALLTYPE GetSite(IKtHostSite** out) override;
    HRESULT STDMETHODCALLTYPE GetFormatId(GUID* out) override;
    HRESULT STDMETHODCALLTYPE GetClassFlags(uint32_t* out) override;
    HRESULT STDMETHODCALLTYPE GetClassOptions(uint32_t* out) override;
    HRESULT STDMETHODCALLTYPE NotServed10() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetClassStrings(const uint32_t* ids, uint32_t count, BSTR* out) override;
    HRESULT STDMETHODCALLTYPE CheckHeader(HANDLE file, const void* bytes, uint32_t count,
                                          const void* reserved) override;
    HRESULT STDMETHODCALLTYPE CheckFile(const WCHAR* path) override;
    HRESULT STDMETHODCALLTYPE NotServed14() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CreateNamed(IKtReadFile** out, uint32_t reserved1, uint32_t reserved2, const WCHAR* path,
                                          uint32_t flags) override;
    HRESULT STDMETHODCALLTYPE NoOperation16() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE ShowAbout(HWND parent) override;
    HRESULT STDMETHODCALLTYPE NotServed18() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CreateFile(IKtReadFile** out) override;

  private:
    ReferenceCount references_{0};
    uint32_t class_index_ = 0xFFFFFFFF;
    IKtHostSite* site_ = nullptr;  // the reference that SetSite was given; not let go at the end
};

}  // namespace clipfio
