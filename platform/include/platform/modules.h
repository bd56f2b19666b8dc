// Modules loaded at run time, their entry, and the environment.
#pragma once

#include <cstdarg>

#include "platform/base.h"

#ifndef _WIN32

inline constexpr DWORD DLL_PROCESS_DETACH = 0;
inline constexpr DWORD DLL_PROCESS_ATTACH = 1;
inline constexpr DWORD FORMAT_MESSAGE_IGNORE_INSERTS = 0x200;
inline constexpr DWORD FORMAT_MESSAGE_FROM_STRING = 0x400;
inline constexpr DWORD FORMAT_MESSAGE_FROM_SYSTEM = 0x1000;

// A bare file name is looked for beside the program, then in the current folder, then where the system's loader looks.
extern "C" HMODULE LoadLibraryW(const WCHAR* path) noexcept;
extern "C" HMODULE LoadLibraryA(const char* path) noexcept;
extern "C" BOOL FreeLibrary(HMODULE module) noexcept;
extern "C" FARPROC GetProcAddress(HMODULE module, const char* name) noexcept;
// Null names the program itself. Returns characters stored without the terminator; a cut text gives `size` and
// ERROR_INSUFFICIENT_BUFFER.
extern "C" DWORD GetModuleFileNameW(HMODULE module, WCHAR* out, DWORD size) noexcept;
// The module's entry is never called for threads here, so there is nothing to switch off: always TRUE.
extern "C" BOOL DisableThreadLibraryCalls(HMODULE module) noexcept;
// Only system messages; the text is the layer's own, in English. Returns characters stored without the terminator.
extern "C" DWORD FormatMessageA(DWORD flags, const void* source, DWORD id, DWORD language, char* out, DWORD size,
                                void* arguments) noexcept;
// Only texts of the caller's (FORMAT_MESSAGE_FROM_STRING alone) with inserts %1 to %99, which are texts. Returns
// characters stored without the terminator; 0 with ERROR_INSUFFICIENT_BUFFER, ERROR_INVALID_PARAMETER, or
// ERROR_NOT_SUPPORTED for an insert with a format of its own.
extern "C" DWORD FormatMessageW(DWORD flags, const void* source, DWORD id, DWORD language, WCHAR* out, DWORD size,
                                std::va_list* arguments) noexcept;
// Returns characters stored without the terminator, the size wanted with it when the buffer is too small, or 0 with
// ERROR_ENVVAR_NOT_FOUND.
extern "C" DWORD GetEnvironmentVariableW(const WCHAR* name, WCHAR* out, DWORD size) noexcept;
extern "C" BOOL SetEnvironmentVariableW(const WCHAR* name, const WCHAR* value) noexcept;

#endif
