// The text of windows, and the control in which it can be edited.
#include <algorithm>
#include <cstring>

#include "window_record.h"

namespace platform {

void FreeWindow(Window* window) noexcept {
    if (!window) return;
    FreeDialog(window->dialog);
    std::free(window->text);
    std::free(window);
}

bool ReplaceText(Window& window, std::size_t start, std::size_t end, WStringView text) noexcept {
    const std::size_t length = window.length - (end - start) + text.size();
    auto* const made = static_cast<WCHAR*>(std::malloc((length + 1) * sizeof(WCHAR)));
    if (!made) return false;
    WCHAR* at = made;
    at = std::copy_n(window.text, start, at);
    at = std::copy(text.begin(), text.end(), at);
    at = std::copy_n(window.text + end, window.length - end, at);
    *at = 0;
    std::free(window.text);
    window.text = made;
    window.length = length;
    return true;
}

namespace {

// What the caller names by the low half of a parameter; all ones mean the end.
std::size_t PlaceInText(const Window& window, std::uint64_t parameter) noexcept {
    return std::min<std::size_t>(static_cast<std::uint32_t>(parameter), window.length);
}

void ReplaceSelection(Window& window, const WCHAR* text) noexcept {
    const WStringView inserted = text ? WStringView(text) : WStringView();
    if (!ReplaceText(window, window.selection_start, window.selection_end, inserted)) return;
    window.selection_start += inserted.size();
    window.selection_end = window.selection_start;
}

}  // namespace

LRESULT ControlProcedure(HWND handle, Window& window, UINT message, WPARAM wparam, LPARAM lparam) noexcept {
    switch (message) {
        case WM_SETFONT:
            window.font = reinterpret_cast<HFONT>(wparam);
            return 0;
        case WM_GETFONT:
            return reinterpret_cast<LRESULT>(window.font);
        default:
            return DefWindowProcW(handle, message, wparam, lparam);
    }
}

LRESULT EditProcedure(HWND handle, Window& window, UINT message, WPARAM wparam, LPARAM lparam) noexcept {
    switch (message) {
        case WM_SETTEXT:
            window.selection_start = window.selection_end = 0;
            return DefWindowProcW(handle, message, wparam, lparam);
        case EM_SETSEL: {
            if (static_cast<std::int32_t>(wparam) == -1) {
                // Nothing is selected any more; the caret stays.
                window.selection_start = window.selection_end;
                return 1;
            }
            const std::size_t one = PlaceInText(window, wparam);
            const std::size_t other = PlaceInText(window, static_cast<std::uint64_t>(lparam));
            window.selection_start = std::min(one, other);
            window.selection_end = std::max(one, other);
            return 1;
        }
        case EM_GETSEL: {
            const auto start = static_cast<DWORD>(window.selection_start);
            const auto end = static_cast<DWORD>(window.selection_end);
            if (wparam) std::memcpy(reinterpret_cast<void*>(wparam), &start, sizeof start);
            if (lparam) std::memcpy(reinterpret_cast<void*>(lparam), &end, sizeof end);
            constexpr DWORD kMostPacked = 0xFFFF;
            return start > kMostPacked || end > kMostPacked ? -1 : static_cast<LRESULT>(end << 16 | start);
        }
        case EM_REPLACESEL:
            ReplaceSelection(window, reinterpret_cast<const WCHAR*>(lparam));
            return 0;
        default:
            return ControlProcedure(handle, window, message, wparam, lparam);
    }
}

}  // namespace platform
