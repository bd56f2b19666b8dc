// The registry: a tree of keys with typed values, kept between runs and shared by all programs of the user.
//
// Elsewhere than on Windows it lies in the folder KT_REGISTRY, else in clipfio below XDG_CONFIG_HOME or ~/.config, with
// one database file for each hive. Several processes may use it at once; a write is there for all of them, and survives
// the end of the process, when the call returns. A file that cannot be used gives ERROR_BUSY (locked by another process
// for longer than three seconds), ERROR_ACCESS_DENIED, ERROR_REGISTRY_CORRUPT, ERROR_CANTOPEN or
// ERROR_REGISTRY_IO_FAILED. Reading makes no file.
#pragma once

#include "platform/base.h"
#include "platform/sync.h"

#ifndef _WIN32

using HKEY = struct HKEY__*;
using LSTATUS = LONG;
using REGSAM = DWORD;

// Win32 spells these as pointers too.
#define HKEY_CURRENT_USER (reinterpret_cast<HKEY>(static_cast<LONG_PTR>(static_cast<LONG>(0x80000001))))
#define HKEY_LOCAL_MACHINE (reinterpret_cast<HKEY>(static_cast<LONG_PTR>(static_cast<LONG>(0x80000002))))

inline constexpr DWORD REG_NONE = 0;
inline constexpr DWORD REG_SZ = 1;
inline constexpr DWORD REG_EXPAND_SZ = 2;
inline constexpr DWORD REG_BINARY = 3;
inline constexpr DWORD REG_DWORD = 4;
inline constexpr DWORD REG_MULTI_SZ = 7;
inline constexpr DWORD REG_OPTION_NON_VOLATILE = 0;
inline constexpr DWORD REG_CREATED_NEW_KEY = 1;
inline constexpr DWORD REG_OPENED_EXISTING_KEY = 2;
inline constexpr REGSAM KEY_QUERY_VALUE = 0x1;
inline constexpr REGSAM KEY_SET_VALUE = 0x2;
inline constexpr REGSAM KEY_CREATE_SUB_KEY = 0x4;
inline constexpr REGSAM KEY_ENUMERATE_SUB_KEYS = 0x8;
inline constexpr REGSAM KEY_READ = 0x20019;
inline constexpr REGSAM KEY_WRITE = 0x20006;
inline constexpr REGSAM KEY_ALL_ACCESS = 0xF003F;

// All give a Win32 error number, ERROR_SUCCESS or the reason, and leave the last error alone. Names of keys and values
// are compared without case. A path of keys uses '\' and has parts of 1 to 255 characters; a '\' too many between or
// behind them is passed over. A handle serves any thread. A key that was deleted meanwhile gives ERROR_KEY_DELETED.

// Makes every missing key on the way. Only REG_OPTION_NON_VOLATILE; the class is not kept.
extern "C" LSTATUS RegCreateKeyExW(HKEY key, const WCHAR* path, DWORD reserved, WCHAR* key_class, DWORD options,
                                   REGSAM access, const SECURITY_ATTRIBUTES* security, HKEY* out,
                                   DWORD* disposition) noexcept;
// With every right; a null or empty path gives a second handle of the same key.
extern "C" LSTATUS RegCreateKeyW(HKEY key, const WCHAR* path, HKEY* out) noexcept;
extern "C" LSTATUS RegOpenKeyExW(HKEY key, const WCHAR* path, DWORD options, REGSAM access, HKEY* out) noexcept;
extern "C" LSTATUS RegCloseKey(HKEY key) noexcept;  // a hive may be closed, without effect

// `bytes` is the buffer's size and becomes the value's; without a buffer it is only asked for. ERROR_MORE_DATA, with
// the size and the type, for a buffer that is too small. A null name is the empty one.
extern "C" LSTATUS RegQueryValueExW(HKEY key, const WCHAR* name, DWORD* reserved, DWORD* type, BYTE* data,
                                    DWORD* bytes) noexcept;
extern "C" LSTATUS RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type, const BYTE* data,
                                  DWORD bytes) noexcept;
extern "C" LSTATUS RegDeleteValueW(HKEY key, const WCHAR* name) noexcept;
// ERROR_ACCESS_DENIED for a key that has keys below it.
extern "C" LSTATUS RegDeleteKeyW(HKEY key, const WCHAR* path) noexcept;

// In the order of the names without case. `length` in characters: in, with the terminator; out, without it.
extern "C" LSTATUS RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* length, DWORD* reserved, WCHAR* key_class,
                                 DWORD* class_length, FILETIME* written) noexcept;
// Lengths are the longest, in characters without the terminator; data in bytes. Every out may be null. Classes are
// empty, and neither security nor the time of writing is kept: they are 0.
extern "C" LSTATUS RegQueryInfoKeyW(HKEY key, WCHAR* key_class, DWORD* class_length, DWORD* reserved, DWORD* keys,
                                    DWORD* key_length, DWORD* longest_class, DWORD* values, DWORD* value_length,
                                    DWORD* data_bytes, DWORD* security_bytes, FILETIME* written) noexcept;

#endif
