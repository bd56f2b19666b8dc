// The kernel's own printf, on 16-bit characters. Any thread, but not while the record of the user's locale is
// refreshed.
//
// Two characters open a conversion: '%' prints as C does, '$' as the user's locale writes numbers. `$$` and `%%` are
// the characters themselves. What stands between the opening and the first of the letters and signs below belongs to
// the conversion, and is handed on to the runtime's wide printf with it.
//
//   d i u o x X   32 bits, or 64 with the prefix I or I64; '$' groups d, i and u
//   e E f g G     double; '$' groups f, and gives g and G the locale's decimal separator
//   z             32 bits: ".2z" prints 12345 as 123.45, with the locale's decimal separator; else as d
//   c s           a character, a text; the text of a null pointer is "(null)"
//   * , :         the locale's decimal, list and time separators, without an argument; so "%*d" prints a separator and
//   "d"
//   !: !. !,      the separators of timecode: whole, non-drop, drop
//   &: &.         measures to beats, beats to ticks
//
// "$(name)" prints a token (print_tokens.h) and "$(1234.5)" that number, grouped. Names that are not known, texts that
// are never closed and conversions that have no end are printed as they stand, with '%' for an opening '$'. A
// conversion is at most 260 characters long, its number as well, a name too. A text between, of which the runtime would
// make a conversion with another kind of argument ("%n and %d"), is printed as it stands, and the argument is passed
// over. A number that the locale cannot group ("1.#INF") is printed as C does; so is a literal number with a ',' in it.
// A character 0 prints nothing.
#pragma once

#include <cstdarg>
#include <cstdint>

#include "platform/base.h"

// Print without a limit: `out` must have room for the whole text. Return its length in characters, 0 for a null
// argument. A `c` or `s` gives at most 1024 characters, as the platform's print does.
KT_API int32_t KtPrintF(WCHAR* out, const WCHAR* format, ...) noexcept;
KT_API int32_t KtVPrintF(WCHAR* out, const WCHAR* format, std::va_list arguments) noexcept;

// Print into `size` characters, terminator included, at least 1; `length` may be null. Texts and numbers are cut,
// except that digits lose their groups first, and that unknown names and texts never closed are not printed at all. The
// result is that of the last number, text or name: 0, 0x8004E03C when a number was cut or a name not printed,
// 0x8007007A when a text was cut. Cut literal text is not reported. E_INVALIDARG for a bad argument, and for a text
// when the room left is more than 0x7FFFFFFE characters.
KT_API HRESULT KtCchPrintF(WCHAR* out, uint32_t size, uint32_t* length, const WCHAR* format, ...) noexcept;
KT_API HRESULT KtNVPrintF(WCHAR* out, uint32_t size, uint32_t* length, const WCHAR* format,
                          std::va_list arguments) noexcept;
