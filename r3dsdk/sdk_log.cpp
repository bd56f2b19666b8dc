#include "r3dsdk/sdk_log.h"

#include <cstdarg>
#include <cstdio>

#include "r3dsdk/sdk_test_values.h"

namespace clipfio {
namespace {

constexpr uint64_t kLevelThatWrites = 255;
SdkKeyValues* level_table;

uint64_t Level() noexcept {
    return level_table ? level_table->GetValue(kSdkKeyLogLevel) : SdkGetTestValue(kSdkTestLogLevel);
}

}  // namespace

void SdkLog(const char* format, ...) noexcept {
    if (Level() != kLevelThatWrites) return;
    va_list arguments;
    va_start(arguments, format);
    vfprintf(stdout, format, arguments);
    va_end(arguments);
}

void SetSdkLogValues(SdkKeyValues* values) noexcept { level_table = values; }

}  // namespace clipfio
