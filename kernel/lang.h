// The language context: where the module's texts come from, and in which language.
//
// A handle may be used from any thread; texts that it gives live until the language changes or the handle is closed.
#pragma once

#include <cstdint>

#include "platform/base.h"

using HKTLANG = struct KtLang*;

// Opens a context over `base`, which stays the caller's. `lcid` 0: not set. `ring_size`: temporary text space in
// characters, 0 for 8192, at least 2048. 0; 0x0004E001 when `*handle` is not null, and then nothing is done;
// E_OUTOFMEMORY.
KT_API HRESULT KtLang_Open(HKTLANG* handle, HMODULE base, LCID lcid, uint32_t ring_size) noexcept;
KT_API HRESULT KtLang_Close(HKTLANG handle) noexcept;  // null is accepted; always 0
KT_API LCID KtLang_GetLCID(HKTLANG handle) noexcept;   // 0 for null or when not set

// Sets the language of `handle` and of the kernel's own handle, and forgets the texts of the old one. An `lcid` of 0
// means English (United States). 0 when either handle is missing, else 1. The last argument is not read.
KT_API int32_t KtLang_UpdateKernelLCID(HKTLANG handle, LCID lcid, int32_t reserved) noexcept;

// The text of a string resource; the empty text when there is none. Never null.
KT_EXPORT const WCHAR* KtGetString(HKTLANG handle, uint32_t id) noexcept;
// Copies the text of a string resource, cut to `size` characters with the terminator. Returns its length, 0 when there
// is none.
KT_EXPORT int32_t KtLoadString(HKTLANG handle, uint32_t id, WCHAR* buffer, int32_t size) noexcept;

// A slice of the context's ring of temporary text, for up to `length` characters and their terminator; never freed, and
// overwritten when the ring has come round. 0 gives an empty text. Null for a null handle, or for more than 1024
// characters.
KT_API WCHAR* KtGetTempStringBuffer(HKTLANG handle, uint32_t length) noexcept;

// A resource of the context's modules, loaded; null when there is none. `size` receives its bytes and may be null. The
// block is the module's and is not freed.
KT_API HGLOBAL KtLoadResourceCustom(HKTLANG handle, const WCHAR* name, const WCHAR* type, uint32_t* size) noexcept;

namespace clipfio {

// The kernel's own handle, made and ended by the kernel's start and end.
HKTLANG& KernelLanguage() noexcept;

}  // namespace clipfio
