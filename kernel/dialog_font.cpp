#include "kernel/dialog_font.h"

#include "kernel/ui_fonts.h"
#include "platform/text.h"

namespace clipfio {

int32_t InitDialogFont(HWND dialog, HFONT font, uint32_t code_page) noexcept {
    constexpr uint32_t kWesternCodePage = 1252;
    if (code_page == kWesternCodePage || !IsWindow(dialog)) return 0;
    const auto given = reinterpret_cast<WPARAM>(font ? font : UiFont(kDialogUiFont));
    for (HWND child = GetWindow(dialog, GW_CHILD); child;) {
        // Asked before: a control may destroy itself over a message.
        const HWND next = GetWindow(child, GW_HWNDNEXT);
        SendMessageW(child, WM_SETFONT, given, TRUE);
        child = next;
    }
    return 1;
}

}  // namespace clipfio

int32_t KtDlgInitFont(HWND dialog, HFONT font) noexcept { return clipfio::InitDialogFont(dialog, font, GetACP()); }
