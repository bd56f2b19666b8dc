#include "r3dsdk/sdk_test_values.h"

namespace clipfio {
namespace {

constexpr uint32_t kFirst = kSdkTestLogLevel;
constexpr uint32_t kCount = 3;
uint32_t test_values[kCount];

}  // namespace

bool SdkSetTestValue(uint32_t number, uint32_t value) noexcept {
    const uint32_t place = number - kFirst;
    if (place >= kCount) return false;
    test_values[place] = value;
    return true;
}

uint32_t SdkGetTestValue(uint32_t number) noexcept {
    const uint32_t place = number - kFirst;
    return place < kCount ? test_values[place] : 0;
}

}  // namespace clipfio
