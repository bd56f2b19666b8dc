// Media time, in units of 100 nanoseconds.
#pragma once

#include <cstdint>
#include <limits>

namespace clipfio {

inline constexpr int64_t kUnitsPerSecond = 10000000;

// A floating-point number cut towards zero, held within the range of the integer; 0 for what is not a number.
template <class Integer>
Integer CutToInteger(double value) noexcept {
    using Limits = std::numeric_limits<Integer>;
    if (value != value) return 0;
    if (value <= static_cast<double>(Limits::min())) return Limits::min();
    if (value >= static_cast<double>(Limits::max())) return Limits::max();
    return static_cast<Integer>(value);
}

// `count` frames or samples at `rate` a second, cut towards zero; 0 when the rate is not above 0.
inline int64_t UnitsOf(double count, double rate) noexcept {
    return rate > 0.0 ? CutToInteger<int64_t>(count / rate * static_cast<double>(kUnitsPerSecond)) : 0;
}

}  // namespace clipfio
