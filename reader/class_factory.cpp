#include "reader/class_factory.h"

#include <cstring>

#include "platform/module_entry.h"
#include "reader/host_interfaces.h"
#include "reader/plugin_exports.h"
#include "reader/plugin_info.h"
#include "reader/plugin_module.h"
#include "reader/read_file_class.h"

namespace clipfio {
namespace {

// Hosts know the file class by the first ten bytes of its id; the last six do not count.
constexpr std::size_t kFileClassIdBytes = 10;

bool IsFileClass(const CLSID& id) noexcept { return std::memcmp(&id, &CLSID_KtReadFileClass, kFileClassIdBytes) == 0; }

// Both classes start without a reference, so that QueryInterface leaves them with the caller's one.
template <class Object>
HRESULT Create(REFIID id, void** out) noexcept {
    auto* object = new (std::nothrow) Object;
    if (!object) return E_OUTOFMEMORY;
    const HRESULT result = object->QueryInterface(id, out);
    if (FAILED(result)) delete object;
    return result;
}

}  // namespace

CClassFactory::CClassFactory(REFCLSID class_id) noexcept : class_id_(&class_id) { ++FactoryCount(); }
CClassFactory::~CClassFactory() { --FactoryCount(); }

HRESULT CClassFactory::QueryInterface(REFIID id, void** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (!(id == IID_IClassFactory) && !(id == IID_IUnknown)) return E_NOINTERFACE;
    return HandOut(static_cast<IClassFactory*>(this), out);
}

ULONG CClassFactory::AddRef() { return references_.Increment(); }

ULONG CClassFactory::Release() {
    const uint32_t left = references_.Decrement();
    if (left == 0) delete this;
    return left;
}

HRESULT CClassFactory::CreateInstance(IUnknown*, REFIID id, void** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (IsFileClass(*class_id_)) {
        if (!(id == IID_IKtReadFileClass)) return E_NOINTERFACE;
        return Create<CReadFileClass>(id, out);
    }
    if (*class_id_ == CLSID_KtUnsharedFIOPluginInfo) {
        if (!(id == IID_IKtUnsharedFIOPluginInfo) && !(id == IID_IUnknown)) return E_NOINTERFACE;
        return Create<UnsharedFIOPluginInfo>(id, out);
    }
    return S_OK;
}

HRESULT CClassFactory::LockServer(BOOL lock) {
    ServerLockCount() += lock ? 1 : -1;
    return S_OK;
}

}  // namespace clipfio

HRESULT STDMETHODCALLTYPE DllGetClassObject(REFCLSID class_id, REFIID id, void** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (!(id == IID_IClassFactory) && !(id == IID_IUnknown)) return E_NOINTERFACE;
    if (!platform::ModuleAttached()) return E_UNEXPECTED;
    auto* factory = new (std::nothrow) clipfio::CClassFactory(class_id);
    if (!factory) return E_OUTOFMEMORY;
    const HRESULT result = factory->QueryInterface(id, out);
    factory->Release();
    return result;
}

HRESULT STDMETHODCALLTYPE DllCanUnloadNow() { return S_FALSE; }
void STDMETHODCALLTYPE DllInitClasses() noexcept {}
