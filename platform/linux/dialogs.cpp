// Dialogs out of templates. Nobody can answer them: there is no input here.
#include "platform/dialogs.h"

#include <iterator>

#include "dialog_record.h"
#include "dialog_template.h"
#include "fault_point.h"
#include "font_record.h"
#include "platform/resources.h"
#include "window_use.h"

namespace {

using namespace platform;

// In the font of the system for null.
bool MeasureUnits(HFONT font, SIZE& units) noexcept {
    constexpr WStringView kLetters = u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    constexpr auto kCount = static_cast<int>(kLetters.size());
    const HDC screen = GetDC(nullptr);
    if (!screen) return false;
    SIZE extent{};
    TEXTMETRICW metrics{};
    if (font) SelectObject(screen, font);
    const bool measured =
        GetTextExtentPoint32W(screen, kLetters.data(), kCount, &extent) && GetTextMetricsW(screen, &metrics);
    ReleaseDC(nullptr, screen);
    units = {(extent.cx + kCount / 2) / kCount, metrics.tmHeight + metrics.tmExternalLeading};
    return measured;
}

HFONT MakeFont(const DialogTemplate& dialog) noexcept {
    WCHAR face[LF_FACESIZE] = {};
    dialog.face.copy(face, std::size(face) - 1);
    const int height = -MulDiv(dialog.points, kScreenDpi, 72);
    return CreateFontW(height, 0, 0, 0, dialog.weight, dialog.italic ? 1 : 0, 0, 0, dialog.charset, 0, 0, 0, 0, face);
}

// On the record's own font: freed with it.
Dialog* MakeRecord(const DialogTemplate& source, DLGPROC procedure) noexcept {
    auto* const dialog = static_cast<Dialog*>(FaultHere() ? nullptr : std::calloc(1, sizeof(Dialog)));
    if (!dialog) return Fail<Dialog*>(ERROR_NOT_ENOUGH_MEMORY, nullptr);
    dialog->procedure = procedure;
    if (source.has_font) dialog->font = MakeFont(source);
    if ((source.has_font && !dialog->font) || !MeasureUnits(dialog->font, dialog->units)) {
        FreeDialog(dialog);
        return nullptr;
    }
    return dialog;
}

int Across(const SIZE& units, int x) noexcept { return MulDiv(x, units.cx, 4); }
int Down(const SIZE& units, int y) noexcept { return MulDiv(y, units.cy, 8); }

// Where the inner part of a window begins on the screen.
void AddInnerCorner(HWND handle, int& x, int& y) noexcept {
    RECT inner{};
    const WindowUse window(handle);
    if (!window || !GetWindowRect(handle, &inner)) return;
    RECT frame{};
    AdjustWindowRectEx(&frame, window->style, FALSE, window->ex_style);
    x += inner.left - frame.left;
    y += inner.top - frame.top;
}

// The dialog without its controls.
HWND MakeWindow(HINSTANCE module, const DialogTemplate& source, HWND owner, const SIZE& units) noexcept {
    DWORD style = source.style;
    DWORD ex_style = source.ex_style;
    if ((style & DS_MODALFRAME) != 0) ex_style |= WS_EX_DLGMODALFRAME;
    if ((style & (WS_CHILD | WS_POPUP)) == 0) style |= WS_CAPTION;
    RECT outline{0, 0, Across(units, source.width), Down(units, source.height)};
    AdjustWindowRectEx(&outline, style, FALSE, ex_style);
    const int width = outline.right - outline.left;
    const int height = outline.bottom - outline.top;
    int x = Across(units, source.x);
    int y = Down(units, source.y);
    if ((style & WS_CHILD) == 0) {
        if ((style & DS_CENTER) != 0) {
            x = (kScreenWidth - width) / 2;
            y = (kScreenHeight - height) / 2;
        } else if ((style & DS_ABSALIGN) == 0 && owner && owner != kDesktopWindow) {
            AddInnerCorner(owner, x, y);
        }
    }
    const WCHAR* const class_name = source.class_name.IsEmpty() ? WC_DIALOG : source.class_name.Value();
    return CreateWindowExW(ex_style, class_name, source.title.c_str(), style, x, y, width, height, owner, nullptr,
                           module, nullptr);
}

// False when one cannot be made. The dialog may be destroyed meanwhile.
bool MakeControls(HINSTANCE module, const DialogTemplate& source, HWND handle, const Dialog& dialog) noexcept {
    const SIZE units = dialog.units;
    const HFONT font = dialog.font;
    for (const TemplateItem& item : source.items) {
        const HWND control = CreateWindowExW(
            item.ex_style | WS_EX_NOPARENTNOTIFY, item.class_name.Value(), item.title.c_str(),
            (item.style & ~WS_POPUP) | WS_CHILD, Across(units, item.x), Down(units, item.y), Across(units, item.width),
            Down(units, item.height), handle, reinterpret_cast<HMENU>(std::uintptr_t{item.id}), module,
            const_cast<void*>(item.creation_data));
        if (!IsWindow(handle)) return false;
        if (!control && (source.style & DS_NOFAILCREATE) == 0) return false;
        if (control && font) SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    }
    return true;
}

HWND FirstStop(const Window& dialog) noexcept {
    for (HWND each = dialog.first_child; each;) {
        const WindowUse control(each);
        if (!control) break;
        constexpr DWORD kLookedAt = WS_TABSTOP | WS_VISIBLE | WS_DISABLED;
        if ((control->style & kLookedAt) == (WS_TABSTOP | WS_VISIBLE)) return each;
        each = control->next_sibling;
    }
    return nullptr;
}

HWND Make(HINSTANCE module, const DialogTemplate& source, HWND owner, DLGPROC procedure, LPARAM parameter) noexcept {
    Dialog* const dialog = MakeRecord(source, procedure);
    if (!dialog) return nullptr;
    const HWND handle = MakeWindow(module, source, owner, dialog->units);
    const HandleUse held(handle, HandleType::kWindow);
    if (!held) {
        FreeDialog(dialog);
        return nullptr;
    }
    Window& window = *held->window;
    window.dialog = dialog;
    if (dialog->font) SendMessageW(handle, WM_SETFONT, reinterpret_cast<WPARAM>(dialog->font), FALSE);
    if (!MakeControls(module, source, handle, *dialog)) {
        const DWORD error = GetLastError();
        if (IsWindow(handle)) DestroyWindow(handle);
        return Fail<HWND>(error, nullptr);
    }
    if (procedure) {
        SendMessageW(handle, WM_INITDIALOG, reinterpret_cast<WPARAM>(FirstStop(window)), parameter);
    }
    return IsWindow(handle) ? handle : nullptr;
}

const DLGTEMPLATE* FindTemplate(HINSTANCE module, const WCHAR* name) noexcept {
    const HRSRC found = FindResourceW(module, name, RT_DIALOG);
    return found ? static_cast<const DLGTEMPLATE*>(LoadResource(module, found)) : nullptr;
}

// Whether the procedure's result is the message's own, not that of DWLP_MSGRESULT.
bool AnswersItself(UINT message) noexcept {
    constexpr UINT kVkeyToItem = 0x2E, kCharToItem = 0x2F, kQueryDragIcon = 0x37, kCompareItem = 0x39;
    constexpr UINT kFirstColor = 0x132, kLastColor = 0x138;
    return message == WM_INITDIALOG || message == kVkeyToItem || message == kCharToItem || message == kQueryDragIcon ||
           message == kCompareItem || (message >= kFirstColor && message <= kLastColor);
}

}  // namespace

namespace platform {

void FreeDialog(Dialog* dialog) noexcept {
    if (!dialog) return;
    if (dialog->font) DeleteObject(dialog->font);
    std::free(dialog);
}

}  // namespace platform

extern "C" LRESULT DefDlgProcW(HWND handle, UINT message, WPARAM wparam, LPARAM lparam) noexcept {
    const WindowUse window(handle);
    if (!window) return 0;
    Dialog* const dialog = window->dialog;
    if (dialog && dialog->procedure) {
        dialog->message_result = 0;
        if (const INT_PTR handled = dialog->procedure(handle, message, wparam, lparam)) {
            return AnswersItself(message) ? handled : dialog->message_result;
        }
    }
    return ControlProcedure(handle, *window, message, wparam, lparam);
}

extern "C" HWND CreateDialogIndirectParamW(HINSTANCE module, const DLGTEMPLATE* dialog, HWND parent, DLGPROC procedure,
                                           LPARAM parameter) noexcept {
    if (!dialog) return Fail<HWND>(ERROR_INVALID_PARAMETER, nullptr);
    if (FaultHere()) return Fail<HWND>(ERROR_NOT_ENOUGH_MEMORY, nullptr);
    return Guarded(HWND{}, [&] {
        DialogTemplate source;
        if (!ReadDialogTemplate(dialog, source)) return Fail<HWND>(platform::ERROR_INVALID_DATA, nullptr);
        return Make(module, source, parent, procedure, parameter);
    });
}

extern "C" HWND CreateDialogParamW(HINSTANCE module, const WCHAR* name, HWND parent, DLGPROC procedure,
                                   LPARAM parameter) noexcept {
    const DLGTEMPLATE* const dialog = FindTemplate(module, name);
    return dialog ? CreateDialogIndirectParamW(module, dialog, parent, procedure, parameter) : nullptr;
}

extern "C" BOOL EndDialog(HWND handle, INT_PTR result) noexcept {
    const WindowUse window(handle);
    if (!window) return FALSE;
    if (!window->dialog) return Fail(platform::ERROR_WINDOW_NOT_DIALOG);
    window->dialog->ended = true;
    window->dialog->result = result;
    return TRUE;
}

extern "C" BOOL MapDialogRect(HWND handle, RECT* rectangle) noexcept {
    const WindowUse window(handle);
    if (!window) return FALSE;
    if (!window->dialog || !rectangle) return Fail(ERROR_INVALID_PARAMETER);
    const SIZE units = window->dialog->units;
    *rectangle = {Across(units, rectangle->left), Down(units, rectangle->top), Across(units, rectangle->right),
                  Down(units, rectangle->bottom)};
    return TRUE;
}

extern "C" INT_PTR DialogBoxIndirectParamW(HINSTANCE module, const DLGTEMPLATE* dialog, HWND parent, DLGPROC procedure,
                                           LPARAM parameter) noexcept {
    if (parent && !IsWindow(parent)) return Fail(ERROR_INVALID_WINDOW_HANDLE, INT_PTR{0});
    const HWND handle = CreateDialogIndirectParamW(module, dialog, parent, procedure, parameter);
    if (!handle) return -1;
    const WindowUse window(handle);
    if (!window) return -1;
    const bool ended = window->dialog->ended;
    const INT_PTR result = window->dialog->result;
    DestroyWindow(handle);
    return ended ? result : Fail<INT_PTR>(platform::ERROR_CALL_NOT_IMPLEMENTED, -1);
}

extern "C" INT_PTR DialogBoxParamW(HINSTANCE module, const WCHAR* name, HWND parent, DLGPROC procedure,
                                   LPARAM parameter) noexcept {
    const DLGTEMPLATE* const dialog = FindTemplate(module, name);
    return dialog ? DialogBoxIndirectParamW(module, dialog, parent, procedure, parameter) : -1;
}
