#include "kernel/lang.h"

#include <algorithm>

#include "kernel/lang_handle.h"
#include "kernel/path_text.h"
#include "platform/activation.h"
#include "platform/locale.h"
#include "platform/modules.h"
#include "platform/window_layout.h"

namespace {

using namespace clipfio;

constexpr HRESULT kAlreadyOpen = 0x0004E001;
constexpr uint32_t kDefaultRing = 8192;
constexpr uint32_t kLeastRing = 2048;
constexpr uint32_t kRingHeadroom = 1024;  // what is left behind the last place where a text may begin

// Null when there is none.
HMODULE LoadSatellite(HMODULE base) noexcept {
    WCHAR path[MAX_PATH] = {};
    const DWORD length = GetModuleFileNameW(base, path, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) return nullptr;
    KtReplaceExtensionOnPathName(path, MAX_PATH, W("LNG"));
    const platform::ActivationScope scope;
    return LoadLibraryW(path);
}

}  // namespace

KtLang::~KtLang() {
    if (language_module && language_module != base) FreeLibrary(language_module);
    KtList_Destroy(cache);
    if (lock_initialised) DeleteCriticalSection(&lock);
}

HRESULT KtLang::Init(HMODULE base_module, LCID wanted, uint32_t size) noexcept {
    base = base_module;
    ring_size = size ? std::max(size, kLeastRing) : kDefaultRing;
    ring_headroom = kRingHeadroom;
    // A longest text at the last place ends with the ring; its terminator stands behind.
    ring.reset(new (std::nothrow) WCHAR[std::size_t{ring_size} + 1]());
    if (!ring) return E_OUTOFMEMORY;
    if (const HRESULT result = KtList_CreateExZ(&cache, 0, 0, 0, KTLIST_HEAP, nullptr, nullptr, 0); FAILED(result)) {
        return result;
    }
    lcid = wanted;
    const HMODULE satellite = LoadSatellite(base);
    language_module = satellite ? satellite : base;
    InitializeCriticalSection(&lock);
    lock_initialised = 1;
    return S_OK;
}

void KtLang::SetLanguage(LCID wanted) noexcept {
    const platform::CriticalSectionLock hold(lock);
    if (lcid != wanted) {
        lcid = wanted;
        language_column = 0;
        KtList_DeleteList(cache, 0, -1, 0);
    }
    use_language_module = !IsEnglish(wanted);
}

HRESULT KtLang_Open(HKTLANG* handle, HMODULE base, LCID lcid, uint32_t ring_size) noexcept {
    if (!handle) return E_POINTER;
    if (*handle) return kAlreadyOpen;
    std::unique_ptr<KtLang> lang(new (std::nothrow) KtLang);
    if (!lang) return E_OUTOFMEMORY;
    const HRESULT result = lang->Init(base, lcid, ring_size);
    if (SUCCEEDED(result)) *handle = lang.release();
    return result;
}

HRESULT KtLang_Close(HKTLANG handle) noexcept {
    delete handle;
    return S_OK;
}

LCID KtLang_GetLCID(HKTLANG handle) noexcept { return handle ? handle->lcid : 0; }

int32_t KtLang_UpdateKernelLCID(HKTLANG handle, LCID lcid, int32_t) noexcept {
    const HKTLANG kernel = KernelLanguage();
    if (!kernel || !handle) return 0;
    const LCID wanted = lcid ? lcid : LCID{kEnglishUnitedStates};
    handle->SetLanguage(wanted);
    kernel->SetLanguage(wanted);
    SetProcessDefaultLayout(IsRightToLeft(wanted) ? LAYOUT_RTL : 0);
    return 1;
}

void KtLang_UpdateThreadLocale(HKTLANG handle) noexcept {
    const LCID lcid = KtLang_GetLCID(handle);
    SetThreadLocale(lcid);
    const platform::ActivationScope scope;
    // Never freed: what is set here would go with the library.
    static const HMODULE controls = LoadLibraryW(W("comctl32.dll"));
    if (!controls) return;
    using InitLanguage = void(WINAPI*)(LANGID);
    const FARPROC found = GetProcAddress(controls, "InitMUILanguage");
    if (found) reinterpret_cast<InitLanguage>(reinterpret_cast<void*>(found))(static_cast<LANGID>(lcid));
}

int32_t KtLang_ChangeLangInst(HKTLANG handle, HMODULE language_module) noexcept {
    const HKTLANG kernel = KernelLanguage();
    if (!kernel || !handle) return 0;
    if (!language_module) return 1;
    for (const HKTLANG one : {handle, kernel}) {
        const platform::CriticalSectionLock hold(one->lock);
        one->language_module = language_module;
    }
    return 1;
}

HMODULE KtLang_InstFromLang(HKTLANG handle) noexcept {
    if (!handle) return nullptr;
    return handle->Satellite() ? handle->language_module : handle->base;
}

namespace clipfio {

HMODULE& KernelModule() noexcept {
    static constinit HMODULE module = nullptr;
    return module;
}

HKTLANG& KernelLanguage() noexcept {
    static constinit HKTLANG handle = nullptr;
    return handle;
}

}  // namespace clipfio
