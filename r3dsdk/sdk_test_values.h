// Three numbers by which a test steers the loader. They start at 0, outlive every loader, and nothing in the system
// sets them.
#pragma once

#include <cstdint>

namespace clipfio {

inline constexpr uint32_t kSdkTestLogLevel = 666;      // status lines are written at 255 only
inline constexpr uint32_t kSdkTestRedirectMode = 667;  // 2: redirects are ignored
inline constexpr uint32_t kSdkTestSkipMatch = 668;     // not 0: tables may come from libraries of different versions

// False for any other number.
bool SdkSetTestValue(uint32_t number, uint32_t value) noexcept;
// 0 for any other number.
uint32_t SdkGetTestValue(uint32_t number) noexcept;

}  // namespace clipfio
