// Describes the file format to the host.
#pragma once

#include "kernel/heap_object.h"
#include "reader/com_base.h"
#include "reader/host_interfaces.h"

namespace clipfio {

class UnsharedFIOPluginInfo final : public IKtUnsharedFIOPluginInfo, public HeapObject {
  public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;
    HRESULT STDMETHODCALLTYPE PrepareFormats() override;
    HRESULT STDMETHODCALLTYPE GetFormatCount(uint32_t* out) override;
    HRESULT STDMETHODCALLTYPE GetFormatInfo(uint32_t index, GUID* id, WCHAR* name, int32_t size, int32_t* number1,
                                            int32_t* number2, int32_t* number3, int32_t* number4, int32_t* number5,
                                            int32_t* number6, uint64_t reserved, int32_t* last) override;

  private:
    ReferenceCount references_{0};
};

}  // namespace clipfio
