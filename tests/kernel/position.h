// Position formats for tests.
#pragma once

#include <limits>

#include "kernel/position_format.h"

namespace support {

inline constexpr int64_t kSecond = 10000000;
inline constexpr int64_t kHour = 3600 * kSecond;
inline constexpr int64_t kMost64 = std::numeric_limits<int64_t>::max();
inline constexpr int64_t kLeast64 = std::numeric_limits<int64_t>::min();

// 24 frames, 48000 samples, 120 beats a minute in 4/4 with 960 ticks; zero stands at 0.
inline _ktposfmt Position(int32_t format) { return {format, 48000, 24.0, 120.0, 0, 4, 4, 960}; }

}  // namespace support
