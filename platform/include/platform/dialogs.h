// Dialogs and the other objects of the user interface that are made out of resources, menus apart.
//
// Elsewhere than on Windows there are no such objects yet: each call fails with ERROR_CALL_NOT_IMPLEMENTED, by the
// result that Win32 has for a failure.
#pragma once

#include "platform/base.h"
#include "platform/window.h"

#ifdef _WIN32

#include <commctrl.h>

#else

using INT_PTR = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using HACCEL = struct HACCEL__*;
using HBITMAP = struct HBITMAP__*;
using HIMAGELIST = struct HIMAGELIST__*;
using COLORREF = DWORD;
using DLGPROC = INT_PTR(CALLBACK*)(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam);

struct ACCEL {
    BYTE fVirt;
    WORD key;
    WORD cmd;
};
struct DLGTEMPLATE;  // read as bytes: its fields are not all aligned

inline constexpr DWORD DS_SETFONT = 0x40;

extern "C" HWND CreateDialogParamW(HINSTANCE module, const WCHAR* name, HWND parent, DLGPROC procedure,
                                   LPARAM parameter) noexcept;
extern "C" HWND CreateDialogIndirectParamW(HINSTANCE module, const DLGTEMPLATE* dialog, HWND parent, DLGPROC procedure,
                                           LPARAM parameter) noexcept;
extern "C" INT_PTR DialogBoxParamW(HINSTANCE module, const WCHAR* name, HWND parent, DLGPROC procedure,
                                   LPARAM parameter) noexcept;  // -1 on failure
extern "C" INT_PTR DialogBoxIndirectParamW(HINSTANCE module, const DLGTEMPLATE* dialog, HWND parent, DLGPROC procedure,
                                           LPARAM parameter) noexcept;  // -1 on failure

extern "C" HACCEL CreateAcceleratorTableW(ACCEL* entries, int count) noexcept;
extern "C" HBITMAP LoadBitmapW(HINSTANCE module, const WCHAR* name) noexcept;
extern "C" HCURSOR LoadCursorW(HINSTANCE module, const WCHAR* name) noexcept;
extern "C" HICON LoadIconW(HINSTANCE module, const WCHAR* name) noexcept;
extern "C" HANDLE LoadImageW(HINSTANCE module, const WCHAR* name, UINT type, int width, int height,
                             UINT flags) noexcept;
extern "C" HIMAGELIST ImageList_LoadImageW(HINSTANCE module, const WCHAR* name, int width, int grow_by, COLORREF mask,
                                           UINT type, UINT flags) noexcept;

#endif
