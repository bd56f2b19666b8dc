#include "kernel/colorref_text.h"

#include <algorithm>
#include <optional>

#include "kernel/characters.h"
#include "kernel/print.h"
#include "kernel/text_copy.h"
#include "kernel/text_to_number.h"

namespace {

using clipfio::BeginsWith;
using clipfio::IsDigit;
using clipfio::SkipSpace;

constexpr HRESULT kBufferTooSmall = static_cast<HRESULT>(0x8004E03Cu);
constexpr uint32_t kColors = 0x1000000;

constexpr uint32_t Red(uint32_t color) noexcept { return color & 0xFF; }
constexpr uint32_t Green(uint32_t color) noexcept { return color >> 8 & 0xFF; }
constexpr uint32_t Blue(uint32_t color) noexcept { return color >> 16 & 0xFF; }
constexpr uint32_t Color(uint32_t red, uint32_t green, uint32_t blue) noexcept { return red | green << 8 | blue << 16; }

// One of the three numbers of an RGB form. Moves behind it.
std::optional<uint32_t> TakePart(const WCHAR*& at) noexcept {
    constexpr uint32_t kGreatest = 255;
    if (!IsDigit(*at)) return std::nullopt;
    uint32_t value = 0;
    for (; IsDigit(*at); ++at) value = std::min(value * 10 + static_cast<uint32_t>(*at - W('0')), kGreatest + 1);
    return value <= kGreatest ? std::optional(value) : std::nullopt;
}

bool TakeComma(const WCHAR*& at) noexcept {
    while (*at && *at != W(',')) ++at;
    if (!*at) return false;
    at = SkipSpace(at + 1);
    return true;
}

// What stands behind "RGB".
std::optional<uint32_t> TakeRgb(const WCHAR*& at) noexcept {
    at = SkipSpace(at);
    if (*at != W('(')) return std::nullopt;
    at = SkipSpace(at + 1);
    const auto red = TakePart(at);
    if (!red || !TakeComma(at)) return std::nullopt;
    const auto green = TakePart(at);
    if (!green || !TakeComma(at)) return std::nullopt;
    const auto blue = TakePart(at);
    at = SkipSpace(at);
    if (!blue || *at != W(')')) return std::nullopt;
    ++at;
    return Color(*red, *green, *blue);
}

// What stands behind '#': red in the high byte.
std::optional<uint32_t> TakeWeb(const WCHAR*& at) noexcept {
    constexpr std::ptrdiff_t kMostDigits = 64;
    const WCHAR* const start = at;
    uint32_t value = 0;
    for (int digit = 0; at - start < kMostDigits && (digit = clipfio::HexDigit(*at)) >= 0; ++at) {
        value = std::min(value, kColors) << 4 | static_cast<uint32_t>(digit);
    }
    if (at == start || value >= kColors) return std::nullopt;
    return Color(value >> 16, value >> 8 & 0xFF, value & 0xFF);
}

std::optional<uint32_t> TakeColor(const WCHAR*& at) noexcept {
    at = SkipSpace(at);
    if (BeginsWith(at, W("rgb"))) return TakeRgb(at += 3);
    if (*at == W('#')) return TakeWeb(++at);
    const uint32_t value = BeginsWith(at, W("0x")) ? KtHexToDWordToken(at, &at) : KtTextToDWordToken(at, &at);
    return value == 0xFFFFFFFF ? std::nullopt : std::optional(value);
}

}  // namespace

HRESULT KtColorrefToTextEx(WCHAR* out, uint32_t size, uint32_t* length, uint32_t color, int32_t mode) noexcept {
    const bool is_color = color < kColors;
    if (is_color && (mode == KTCOLORTEXT_RGB || mode == KTCOLORTEXT_WEB)) {
        const WCHAR* const format = mode == KTCOLORTEXT_RGB ? W("RGB(%d,%d,%d)") : W("#%02x%02x%02x");
        return KtCchPrintF(out, size, length, format, Red(color), Green(color), Blue(color));
    }
    if (color != 0) return KtCchPrintF(out, size, length, W("%#010x"), color);
    // C prints a zero without its 0x.
    constexpr WStringView kZero = W("0x00000000");
    const HRESULT result = KtCchPrintF(out, size, length, kZero.data());
    return SUCCEEDED(result) && size <= kZero.size() ? kBufferTooSmall : result;
}

int32_t KtColorrefToText(WCHAR* out, int32_t size, uint32_t color, int32_t mode) noexcept {
    uint32_t length = 0;
    if (size > 0) static_cast<void>(KtColorrefToTextEx(out, static_cast<uint32_t>(size), &length, color, mode));
    return static_cast<int32_t>(length);
}

uint32_t KtTextToColorrefToken(const WCHAR* text, const WCHAR** end) noexcept {
    if (end) *end = text;
    if (!text) return 0;
    const auto color = TakeColor(text);
    if (end) *end = text;
    return color.value_or(kKtUnreadableColor);
}

uint32_t KtTextToColorrefTokenEx(const WCHAR* text, int32_t, const WCHAR** end) noexcept {
    return KtTextToColorrefToken(text, end);
}

uint32_t KtTextToColorref(const WCHAR* text) noexcept { return KtTextToColorrefToken(text, nullptr); }
