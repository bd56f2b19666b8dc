// Mutexes and waiting.
#pragma once

#include "platform/base.h"

#ifndef _WIN32

struct SECURITY_ATTRIBUTES;

inline constexpr DWORD WAIT_OBJECT_0 = 0;
inline constexpr DWORD WAIT_TIMEOUT = 258;
inline constexpr DWORD WAIT_FAILED = 0xFFFFFFFF;

// A recursive mutex. Only unnamed ones are made here; a name fails with ERROR_NOT_SUPPORTED.
extern "C" HANDLE CreateMutexW(SECURITY_ATTRIBUTES* security, BOOL owned, const WCHAR* name) noexcept;
extern "C" BOOL ReleaseMutex(HANDLE mutex) noexcept;
// Waits for a mutex or a process.
extern "C" DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) noexcept;

// A recursive lock inside one process.
struct CRITICAL_SECTION {
    void* state[1];
};
extern "C" void InitializeCriticalSection(CRITICAL_SECTION* section) noexcept;
extern "C" void EnterCriticalSection(CRITICAL_SECTION* section) noexcept;
extern "C" void LeaveCriticalSection(CRITICAL_SECTION* section) noexcept;
extern "C" void DeleteCriticalSection(CRITICAL_SECTION* section) noexcept;

#endif
