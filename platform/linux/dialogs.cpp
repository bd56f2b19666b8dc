#include "platform/dialogs.h"

#include "errors.h"

namespace {

template <class T>
T NotHere(T result) noexcept {
    return platform::Fail(platform::ERROR_CALL_NOT_IMPLEMENTED, result);
}

}  // namespace

extern "C" HWND CreateDialogParamW(HINSTANCE, const WCHAR*, HWND, DLGPROC, LPARAM) noexcept {
    return NotHere<HWND>(nullptr);
}
extern "C" HWND CreateDialogIndirectParamW(HINSTANCE, const DLGTEMPLATE*, HWND, DLGPROC, LPARAM) noexcept {
    return NotHere<HWND>(nullptr);
}
extern "C" INT_PTR DialogBoxParamW(HINSTANCE, const WCHAR*, HWND, DLGPROC, LPARAM) noexcept {
    return NotHere<INT_PTR>(-1);
}
extern "C" INT_PTR DialogBoxIndirectParamW(HINSTANCE, const DLGTEMPLATE*, HWND, DLGPROC, LPARAM) noexcept {
    return NotHere<INT_PTR>(-1);
}

extern "C" HACCEL CreateAcceleratorTableW(ACCEL*, int) noexcept { return NotHere<HACCEL>(nullptr); }
extern "C" HBITMAP LoadBitmapW(HINSTANCE, const WCHAR*) noexcept { return NotHere<HBITMAP>(nullptr); }
extern "C" HCURSOR LoadCursorW(HINSTANCE, const WCHAR*) noexcept { return NotHere<HCURSOR>(nullptr); }
extern "C" HICON LoadIconW(HINSTANCE, const WCHAR*) noexcept { return NotHere<HICON>(nullptr); }
extern "C" HANDLE LoadImageW(HINSTANCE, const WCHAR*, UINT, int, int, UINT) noexcept {
    return NotHere<HANDLE>(nullptr);
}
extern "C" HIMAGELIST ImageList_LoadImageW(HINSTANCE, const WCHAR*, int, int, COLORREF, UINT, UINT) noexcept {
    return NotHere<HIMAGELIST>(nullptr);
}
