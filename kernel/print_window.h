// The printer (print.h) into windows. For the thread of the windows.
//
// A format without '$' and '%' is set as it is, without regard to arguments. Texts are cut to 2047 characters. The
// result is the length of the text, 0 when it could not be set or the format is null. The forms without a format print
// a text as "%s" does.
#pragma once

#include <cstdint>

#include "kernel/lang.h"
#include "platform/base.h"
#include "platform/window.h"

KT_API int32_t KtSetWindowTextF(HWND window, const WCHAR* format, ...) noexcept;
KT_API int32_t KtSetWindowTextNoF(HWND window, const WCHAR* text) noexcept;
KT_API int32_t KtSetDlgItemTextF(HWND dialog, int32_t item, const WCHAR* format, ...) noexcept;
KT_API int32_t KtSetDlgItemTextNoF(HWND dialog, int32_t item, const WCHAR* text) noexcept;
// Leaves a control alone that has that text already, if it is below 8192 characters, so that it is not painted again.
KT_API int32_t KtSetDlgItemTextNoFlashF(HWND dialog, int32_t item, const WCHAR* format, ...) noexcept;
KT_API int32_t KtSetDlgItemTextNoFlashNoF(HWND dialog, int32_t item, const WCHAR* text) noexcept;
// The format is the string `id` of the language.
KT_API int32_t KtSetWindowTextId(HKTLANG handle, HWND window, uint32_t id, ...) noexcept;
KT_API int32_t KtSetDlgItemTextId(HKTLANG handle, HWND dialog, int32_t item, uint32_t id, ...) noexcept;

// Adds a line to an edit control with several lines, at its caret: behind what was added last, unless the user has
// moved it. A '~' in front of the format leaves the line open. A null format empties the control. The length of the
// text without its line end.
KT_API uint32_t KtMEditPrintF(HWND edit, const WCHAR* format, ...) noexcept;
