// Facts about languages: which column of texts serves one, how names are written in it, how it is tagged.
//
// Buffers take `size` characters, terminator included; what does not fit is cut, and with a size below 1 nothing is
// written. Any thread.
#pragma once

#include "kernel/lang.h"

// The language that texts are looked for under: the region is dropped, except that Chinese is either simplified
// (0x0804) or traditional (0x0404) and that Portuguese stays as it is.
KT_API LCID KtLang_GetConditionedLCID(LCID lcid) noexcept;

// The system's abbreviation of the handle's conditioned language, such as "DEU". 1; on failure 0 and an empty text.
KT_API int32_t KtLang_GetLangAbbrev(HKTLANG handle, WCHAR* buffer, int32_t size) noexcept;
// The tag of the handle's language, such as "de-DE", by primary language. 0; 1 and an empty text for English and for
// any language that has no tag here.
KT_API int32_t KtLang_GetLangllCC(HKTLANG handle, WCHAR* buffer, int32_t size) noexcept;

KT_API int32_t KtLang_UseRTL(HKTLANG handle) noexcept;  // 1 for a language that is written from right to left
KT_API void KtLang_EnableProcessMirroring() noexcept;
KT_API void KtLang_DisableProcessMirroring() noexcept;
KT_API int32_t KtLang_IsLCIDEnglish(LCID lcid) noexcept;

KT_API int32_t KtLang_IsNameOrderReversed(HKTLANG handle) noexcept;  // 1 where the last name comes first
// Both names in the language's order with a blank between; null counts as empty. Returns the length.
KT_API int32_t KtLang_LocalizeUserName(HKTLANG handle, const WCHAR* first, const WCHAR* last, WCHAR* buffer,
                                       int32_t size) noexcept;

// 1 when the text of `length` bytes, or up to its terminator, has a character of two bytes in the process's code page.
KT_API int32_t KtLang_DetectMultiByteCharacters(const char* bytes, int32_t length) noexcept;
// The code page that the whole text is in beyond doubt. 0, or 0x8004E1FD with a code page of 0 when there is none, or
// the failure of the detector.
KT_API HRESULT KtLang_DetectPossibleCodepage(const char* text, int32_t length, uint32_t* code_page) noexcept;

// The languages of the version resource `id` of the satellite in use, as abbreviations with commas between, up to 259
// characters. Returns the length, 0 when no satellite is in use.
KT_API int32_t KtEnumResourceLanguages(HKTLANG handle, uint32_t id, WCHAR* buffer, int32_t size) noexcept;

namespace clipfio {

// The column of texts for a language, counted from 1; 0 when there is none.
int32_t ColumnOfLanguage(LCID lcid) noexcept;
LCID LanguageOfColumn(int32_t column) noexcept;  // 1 to 18

// What KtLang_DetectMultiByteCharacters asks where the code page has such characters. `type_of` tells of a byte, by
// what the byte before it was, as the runtime's _mbbtype does.
using MultiByteType = int (*)(unsigned char byte, int type_before);
bool HasMultiByteCharacters(const char* bytes, int32_t length, MultiByteType type_of) noexcept;

}  // namespace clipfio
