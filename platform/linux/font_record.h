// What stands behind the handle of a font, and its measures.
#pragma once

#include <atomic>
#include <string_view>

#include "platform/gdi.h"

namespace platform {

// Made by one copy of the layer and perhaps freed by another: plain data from the C library's heap.
struct Font {
    std::atomic<std::int32_t> selections;  // how many device contexts it is selected into
    std::int32_t height;                   // as CreateFontW takes it
    std::int32_t weight;
    bool italic;
    BYTE charset;
    char face[LF_FACESIZE * 3];  // UTF-8, terminated
};

inline constexpr int kScreenDpi = 96;

// In pixels of that screen. False without memory or without a font.
bool MeasureFont(const Font& font, TEXTMETRICW& metrics) noexcept;
bool MeasureText(const Font& font, WStringView text, LONG& width) noexcept;

}  // namespace platform
