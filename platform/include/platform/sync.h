// Mutexes, locks, threads and waiting.
#pragma once

#include "platform/base.h"

#ifndef _WIN32

// Only bInheritHandle is looked at.
struct SECURITY_ATTRIBUTES {
    DWORD nLength;
    void* lpSecurityDescriptor;
    BOOL bInheritHandle;
};

inline constexpr DWORD WAIT_OBJECT_0 = 0;
inline constexpr DWORD WAIT_ABANDONED = 0x80;
inline constexpr DWORD WAIT_TIMEOUT = 258;
inline constexpr DWORD WAIT_FAILED = 0xFFFFFFFF;

// A recursive mutex. Only unnamed ones are made here; a name fails with ERROR_NOT_SUPPORTED. When its holder ends, the
// next wait takes it and says WAIT_ABANDONED.
extern "C" HANDLE CreateMutexW(SECURITY_ATTRIBUTES* security, BOOL owned, const WCHAR* name) noexcept;
// Fails with ERROR_NOT_OWNER on a thread that does not hold the mutex.
extern "C" BOOL ReleaseMutex(HANDLE mutex) noexcept;
// Waits for a mutex or a process.
extern "C" DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) noexcept;

// A recursive lock inside one process. As large as Win32's, which is also what the lock in it needs.
struct CRITICAL_SECTION {
    void* state[5];
};
extern "C" void InitializeCriticalSection(CRITICAL_SECTION* section) noexcept;
extern "C" void EnterCriticalSection(CRITICAL_SECTION* section) noexcept;
extern "C" void LeaveCriticalSection(CRITICAL_SECTION* section) noexcept;
extern "C" void DeleteCriticalSection(CRITICAL_SECTION* section) noexcept;

extern "C" DWORD GetCurrentThreadId() noexcept;

#endif
