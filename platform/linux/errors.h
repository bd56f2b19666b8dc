// The one translation of errno into Win32 error numbers, and short ways to fail with one.
#pragma once

#include <new>

#include "platform/base.h"

namespace platform {

inline constexpr DWORD ERROR_INVALID_FUNCTION = 1;
inline constexpr DWORD ERROR_INVALID_DATA = 13;
inline constexpr DWORD ERROR_BAD_NETPATH = 53;
inline constexpr DWORD ERROR_SEEK_ON_DEVICE = 132;
inline constexpr DWORD ERROR_CALL_NOT_IMPLEMENTED = 120;
inline constexpr DWORD ERROR_DISCARDED = 157;
inline constexpr DWORD ERROR_NOT_LOCKED = 158;
inline constexpr DWORD ERROR_MR_MID_NOT_FOUND = 317;
inline constexpr DWORD ERROR_INVALID_FLAGS = 1004;
inline constexpr DWORD ERROR_IO_DEVICE = 1117;
inline constexpr DWORD ERROR_INVALID_MENU_HANDLE = 1401;
inline constexpr DWORD ERROR_WINDOW_NOT_DIALOG = 1420;
inline constexpr DWORD ERROR_MENU_ITEM_NOT_FOUND = 1456;
inline constexpr DWORD ERROR_MAPPED_ALIGNMENT = 1132;
inline constexpr DWORD ERROR_COMMITMENT_LIMIT = 1455;
inline constexpr DWORD ERROR_RESOURCE_DATA_NOT_FOUND = 1812;

DWORD Win32FromErrno(int error) noexcept;

// Sets the last error and gives `result`, so that a call fails in one line.
template <class T>
T Fail(DWORD error, T result) noexcept {
    SetLastError(error);
    return result;
}
inline BOOL Fail(DWORD error) noexcept { return Fail(error, FALSE); }

// Runs the part of a call that may run out of memory.
template <class Result, class Call>
Result Guarded(Result failure, Call call) noexcept {
    try {
        return call();
    } catch (const std::bad_alloc&) {
        return Fail(ERROR_NOT_ENOUGH_MEMORY, failure);
    }
}

}  // namespace platform
