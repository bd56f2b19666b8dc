#include "substitutes/decoder/test_pattern.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

#include "substitutes/decoder/digit_font.h"

namespace clipfio::decoder {
namespace {

constexpr uint16_t kFull = 65535;
constexpr uint16_t kThreeQuarters = 49151;
constexpr uint16_t kDark = 4096;
constexpr uint32_t kWaveSteps = 1024;
constexpr uint32_t kNumberDigits = 6;

struct Rgb {
    uint16_t red, green, blue;
};

// White, yellow, cyan, green, magenta, red, blue, black.
constexpr Rgb kBars[] = {{kThreeQuarters, kThreeQuarters, kThreeQuarters},
                         {kThreeQuarters, kThreeQuarters, 0},
                         {0, kThreeQuarters, kThreeQuarters},
                         {0, kThreeQuarters, 0},
                         {kThreeQuarters, 0, kThreeQuarters},
                         {kThreeQuarters, 0, 0},
                         {0, 0, kThreeQuarters},
                         {0, 0, 0}};

void Put(uint16_t* pixel, Rgb colour) noexcept {
    pixel[0] = colour.red;
    pixel[1] = colour.green;
    pixel[2] = colour.blue;
}

Rgb Grey(uint16_t level) noexcept { return {level, level, level}; }

uint16_t HueSample(double sixths, double centre) noexcept {
    double away = std::fabs(sixths - centre);
    away = std::min(away, 6.0 - away);
    return static_cast<uint16_t>(kFull * std::clamp(2.0 - away, 0.0, 1.0));
}

Rgb Hue(double turn) noexcept {
    const double sixths = turn * 6.0;
    return {HueSample(sixths, 0.0), HueSample(sixths, 2.0), HueSample(sixths, 4.0)};
}

int32_t Amplitude(double share, double sine) noexcept {
    return static_cast<int32_t>(std::lrint(share * 2147483647.0 * sine));
}

}  // namespace

TestPattern::TestPattern(uint32_t width, uint32_t height)
    : width_(width),
      height_(height),
      bars_end_((height + 1) / 2),
      ramps_end_(bars_end_ + height / 8),
      wave_(kWaveSteps),
      picture_(size_t{width} * height * 3) {
    for (uint32_t i = 0; i < kWaveSteps; ++i) {
        const double angle = 2.0 * std::numbers::pi * i / kWaveSteps;
        wave_[i] = static_cast<uint16_t>(std::lrint(kFull * (0.5 + 0.5 * std::cos(angle))));
    }
}

uint16_t* TestPattern::At(uint32_t x, uint32_t y) noexcept { return picture_.data() + (size_t{y} * width_ + x) * 3; }

const uint16_t* TestPattern::Frame(uint64_t number) noexcept {
    DrawBars(number);
    DrawRamps();
    const uint32_t third = width_ / 3;
    DrawZonePlate({0, ramps_end_, third, height_}, number);
    DrawNumber({third, ramps_end_, width_ - third, height_}, number);
    DrawChecks({width_ - third, ramps_end_, width_, height_});
    return picture_.data();
}

void TestPattern::CopyRowDown(uint32_t row, uint32_t end) noexcept {
    for (uint32_t y = row + 1; y < end; ++y) std::memcpy(At(0, y), At(0, row), size_t{width_} * 3 * sizeof(uint16_t));
}

void TestPattern::DrawBars(uint64_t number) noexcept {
    const uint64_t moved = (number % 240) * width_ / 240;
    for (uint32_t x = 0; x < width_; ++x) Put(At(x, 0), kBars[(x + moved) * 8 / width_ % 8]);
    CopyRowDown(0, bars_end_);
}

void TestPattern::DrawRamps() noexcept {
    const uint32_t middle = (bars_end_ + ramps_end_) / 2;
    for (uint32_t x = 0; x < width_; ++x) {
        const double place = width_ > 1 ? static_cast<double>(x) / (width_ - 1) : 0.0;
        if (middle > bars_end_) Put(At(x, bars_end_), Grey(static_cast<uint16_t>(std::lrint(kFull * place))));
        if (ramps_end_ > middle) Put(At(x, middle), Hue(place));
    }
    if (middle > bars_end_) CopyRowDown(bars_end_, middle);
    if (ramps_end_ > middle) CopyRowDown(middle, ramps_end_);
}

// Rings that reach the finest the picture can hold at the farther edge.
void TestPattern::DrawZonePlate(const Area& area, uint64_t number) noexcept {
    const int64_t centre_x = (int64_t{area.left} + area.right) / 2, centre_y = (int64_t{area.top} + area.bottom) / 2;
    const int64_t radius = std::max<int64_t>(1, std::max(area.right - area.left, area.bottom - area.top) / 2);
    const auto phase = static_cast<int64_t>(number % 64) * (kWaveSteps / 64);
    for (uint32_t y = area.top; y < area.bottom; ++y) {
        uint16_t* pixel = At(area.left, y);
        for (uint32_t x = area.left; x < area.right; ++x, pixel += 3) {
            const int64_t dx = x - centre_x, dy = y - centre_y;
            const int64_t angle = (dx * dx + dy * dy) * (kWaveSteps / 4) / radius - phase;
            Put(pixel, Grey(wave_[static_cast<uint64_t>(angle) % kWaveSteps]));
        }
    }
}

void TestPattern::DrawNumber(const Area& area, uint64_t number) noexcept {
    for (uint32_t y = area.top; y < area.bottom; ++y) {
        for (uint32_t x = area.left; x < area.right; ++x) Put(At(x, y), Grey(kDark));
    }
    const uint32_t width = area.right - area.left, height = area.bottom - area.top;
    constexpr uint32_t kColumns = kNumberDigits * (kDigitWidth + 1) + 1;
    const uint32_t dot = std::min(width / kColumns, height / (kDigitHeight + 2));
    const uint32_t left = area.left + (width - dot * kColumns) / 2 + dot;
    const uint32_t top = area.top + (height - dot * kDigitHeight) / 2;
    for (uint32_t place = kNumberDigits; place-- > 0; number /= 10) {
        const uint8_t* rows = kDigits[number % 10];
        const uint32_t start = left + place * (kDigitWidth + 1) * dot;
        for (uint32_t y = 0; y < kDigitHeight * dot; ++y) {
            for (uint32_t x = 0; x < kDigitWidth * dot; ++x) {
                if ((rows[y / dot] >> (kDigitWidth - 1 - x / dot) & 1) != 0) Put(At(start + x, top + y), Grey(kFull));
            }
        }
    }
}

void TestPattern::DrawChecks(const Area& area) noexcept {
    const uint32_t half_x = (area.left + area.right) / 2, half_y = (area.top + area.bottom) / 2;
    for (uint32_t y = area.top; y < area.bottom; ++y) {
        for (uint32_t x = area.left; x < area.right; ++x) {
            const uint32_t shift = (x >= half_x ? 1u : 0u) + (y >= half_y ? 2u : 0u);
            const bool light = (((x - area.left) >> shift) + ((y - area.top) >> shift)) % 2 == 0;
            Put(At(x, y), Grey(light ? kFull : 0));
        }
    }
}

void TestSound::Fill(uint64_t first, size_t samples, int32_t* interleaved) const noexcept {
    if (rate_ == 0) return;
    const uint32_t beep = rate_ / 10;
    for (size_t i = 0; i < samples; ++i) {
        // The phase is counted within its second, so that it stays exact however long the clip is.
        const uint64_t in_second = (first + i) % rate_;
        double pitch = 440.0;
        for (uint32_t c = 0; c < channels_; ++c, pitch = std::floor(pitch * 1.5)) {
            const bool beeps = in_second < beep;
            const double turns = (beeps ? 1000.0 : pitch) * static_cast<double>(in_second) / rate_;
            *interleaved++ = Amplitude(beeps ? 0.25 : 0.1, std::sin(2.0 * std::numbers::pi * turns));
        }
    }
}

}  // namespace clipfio::decoder
