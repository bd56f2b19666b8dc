#include "kernel/ui_fonts.h"

#include <atomic>

namespace clipfio {
namespace {

constinit std::atomic<const UiFonts*> g_fonts{nullptr};

}  // namespace

void SetUiFonts(const UiFonts* fonts) noexcept { g_fonts.store(fonts); }

HFONT UiFont(int number) noexcept {
    const UiFonts* const fonts = g_fonts.load();
    return fonts ? fonts->font(number) : nullptr;
}

bool UiFontUnits(int number, SIZE& units) noexcept {
    const UiFonts* const fonts = g_fonts.load();
    return fonts && fonts->units(number, units);
}

}  // namespace clipfio
