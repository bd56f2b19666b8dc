// Code pages, comparison and printing of 16-bit text, and the one pair of UTF conversions.
#pragma once

#include <cstdarg>

#include "platform/base.h"

#ifdef _WIN32

#include <cstdio>
#include <cstdlib>
#include <cwchar>

#include <mbctype.h>
#include <mbstring.h>
#include <shlwapi.h>

#else

inline constexpr UINT CP_ACP = 0;
inline constexpr UINT CP_UTF8 = 65001;
inline constexpr DWORD MB_PRECOMPOSED = 1;
inline constexpr DWORD MB_ERR_INVALID_CHARS = 8;

// `in_length` -1 converts through the terminator. A size of 0 asks for the length. 0 with the last error on failure.
extern "C" int MultiByteToWideChar(UINT code_page, DWORD flags, const char* in, int in_length, WCHAR* out,
                                   int out_size) noexcept;
extern "C" int WideCharToMultiByte(UINT code_page, DWORD flags, const WCHAR* in, int in_length, char* out, int out_size,
                                   const char* substitute, BOOL* substituted) noexcept;

// The order of a list for people: signs, digits, letters; accents and then case decide only between texts that are
// alike in all else. lstrcmpiW passes over case. The same for every locale of the user and the thread.
extern "C" int lstrcmpW(const WCHAR* a, const WCHAR* b) noexcept;
extern "C" int lstrcmpiW(const WCHAR* a, const WCHAR* b) noexcept;
extern "C" int lstrlenW(const WCHAR* text) noexcept;
// For lists of names: without case, and with runs of digits compared as numbers of any length. -1, 0 or 1.
extern "C" int StrCmpLogicalW(const WCHAR* a, const WCHAR* b) noexcept;
// The next character of the narrow code page, which has one byte to each here; the terminator is not passed.
extern "C" char* CharNextA(const char* text) noexcept;

// The C runtime's code page of several bytes, and what a byte of a text in it is after one of `type`. There is none
// here, so the first gives 0 and every byte stands for itself.
inline constexpr int _MBC_SINGLE = 0;
inline constexpr int _MBC_TRAIL = 2;
extern "C" UINT GetACP() noexcept;
extern "C" int _getmbcp() noexcept;
extern "C" int _mbbtype(unsigned char byte, int type) noexcept;

// The C runtime's bounded wide printf with the Microsoft reading of %s, %c and I64: -1 when cut short, and then
// without a terminator.
extern "C" int _vsnwprintf(WCHAR* out, std::size_t size, const WCHAR* format, std::va_list arguments) noexcept;
extern "C" int _snwprintf(WCHAR* out, std::size_t size, const WCHAR* format, ...) noexcept;

// The platform's own print, with the same reading: never more than 1024 characters and a terminator.
extern "C" int wsprintfW(WCHAR* out, const WCHAR* format, ...) noexcept;

#endif

namespace platform {

// A character without its case, by no language's rules: 'i' and 'I' meet whoever the user is. One that has no capital
// of its own in 16 bits stays as it is.
#ifdef _WIN32
inline WCHAR UpperCase(WCHAR c) noexcept {
    return static_cast<WCHAR>(reinterpret_cast<ULONG_PTR>(CharUpperW(reinterpret_cast<WCHAR*>(ULONG_PTR{c}))));
}
#else
WCHAR UpperCase(WCHAR c) noexcept;
#endif

// UTF-8 and UTF-16; what cannot be converted becomes U+FFFD. May throw std::bad_alloc.
std::string Utf8(WStringView text);
WString Wide(std::string_view utf8);

}  // namespace platform
