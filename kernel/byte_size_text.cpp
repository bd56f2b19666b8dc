#include "kernel/byte_size_text.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "kernel/compose_text.h"
#include "kernel/lang.h"
#include "kernel/print.h"
#include "kernel/string_rows.h"

namespace {

constexpr int64_t kMostOfAUnit = 999;
constexpr uint32_t kRoomForDigits = 6;  // five characters and the terminator

// A value with three digits that count, or two and a leading zero.
struct ThreeDigits {
    WCHAR text[kRoomForDigits];

    explicit ThreeDigits(double value) noexcept {
        // What rounding would lift to the next digit is kept down; what was cut is kept from falling below itself.
        constexpr double kJustBelowHalf = 0.499999985;
        if (value >= 100) {
            Print(W("$.0f"), std::nearbyint(value - kJustBelowHalf));
            return;
        }
        const double scale = value >= 10 ? 10 : 100;
        const double margin = value >= 10 ? 0.01 : 0.001;
        Print(W("$.4g"), std::trunc(value * scale) / scale + margin);
        text[text[0] == W('.') ? 3 : 4] = 0;
    }

  private:
    void Print(const WCHAR* format, double value) noexcept {
        std::fill(std::begin(text), std::end(text), WCHAR{0});
        static_cast<void>(KtCchPrintF(text, kRoomForDigits, nullptr, format, value));
    }
};

struct Unit {
    unsigned shift;
    const KTLANGSTRINGID* row;
};
constexpr Unit kUnits[] = {
    {10, &clipfio::kKtStrCountKB}, {20, &clipfio::kKtStrCountMB}, {30, &clipfio::kKtStrCountGB},
    {40, &clipfio::kKtStrCountTB}, {50, &clipfio::kKtStrCountPB},
};

const WCHAR* Row(KTLANGSTRINGID row) noexcept { return KtGetString(clipfio::KernelLanguage(), row); }

// What stands behind the number, and the divisor that gives it.
struct Suffixes {
    const WCHAR* bytes;
    const WCHAR* kilo;
    const WCHAR* mega;
    const WCHAR* giga;
};

int32_t PrintSize(int64_t size, WCHAR* out, const Suffixes& formats) noexcept {
    constexpr int64_t kKilo = 1024;
    constexpr int64_t kMega = 1'024'000;
    constexpr int64_t kGiga = 1'024'000'000;
    if (size < kKilo) return KtPrintF(out, formats.bytes, static_cast<int32_t>(std::max<int64_t>(size, INT32_MIN)));
    const int64_t unit = size < kMega ? kKilo : size < kGiga ? kMega : kGiga;
    const WCHAR* const format = size < kMega ? formats.kilo : size < kGiga ? formats.mega : formats.giga;
    return KtPrintF(out, format, static_cast<double>(size) / static_cast<double>(unit));
}

}  // namespace

uint32_t KtFormatFileSize(int64_t size, WCHAR* out, uint32_t characters, int32_t long_bytes) noexcept {
    constexpr int64_t kTooLarge = 0x7000000000000000;
    size = std::max<int64_t>(size, 0);
    if (size < kMostOfAUnit) {
        WCHAR digits[kRoomForDigits];
        static_cast<void>(KtCchPrintF(digits, kRoomForDigits, nullptr, W("%d"), static_cast<int32_t>(size)));
        return KtComposeStr(out, characters, Row(long_bytes ? clipfio::kKtStrCountBytes : clipfio::kKtStrCountB),
                            digits);
    }
    for (const Unit& unit : kUnits) {
        if (size >= kMostOfAUnit << unit.shift) continue;
        const ThreeDigits value(std::ldexp(static_cast<double>(size), -static_cast<int>(unit.shift)));
        return KtComposeStr(out, characters, Row(*unit.row), value.text);
    }
    if (size >= kTooLarge) return KtComposeStr(out, characters, Row(clipfio::kKtStrCountTooLarge));
    const ThreeDigits value(static_cast<double>(size >> 50) / 1024);
    return KtComposeStr(out, characters, Row(clipfio::kKtStrCountEB), value.text);
}

int32_t KtGetByteSizeText(int64_t size, WCHAR* out) noexcept {
    return PrintSize(size, out, {W("%d"), W("$.2fKB"), W("$.2fMB"), W("$.2fGB")});
}

int32_t KtGetByteSizeText2(int64_t size, WCHAR* out) noexcept {
    return PrintSize(size, out, {W("%d bytes"), W("$.2f KB"), W("$.2f MB"), W("$.2f GB")});
}

int32_t KtGetByteSizeTextWithSpace(int64_t size, WCHAR* out) noexcept {
    return PrintSize(size, out, {W("%d"), W("$.2f KB"), W("$.2f MB"), W("$.2f GB")});
}
