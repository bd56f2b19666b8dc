#include "audio/cpu_level.h"

#include <algorithm>
#include <atomic>

#include "kernel/cpu.h"

namespace clipfio::audio {
namespace {

std::atomic<CpuLevel> highest_wanted{CpuLevel::Avx512};

bool ProcessorHas(CpuLevel level) noexcept {
    // These ask the operating system's support of the wide registers, too.
    switch (level) {
        case CpuLevel::Scalar:
            return true;
        case CpuLevel::Sse2:
            return __builtin_cpu_supports("sse2");
        case CpuLevel::Sse41:
            return __builtin_cpu_supports("ssse3") && __builtin_cpu_supports("sse4.1");
        case CpuLevel::Avx2:
            return __builtin_cpu_supports("avx2");
        case CpuLevel::Avx512:
            return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                   __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl");
    }
    return false;
}

CpuLevel HighestOfProcessor() noexcept {
    static const CpuLevel highest = [] {
        CpuLevel found = CpuLevel::Scalar;
        for (const CpuLevel level : kCpuLevels) {
            if (!ProcessorHas(level)) break;
            found = level;
        }
        return found;
    }();
    return highest;
}

CpuLevel HighestAllowed() noexcept {
    const uint32_t support = KtGetCPUSupport(0);
    if (!(support & KTCPU_SSE2)) return CpuLevel::Scalar;
    if (!(support & KTCPU_SSSE3) || !(support & KTCPU_SSE41)) return CpuLevel::Sse2;
    return support & KTCPU_SSE42 ? CpuLevel::Avx512 : CpuLevel::Sse41;
}

}  // namespace

const char* NameOf(CpuLevel level) noexcept {
    switch (level) {
        case CpuLevel::Scalar:
            return "scalar";
        case CpuLevel::Sse2:
            return "sse2";
        case CpuLevel::Sse41:
            return "sse4.1";
        case CpuLevel::Avx2:
            return "avx2";
        case CpuLevel::Avx512:
            return "avx512";
    }
    return "";
}

CpuLevel CurrentCpuLevel() noexcept {
    return std::min({HighestOfProcessor(), HighestAllowed(), highest_wanted.load(std::memory_order_relaxed)});
}

bool SetCpuLevel(CpuLevel highest) noexcept {
    if (highest > HighestOfProcessor()) return false;
    highest_wanted.store(highest, std::memory_order_relaxed);
    return true;
}

void ResetCpuLevel() noexcept { highest_wanted.store(CpuLevel::Avx512, std::memory_order_relaxed); }

}  // namespace clipfio::audio
