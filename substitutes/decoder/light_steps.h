// The scale by which light is looked up: 1024 equal steps in each octave above 1/256, after 1/256 was added. Below
// 1/256 the steps are thus nearly equal, above they widen with the light.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

namespace clipfio::decoder {

inline constexpr float kLightOffset = 0x1p-8f;
inline constexpr float kLightTop = 0x1p8f;  // light ends short of this
inline constexpr int32_t kStepBits = 10;
inline constexpr int32_t kStepShift = 23 - kStepBits;
inline constexpr int32_t kFirstStepBits = std::bit_cast<int32_t>(kLightOffset);
inline constexpr size_t kLightSteps = 16 << kStepBits;
static_assert((std::bit_cast<int32_t>(kLightTop) - kFirstStepBits) >> kStepShift == kLightSteps);

// The place of `light`, which may be negative, on the scale: the step, and below it kStepShift bits of the way to the
// next one.
inline int32_t LightPlace(float light) noexcept {
    // The largest float below the top.
    constexpr float kLast = std::bit_cast<float>(std::bit_cast<int32_t>(kLightTop) - 1);
    float shifted = (light > 0.0f ? light : 0.0f) + kLightOffset;
    shifted = shifted < kLast ? shifted : kLast;
    return std::bit_cast<int32_t>(shifted) - kFirstStepBits;
}

// The light at a place.
inline double PlaceLight(int32_t place) noexcept {
    return static_cast<double>(std::bit_cast<float>(place + kFirstStepBits)) - static_cast<double>(kLightOffset);
}

}  // namespace clipfio::decoder
