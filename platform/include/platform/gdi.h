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

// There is no screen here yet: GetDC fails with ERROR_CALL_NOT_IMPLEMENTED, and with it all that needs one.
extern "C" HDC GetDC(HWND window) noexcept;
extern "C" int ReleaseDC(HWND window, HDC context) noexcept;
extern "C" int GetDeviceCaps(HDC context, int index) noexcept;
extern "C" HFONT CreateFontW(int height, int width, int escapement, int orientation, int weight, DWORD italic,
                             DWORD underline, DWORD strike_out, DWORD charset, DWORD out_precision,
                             DWORD clip_precision, DWORD quality, DWORD pitch, const WCHAR* face) noexcept;
extern "C" HGDIOBJ SelectObject(HDC context, HGDIOBJ object) noexcept;
extern "C" BOOL DeleteObject(HGDIOBJ object) noexcept;
extern "C" BOOL GetTextExtentPoint32W(HDC context, const WCHAR* text, int length, SIZE* size) noexcept;
extern "C" BOOL GetTextMetricsW(HDC context, TEXTMETRICW* metrics) noexcept;

// a * b / c, rounded to the nearest; -1 for a division by 0 and for a result beyond 32 bits.
extern "C" int MulDiv(int a, int b, int c) noexcept;

#endif
