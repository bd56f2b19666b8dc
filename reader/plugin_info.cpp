#include "reader/plugin_info.h"

#include "kernel/text_copy.h"

namespace clipfio {
namespace {

// Passed to the host as they stand; what they mean is the host's.
constexpr int32_t kNumbers[] = {16, 3, -1, -1, -1, -1};
constexpr int32_t kLastNumber = 2;

}  // namespace

HRESULT UnsharedFIOPluginInfo::QueryInterface(REFIID id, void** out) {
    if (!out) return E_POINTER;
    if (!(id == IID_IKtUnsharedFIOPluginInfo) && !(id == IID_IUnknown)) return E_NOINTERFACE;
    return HandOut(static_cast<IKtUnsharedFIOPluginInfo*>(this), out);
}

ULONG UnsharedFIOPluginInfo::AddRef() { return references_.Increment(); }

ULONG UnsharedFIOPluginInfo::Release() {
    const uint32_t left = references_.Decrement();
    if (left == 0) delete this;
    return left;
}

HRESULT UnsharedFIOPluginInfo::PrepareFormats() { return S_OK; }

HRESULT UnsharedFIOPluginInfo::GetFormatCount(uint32_t* out) {
    if (!out) return E_INVALIDARG;
    *out = 1;
    return S_OK;
}

HRESULT UnsharedFIOPluginInfo::GetFormatInfo(uint32_t index, GUID* id, WCHAR* name, int32_t size, int32_t* number1,
                                             int32_t* number2, int32_t* number3, int32_t* number4, int32_t* number5,
                                             int32_t* number6, uint64_t, int32_t* last) {
    if (index != 0) return E_INVALIDARG;
    if (id) *id = CLSID_KtReadFileClass;
    CopyText(name, size, W("Red R3D Format"));
    int32_t* const outs[] = {number1, number2, number3, number4, number5, number6};
    for (std::size_t i = 0; i < std::size(outs); ++i) {
        if (outs[i]) *outs[i] = kNumbers[i];
    }
    if (last) *last = kLastNumber;
    return S_OK;
}

}  // namespace clipfio
