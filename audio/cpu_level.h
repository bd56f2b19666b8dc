// Which set of converters runs here.
#pragma once

#include "platform/base.h"

namespace clipfio::audio {

// Each level needs the ones before it, except that Scalar needs nothing.
enum class CpuLevel { Scalar, Sse2, Sse41, Avx2, Avx512 };

inline constexpr CpuLevel kCpuLevels[] = {CpuLevel::Scalar, CpuLevel::Sse2, CpuLevel::Sse41, CpuLevel::Avx2,
                                          CpuLevel::Avx512};

const char* NameOf(CpuLevel level) noexcept;

// The highest level that the processor has, KtGetCPUSupport allows and SetCpuLevel has not forbidden. Every AVX level
// counts as not allowed where SSE4.2 is not.
CpuLevel CurrentCpuLevel() noexcept;

// For tests and benchmarks: no level above this one from now on. False, and no change, when the processor does not
// have it. Converters that were looked up before stay what they are.
bool SetCpuLevel(CpuLevel highest) noexcept;
void ResetCpuLevel() noexcept;

}  // namespace clipfio::audio
