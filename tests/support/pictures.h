// What a bitmap shows.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "platform/images.h"

namespace support {

struct Shown {
    LONG width = 0;
    LONG height = 0;
    std::vector<uint32_t> pixels;  // 0xRRGGBB, the top row first
    bool operator==(const Shown&) const = default;
};

inline Shown Show(HBITMAP bitmap) {
    BITMAP facts{};
    if (GetObjectW(bitmap, sizeof facts, &facts) == 0) return {};
    Shown shown{
        facts.bmWidth, facts.bmHeight,
        std::vector<uint32_t>(static_cast<std::size_t>(facts.bmWidth) * static_cast<std::size_t>(facts.bmHeight))};
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, facts.bmWidth, -facts.bmHeight, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    const HDC screen = GetDC(nullptr);
    EXPECT_EQ(
        GetDIBits(screen, bitmap, 0, static_cast<UINT>(facts.bmHeight), shown.pixels.data(), &info, DIB_RGB_COLORS),
        facts.bmHeight);
    ReleaseDC(nullptr, screen);
    for (uint32_t& pixel : shown.pixels) pixel &= 0xFFFFFF;
    return shown;
}
// And deletes it.
inline Shown Take(HBITMAP bitmap) {
    Shown shown = Show(bitmap);
    EXPECT_EQ(DeleteObject(bitmap) != FALSE, bitmap != nullptr);
    return shown;
}

struct ShownIcon {
    bool icon = false;
    DWORD hot_x = 0;
    DWORD hot_y = 0;
    Shown color;
    Shown mask;
};

inline ShownIcon Show(HICON handle) {
    ICONINFO info{};
    if (!GetIconInfo(handle, &info)) return {};
    ShownIcon shown{info.fIcon != FALSE, info.xHotspot, info.yHotspot, {}, Take(info.hbmMask)};
    if (info.hbmColor) shown.color = Take(info.hbmColor);
    return shown;
}

}  // namespace support
