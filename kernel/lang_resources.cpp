#include "kernel/lang_resources.h"

#include <cstring>

#include "kernel/lang_handle.h"
#include "kernel/lang_resource_search.h"
#include "platform/activation.h"

namespace clipfio {

const void* BytesOf(const FoundResource& found) noexcept {
    return found ? LockResource(LoadResource(found.module, found.resource)) : nullptr;
}

FoundResource FindBeforeBase(const KtLang& lang, const WCHAR* type, const WCHAR* name) noexcept {
    const FoundResource found = lang.FindInSatellite(type, name);
    if (found || lang.base != lang.language_module) return found;
    return {lang.base, FindResourceExW(lang.base, type, name, kEnglishUnitedStates)};
}

bool AsksBase(HKTLANG handle) noexcept { return handle && handle->base != handle->language_module; }

}  // namespace clipfio

using namespace clipfio;

namespace {

constexpr uintptr_t kFirstSystemCursor = 32512;
constexpr uintptr_t kNumbersEnd = 0x10000;

HMODULE BaseOf(HKTLANG handle) noexcept { return handle ? handle->base : nullptr; }

const DLGTEMPLATE* FindTemplate(const KtLang& lang, const WCHAR* name, HMODULE& module) noexcept {
    const FoundResource found = FindBeforeBase(lang, RT_DIALOG, name);
    module = found.module;
    return static_cast<const DLGTEMPLATE*>(BytesOf(found));
}

}  // namespace

HRSRC KtFindResource(HKTLANG handle, const WCHAR* name, const WCHAR* type) noexcept {
    if (!handle) return nullptr;
    const FoundResource found = handle->FindInSatellite(type, name);
    return found ? found.resource : FindResourceW(handle->base, name, type);
}

HRSRC KtFindResourceMulti(HKTLANG handle, const WCHAR* name, const WCHAR* const* types, int32_t count,
                          int32_t* index) noexcept {
    if (index) *index = -1;
    if (!handle || !types) return nullptr;
    const auto give = [index](HRSRC found, int32_t which) {
        if (index) *index = which;
        return found;
    };
    for (int32_t i = 0; i < count; ++i) {
        if (const FoundResource found = handle->FindInSatellite(types[i], name)) return give(found.resource, i);
    }
    for (int32_t i = 0; i < count; ++i) {
        if (const HRSRC found = FindResourceW(handle->base, name, types[i])) return give(found, i);
    }
    return nullptr;
}

HMODULE KtFindResInstance(HKTLANG handle, const WCHAR* name, const WCHAR* type) noexcept {
    if (!handle) return nullptr;
    return handle->FindInSatellite(type, name) ? handle->language_module : handle->base;
}

HGLOBAL KtLoadResource(HKTLANG handle, HRSRC resource) noexcept {
    if (!handle) return nullptr;
    for (const HMODULE module : {handle->Satellite(), handle->base}) {
        if (!platform::HoldsResource(module, resource)) continue;
        if (const HGLOBAL block = LoadResource(module, resource)) return block;
    }
    return nullptr;
}

uint32_t KtSizeofResource(HKTLANG handle, HRSRC resource) noexcept {
    const HMODULE module = KtLang_InstFromLang(handle);
    return handle && platform::HoldsResource(module, resource) ? SizeofResource(module, resource) : 0;
}

HGLOBAL KtLoadResourceCustom(HKTLANG handle, const WCHAR* name, const WCHAR* type, uint32_t* size) noexcept {
    if (size) *size = 0;
    if (!handle) return nullptr;
    FoundResource found = FindBeforeBase(*handle, type, name);
    if (!found && AsksBase(handle)) found = {handle->base, FindResourceW(handle->base, name, type)};
    if (!found) return nullptr;
    if (size) *size = SizeofResource(found.module, found.resource);
    return LoadResource(found.module, found.resource);
}

HWND KtCreateDialogParam(HKTLANG handle, const WCHAR* name, HWND parent, DLGPROC procedure, LPARAM parameter) noexcept {
    const platform::ActivationScope scope;
    HMODULE module = nullptr;
    if (const auto* const dialog = handle ? FindTemplate(*handle, name, module) : nullptr) {
        return CreateDialogIndirectParamW(module, dialog, parent, procedure, parameter);
    }
    return AsksBase(handle) ? CreateDialogParamW(handle->base, name, parent, procedure, parameter) : nullptr;
}

HWND KtCreateDialogIndirectParam(HKTLANG handle, const DLGTEMPLATE* dialog, HWND parent, DLGPROC procedure,
                                 LPARAM parameter) noexcept {
    if (!handle || !dialog) return nullptr;
    const platform::ActivationScope scope;
    HWND window = nullptr;
    if (const HMODULE satellite = handle->Satellite()) {
        window = CreateDialogIndirectParamW(satellite, dialog, parent, procedure, parameter);
    }
    return window ? window : CreateDialogIndirectParamW(handle->base, dialog, parent, procedure, parameter);
}

INT_PTR KtDialogBoxParam(HKTLANG handle, const WCHAR* name, HWND parent, DLGPROC procedure, LPARAM parameter) noexcept {
    const platform::ActivationScope scope;
    HMODULE module = nullptr;
    if (const auto* const dialog = handle ? FindTemplate(*handle, name, module) : nullptr) {
        return DialogBoxIndirectParamW(module, dialog, parent, procedure, parameter);
    }
    return AsksBase(handle) ? DialogBoxParamW(handle->base, name, parent, procedure, parameter) : -1;
}

INT_PTR KtDialogBoxIndirectParam(HKTLANG handle, const DLGTEMPLATE* dialog, HWND parent, DLGPROC procedure,
                                 LPARAM parameter) noexcept {
    if (!handle || !dialog) return -1;
    const platform::ActivationScope scope;
    return DialogBoxIndirectParamW(KtLang_InstFromLang(handle), dialog, parent, procedure, parameter);
}

HACCEL KtLoadAccelerators(HKTLANG handle, const WCHAR* name) noexcept {
    if (!handle) return nullptr;
    FoundResource found = handle->FindInSatellite(RT_ACCELERATOR, name);
    if (!found) found = {handle->base, FindResourceW(handle->base, name, RT_ACCELERATOR)};
    const void* const bytes = BytesOf(found);
    ACCEL entry{};
    if (!bytes || SizeofResource(found.module, found.resource) < sizeof entry) return nullptr;
    std::memcpy(&entry, bytes, sizeof entry);
    return CreateAcceleratorTableW(&entry, 1);
}

HBITMAP KtLoadBitmap(HKTLANG handle, const WCHAR* name) noexcept { return LoadBitmapW(BaseOf(handle), name); }

HICON KtLoadIcon(HKTLANG handle, const WCHAR* name) noexcept { return LoadIconW(BaseOf(handle), name); }

HANDLE KtLoadImage(HKTLANG handle, const WCHAR* name, uint32_t type, int32_t width, int32_t height,
                   uint32_t flags) noexcept {
    return LoadImageW(BaseOf(handle), name, type, width, height, flags);
}

HIMAGELIST KtImageList_LoadImage(HKTLANG handle, const WCHAR* name, int32_t width, int32_t grow_by, COLORREF mask,
                                 uint32_t type, uint32_t flags) noexcept {
    const platform::ActivationScope scope;
    return ImageList_LoadImageW(BaseOf(handle), name, width, grow_by, mask, type, flags);
}

HCURSOR KtLoadCursor(HKTLANG handle, const WCHAR* name) noexcept {
    if (handle) return LoadCursorW(handle->base, name);
    const auto number = reinterpret_cast<uintptr_t>(name);
    const bool of_system = number >= kFirstSystemCursor && number < kNumbersEnd;
    return LoadCursorW(of_system ? nullptr : KernelModule(), name);
}
