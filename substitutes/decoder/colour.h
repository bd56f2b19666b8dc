// Colour in linear light: white balance, saturation and the spaces that a picture can be delivered in.
#pragma once

#include <cstdint>

#include "substitutes/decoder/matrix3.h"

namespace clipfio::decoder {

// Weights of red, green and blue in the luminance of a stored picture.
inline constexpr Vector3 kLuminance{0.2126, 0.7152, 0.0722};

// Gains that keep the luminance of grey. `kelvin` says what light the scene had: above 5600 makes the picture warmer,
// below cooler. Tint above 0 makes it more magenta, below greener. 5600 and 0 give gains of exactly 1.
Vector3 WhiteBalanceGains(double kelvin, double tint) noexcept;

// 0 is grey, 1 leaves the picture as it is.
Matrix3 SaturationMatrix(double saturation) noexcept;

// From the stored picture's Rec. 709 primaries to a colour space of the settings, greys staying grey. An unknown
// number is taken for the default space, 11.
Matrix3 ColourSpaceMatrix(uint32_t space) noexcept;

}  // namespace clipfio::decoder
