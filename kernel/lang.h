// The language context: where the module's texts come from, and in which language.
//
// Texts have two sources: string resources, which are numbered and are looked up in a language's satellite file and
// then in the base module, and rows of a table with one text for each of 18 languages.
//
// A handle may be used from any thread. Texts that it gives live until the language changes or the handle is closed, so
// change the language at a quiet moment.
#pragma once

#include <cstdint>

#include "platform/base.h"

using HKTLANG = struct KtLang*;

// A row's columns, counted from 1, are those of the table of languages.
inline constexpr uint32_t kKtLanguages = 18;
inline constexpr uint16_t kKtRowSignature = 0xFFFE;

// A row with all 18 columns. Rows of other modules may have fewer; then the last one serves for those that are missing.
struct KTLANGSTRINGROW {
    uint16_t signature;
    uint16_t count;  // of entries, in its low 8 bits
    uint32_t reserved;
    // Texts, English first. A value below 0x10000 is a string id and is replaced by the text when it is first asked
    // for.
    const WCHAR* entries[kKtLanguages];
    uintptr_t terminator;  // 0
};

// The address of a row, which names it.
using KTLANGSTRINGID = const WCHAR* const*;

// Opens a context over `base`, which stays the caller's. Its satellite file is the base module's with the extension
// LNG. `lcid` 0: not set. `ring_size`: temporary text space in characters, 0 for 8192, at least 2048. 0; 0x0004E001
// when
// `*handle` is not null, and then nothing is done; E_OUTOFMEMORY.
KT_API HRESULT KtLang_Open(HKTLANG* handle, HMODULE base, LCID lcid, uint32_t ring_size) noexcept;
KT_API HRESULT KtLang_Close(HKTLANG handle) noexcept;  // null is accepted; always 0
KT_API LCID KtLang_GetLCID(HKTLANG handle) noexcept;   // 0 for null or when not set

// Sets the language of `handle` and of the kernel's own handle, and forgets the texts of the old one. An `lcid` of 0
// means English (United States). New windows are laid out from right to left for languages that are written so. 0 when
// either handle is missing, else 1. The last argument is not read.
KT_API int32_t KtLang_UpdateKernelLCID(HKTLANG handle, LCID lcid, int32_t reserved) noexcept;
// The calling thread's locale, and that of the common controls where they are, become the handle's.
KT_API void KtLang_UpdateThreadLocale(HKTLANG handle) noexcept;
// Gives another satellite to `handle` and to the kernel's own handle. The old one is not freed; the new one is freed by
// both handles' ends, so that each must have a reference of its own, and must stay loaded for as long as rows that took
// texts out of it are used. Texts that were given before stay those of the old one until the language changes. Null
// changes nothing. 0 when a handle is missing.
KT_API int32_t KtLang_ChangeLangInst(HKTLANG handle, HMODULE language_module) noexcept;
// The satellite while it is in use, else the base module. Null for null.
KT_API HMODULE KtLang_InstFromLang(HKTLANG handle) noexcept;

// The text of a string resource or of a row; the empty text when there is none. Never null. A row is English without a
// handle.
KT_EXPORT const WCHAR* KtGetString(HKTLANG handle, uint32_t id) noexcept;
KT_EXPORT const WCHAR* KtGetString(HKTLANG handle, KTLANGSTRINGID row) noexcept;
// `text` may be a string id, a row or a text, which is returned as it is. Null gives null.
KT_API const WCHAR* KtGetStringSmart(HKTLANG handle, const WCHAR* text) noexcept;
KT_API int32_t IsKTLANGSTRINGID(HKTLANG handle, const WCHAR* text) noexcept;
// Copy a text, cut to `size` characters with the terminator, and without the mark "^*" that it may begin with. Return
// its length, 0 when there is none.
KT_EXPORT int32_t KtLoadString(HKTLANG handle, uint32_t id, WCHAR* buffer, int32_t size) noexcept;
KT_EXPORT int32_t KtLoadString(HKTLANG handle, KTLANGSTRINGID row, WCHAR* buffer, int32_t size) noexcept;

// A slice of the context's ring of temporary text, for up to `length` characters and their terminator; never freed, and
// overwritten when the ring has come round. 0 gives an empty text. Null for a null handle, or for more than 1024
// characters.
KT_API WCHAR* KtGetTempStringBuffer(HKTLANG handle, uint32_t length) noexcept;

// Conversions by way of the ring; a text that is too long for it, or no handle, gives the empty text. The first two
// give the text itself.
KT_API const WCHAR* KtGetPrintFromWideString(HKTLANG handle, const WCHAR* text) noexcept;
KT_API const WCHAR* KtGetWideFromPrintString(HKTLANG handle, const WCHAR* text) noexcept;
KT_API const WCHAR* KtGetPrintFromMultiByteString(HKTLANG handle, const char* text) noexcept;  // of the ANSI code page
KT_API const char* KtGetMultiByteFromPrintString(HKTLANG handle, const WCHAR* text) noexcept;

namespace clipfio {

// The kernel's own handle, made and ended by the kernel's start and end.
HKTLANG& KernelLanguage() noexcept;
// The module that the kernel was started with.
HMODULE& KernelModule() noexcept;

}  // namespace clipfio
