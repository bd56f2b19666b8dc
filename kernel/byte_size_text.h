// Sizes of files as text. `out` has room for 64 characters where no size is given. Any thread, but not while the record
// of the locale is refreshed.
#pragma once

#include <cstdint>

#include "platform/base.h"

// Three digits that count, in units of 1024, as a text of the kernel's language; with `long_bytes` the unit below one
// KB is written out. A negative size counts as 0. As KtComposeStr.
KT_API uint32_t KtFormatFileSize(int64_t size, WCHAR* out, uint32_t characters, int32_t long_bytes) noexcept;

// Two decimals, in units of 1024 and from there on of 1000; a negative size is printed as it is, held to 32 bits. The
// length.
KT_API int32_t KtGetByteSizeText(int64_t size, WCHAR* out) noexcept;           // 12, 1.50KB
KT_API int32_t KtGetByteSizeText2(int64_t size, WCHAR* out) noexcept;          // 12 bytes, 1.50 KB
KT_API int32_t KtGetByteSizeTextWithSpace(int64_t size, WCHAR* out) noexcept;  // 12, 1.50 KB
