// Numbers read from the front of a text, as the user's locale writes them. Any thread, but not while the record of the
// locale is refreshed.
//
// White space in front is skipped, group separators inside are passed over, and the decimal digits of every script
// count as such, full-width ones among them. `end` may be null and gets the place where reading stopped. No digit gives
// 0; null is an empty text. Digits beyond the 63rd character of a number are passed over without being counted. The
// forms with limits put `default_value` in the place of a 0 that is followed by something else than white space or the
// end, and then hold the value at the minimum, or else at the maximum.
#pragma once

#include <cstdint>

#include "platform/base.h"

// Unsigned: modulo the width; a negative number is 0. Decimals are read and dropped.
KT_API uint32_t KtTextToDWordToken(const WCHAR* text, const WCHAR** end) noexcept;
KT_API uint64_t KtTextToDWordLongToken(const WCHAR* text, const WCHAR** end) noexcept;
// Signed: held at the least and the greatest value.
KT_API int32_t KtTextToLongToken(const WCHAR* text, const WCHAR** end) noexcept;
KT_API int64_t KtTextToLongLongToken(const WCHAR* text, const WCHAR** end) noexcept;
// Hexadecimal, with or without "0x" in front; modulo the width. Neither sign nor separators.
KT_API uint32_t KtHexToDWordToken(const WCHAR* text, const WCHAR** end) noexcept;
KT_API uint64_t KtHexToDWordLongToken(const WCHAR* text, const WCHAR** end) noexcept;
// Without `use_locale` "-" is the sign, "." the decimal separator, and "," separates groups. No exponents.
KT_API double KtTextToDoubleToken(const WCHAR* text, const WCHAR** end, int32_t use_locale) noexcept;

KT_API uint32_t KtTextToDWordTokenEx(const WCHAR* text, uint32_t default_value, uint32_t minimum, uint32_t maximum,
                                     const WCHAR** end) noexcept;
KT_API uint64_t KtTextToDWordLongTokenEx(const WCHAR* text, uint64_t default_value, uint64_t minimum, uint64_t maximum,
                                         const WCHAR** end) noexcept;
KT_API int32_t KtTextToLongTokenEx(const WCHAR* text, int32_t default_value, int32_t minimum, int32_t maximum,
                                   const WCHAR** end) noexcept;
KT_API int64_t KtTextToLongLongTokenEx(const WCHAR* text, int64_t default_value, int64_t minimum, int64_t maximum,
                                       const WCHAR** end) noexcept;
KT_API uint32_t KtHexToDWordTokenEx(const WCHAR* text, uint32_t default_value, uint32_t minimum, uint32_t maximum,
                                    const WCHAR** end) noexcept;
KT_API uint64_t KtHexToDWordLongTokenEx(const WCHAR* text, uint64_t default_value, uint64_t minimum, uint64_t maximum,
                                        const WCHAR** end) noexcept;
KT_API double KtTextToDoubleTokenEx(const WCHAR* text, double default_value, double minimum, double maximum,
                                    const WCHAR** end, int32_t use_locale) noexcept;
