// Where windows lie, and what their frames take.
#include <limits>

#include "window_use.h"

namespace {

using namespace platform;

constexpr LONG kThickFrame = 8;
constexpr LONG kDialogFrame = 3;
constexpr LONG kBorder = 1;
constexpr LONG kClientEdge = 2;
constexpr LONG kStaticEdge = 1;
constexpr LONG kCaption = 23;
constexpr LONG kMenuBar = 20;

constexpr bool HasCaption(DWORD style) noexcept { return (style & WS_CAPTION) == WS_CAPTION; }

constexpr LONG FrameOf(DWORD style, DWORD ex_style) noexcept {
    LONG frame = 0;
    if ((style & WS_THICKFRAME) != 0) {
        frame = kThickFrame;
    } else if ((style & WS_DLGFRAME) != 0 || (ex_style & WS_EX_DLGMODALFRAME) != 0) {
        frame = kDialogFrame;
    } else if ((style & WS_BORDER) != 0) {
        frame = kBorder;
    }
    if ((ex_style & WS_EX_CLIENTEDGE) != 0) frame += kClientEdge;
    if ((ex_style & WS_EX_STATICEDGE) != 0) frame += kStaticEdge;
    return frame;
}

// Far outside of the screen places stay what can be told.
LONG Place(std::int64_t place) noexcept {
    constexpr std::int64_t kMost = std::numeric_limits<LONG>::max();
    return static_cast<LONG>(place > kMost ? kMost : place < -kMost ? -kMost : place);
}

}  // namespace

extern "C" HWND GetDesktopWindow() noexcept { return kDesktopWindow; }

extern "C" BOOL AdjustWindowRectEx(RECT* rectangle, DWORD style, BOOL has_menu, DWORD ex_style) noexcept {
    if (!rectangle) return Fail(ERROR_NOACCESS);
    const LONG frame = FrameOf(style, ex_style);
    const LONG above = frame + (HasCaption(style) ? kCaption : 0) + (has_menu ? kMenuBar : 0);
    *rectangle = {Place(std::int64_t{rectangle->left} - frame), Place(std::int64_t{rectangle->top} - above),
                  Place(std::int64_t{rectangle->right} + frame), Place(std::int64_t{rectangle->bottom} + frame)};
    return TRUE;
}

extern "C" BOOL GetWindowRect(HWND handle, RECT* rectangle) noexcept {
    if (!rectangle) return Fail(ERROR_NOACCESS);
    if (handle == kDesktopWindow) {
        *rectangle = {0, 0, kScreenWidth, kScreenHeight};
        return TRUE;
    }
    const WindowUse window(handle);
    if (!window) return FALSE;
    std::int64_t x = window->x;
    std::int64_t y = window->y;
    HWND above = (window->style & WS_CHILD) != 0 ? window->parent : nullptr;
    while (above) {
        const WindowUse parent(above);
        if (!parent) break;
        RECT frame{};
        AdjustWindowRectEx(&frame, parent->style, FALSE, parent->ex_style);
        x += std::int64_t{parent->x} - frame.left;
        y += std::int64_t{parent->y} - frame.top;
        above = (parent->style & WS_CHILD) != 0 ? parent->parent : nullptr;
    }
    *rectangle = {Place(x), Place(y), Place(x + window->width), Place(y + window->height)};
    return TRUE;
}
