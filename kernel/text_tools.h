// Small tools for text in a caller's buffer. Sizes are characters with the terminator; a text that is too long is cut.
// Null texts count as empty ones. Any thread.
#pragma once

#include <cstdint>

#include "platform/base.h"

// Every `from` becomes `to`; the length of the text.
KT_API int32_t KtStringReplaceChars(WCHAR* text, WCHAR from, WCHAR to) noexcept;
KT_API int32_t KtStringReplaceCharsW(WCHAR* text, WCHAR from, WCHAR to) noexcept;
// Takes white space off both ends, in place; the new length.
KT_API int32_t KtStripWhiteSpace(WCHAR* text) noexcept;
// Copies without white space at both ends. `out` when something is left, else null.
KT_API WCHAR* KtPrepareName(const WCHAR* source, WCHAR* out, int32_t size) noexcept;
// Doubles every '&', as menus want it; the length. At most 259 characters.
KT_API int32_t KtFixNameForMenu(WCHAR* out, const WCHAR* source, int32_t size) noexcept;

// The four bytes from the low one up, those outside 32 to 126 as '.'. `out` has room for 5 characters. Always 0.
KT_API HRESULT KtFourCCToString(uint32_t code, WCHAR* out) noexcept;
// Eight, three times four and twelve hexadecimal digits, without braces. Always 0.
KT_API HRESULT KtGuidToString(const GUID* guid, WCHAR* out, int32_t size) noexcept;
// The same form, each number with up to as many digits and with white space in front; what follows is not looked at.
// 0, or E_FAIL with `*guid` as it was.
KT_API HRESULT KtGuidFromString(const WCHAR* text, GUID* guid) noexcept;
