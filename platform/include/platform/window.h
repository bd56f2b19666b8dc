// Windows: what carries text and messages.
//
// Natively they are never shown. A window is for the thread that made it; its messages are calls of its procedure, at
// once and on the caller's thread. A wrong or destroyed handle is an error and never a crash.
#pragma once

#include "platform/base.h"
#include "platform/menu.h"

#ifndef _WIN32

using LRESULT = LONG_PTR;
using ATOM = WORD;
using HBRUSH = struct HBRUSH__*;
using WNDPROC = LRESULT (*)(HWND, UINT, WPARAM, LPARAM);

inline constexpr UINT WM_CREATE = 0x0001;
inline constexpr UINT WM_DESTROY = 0x0002;
inline constexpr UINT WM_SETTEXT = 0x000C;
inline constexpr UINT WM_GETTEXT = 0x000D;
inline constexpr UINT WM_GETTEXTLENGTH = 0x000E;
inline constexpr UINT WM_SETFONT = 0x0030;
inline constexpr UINT WM_GETFONT = 0x0031;
inline constexpr UINT WM_NCCREATE = 0x0081;
inline constexpr UINT WM_NCDESTROY = 0x0082;
inline constexpr UINT WM_INITDIALOG = 0x0110;
inline constexpr UINT EM_GETSEL = 0x00B0;
inline constexpr UINT EM_SETSEL = 0x00B1;
inline constexpr UINT EM_REPLACESEL = 0x00C2;

inline constexpr DWORD WS_OVERLAPPED = 0;
inline constexpr DWORD WS_POPUP = 0x80000000;
inline constexpr DWORD WS_CHILD = 0x40000000;
inline constexpr DWORD WS_VISIBLE = 0x10000000;
inline constexpr DWORD WS_BORDER = 0x00800000;
inline constexpr DWORD WS_DLGFRAME = 0x00400000;
inline constexpr DWORD WS_CAPTION = WS_BORDER | WS_DLGFRAME;
inline constexpr DWORD WS_DISABLED = 0x08000000;
inline constexpr DWORD WS_TABSTOP = 0x00010000;
inline constexpr DWORD WS_THICKFRAME = 0x00040000;
inline constexpr DWORD WS_EX_DLGMODALFRAME = 0x00000001;
inline constexpr DWORD WS_EX_NOPARENTNOTIFY = 0x00000004;
inline constexpr DWORD WS_EX_CLIENTEDGE = 0x00000200;
inline constexpr DWORD WS_EX_STATICEDGE = 0x00020000;
inline constexpr int CW_USEDEFAULT = static_cast<int>(0x80000000u);
inline constexpr DWORD ES_MULTILINE = 0x0004;
inline constexpr DWORD ES_AUTOVSCROLL = 0x0040;

inline constexpr UINT CS_GLOBALCLASS = 0x4000;  // as all are here

inline constexpr UINT GW_HWNDNEXT = 2;
inline constexpr UINT GW_CHILD = 5;

inline constexpr int GWLP_WNDPROC = -4;
inline constexpr int GWLP_ID = -12;
inline constexpr int GWLP_USERDATA = -21;
inline constexpr int GWL_STYLE = -16;

inline constexpr DWORD ERROR_INVALID_WINDOW_HANDLE = 1400;
inline constexpr DWORD ERROR_CANNOT_FIND_WND_CLASS = 1407;
inline constexpr DWORD ERROR_CLASS_ALREADY_EXISTS = 1410;
inline constexpr DWORD ERROR_CLASS_DOES_NOT_EXIST = 1411;
inline constexpr DWORD ERROR_INVALID_INDEX = 1413;
inline constexpr DWORD ERROR_CONTROL_ID_NOT_FOUND = 1421;

// Only lpfnWndProc, hInstance and lpszClassName are looked at.
struct WNDCLASSEXW {
    UINT cbSize;
    UINT style;
    WNDPROC lpfnWndProc;
    int cbClsExtra;
    int cbWndExtra;
    HINSTANCE hInstance;
    HICON hIcon;
    HCURSOR hCursor;
    HBRUSH hbrBackground;
    const WCHAR* lpszMenuName;
    const WCHAR* lpszClassName;
    HICON hIconSm;
};

struct RECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};

struct CREATESTRUCTW {
    void* lpCreateParams;
    HINSTANCE hInstance;
    HMENU hMenu;
    HWND hwndParent;
    int cy;
    int cx;
    int y;
    int x;
    LONG style;
    const WCHAR* lpszName;
    const WCHAR* lpszClass;
    DWORD dwExStyle;
};

// Classes are the process's; names of up to 63 characters, the same in any case, or the atom that registering gave. The
// system's own and those of the common controls are there; but for EDIT they keep their text and font and no more. 0 on
// failure.
extern "C" ATOM RegisterClassExW(const WNDCLASSEXW* window_class) noexcept;
extern "C" BOOL UnregisterClassW(const WCHAR* name, HINSTANCE instance) noexcept;

// In pixels, a child from its parent's inner corner, everything else on the screen. CW_USEDEFAULT is a choice for an
// overlapped window and 0 for others; a negative size is none. `menu` is the id of a child. The procedure may refuse by
// WM_NCCREATE (FALSE) or WM_CREATE (-1).
extern "C" HWND CreateWindowExW(DWORD ex_style, const WCHAR* class_name, const WCHAR* text, DWORD style, int x, int y,
                                int width, int height, HWND parent, HMENU menu, HINSTANCE instance,
                                void* parameter) noexcept;
// Destroys the children too.
extern "C" BOOL DestroyWindow(HWND window) noexcept;
extern "C" BOOL IsWindow(HWND window) noexcept;
extern "C" HWND GetParent(HWND window) noexcept;
// The next sibling, or the first child. Null when there is none.
extern "C" HWND GetWindow(HWND window, UINT relation) noexcept;
extern "C" HWND GetDlgItem(HWND parent, int id) noexcept;
// The screen: 1024 by 768 pixels. It can be a parent, and neither has text nor lists its windows.
extern "C" HWND GetDesktopWindow() noexcept;
// The whole window on the screen.
extern "C" BOOL GetWindowRect(HWND window, RECT* rectangle) noexcept;
// From the inner part of a window of these styles to the whole of it.
extern "C" BOOL AdjustWindowRectEx(RECT* rectangle, DWORD style, BOOL has_menu, DWORD ex_style) noexcept;

extern "C" LRESULT SendMessageW(HWND window, UINT message, WPARAM wparam, LPARAM lparam) noexcept;
// Keeps the text of the window, and the font of a control.
extern "C" LRESULT DefWindowProcW(HWND window, UINT message, WPARAM wparam, LPARAM lparam) noexcept;
extern "C" LONG_PTR GetWindowLongPtrW(HWND window, int index) noexcept;
extern "C" LONG_PTR SetWindowLongPtrW(HWND window, int index, LONG_PTR value) noexcept;

// By messages to the window. Null sets the empty text.
extern "C" BOOL SetWindowTextW(HWND window, const WCHAR* text) noexcept;
extern "C" int GetWindowTextW(HWND window, WCHAR* out, int size) noexcept;
extern "C" int GetWindowTextLengthW(HWND window) noexcept;

#endif
