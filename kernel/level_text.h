// Levels and other values with a label, as text of the kernel's language handle. The text lies in the handle's ring of
// temporary text and lives as long as that lets it; at most 23 characters. Any thread.
#pragma once

#include <cstdint>

#include "platform/base.h"

// `value` is a fixed-point number with so many `decimals`, at most 9; one below 1 has none. A value at or below `floor`
// reads "-Inf." and has no label; a floor of 0 is none. `label` may be null. "Err." when there is no temporary text.
KT_API const WCHAR* KtGetLabeledStringFixed(int32_t value, int32_t decimals, int32_t floor,
                                            const WCHAR* label) noexcept;
// Without decimals the value is truncated, and held within 32 bits.
KT_API const WCHAR* KtGetLabeledStringFloat(float value, int32_t decimals, float floor, const WCHAR* label) noexcept;
// With the label " dB" when `labelled`.
KT_API const WCHAR* KtGetdBStringFixed(int32_t value, int32_t decimals, int32_t floor, int32_t labelled) noexcept;
KT_API const WCHAR* KtGetdBStringFloat(float value, int32_t decimals, float floor, int32_t labelled) noexcept;
