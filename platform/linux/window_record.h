// What stands behind the handle of a window, and the classes that are always there.
#pragma once

#include <cstdlib>

#include "platform/gdi.h"
#include "platform/window.h"

namespace platform {

struct Dialog;

// Made by one copy of the layer and perhaps freed by another: plain data from the C library's heap.
struct Window {
    WNDPROC procedure;  // null: that of its built-in class
    std::uint32_t builtin;
    bool destroying;
    HWND parent;
    HWND first_child;
    HWND next_sibling;
    DWORD style;
    DWORD ex_style;
    HINSTANCE instance;
    int x;  // from the parent's inner corner, or on the screen
    int y;
    int width;
    int height;
    LONG_PTR id;
    HFONT font;  // of a control; null: that of the system
    LONG_PTR user_data;
    Dialog* dialog;  // null: it is none
    WCHAR* text;     // null: empty; else terminated
    std::size_t length;
    std::size_t selection_start;  // of an edit control, in characters; both places lie in the text
    std::size_t selection_end;
};

// Stands for the screen; no handle of the table has this value.
inline const auto kDesktopWindow = reinterpret_cast<HWND>(std::uintptr_t{0x10010});
inline constexpr int kScreenWidth = 1024;
inline constexpr int kScreenHeight = 768;

void FreeWindow(Window* window) noexcept;
void FreeDialog(Dialog* dialog) noexcept;  // with its font

// The procedures of the built-in classes, by their numbers in kBuiltinClasses.
inline constexpr WStringView kBuiltinClasses[] = {
    // By their atoms from kFirstBuiltinAtom.
    u"BUTTON",
    u"EDIT",
    u"STATIC",
    u"LISTBOX",
    u"SCROLLBAR",
    u"COMBOBOX",
    u"#32770",
    // Of the common controls.
    u"COMBOBOXEX32",
    u"MSCTLS_HOTKEY32",
    u"MSCTLS_PROGRESS32",
    u"MSCTLS_STATUSBAR32",
    u"MSCTLS_TRACKBAR32",
    u"MSCTLS_UPDOWN32",
    u"REBARWINDOW32",
    u"SYSANIMATE32",
    u"SYSDATETIMEPICK32",
    u"SYSHEADER32",
    u"SYSIPADDRESS32",
    u"SYSLINK",
    u"SYSLISTVIEW32",
    u"SYSMONTHCAL32",
    u"SYSPAGER",
    u"SYSTABCONTROL32",
    u"SYSTREEVIEW32",
    u"TOOLBARWINDOW32",
    u"TOOLTIPS_CLASS32",
};
inline constexpr std::uintptr_t kFirstBuiltinAtom = 0x80;
inline constexpr std::uintptr_t kBuiltinAtoms = 6;
LRESULT ControlProcedure(HWND handle, Window& window, UINT message, WPARAM wparam, LPARAM lparam) noexcept;
LRESULT EditProcedure(HWND handle, Window& window, UINT message, WPARAM wparam, LPARAM lparam) noexcept;

// The text with the characters from `start` to `end` replaced. False, and the text as it was, without memory.
bool ReplaceText(Window& window, std::size_t start, std::size_t end, WStringView text) noexcept;

}  // namespace platform
