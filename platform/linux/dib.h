// Pictures in the platform's device-independent form: a header, a palette or masks, then rows of any depth.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

namespace platform {

// 0xAARRGGBB; the upper byte is 0 where a picture has none.
using Pixel = std::uint32_t;

inline constexpr Pixel kBlack = 0;
inline constexpr Pixel kWhite = 0xFFFFFF;

// Neither side of a picture is greater, and no picture has more pixels.
inline constexpr std::int32_t kWidestPicture = 32767;
inline constexpr std::uint32_t kMostPixels = 1 << 26;

// Of a number that is not negative.
constexpr std::size_t Count(std::int32_t n) noexcept { return static_cast<std::size_t>(n); }

struct Picture {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::unique_ptr<Pixel[]> pixels;  // the top row first

    [[nodiscard]] std::size_t Size() const noexcept { return Count(width) * Count(height); }
    [[nodiscard]] Pixel& At(std::int32_t x, std::int32_t y) const noexcept {
        return pixels[Count(y) * Count(width) + Count(x)];
    }
};

struct DibFacts {
    bool two_colors;  // black and white, one bit a pixel
    bool palette;
};

using Bytes = std::span<const unsigned char>;

// Of that size, with undefined pixels. Empty when it would be too large. Throws std::bad_alloc.
Picture NewPicture(std::int32_t width, std::int32_t height);
// Each pixel is the nearest one's. A size of 0 is that of the picture.
Picture Scaled(Picture picture, std::int32_t width, std::int32_t height);

// Reads a picture of 1, 4, 8, 16, 24 or 32 bits, plain, with masks or run-length coded. `rows_at` is where its rows
// begin when it is not behind the palette, else 0. Empty for what is damaged or of no known form. Throws
// std::bad_alloc.
Picture ReadDib(Bytes bytes, std::size_t rows_at, DibFacts& facts);
// Reads the two pictures of an icon, of which the second is black where the icon covers what it is drawn on.
bool ReadIconDib(Bytes bytes, Picture& color, Picture& mask, DibFacts& facts);

}  // namespace platform
