// The kernel's own printf, on 16-bit characters.
//
// '%' opens a conversion as in C, '$' opens one that groups digits as the user's locale does. Conversions: d i u x X c
// s with flags, width, precision and the prefixes l, h and I64; `$$` and `%%` are the characters themselves; `*`, `,`
// and
// `:` print the locale's decimal, list and time separators and take no argument. A `c` or `s` is as wide as the format.
// What is no conversion, or is cut off by the end of the format, is printed as it stands. Any thread.
#pragma once

#include <cstdarg>
#include <cstdint>

#include "platform/base.h"

// Print without a limit: `out` must have room for the whole text. Return its length in characters.
KT_API int32_t KtPrintF(WCHAR* out, const WCHAR* format, ...) noexcept;
KT_API int32_t KtVPrintF(WCHAR* out, const WCHAR* format, std::va_list arguments) noexcept;

// Print into `size` characters, terminator included, at least 1; `length` may be null. 0, or 0x8004E03C when a number
// was cut, 0x8007007A when a text was cut. Cut literal text is not reported.
KT_API HRESULT KtCchPrintF(WCHAR* out, uint32_t size, uint32_t* length, const WCHAR* format, ...) noexcept;
KT_API HRESULT KtNVPrintF(WCHAR* out, uint32_t size, uint32_t* length, const WCHAR* format,
                          std::va_list arguments) noexcept;
