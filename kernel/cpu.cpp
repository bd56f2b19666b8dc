#include "kernel/cpu.h"

#include <cpuid.h>

#include <atomic>

namespace {

constexpr uint32_t kFeatureBits = 0xFF0;

std::atomic<uint32_t> allowed_mask{0xFFFFFFFFu};
std::atomic<uint32_t> class_override{0};

struct LeafBit {
    uint32_t feature;
    bool edx;  // else ECX
    uint32_t bit;
};

// AVX is not listed: it is never reported as usable.
constexpr LeafBit kLeafBits[] = {
    {KTCPU_MMX, true, 23},   {KTCPU_SSE, true, 25},    {KTCPU_SSE2, true, 26},   {KTCPU_SSE3, false, 0},
    {KTCPU_SSSE3, false, 9}, {KTCPU_SSE41, false, 19}, {KTCPU_SSE42, false, 20},
};

uint32_t ClassOf(uint32_t features, uint32_t edx) noexcept {
    const bool cmovAndFpu = (edx & (1u << 15)) != 0 && (edx & 1u) != 0;
    if (!cmovAndFpu) return 0;
    if (!(features & KTCPU_MMX)) return 3;
    if (!(features & KTCPU_SSE)) return 4;
    return features & KTCPU_SSE2 ? 6 : 5;
}

uint32_t DetectUsable() noexcept {
    uint32_t eax = 0, ebx = 0, ecx = 0, edx = 0;
    if (!__get_cpuid(1, &eax, &ebx, &ecx, &edx)) return 0;
    uint32_t features = 0;
    for (const LeafBit& row : kLeafBits) {
        if ((row.edx ? edx : ecx) & (1u << row.bit)) features |= row.feature;
    }
    // All later features stand on SSE.
    if (!(features & KTCPU_SSE)) features &= KTCPU_MMX;
    return features | ClassOf(features, edx);
}

uint32_t Usable() noexcept {
    static const uint32_t usable = DetectUsable();
    return usable;
}

}  // namespace

uint32_t KtGetCPUSupport(uint32_t mask) noexcept {
    if (mask == 0) mask = 0xFFFFFFFFu;
    return (mask & allowed_mask.load(std::memory_order_relaxed) & Usable()) |
           class_override.load(std::memory_order_relaxed);
}

int32_t KtOnlyAllowCPUSupport(uint32_t bits) noexcept {
    if (bits & ~kFeatureBits) return 0;
    uint32_t mask = allowed_mask.load(std::memory_order_relaxed);
    while (!allowed_mask.compare_exchange_weak(mask, (mask & ~kFeatureBits) | bits, std::memory_order_relaxed)) {
    }
    return 1;
}

void KtDisallowCPUSupport(uint32_t bits) noexcept { allowed_mask.fetch_and(~bits, std::memory_order_relaxed); }

void KtAllowCPUSupport(uint32_t bits) noexcept { allowed_mask.fetch_or(bits, std::memory_order_relaxed); }

void KtSetCPUClassBySupport() noexcept {
    const uint32_t allowed = allowed_mask.fetch_and(~uint32_t{KTCPU_CLASS}, std::memory_order_relaxed);
    uint32_t processorClass = 0;
    if (allowed & KTCPU_SSE2) {
        processorClass = 6;
    } else if (allowed & KTCPU_SSE) {
        processorClass = 5;
    } else if (allowed & KTCPU_MMX) {
        processorClass = 4;
    }
    class_override.store(processorClass, std::memory_order_relaxed);
}
