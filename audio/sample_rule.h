// The one arithmetic rule of all conversions, in its plain scalar form. It is the measure for every faster version.
//
// A sample becomes a double, full scale 1.0. An integer sample is written as that double times 2^(depth-1), limited to
// the range of the format and rounded to the nearest integer, ties to even. Float samples are never limited. A sample
// that is not a number becomes 0 in an integer format and stays what it is in a float format. The rounding is that of
// the processor's default mode.
#pragma once

#include <bit>

#include "audio/sample_format.h"

namespace clipfio::audio {

// 2^(depth-1), the integer that stands for 1.0.
constexpr double FullScale(int depth) noexcept { return static_cast<double>(int64_t{1} << (depth - 1)); }

inline int32_t RoundLimited(double y, int depth) noexcept {
    const double lowest = -FullScale(depth);
    const double highest = FullScale(depth) - 1.0;
    if (y != y) return 0;
    if (y < lowest) y = lowest;
    if (y > highest) y = highest;
    // 2^52 + 2^51: the sum has no room for a fraction, and its low bits are the integer.
    return static_cast<int32_t>(static_cast<uint32_t>(std::bit_cast<uint64_t>(y + 6755399441055744.0)));
}

template <class F>
double ReadNormalised(const uint8_t* p) noexcept {
    if constexpr (kIsFloat<F>) {
        return F::Load(p);
    } else {
        return F::Load(p) * (1.0 / FullScale(F::kDepth));
    }
}

template <class F>
void WriteNormalised(uint8_t* p, double v) noexcept {
    if constexpr (std::is_same_v<F, Float64>) {
        F::Store(p, v);
    } else if constexpr (std::is_same_v<F, Float32>) {
        F::Store(p, static_cast<float>(v));
    } else {
        F::Store(p, RoundLimited(v * FullScale(F::kDepth), F::kDepth));
    }
}

// One sample from format to format at gain 1.0.
template <class Dst, class Src>
void ConvertSample(uint8_t* dst, const uint8_t* src) noexcept {
    if constexpr (std::is_same_v<Src, Pcm24In32> && !kIsFloat<Dst>) {
        // A word outside 24 bits counts as the nearest one inside. The other destinations limit it anyway.
        WriteNormalised<Dst>(dst, RoundLimited(Src::Load(src), 24) * (1.0 / FullScale(24)));
    } else {
        WriteNormalised<Dst>(dst, ReadNormalised<Src>(src));
    }
}

// One sample from format to format at any other gain.
template <class Dst, class Src>
void ConvertSample(uint8_t* dst, const uint8_t* src, float gain) noexcept {
    if constexpr (std::is_same_v<Src, Float32>) {
        WriteNormalised<Dst>(dst, Src::Load(src) * gain);
    } else {
        WriteNormalised<Dst>(dst, ReadNormalised<Src>(src) * static_cast<double>(gain));
    }
}

}  // namespace clipfio::audio
