// The names of the two sides of a stereo pair.
#pragma once

#include <cstdint>

#include "platform/base.h"

// "Out 3-4 Main" is "Out 3 Main" and "Out 4 Main"; "Mic A/B" is "Mic A" and "Mic B"; any other name gets " - Left" and
// " - Right", in the kernel's language. 1, or 0 with nothing written for a name that tells its side already, and for
// null. A null destination skips its side. Sizes are characters with the terminator; names are cut to 260 characters
// first, and to the sizes in the end. Numbers are runs of digits; two that follow each other by one make the pair.
KT_API int32_t KtChannelizeStereoName(const WCHAR* name, WCHAR* left, int32_t left_size, WCHAR* right,
                                      int32_t right_size) noexcept;
