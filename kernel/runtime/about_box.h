// The about box of a module.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/base.h"

// What the box shows; texts are the caller's and live until the call returns. Fields without a name are zero.
struct KtAboutRecord {
    uint32_t page;  // page selector
    uint8_t reserved1[12];
    const WCHAR* name;
    const WCHAR* version;
    const WCHAR* legal1;
    const WCHAR* legal2;
    const WCHAR* details;
    uint8_t reserved2[16];
    const WCHAR* text;
    uint8_t reserved3[80];
    uint32_t pages;  // the pages that the box shows, a bit each
    uint32_t reserved4;
    const void* bitmap;  // a bitmap resource, or null
    uint32_t bitmapWidth;
    uint32_t bitmapHeight;
    uint8_t reserved5[24];
};
static_assert(sizeof(KtAboutRecord) == 208);
static_assert(offsetof(KtAboutRecord, name) == 16);
static_assert(offsetof(KtAboutRecord, details) == 48);
static_assert(offsetof(KtAboutRecord, text) == 72);
static_assert(offsetof(KtAboutRecord, pages) == 160);
static_assert(offsetof(KtAboutRecord, bitmap) == 168);
static_assert(offsetof(KtAboutRecord, bitmapWidth) == 176);

// Shows the box over `parent` and returns when it was closed: S_OK; E_INVALIDARG for a null or short record; E_NOTIMPL
// when nothing is there that could show it.
KT_API HRESULT KtAboutBox(HWND parent, const void* record, uint32_t bytes) noexcept;

namespace clipfio {

// What shows the box; null while there is no window system. Set from one thread, before any box.
using AboutPresenter = HRESULT (*)(HWND parent, const KtAboutRecord& record);
void SetAboutPresenter(AboutPresenter presenter) noexcept;

}  // namespace clipfio
