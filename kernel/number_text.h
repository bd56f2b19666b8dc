// Numbers as the user's locale writes them, out of the text that C prints for them.
//
// The source may have blanks and zeros of a field width in front, which stay as they are, and blanks behind. The result
// is the length of the text; a negative number always begins with "-". 0, with an empty text, when it does not fit into
// `size` characters with its terminator or the source is no number. Before the kernel's start the text is that of C.
// Any thread.
#pragma once

#include <cstddef>
#include <cstdint>

#include "kernel/internationals.h"
#include "platform/base.h"

// A whole number, in groups.
KT_API int32_t KtFormatNumber(const WCHAR* source, WCHAR* out, int32_t size) noexcept;
// With the locale's decimal separator, without groups; as many decimals as the source has.
KT_API int32_t KtFormatDecimalNumber(const WCHAR* source, WCHAR* out, int32_t size) noexcept;
// With both. `decimals` is rounded to; -1: as many as the source has.
KT_API int32_t KtFormatGroupDecimalNumber(const WCHAR* source, WCHAR* out, int32_t size, int32_t decimals) noexcept;

namespace clipfio {

inline constexpr int32_t kSourceDecimals = -1;  // as many as the source has

enum class NumberForm { kGrouped, kDecimal, kGroupedDecimal };
enum class NumberFit { kDone, kNoRoom, kNotANumber };

struct NumberText {
    NumberFit fit;
    int32_t length;  // 0 unless done
};

// As the operations above, and says which of the two it was that failed. The last argument is the record to go by.
NumberText FormatNumberText(const WCHAR* source, WCHAR* out, int32_t size, NumberForm form, int32_t decimals,
                            const KTINTERNATIONALS& record) noexcept;

// A whole number other than 0, in groups. Characters, no terminator; 0 when they do not fit into `room`. Only with a
// record that is filled.
std::size_t GroupDigits(uint32_t magnitude, bool negative, WCHAR* out, std::size_t room,
                        const KTINTERNATIONALS& record) noexcept;

// Puts "-" in the place of a sign at the front of `text`; returns the new length.
int32_t PlainMinus(WCHAR* text, int32_t length, WStringView sign) noexcept;

}  // namespace clipfio
