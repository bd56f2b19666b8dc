// The font of a dialog's controls. For the thread of the dialog.
#pragma once

#include <cstdint>

#include "kernel/lang.h"
#include "platform/gdi.h"
#include "platform/window.h"

// Gives `font` to each control and has it painted again; null stands for the dialog font of the user interface, and for
// that of the system where there is none. The caller keeps the font until the dialog has gone. 1; nothing and 0 where
// the system's code page is 1252, whose letters every font has, and where `dialog` is no window.
KT_API int32_t KtDlgInitFont(HWND dialog, HFONT font) noexcept;

namespace clipfio {

int32_t InitDialogFont(HWND dialog, HFONT font, uint32_t code_page) noexcept;

}  // namespace clipfio
