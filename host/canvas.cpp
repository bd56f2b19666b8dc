#include "host/canvas.h"

#include <algorithm>
#include <array>

#include "substitutes/decoder/digit_font.h"

namespace clipfio::host {
namespace {

using decoder::kDigitHeight;
using decoder::kDigits;
using decoder::kDigitWidth;

void SetPixel(RgbImage8& image, int64_t x, int64_t y, Colour colour) {
    uint8_t* pixel =
        image.samples.data() + (static_cast<std::size_t>(y) * image.width + static_cast<std::size_t>(x)) * 3;
    pixel[0] = colour.red;
    pixel[1] = colour.green;
    pixel[2] = colour.blue;
}

Colour MeanOf(const RgbImage8& image, uint32_t left, uint32_t top, uint32_t right, uint32_t bottom) {
    std::array<uint64_t, 3> sum{};
    for (uint32_t y = top; y < bottom; ++y) {
        const uint8_t* pixel = image.samples.data() + (std::size_t{y} * image.width + left) * 3;
        for (uint32_t x = left; x < right; ++x, pixel += 3) {
            for (std::size_t i = 0; i < 3; ++i) sum[i] += pixel[i];
        }
    }
    const uint64_t count = uint64_t{right - left} * (bottom - top);
    const auto mean = [&](std::size_t i) { return static_cast<uint8_t>((sum[i] + count / 2) / count); };
    return {mean(0), mean(1), mean(2)};
}

// Where the n-th of `parts` parts of `length` begins.
uint32_t PartStart(uint32_t n, uint32_t parts, uint32_t length) {
    return static_cast<uint32_t>(uint64_t{n} * length / parts);
}

}  // namespace

RgbImage8 MakeImage(uint32_t width, uint32_t height, Colour colour) {
    RgbImage8 image{width, height, std::vector<uint8_t>(std::size_t{width} * height * 3)};
    FillBox(image, 0, 0, width, height, colour);
    return image;
}

void FillBox(RgbImage8& image, int64_t left, int64_t top, int64_t width, int64_t height, Colour colour) {
    const int64_t right = std::min<int64_t>(left + width, image.width);
    const int64_t bottom = std::min<int64_t>(top + height, image.height);
    for (int64_t y = std::max<int64_t>(top, 0); y < bottom; ++y) {
        for (int64_t x = std::max<int64_t>(left, 0); x < right; ++x) SetPixel(image, x, y, colour);
    }
}

void DrawScaled(RgbImage8& image, int64_t left, int64_t top, uint32_t width, uint32_t height, const RgbImage8& source) {
    for (uint32_t y = 0; y < height; ++y) {
        const uint32_t from_y = PartStart(y, height, source.height);
        const uint32_t to_y = std::max(PartStart(y + 1, height, source.height), from_y + 1);
        for (uint32_t x = 0; x < width; ++x) {
            const uint32_t from_x = PartStart(x, width, source.width);
            const uint32_t to_x = std::max(PartStart(x + 1, width, source.width), from_x + 1);
            FillBox(image, left + x, top + y, 1, 1, MeanOf(source, from_x, from_y, to_x, to_y));
        }
    }
}

void DrawDigits(RgbImage8& image, int64_t left, int64_t top, uint32_t size, const std::string& digits, Colour colour) {
    for (const char c : digits) {
        if (c < '0' || c > '9') continue;
        const uint8_t* rows = kDigits[c - '0'];
        for (uint32_t y = 0; y < kDigitHeight; ++y) {
            for (uint32_t x = 0; x < kDigitWidth; ++x) {
                if ((rows[y] >> (kDigitWidth - 1 - x) & 1) == 0) continue;
                FillBox(image, left + x * size, top + y * size, size, size, colour);
            }
        }
        left += (kDigitWidth + 1) * size;
    }
}

}  // namespace clipfio::host
