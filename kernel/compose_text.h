// Texts with numbered places for other texts.
#pragma once

#include <cstdint>

#include "platform/base.h"

// "%1" and so on stand for the arguments, which are texts; "%%" is '%', "%n" and a bare line feed are a line end, and
// "%0" ends the text. Length of what was written into `size` characters, terminator included; 0, with an empty text,
// when it does not fit or the format is bad.
KT_API uint32_t KtComposeStr(WCHAR* out, uint32_t size, const WCHAR* format, ...) noexcept;
