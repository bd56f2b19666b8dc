// Locales: their facts, and numbers written as they write them.
//
// A locale is named by its LCID. LOCALE_USER_DEFAULT, LOCALE_SYSTEM_DEFAULT and 0 are the user's locale; a language
// without a region stands for its usual one.
#pragma once

#include "platform/base.h"

#ifndef _WIN32

inline constexpr LCID LOCALE_USER_DEFAULT = 0x0400;
inline constexpr LCID LOCALE_SYSTEM_DEFAULT = 0x0800;
inline constexpr LCID LOCALE_INVARIANT = 0x007F;

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
// The language of menus and messages: that of the user's locale.
extern "C" LANGID GetUserDefaultUILanguage() noexcept;

// The thread's own locale, the user's until it is set. It changes no other call of this layer.
extern "C" LCID GetThreadLocale() noexcept;
extern "C" BOOL SetThreadLocale(LCID lcid) noexcept;

// A fact as text. Returns characters with the terminator; a size of 0 asks for that number. 0 with
// ERROR_INSUFFICIENT_BUFFER or ERROR_INVALID_PARAMETER.
extern "C" int GetLocaleInfoW(LCID lcid, DWORD type, WCHAR* out, int size) noexcept;

struct NUMBERFMTW {
    UINT NumDigits;    // behind the point
    UINT LeadingZero;  // 0: ".7", 1: "0.7"
    UINT Grouping;     // sizes as decimal digits, the last one repeated: 3, or 32 for a group of 3 and then of 2
    WCHAR* lpDecimalSep;
    WCHAR* lpThousandSep;
    UINT NegativeOrder;  // 0: (1), 1: -1, 2: - 1, 3: 1-, 4: 1 -
};

// Writes `value`, an optional '-' and digits with at most one '.', rounded and grouped as `format` says, or as the
// locale does when it is null. Returns characters with the terminator; a size of 0 asks for that number. 0 with
// ERROR_INSUFFICIENT_BUFFER or ERROR_INVALID_PARAMETER. With a format nothing is looked up: plain work on digits.
extern "C" int GetNumberFormatW(LCID lcid, DWORD flags, const WCHAR* value, const NUMBERFMTW* format, WCHAR* out,
                                int size) noexcept;

#endif
