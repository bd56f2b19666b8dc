// Numbers as text, into a caller's buffer; with `grouped` as the user's locale writes them, else as C does. Results are
// lengths. Any thread, but not while the record of the locale is refreshed.
#pragma once

#include <cstdint>

#include "platform/base.h"

// Into at least 64 characters.
KT_API int32_t KtDWordToText(uint32_t value, WCHAR* out, int32_t grouped) noexcept;
KT_API int32_t KtDWordLongToText(uint64_t value, WCHAR* out, int32_t grouped) noexcept;
KT_API int32_t KtLongToText(int32_t value, WCHAR* out, int32_t grouped) noexcept;
KT_API int32_t KtLongLongToText(int64_t value, WCHAR* out, int32_t grouped) noexcept;

// Into `size` characters with the terminator. 0 when the text does not fit, and then as many of its digits as do,
// without groups; 0 and nothing written for a size below 2.
KT_API int32_t KtDWordToTextN(uint32_t value, WCHAR* out, int32_t size, int32_t grouped) noexcept;
KT_API int32_t KtLongToTextN(int32_t value, WCHAR* out, int32_t size, int32_t grouped) noexcept;
KT_API int32_t KtLongLongToTextN(int64_t value, WCHAR* out, int32_t size, int32_t grouped) noexcept;
// This one gives the length of what it wrote, cut or not.
KT_API int32_t KtDWordLongToTextN(uint64_t value, WCHAR* out, int32_t size, int32_t grouped) noexcept;

// Rounded half up to `decimals`, 0 to 9, behind a "." or, grouped, the locale's separator. What rounds to zero has no
// sign. Values of 2^64 and more are held at 2^64 - 1; what is not a number counts as 0. The second form gives the
// length of what it wrote.
KT_API int32_t KtDoubleToText(WCHAR* out, double value, int32_t decimals, int32_t grouped) noexcept;
KT_API int32_t KtDoubleToTextN(WCHAR* out, int32_t size, double value, int32_t decimals, int32_t grouped) noexcept;
