// The global heap. Blocks cross the module boundary: either side may free what the other made.
#pragma once

#include "platform/base.h"

#ifndef _WIN32

inline constexpr UINT GMEM_FIXED = 0x0000;
inline constexpr UINT GMEM_MOVEABLE = 0x0002;
inline constexpr UINT GMEM_ZEROINIT = 0x0040;
inline constexpr UINT GHND = 0x0042;
inline constexpr UINT GPTR = 0x0040;

// A fixed block's handle is its address; a moveable one has to be locked for its address.
extern "C" HGLOBAL GlobalAlloc(UINT flags, SIZE_T bytes) noexcept;
extern "C" HGLOBAL GlobalFree(HGLOBAL block) noexcept;  // null on success, the handle on failure
extern "C" void* GlobalLock(HGLOBAL block) noexcept;
extern "C" BOOL GlobalUnlock(HGLOBAL block) noexcept;
extern "C" HGLOBAL GlobalHandle(const void* address) noexcept;  // null for an address that is no block
extern "C" SIZE_T GlobalSize(HGLOBAL block) noexcept;

#endif
