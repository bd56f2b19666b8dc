// How much room disks have. Any thread.
#pragma once

#include <cstdint>

#include "platform/base.h"

// Units of `unit` bytes that the caller may still use, or that the disk of a path has in all; a unit of 0 counts bytes.
// 0xFFFFFFFF for more than that, and for a share that does not answer; else 0 when the path has no root or the disk
// does not answer.
KT_API uint32_t KtGetDiskFreeSpace(const WCHAR* path, uint32_t unit) noexcept;
KT_API uint32_t KtGetDiskTotalSpace(const WCHAR* path, uint32_t unit) noexcept;

// The free room as a text of the kernel's language, with one decimal and the megabyte of 1,024,000 bytes; "--
// Megabytes" when it is not known. `out` has room for 64 characters.
KT_API void KtFormatDiskFreeSpace(const WCHAR* path, WCHAR* out) noexcept;
