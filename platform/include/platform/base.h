// Scalar types, result codes and the character type of the platform.
//
// On Windows these are the SDK's own; elsewhere the same names stand for the same widths and values. `DWORD` and its
// relatives appear only in calls of the platform: on Windows a DWORD* and a uint32_t* are different types.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#ifdef _WIN32

#ifndef UNICODE
#define UNICODE
#endif
#ifndef _UNICODE
#define _UNICODE
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

// A text literal in the platform's 16-bit characters.
#define W(text) L##text
// Marks what leaves the module. On Windows the list of exports alone decides, through the .def made from it.
#define KT_EXPORT

#else

#define W(text) u##text
#define KT_EXPORT __attribute__((visibility("default")))

using WCHAR = char16_t;
using CHAR = char;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using UINT = unsigned int;
using INT = int;
using BOOL = int;
using LONGLONG = std::int64_t;
using ULONGLONG = std::uint64_t;
using SIZE_T = std::size_t;
using ULONG_PTR = std::uintptr_t;
using LONG_PTR = std::intptr_t;
using LPARAM = LONG_PTR;
using WPARAM = ULONG_PTR;
using HRESULT = std::int32_t;
using LCID = DWORD;
using LANGID = WORD;
using LPVOID = void*;
using LPCVOID = const void*;
using LPDWORD = DWORD*;
using LPWSTR = WCHAR*;
using LPCWSTR = const WCHAR*;
using LPSTR = char*;
using LPCSTR = const char*;

using HANDLE = void*;
using HGLOBAL = HANDLE;
using HRSRC = HANDLE;
using HMODULE = struct HINSTANCE__*;
using HINSTANCE = HMODULE;
using HWND = struct HWND__*;
using HICON = struct HICON__*;
using HCURSOR = HICON;
using FARPROC = LONG_PTR (*)();

union LARGE_INTEGER {
    struct {
        DWORD LowPart;
        LONG HighPart;
    } u;
    LONGLONG QuadPart;
};
union ULARGE_INTEGER {
    struct {
        DWORD LowPart;
        DWORD HighPart;
    } u;
    ULONGLONG QuadPart;
};

struct FILETIME {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};

struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
};
using IID = GUID;
using CLSID = GUID;
using REFGUID = const GUID&;
using REFIID = const IID&;
using REFCLSID = const CLSID&;

constexpr bool operator==(const GUID& a, const GUID& b) noexcept {
    if (a.Data1 != b.Data1 || a.Data2 != b.Data2 || a.Data3 != b.Data3) return false;
    for (int i = 0; i < 8; ++i) {
        if (a.Data4[i] != b.Data4[i]) return false;
    }
    return true;
}

#define WINAPI
#define STDMETHODCALLTYPE
#define CALLBACK

inline constexpr BOOL FALSE = 0;
inline constexpr BOOL TRUE = 1;
inline constexpr DWORD MAX_PATH = 260;
inline constexpr DWORD INFINITE = 0xFFFFFFFF;
// Win32 spells this as the pointer -1; an integer cannot become a constexpr pointer in C++.
#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1)))

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOTIMPL = static_cast<HRESULT>(0x80004001u);
inline constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002u);
inline constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003u);
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005u);
inline constexpr HRESULT E_UNEXPECTED = static_cast<HRESULT>(0x8000FFFFu);
inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000Eu);
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057u);

constexpr bool SUCCEEDED(HRESULT hr) noexcept { return hr >= 0; }
constexpr bool FAILED(HRESULT hr) noexcept { return hr < 0; }
constexpr HRESULT HRESULT_FROM_WIN32(DWORD error) noexcept {
    return static_cast<HRESULT>(error) <= 0 ? static_cast<HRESULT>(error)
                                            : static_cast<HRESULT>((error & 0xFFFFu) | 0x80070000u);
}

// Win32 error numbers that the calls of this layer report.
inline constexpr DWORD ERROR_SUCCESS = 0;
inline constexpr DWORD ERROR_FILE_NOT_FOUND = 2;
inline constexpr DWORD ERROR_PATH_NOT_FOUND = 3;
inline constexpr DWORD ERROR_TOO_MANY_OPEN_FILES = 4;
inline constexpr DWORD ERROR_ACCESS_DENIED = 5;
inline constexpr DWORD ERROR_INVALID_HANDLE = 6;
inline constexpr DWORD ERROR_NOT_ENOUGH_MEMORY = 8;
inline constexpr DWORD ERROR_SHARING_VIOLATION = 32;
inline constexpr DWORD ERROR_HANDLE_EOF = 38;
inline constexpr DWORD ERROR_NOT_SUPPORTED = 50;
inline constexpr DWORD ERROR_FILE_EXISTS = 80;
inline constexpr DWORD ERROR_INVALID_PARAMETER = 87;
inline constexpr DWORD ERROR_BROKEN_PIPE = 109;
inline constexpr DWORD ERROR_DISK_FULL = 112;
inline constexpr DWORD ERROR_INSUFFICIENT_BUFFER = 122;
inline constexpr DWORD ERROR_INVALID_NAME = 123;
inline constexpr DWORD ERROR_NEGATIVE_SEEK = 131;
inline constexpr DWORD ERROR_MOD_NOT_FOUND = 126;
inline constexpr DWORD ERROR_PROC_NOT_FOUND = 127;
inline constexpr DWORD ERROR_BAD_PATHNAME = 161;
inline constexpr DWORD ERROR_BUSY = 170;
inline constexpr DWORD ERROR_ALREADY_EXISTS = 183;
inline constexpr DWORD ERROR_BAD_EXE_FORMAT = 193;
inline constexpr DWORD ERROR_ENVVAR_NOT_FOUND = 203;
inline constexpr DWORD ERROR_FILENAME_EXCED_RANGE = 206;
inline constexpr DWORD ERROR_MORE_DATA = 234;
inline constexpr DWORD ERROR_NO_MORE_ITEMS = 259;
inline constexpr DWORD ERROR_NOT_OWNER = 288;
inline constexpr DWORD ERROR_PARTIAL_COPY = 299;
inline constexpr DWORD ERROR_INVALID_ADDRESS = 487;
inline constexpr DWORD ERROR_NOACCESS = 998;
inline constexpr DWORD ERROR_BADKEY = 1010;
inline constexpr DWORD ERROR_CANTOPEN = 1011;
inline constexpr DWORD ERROR_REGISTRY_CORRUPT = 1015;
inline constexpr DWORD ERROR_REGISTRY_IO_FAILED = 1016;
inline constexpr DWORD ERROR_KEY_DELETED = 1018;
inline constexpr DWORD ERROR_NO_UNICODE_TRANSLATION = 1113;
inline constexpr DWORD ERROR_RESOURCE_TYPE_NOT_FOUND = 1813;
inline constexpr DWORD ERROR_RESOURCE_NAME_NOT_FOUND = 1814;
inline constexpr DWORD ERROR_RESOURCE_LANG_NOT_FOUND = 1815;
inline constexpr DWORD ERROR_INTERNAL_ERROR = 1359;

// The calling thread's last error, as Win32 keeps it.
extern "C" DWORD GetLastError() noexcept;
extern "C" void SetLastError(DWORD error) noexcept;

#endif

// A flat operation that leaves the module under its own name.
#define KT_API extern "C" KT_EXPORT

// Owned 16-bit text, and a view of one.
using WString = std::basic_string<WCHAR>;
using WStringView = std::basic_string_view<WCHAR>;
