#include "platform/window_layout.h"

#include <atomic>

#include "errors.h"

namespace {

constinit std::atomic<DWORD> g_layout{0};

}  // namespace

extern "C" BOOL SetProcessDefaultLayout(DWORD layout) noexcept {
    if ((layout & ~LAYOUT_RTL) != 0) return platform::Fail(ERROR_INVALID_PARAMETER);
    g_layout.store(layout);
    return TRUE;
}

extern "C" BOOL GetProcessDefaultLayout(DWORD* layout) noexcept {
    if (!layout) return platform::Fail(ERROR_NOACCESS);
    *layout = g_layout.load();
    return TRUE;
}
