#include "kernel/level_text.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "kernel/lang.h"
#include "kernel/print.h"
#include "kernel/string_rows.h"
#include "kernel/text_copy.h"

namespace {

constexpr uint32_t kRoom = 24;  // characters, with the terminator
constexpr int32_t kMostDecimals = 9;

const WCHAR* Row(KTLANGSTRINGID row) noexcept { return KtGetString(clipfio::KernelLanguage(), row); }

// "$.Xz" or the like, with the digit put in.
struct DecimalFormat {
    WCHAR text[5] = {W('$'), W('.'), W('0'), 0, 0};
    DecimalFormat(int32_t decimals, WCHAR kind) noexcept {
        text[2] = static_cast<WCHAR>(W('0') + std::min(decimals, kMostDecimals));
        text[3] = kind;
    }
};

template <class Value>
const WCHAR* Labelled(const WCHAR* format, Value value, const WCHAR* label) noexcept {
    WCHAR* const text = KtGetTempStringBuffer(clipfio::KernelLanguage(), kRoom);
    if (!text) return Row(clipfio::kKtStrErrorShort);
    uint32_t length = 0;
    static_cast<void>(KtCchPrintF(text, kRoom, &length, format, value));
    if (label) clipfio::CopyText(text + length, static_cast<int32_t>(kRoom - length), label);
    return text;
}

int32_t Truncated(float value) noexcept {
    // The greatest number of 32 bits is none of single precision.
    constexpr float kTooGreat = 2147483648.0F;
    if (std::isnan(value)) return 0;
    if (value >= kTooGreat) return std::numeric_limits<int32_t>::max();
    return value < -kTooGreat ? std::numeric_limits<int32_t>::min() : static_cast<int32_t>(value);
}

const WCHAR* DecibelLabel(int32_t labelled) noexcept { return labelled ? Row(clipfio::kKtStrDecibels) : nullptr; }

}  // namespace

const WCHAR* KtGetLabeledStringFixed(int32_t value, int32_t decimals, int32_t floor, const WCHAR* label) noexcept {
    if (floor != 0 && value <= floor) return Row(clipfio::kKtStrLevelMinusInfinity);
    if (decimals < 1) return Labelled(W("$d"), value, label);
    return Labelled(DecimalFormat(decimals, W('z')).text, value, label);
}

const WCHAR* KtGetLabeledStringFloat(float value, int32_t decimals, float floor, const WCHAR* label) noexcept {
    if (floor != 0 && value <= floor) return Row(clipfio::kKtStrLevelMinusInfinity);
    if (decimals < 1) return Labelled(W("$d"), Truncated(value), label);
    return Labelled(DecimalFormat(decimals, W('f')).text, double{value}, label);
}

const WCHAR* KtGetdBStringFixed(int32_t value, int32_t decimals, int32_t floor, int32_t labelled) noexcept {
    return KtGetLabeledStringFixed(value, decimals, floor, DecibelLabel(labelled));
}

const WCHAR* KtGetdBStringFloat(float value, int32_t decimals, float floor, int32_t labelled) noexcept {
    return KtGetLabeledStringFloat(value, decimals, floor, DecibelLabel(labelled));
}
