// The status lines of the loader: the only witness of why a library was not taken.
#pragma once

#include "r3dsdk/sdk_interfaces.h"

namespace clipfio {

// printf to standard output when the log level is 255, nothing otherwise. The level is key 0 of the table in place and,
// without one, test value 666.
__attribute__((format(printf, 1, 2))) void SdkLog(const char* format, ...) noexcept;

// Sets the table that the level is read from; null takes it away.
void SetSdkLogValues(SdkKeyValues* values) noexcept;

}  // namespace clipfio
