// Colours as text: "RGB(255,0,16)", "#ff0010", or the number that the colour is.
//
// A colour has red in its low byte, then green, then blue.
#pragma once

#include <cstdint>

#include "platform/base.h"

inline constexpr uint32_t kKtUnreadableColor = 0xF000F0;

enum KTCOLORTEXT : int32_t {
    KTCOLORTEXT_RGB = 0,
    KTCOLORTEXT_WEB = 1,
};

// Any other mode, and what is no colour, gives the number in hexadecimal. The length of what was written into `size`
// characters.
KT_API int32_t KtColorrefToText(WCHAR* out, int32_t size, uint32_t color, int32_t mode) noexcept;
// The same with the result of KtCchPrintF; `length` may be null. Of the plain numbers only a 0 that is cut is reported,
// by 0x8004E03C.
KT_API HRESULT KtColorrefToTextEx(WCHAR* out, uint32_t size, uint32_t* length, uint32_t color, int32_t mode) noexcept;

// Reads any of these forms; names, white space and numbers as described in text_to_number.h. `end` may be null and gets
// the place behind what was read. kKtUnreadableColor for "RGB" without three numbers of at most 255 in brackets, for
// "#" without digits or with a number of more than 24 bits, and for the number 0xFFFFFFFF. A text that is none of these
// forms is the number 0. `reserved` is not read.
KT_API uint32_t KtTextToColorrefToken(const WCHAR* text, const WCHAR** end) noexcept;
KT_API uint32_t KtTextToColorrefTokenEx(const WCHAR* text, int32_t reserved, const WCHAR** end) noexcept;
KT_API uint32_t KtTextToColorref(const WCHAR* text) noexcept;
