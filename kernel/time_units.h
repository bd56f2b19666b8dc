// Media time, in units of 100 nanoseconds, and how floating-point numbers become times and counts.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

namespace clipfio {

inline constexpr int64_t kUnitsPerSecond = 10000000;
inline constexpr double kSecondsPerUnit = 1e-7;

// A floating-point number cut towards zero, held within the range of the integer; 0 for what is not a number.
template <class Integer>
Integer CutToInteger(double value) noexcept {
    using Limits = std::numeric_limits<Integer>;
    if (value != value) return 0;
    if (value <= static_cast<double>(Limits::min())) return Limits::min();
    if (value >= static_cast<double>(Limits::max())) return Limits::max();
    return static_cast<Integer>(value);
}

// The whole number below, which a value up to 1.5e-8 under the next one already reaches; held within 51 bits.
inline int64_t FloorWithSlack(double value) noexcept {
    constexpr int64_t kMost = (int64_t{1} << 50) - 1;
    const auto whole = CutToInteger<int64_t>(std::nearbyint(value - 0.499999985));
    return whole > kMost ? kMost : whole < -kMost - 1 ? -kMost - 1 : whole;
}

// Sums, differences and products of times, held within the type.
inline int64_t HeldSum(int64_t a, int64_t b) noexcept {
    int64_t sum = 0;
    if (!__builtin_add_overflow(a, b, &sum)) return sum;
    return b < 0 ? std::numeric_limits<int64_t>::min() : std::numeric_limits<int64_t>::max();
}
inline int64_t HeldDifference(int64_t a, int64_t b) noexcept {
    int64_t difference = 0;
    if (!__builtin_sub_overflow(a, b, &difference)) return difference;
    return b > 0 ? std::numeric_limits<int64_t>::min() : std::numeric_limits<int64_t>::max();
}
inline int64_t HeldProduct(int64_t a, int64_t b) noexcept {
    int64_t product = 0;
    if (!__builtin_mul_overflow(a, b, &product)) return product;
    return (a < 0) != (b < 0) ? std::numeric_limits<int64_t>::min() : std::numeric_limits<int64_t>::max();
}

// `count` frames or samples at `rate` a second, cut towards zero; 0 when the rate is not above 0.
inline int64_t UnitsOf(double count, double rate) noexcept {
    return rate > 0.0 ? CutToInteger<int64_t>(count / rate * static_cast<double>(kUnitsPerSecond)) : 0;
}

}  // namespace clipfio
