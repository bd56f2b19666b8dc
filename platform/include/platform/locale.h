// Facts about the user's locale.
#pragma once

#include "platform/base.h"

#ifndef _WIN32

inline constexpr LCID LOCALE_USER_DEFAULT = 0x0400;
inline constexpr DWORD LOCALE_ILANGUAGE = 0x01;
inline constexpr DWORD LOCALE_SLANGUAGE = 0x02;
inline constexpr DWORD LOCALE_SABBREVLANGNAME = 0x03;
inline constexpr DWORD LOCALE_ICOUNTRY = 0x05;
inline constexpr DWORD LOCALE_SCOUNTRY = 0x06;
inline constexpr DWORD LOCALE_SLIST = 0x0C;
inline constexpr DWORD LOCALE_IMEASURE = 0x0D;
inline constexpr DWORD LOCALE_SDECIMAL = 0x0E;
inline constexpr DWORD LOCALE_STHOUSAND = 0x0F;
inline constexpr DWORD LOCALE_SGROUPING = 0x10;
inline constexpr DWORD LOCALE_IDIGITS = 0x11;
inline constexpr DWORD LOCALE_ILZERO = 0x12;
inline constexpr DWORD LOCALE_STIME = 0x1E;
inline constexpr DWORD LOCALE_SNEGATIVESIGN = 0x51;
inline constexpr DWORD LOCALE_SENGLANGUAGE = 0x1001;
inline constexpr DWORD LOCALE_SENGCOUNTRY = 0x1002;

// The user's locale: KT_LCID, else LC_ALL, else LANG, else 0x0409.
extern "C" LCID GetUserDefaultLCID() noexcept;
extern "C" LCID GetSystemDefaultLCID() noexcept;
// A fact as text. Returns characters with the terminator; a size of 0 asks for that number. 0 with
// ERROR_INSUFFICIENT_BUFFER or ERROR_INVALID_PARAMETER.
extern "C" int GetLocaleInfoW(LCID lcid, DWORD type, WCHAR* out, int size) noexcept;

#endif
