// The class factory of the module's two classes.
#pragma once

#include "kernel/heap_object.h"
#include "platform/com.h"
#include "reader/com_base.h"

namespace clipfio {

class CClassFactory final : public IClassFactory, public HeapObject {
  public:
    // Keeps the address of `class_id`, which must outlive the factory.
    explicit CClassFactory(REFCLSID class_id) noexcept;
    ~CClassFactory();

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID id, void** out) override;
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override;

  private:
    ReferenceCount references_{1};
    const CLSID* class_id_;
};

}  // namespace clipfio
