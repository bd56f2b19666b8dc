// Drawing into pictures of our own.
#pragma once

#include <cstdint>
#include <string>

#include "host/png_writer.h"

namespace clipfio::host {

struct Colour {
    uint8_t red;
    uint8_t green;
    uint8_t blue;
};

[[nodiscard]] RgbImage8 MakeImage(uint32_t width, uint32_t height, Colour colour);

// What lies outside the picture is cut off.
void FillBox(RgbImage8& image, int64_t left, int64_t top, int64_t width, int64_t height, Colour colour);

// `source` fills the box; each pixel of it is the mean of what it covers.
void DrawScaled(RgbImage8& image, int64_t left, int64_t top, uint32_t width, uint32_t height, const RgbImage8& source);

// Decimal digits; `size` is the edge of one dot of the font, whose digits are 5 wide and 7 high with 1 between them.
void DrawDigits(RgbImage8& image, int64_t left, int64_t top, uint32_t size, const std::string& digits, Colour colour);

}  // namespace clipfio::host
