#include "platform/window.h"

#include <algorithm>
#include <optional>

#include "dialog_record.h"
#include "fault_point.h"
#include "window_classes.h"
#include "window_use.h"

namespace {

using platform::Fail;
using platform::FoundClass;
using platform::HandleType;
using platform::HandleUse;
using platform::kDesktopWindow;
using platform::kScreenHeight;
using platform::kScreenWidth;
using platform::Window;
using platform::WindowUse;

void LinkToParent(HWND handle, Window& window) noexcept {
    if (!window.parent) return;
    const WindowUse parent(window.parent);
    // Last among its siblings.
    HWND* place = &parent->first_child;
    while (*place) {
        const WindowUse sibling(*place);
        place = &sibling->next_sibling;
    }
    *place = handle;
}

void UnlinkFromParent(HWND handle, Window& window) noexcept {
    const WindowUse parent(window.parent);
    if (!parent) return;
    HWND* place = &parent->first_child;
    while (*place && *place != handle) {
        const WindowUse sibling(*place);
        place = &sibling->next_sibling;
    }
    if (*place) *place = window.next_sibling;
}

Window* MakeWindow(const FoundClass& found, const CREATESTRUCTW& create) noexcept {
    auto* const window = static_cast<Window*>(std::calloc(1, sizeof(Window)));
    if (!window) return nullptr;
    window->procedure = found.procedure;
    window->builtin = found.builtin;
    window->parent = create.hwndParent;
    window->style = static_cast<DWORD>(create.style);
    window->ex_style = create.dwExStyle;
    window->instance = create.hInstance;
    window->x = create.x;
    window->y = create.y;
    window->width = std::max(create.cx, 0);
    window->height = std::max(create.cy, 0);
    window->id = (create.style & static_cast<LONG>(WS_CHILD)) != 0 ? reinterpret_cast<LONG_PTR>(create.hMenu) : 0;
    return window;
}

LRESULT SetText(Window& window, const WCHAR* text) noexcept {
    if (platform::FaultHere()) return FALSE;
    return platform::ReplaceText(window, 0, window.length, text ? WStringView(text) : WStringView()) ? TRUE : FALSE;
}

LRESULT GetText(const Window& window, WCHAR* out, std::size_t size) noexcept {
    if (!out || size == 0) return 0;
    const std::size_t length = std::min(window.length, size - 1);
    std::copy_n(window.text, length, out);
    out[length] = 0;
    return static_cast<LRESULT>(length);
}

}  // namespace

extern "C" HWND CreateWindowExW(DWORD ex_style, const WCHAR* class_name, const WCHAR* text, DWORD style, int x, int y,
                                int width, int height, HWND parent, HMENU menu, HINSTANCE instance,
                                void* parameter) noexcept {
    FoundClass found;
    if (!platform::FindWindowClass(class_name, found)) return Fail<HWND>(ERROR_CANNOT_FIND_WND_CLASS, nullptr);
    if (parent == kDesktopWindow) {
        parent = nullptr;
    } else if ((parent || (style & WS_CHILD) != 0) && !WindowUse(parent)) {
        return nullptr;
    }
    const bool overlapped = (style & (WS_CHILD | WS_POPUP)) == 0;
    if (overlapped) style |= WS_CAPTION;
    if (x == CW_USEDEFAULT) x = y = 0;
    if (width == CW_USEDEFAULT) {
        width = overlapped ? kScreenWidth / 4 * 3 : 0;
        height = overlapped ? kScreenHeight / 4 * 3 : 0;
    }
    const CREATESTRUCTW create{parameter, instance,   menu,    parent, height, width, y, x, static_cast<LONG>(style),
                               text,      class_name, ex_style};
    Window* const window = platform::FaultHere() ? nullptr : MakeWindow(found, create);
    if (!window) return Fail<HWND>(ERROR_NOT_ENOUGH_MEMORY, nullptr);
    const HWND handle = platform::NewWindowHandle(window);
    if (!handle) return nullptr;
    const WindowUse use(handle);
    LinkToParent(handle, *use);
    const auto created = reinterpret_cast<LPARAM>(&create);
    if (!SendMessageW(handle, WM_NCCREATE, 0, created) || SendMessageW(handle, WM_CREATE, 0, created) == -1) {
        DestroyWindow(handle);
        return nullptr;
    }
    return IsWindow(handle) ? handle : nullptr;
}

extern "C" BOOL DestroyWindow(HWND handle) noexcept {
    if (handle == kDesktopWindow) return Fail(ERROR_ACCESS_DENIED);
    const WindowUse window(handle);
    if (!window) return FALSE;
    if (window->destroying) return TRUE;
    window->destroying = true;
    SendMessageW(handle, WM_DESTROY, 0, 0);
    while (const HWND child = window->first_child) {
        DestroyWindow(child);
        // One that is being destroyed already, and whose procedure has come here, is still there.
        const WindowUse still(child);
        if (still) UnlinkFromParent(child, *still);
    }
    SendMessageW(handle, WM_NCDESTROY, 0, 0);
    UnlinkFromParent(handle, *window);
    platform::CloseWindowHandle(handle);
    return TRUE;
}

extern "C" BOOL IsWindow(HWND handle) noexcept {
    return handle == kDesktopWindow || HandleUse(handle, HandleType::kWindow) ? TRUE : FALSE;
}

extern "C" HWND GetParent(HWND handle) noexcept {
    if (handle == kDesktopWindow) return nullptr;
    const WindowUse window(handle);
    if (!window) return nullptr;
    const bool on_screen = !window->parent && (window->style & WS_CHILD) != 0;
    return on_screen ? kDesktopWindow : window->parent;
}

extern "C" HWND GetWindow(HWND handle, UINT relation) noexcept {
    const WindowUse window(handle);
    if (!window) return nullptr;
    switch (relation) {
        case GW_CHILD:
            return window->first_child;
        case GW_HWNDNEXT:
            return window->next_sibling;
        default:
            return Fail<HWND>(ERROR_INVALID_PARAMETER, nullptr);
    }
}

extern "C" HWND GetDlgItem(HWND parent, int id) noexcept {
    const WindowUse window(parent);
    if (!window) return nullptr;
    for (HWND child = window->first_child; child;) {
        const WindowUse use(child);
        if (use->id == id) return child;
        child = use->next_sibling;
    }
    return Fail<HWND>(ERROR_CONTROL_ID_NOT_FOUND, nullptr);
}

extern "C" LRESULT SendMessageW(HWND handle, UINT message, WPARAM wparam, LPARAM lparam) noexcept {
    const WindowUse window(handle);
    if (!window) return 0;
    if (window->procedure) return window->procedure(handle, message, wparam, lparam);
    const WStringView name = platform::kBuiltinClasses[window->builtin];
    if (name == WC_DIALOG) return DefDlgProcW(handle, message, wparam, lparam);
    return name == u"EDIT" ? platform::EditProcedure(handle, *window, message, wparam, lparam)
                           : platform::ControlProcedure(handle, *window, message, wparam, lparam);
}

extern "C" LRESULT DefWindowProcW(HWND handle, UINT message, WPARAM wparam, LPARAM lparam) noexcept {
    const WindowUse window(handle);
    if (!window) return 0;
    switch (message) {
        case WM_NCCREATE:
            return SetText(*window, reinterpret_cast<const CREATESTRUCTW*>(lparam)->lpszName);
        case WM_SETTEXT:
            return SetText(*window, reinterpret_cast<const WCHAR*>(lparam));
        case WM_GETTEXT:
            return GetText(*window, reinterpret_cast<WCHAR*>(lparam), wparam);
        case WM_GETTEXTLENGTH:
            return static_cast<LRESULT>(window->length);
        default:
            return 0;
    }
}

extern "C" LONG_PTR GetWindowLongPtrW(HWND handle, int index) noexcept {
    const WindowUse window(handle);
    if (!window) return 0;
    const platform::Dialog* const dialog = window->dialog;
    switch (index) {
        case GWLP_WNDPROC:
            return reinterpret_cast<LONG_PTR>(window->procedure);
        case GWLP_ID:
            return window->id;
        case GWLP_USERDATA:
            return window->user_data;
        case GWL_STYLE:
            return static_cast<LONG>(window->style);
        case DWLP_MSGRESULT:
            if (dialog) return dialog->message_result;
            break;
        case DWLP_DLGPROC:
            if (dialog) return reinterpret_cast<LONG_PTR>(dialog->procedure);
            break;
        case DWLP_USER:
            if (dialog) return dialog->user_data;
            break;
        default:
            break;
    }
    return Fail(ERROR_INVALID_INDEX, LONG_PTR{0});
}

extern "C" LONG_PTR SetWindowLongPtrW(HWND handle, int index, LONG_PTR value) noexcept {
    const WindowUse window(handle);
    if (!window) return 0;
    const LONG_PTR old = GetWindowLongPtrW(handle, index);
    platform::Dialog* const dialog = window->dialog;
    switch (index) {
        case GWLP_WNDPROC:
            window->procedure = reinterpret_cast<WNDPROC>(value);
            break;
        case GWLP_ID:
            window->id = value;
            break;
        case GWLP_USERDATA:
            window->user_data = value;
            break;
        case GWL_STYLE:
            window->style = static_cast<DWORD>(value);
            break;
        case DWLP_MSGRESULT:
            if (dialog) dialog->message_result = value;
            break;
        case DWLP_DLGPROC:
            if (dialog) dialog->procedure = reinterpret_cast<DLGPROC>(value);
            break;
        case DWLP_USER:
            if (dialog) dialog->user_data = value;
            break;
        default:
            break;
    }
    return old;
}

extern "C" BOOL SetWindowTextW(HWND handle, const WCHAR* text) noexcept {
    return SendMessageW(handle, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text)) > 0 ? TRUE : FALSE;
}

extern "C" int GetWindowTextW(HWND handle, WCHAR* out, int size) noexcept {
    if (!out || size < 1) return 0;
    out[0] = 0;
    return static_cast<int>(SendMessageW(handle, WM_GETTEXT, static_cast<WPARAM>(size), reinterpret_cast<LPARAM>(out)));
}

extern "C" int GetWindowTextLengthW(HWND handle) noexcept {
    return static_cast<int>(SendMessageW(handle, WM_GETTEXTLENGTH, 0, 0));
}
