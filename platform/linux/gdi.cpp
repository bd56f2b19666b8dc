// Fonts, and a screen that text is measured on. Nothing is drawn here.
#include "platform/gdi.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "errors.h"
#include "fault_point.h"
#include "font_record.h"
#include "handles.h"
#include "platform/text.h"
#include "platform/window.h"

namespace {

using platform::Fail;
using platform::Font;
using platform::HandleType;
using platform::HandleUse;

// What is selected into a context at first, as Win32 has it; no handle of the table has this value.
const auto kSystemFont = reinterpret_cast<HFONT>(std::uintptr_t{0x018A0021});
const Font kSystemFontFacts{{}, 0, FW_NORMAL, false, DEFAULT_CHARSET, "sans-serif"};

void Deselect(HFONT handle) noexcept {
    const HandleUse font(handle, HandleType::kFont);
    if (font) --font.Block<Font>().selections;
}

Font* MakeFont(int height, int weight, bool italic, DWORD charset, WStringView face) noexcept {
    void* const memory = platform::FaultHere() ? nullptr : std::calloc(1, sizeof(Font));
    if (!memory) return nullptr;
    auto* const font = new (memory) Font{};
    font->height = height;
    font->weight = weight == 0 ? FW_NORMAL : weight;
    font->italic = italic;
    font->charset = static_cast<BYTE>(charset);
    std::string_view name = "sans-serif";
    std::string utf8;
    try {
        utf8 = platform::Utf8(face);
    } catch (...) {
        std::free(font);
        return nullptr;
    }
    if (!utf8.empty() && utf8.size() < sizeof font->face) name = utf8;
    std::memcpy(font->face, name.data(), name.size());
    return font;
}

// Calls `measure` with the font of a context.
template <class Measure>
BOOL WithFont(HDC context, Measure measure) noexcept {
    const HandleUse use(context, HandleType::kDeviceContext);
    if (!use) return Fail(ERROR_INVALID_HANDLE);
    const HFONT handle = use->selected;
    if (!handle) return measure(kSystemFontFacts) ? TRUE : Fail(ERROR_NOT_ENOUGH_MEMORY);
    const HandleUse font(handle, HandleType::kFont);
    if (!font) return Fail(ERROR_INVALID_HANDLE);
    return measure(font.Block<Font>()) ? TRUE : Fail(ERROR_NOT_ENOUGH_MEMORY);
}

}  // namespace

extern "C" HDC GetDC(HWND window) noexcept {
    if (window && !IsWindow(window)) return Fail<HDC>(ERROR_INVALID_HANDLE, nullptr);
    return platform::NewDeviceContextHandle();
}

extern "C" int ReleaseDC(HWND, HDC context) noexcept {
    {
        const HandleUse use(context, HandleType::kDeviceContext);
        if (!use) return Fail(ERROR_INVALID_HANDLE, 0);
        if (use->selected) Deselect(std::exchange(use->selected, nullptr));
    }
    platform::CloseObjectHandle(context);
    return 1;
}

extern "C" int GetDeviceCaps(HDC context, int index) noexcept {
    if (!HandleUse(context, HandleType::kDeviceContext)) return Fail(ERROR_INVALID_HANDLE, 0);
    return index == LOGPIXELSX || index == LOGPIXELSY ? platform::kScreenDpi : 0;
}

extern "C" HFONT CreateFontW(int height, int, int, int, int weight, DWORD italic, DWORD, DWORD, DWORD charset, DWORD,
                             DWORD, DWORD, DWORD, const WCHAR* face) noexcept {
    WStringView name = face ? face : WStringView();
    if (name.size() >= LF_FACESIZE) return Fail<HFONT>(ERROR_INVALID_PARAMETER, nullptr);
    Font* const font = MakeFont(height, weight, italic != 0, charset, name);
    if (!font) return Fail<HFONT>(ERROR_NOT_ENOUGH_MEMORY, nullptr);
    return static_cast<HFONT>(platform::NewBlockHandle(HandleType::kFont, font));
}

extern "C" HGDIOBJ SelectObject(HDC context, HGDIOBJ object) noexcept {
    const HandleUse use(context, HandleType::kDeviceContext);
    const auto wanted = static_cast<HFONT>(object);
    const HandleUse font(wanted, HandleType::kFont);
    if (!use || (!font && wanted != kSystemFont)) return Fail<HGDIOBJ>(ERROR_INVALID_HANDLE, nullptr);
    if (font) ++font.Block<Font>().selections;
    const HFONT before = std::exchange(use->selected, font ? wanted : nullptr);
    if (!before) return kSystemFont;
    Deselect(before);
    return before;
}

extern "C" BOOL DeleteObject(HGDIOBJ object) noexcept {
    if (object == kSystemFont) return TRUE;
    {
        const HandleUse font(object, HandleType::kFont);
        if (!font) return platform::CloseBlockHandle(object, HandleType::kBitmap);
        if (font.Block<Font>().selections != 0) return Fail(ERROR_INVALID_HANDLE);
    }
    platform::CloseObjectHandle(object);
    return TRUE;
}

extern "C" BOOL GetTextExtentPoint32W(HDC context, const WCHAR* text, int length, SIZE* size) noexcept {
    if (!size || length < 0 || (!text && length > 0)) return Fail(ERROR_INVALID_PARAMETER);
    return WithFont(context, [&](const Font& font) noexcept {
        TEXTMETRICW metrics{};
        LONG width = 0;
        if (!platform::MeasureFont(font, metrics) ||
            !platform::MeasureText(font, {text, static_cast<std::size_t>(length)}, width))
            return false;
        *size = {width, metrics.tmHeight};
        return true;
    });
}

extern "C" BOOL GetTextMetricsW(HDC context, TEXTMETRICW* metrics) noexcept {
    if (!metrics) return Fail(ERROR_INVALID_PARAMETER);
    return WithFont(context, [&](const Font& font) noexcept { return platform::MeasureFont(font, *metrics); });
}

extern "C" int MulDiv(int a, int b, int c) noexcept {
    if (c == 0) return -1;
    const std::int64_t product = std::int64_t{a} * b;
    const std::int64_t divisor = std::abs(std::int64_t{c});
    const std::int64_t half = divisor / 2;
    const std::int64_t size = (std::abs(product) + half) / divisor;
    const std::int64_t result = (product < 0) != (c < 0) ? -size : size;
    constexpr std::int64_t kMost = std::numeric_limits<int>::max();
    return result > kMost || result < -kMost ? -1 : static_cast<int>(result);
}
