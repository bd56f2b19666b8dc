// Fonts and the measures of text on the screen.
#pragma once

#include "platform/base.h"

#ifndef _WIN32

using HDC = struct HDC__*;
using HGDIOBJ = void*;
using HFONT = struct HFONT__*;

struct SIZE {
    LONG cx;
    LONG cy;
};

struct TEXTMETRICW {
    LONG tmHeight;
    LONG tmAscent;
    LONG tmDescent;
    LONG tmInternalLeading;
    LONG tmExternalLeading;
    LONG tmAveCharWidth;
    LONG tmMaxCharWidth;
    LONG tmWeight;
    LONG tmOverhang;
    LONG tmDigitizedAspectX;
    LONG tmDigitizedAspectY;
    WCHAR tmFirstChar;
    WCHAR tmLastChar;
    WCHAR tmDefaultChar;
    WCHAR tmBreakChar;
    BYTE tmItalic;
    BYTE tmUnderlined;
    BYTE tmStruckOut;
    BYTE tmPitchAndFamily;
    BYTE tmCharSet;
};

inline constexpr int LOGPIXELSX = 88;
inline constexpr int LOGPIXELSY = 90;

inline constexpr int LF_FACESIZE = 32;
inline constexpr int FW_NORMAL = 400;
inline constexpr int FW_BOLD = 700;
inline constexpr DWORD DEFAULT_CHARSET = 1;

// The screen has 96 dots per inch, and text is measured on it, never drawn. A face that is not installed is replaced by
// the one that fontconfig holds for nearest. A context serves one thread at a time.
extern "C" HDC GetDC(HWND window) noexcept;
extern "C" int ReleaseDC(HWND window, HDC context) noexcept;
extern "C" int GetDeviceCaps(HDC context, int index) noexcept;
// Height, weight, italic, charset and face (up to 31 characters) are looked at. A negative height is that of the em in
// pixels, a positive one that of the cell, 0 a default.
extern "C" HFONT CreateFontW(int height, int width, int escapement, int orientation, int weight, DWORD italic,
                             DWORD underline, DWORD strike_out, DWORD charset, DWORD out_precision,
                             DWORD clip_precision, DWORD quality, DWORD pitch, const WCHAR* face) noexcept;
// Only a font can be selected; one that is selected somewhere cannot be deleted. Bitmaps are deleted here too.
extern "C" HGDIOBJ SelectObject(HDC context, HGDIOBJ object) noexcept;
extern "C" BOOL DeleteObject(HGDIOBJ object) noexcept;
extern "C" BOOL GetTextExtentPoint32W(HDC context, const WCHAR* text, int length, SIZE* size) noexcept;
extern "C" BOOL GetTextMetricsW(HDC context, TEXTMETRICW* metrics) noexcept;

// a * b / c, rounded to the nearest; -1 for a division by 0 and for a result beyond 32 bits.
extern "C" int MulDiv(int a, int b, int c) noexcept;

#endif
