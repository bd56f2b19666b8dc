// The global heap, whose blocks cross the module boundary (either side may free what the other made), and private
// heaps.
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

inline constexpr DWORD HEAP_NO_SERIALIZE = 0x1;
inline constexpr DWORD HEAP_ZERO_MEMORY = 0x8;

// Sizes are taken as hints: a heap grows as it needs to. A wrong heap or block is an error and never a crash.
extern "C" HANDLE HeapCreate(DWORD options, SIZE_T initial_bytes, SIZE_T most_bytes) noexcept;
extern "C" BOOL HeapDestroy(HANDLE heap) noexcept;  // frees its blocks with it
extern "C" void* HeapAlloc(HANDLE heap, DWORD flags, SIZE_T bytes) noexcept;
// Null leaves the block as it was. HEAP_ZERO_MEMORY clears what is added.
extern "C" void* HeapReAlloc(HANDLE heap, DWORD flags, void* block, SIZE_T bytes) noexcept;
extern "C" BOOL HeapFree(HANDLE heap, DWORD flags, void* block) noexcept;          // null is accepted
extern "C" SIZE_T HeapSize(HANDLE heap, DWORD flags, const void* block) noexcept;  // -1 for a wrong block

// TRUE when a byte of the range cannot be read now.
extern "C" BOOL IsBadReadPtr(const void* address, ULONG_PTR bytes) noexcept;

#endif
