// Bitmaps, icons, cursors and lists of images: made out of resources and files, and read back.
//
// A module of null stands for the system, whose icons and cursors have the numbers from 32512 on. What a call makes is
// the caller's to destroy, but for what is shared: that is made once for a module, a resource and a size, and stays
// until the module goes. Any thread.
//
// Natively every bitmap has 32 bits a pixel, whatever it was made of, with the top row first; nothing is drawn into one
// yet. No side is longer than 32767 pixels, and none has more than 64 Mi pixels. All the system's own pictures are one
// arrow.
#pragma once

#include "platform/base.h"
#include "platform/gdi.h"
#include "platform/media.h"
#include "platform/resources.h"
#include "platform/window.h"

#ifdef _WIN32

#include <commctrl.h>

#else

using HBITMAP = struct HBITMAP__*;
using HIMAGELIST = struct HIMAGELIST__*;
using COLORREF = DWORD;  // 0x00BBGGRR

inline constexpr UINT IMAGE_BITMAP = 0;
inline constexpr UINT IMAGE_ICON = 1;
inline constexpr UINT IMAGE_CURSOR = 2;

inline constexpr UINT LR_MONOCHROME = 0x1;
inline constexpr UINT LR_LOADFROMFILE = 0x10;
inline constexpr UINT LR_LOADTRANSPARENT = 0x20;
inline constexpr UINT LR_DEFAULTSIZE = 0x40;
inline constexpr UINT LR_LOADMAP3DCOLORS = 0x1000;
inline constexpr UINT LR_CREATEDIBSECTION = 0x2000;
inline constexpr UINT LR_SHARED = 0x8000;

inline constexpr COLORREF CLR_NONE = 0xFFFFFFFF;
inline constexpr COLORREF CLR_DEFAULT = 0xFF000000;
inline constexpr UINT DIB_RGB_COLORS = 0;
inline constexpr UINT ILD_TRANSPARENT = 1;

#define IDC_ARROW MAKEINTRESOURCEW(32512)
#define IDI_APPLICATION MAKEINTRESOURCEW(32512)

struct BITMAP {
    LONG bmType;
    LONG bmWidth;
    LONG bmHeight;
    LONG bmWidthBytes;
    WORD bmPlanes;
    WORD bmBitsPixel;
    void* bmBits;  // of one that was made with LR_CREATEDIBSECTION, else null
};

struct RGBQUAD {
    BYTE rgbBlue;
    BYTE rgbGreen;
    BYTE rgbRed;
    BYTE rgbReserved;
};

struct BITMAPINFO {
    BITMAPINFOHEADER bmiHeader;
    RGBQUAD bmiColors[1];
};

struct ICONINFO {
    BOOL fIcon;  // else a cursor, which has a hot spot of its own
    DWORD xHotspot;
    DWORD yHotspot;
    HBITMAP hbmMask;   // white where what is below shows
    HBITMAP hbmColor;  // null for black and white: the mask then has a second picture below the first
};

extern "C" HBITMAP LoadBitmapW(HINSTANCE module, const WCHAR* name) noexcept;
extern "C" HCURSOR LoadCursorW(HINSTANCE module, const WCHAR* name) noexcept;  // shared
extern "C" HICON LoadIconW(HINSTANCE module, const WCHAR* name) noexcept;      // shared
// A size of 0 is that of the picture, or with LR_DEFAULTSIZE 32 for icons and cursors. Of several pictures of an icon
// the one is taken that comes nearest. With LR_LOADFROMFILE the name is that of a file. Bitmaps with a palette can be
// given the system's colors: LR_LOADMAP3DCOLORS for three grays, LR_LOADTRANSPARENT for the color of the first pixel.
extern "C" HANDLE LoadImageW(HINSTANCE module, const WCHAR* name, UINT type, int width, int height,
                             UINT flags) noexcept;

// `size` bytes at most of a BITMAP; the bytes written, or without `out` those of a BITMAP. Of bitmaps alone.
extern "C" int GetObjectW(HGDIOBJ object, int size, void* out) noexcept;
// Rows of a bitmap, of which the lowest is number 0, as 32-bit pixels: the only form that is given. Without `bits` the
// header is filled in. The rows copied; a header of another width or depth fails with ERROR_INVALID_PARAMETER.
extern "C" int GetDIBits(HDC context, HBITMAP bitmap, UINT first, UINT count, void* bits, BITMAPINFO* info,
                         UINT usage) noexcept;

// Which picture of a directory, as the resource of a group has it, comes nearest to a size; 0 for none.
extern "C" int LookupIconIdFromDirectoryEx(BYTE* directory, BOOL icon, int width, int height, UINT flags) noexcept;
// Out of the bytes of one picture, plain or PNG; those of a cursor begin with its hot spot.
extern "C" HICON CreateIconFromResourceEx(BYTE* bytes, DWORD size, BOOL icon, DWORD version, int width, int height,
                                          UINT flags) noexcept;
// The bitmaps are copies and the caller's.
extern "C" BOOL GetIconInfo(HICON icon, ICONINFO* info) noexcept;
extern "C" BOOL DestroyIcon(HICON icon) noexcept;  // leaves a shared one as it is
extern "C" BOOL DestroyCursor(HCURSOR cursor) noexcept;

// A picture cut into images of that width; 0 makes them square. Pixels of the color `mask` let through what is below:
// CLR_DEFAULT takes the first pixel's color, CLR_NONE none.
extern "C" HIMAGELIST ImageList_LoadImageW(HINSTANCE module, const WCHAR* name, int width, int grow_by, COLORREF mask,
                                           UINT type, UINT flags) noexcept;
extern "C" int ImageList_GetImageCount(HIMAGELIST list) noexcept;
extern "C" BOOL ImageList_GetIconSize(HIMAGELIST list, int* width, int* height) noexcept;
extern "C" HICON ImageList_GetIcon(HIMAGELIST list, int index, UINT flags) noexcept;
extern "C" BOOL ImageList_Destroy(HIMAGELIST list) noexcept;

#endif
