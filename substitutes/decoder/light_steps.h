// The scale by which light is looked up: 1024 equal steps in each octave above 1/256, after 1/256 was added. Below
// 1/256 the steps are thus nearly equal, above they widen with the light.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

namespace clipfio::decoder {

inline constexpr float kLightOffset = 0x1p-8f;
inline constexpr int32_t kStepBits = 10;
inline constexpr int32_t kStepShift = 23 - kStepBits;
inline constexpr int32_t kFirstStepBits = std::bit_cast<int32_t>(kLightOffset);
inline constexpr int32_t kPlaces = std::bit_cast<int32_t>(0x1p8f) - kFirstStepBits;  // light ends at 256
inline constexpr size_t kLightSteps = kPlaces >> kStepShift;
static_assert(kLightSteps == 16 << kStepBits);

// The place of `light`, which may be negative, on the scale: the step, and below it kStepShift bits of the way to the
// next one.
inline int32_t LightPlace(float light) noexcept {
    // Limits are set on the bits, in whose order floats above 0 stand: a choice between floats may trap and so keeps
    // the compiler from making vectors.
    const auto bits = std::bit_cast<int32_t>(light);
    const float above_black = std::bit_cast<float>(bits & ~(bits >> 31));
    const int32_t place = std::bit_cast<int32_t>(above_black + kLightOffset) - kFirstStepBits;
    return place < kPlaces ? place : kPlaces - 1;
}

// The light at a place.
inline double PlaceLight(int32_t place) noexcept {
    return static_cast<double>(std::bit_cast<float>(place + kFirstStepBits)) - static_cast<double>(kLightOffset);
}

}  // namespace clipfio::decoder
