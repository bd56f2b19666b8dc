// Dialogs, made out of templates. Natively they are made and never shown, and nobody can answer one.
#pragma once

#include "platform/base.h"
#include "platform/window.h"

#ifndef _WIN32

using INT_PTR = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using DLGPROC = INT_PTR(CALLBACK*)(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam);

struct DLGTEMPLATE;  // read as bytes: its fields are not all aligned

inline constexpr DWORD DS_ABSALIGN = 0x01;
inline constexpr DWORD DS_NOFAILCREATE = 0x10;
inline constexpr DWORD DS_SETFONT = 0x40;
inline constexpr DWORD DS_MODALFRAME = 0x80;
inline constexpr DWORD DS_CENTER = 0x0800;

inline constexpr int DWLP_MSGRESULT = 0;
inline constexpr int DWLP_DLGPROC = 8;
inline constexpr int DWLP_USER = 16;

inline constexpr const WCHAR* WC_DIALOG = u"#32770";

// Dialogs out of templates in the plain or in the extended form, such as a resource. A damaged one fails with
// ERROR_INVALID_DATA before anything is made. A template that is no resource has to be whole. The procedure may be
// null; it sees WM_SETFONT when the template has a font, and WM_INITDIALOG when all controls are there. A control that
// cannot be made is the dialog's end, unless the style has DS_NOFAILCREATE. Natively a menu of the template is not
// looked at, and a title that is a number n becomes the text "#n".
extern "C" HWND CreateDialogParamW(HINSTANCE module, const WCHAR* name, HWND parent, DLGPROC procedure,
                                   LPARAM parameter) noexcept;
extern "C" HWND CreateDialogIndirectParamW(HINSTANCE module, const DLGTEMPLATE* dialog, HWND parent, DLGPROC procedure,
                                           LPARAM parameter) noexcept;
// What EndDialog was given; 0 for a wrong parent and -1 for a dialog that cannot be made. Natively nobody can answer: a
// dialog whose procedure has not ended it by the end of WM_INITDIALOG is destroyed, and the call gives -1 with
// ERROR_CALL_NOT_IMPLEMENTED instead of waiting for ever.
extern "C" INT_PTR DialogBoxParamW(HINSTANCE module, const WCHAR* name, HWND parent, DLGPROC procedure,
                                   LPARAM parameter) noexcept;
extern "C" INT_PTR DialogBoxIndirectParamW(HINSTANCE module, const DLGTEMPLATE* dialog, HWND parent, DLGPROC procedure,
                                           LPARAM parameter) noexcept;

// Lets the dialog end with that result, once its procedure has returned; one that nobody waits for stays.
extern "C" BOOL EndDialog(HWND dialog, INT_PTR result) noexcept;
// Asks the dialog's procedure first, and gives what it left in DWLP_MSGRESULT when it says that it has dealt with it.
extern "C" LRESULT DefDlgProcW(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) noexcept;
// From dialog units to pixels.
extern "C" BOOL MapDialogRect(HWND dialog, RECT* rectangle) noexcept;

#endif
