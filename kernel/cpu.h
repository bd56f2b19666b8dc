// What the processor can do, and what of it may be used.
//
// The masks are for the start of a program: they may be read on any thread, and a change reaches whoever asks next.
#pragma once

#include "platform/base.h"

// Features, and the processor class in the low four bits: 3 with CMOV and FPU, then 4 with MMX, 5 with SSE, 6 with
// SSE2.
enum KTCPU : uint32_t {
    KTCPU_CLASS = 0xF,
    KTCPU_MMX = 0x10,
    KTCPU_SSE = 0x20,
    KTCPU_SSE2 = 0x40,
    KTCPU_SSE3 = 0x80,
    KTCPU_SSSE3 = 0x100,
    KTCPU_SSE41 = 0x200,
    KTCPU_SSE42 = 0x400,
};

// The features of `mask` (0 for all) that are there and allowed, with the class set by KtSetCPUClassBySupport.
KT_API uint32_t KtGetCPUSupport(uint32_t mask) noexcept;

// Allows exactly these of the features 0x10 to 0x800 and touches nothing else. Bits outside them: 0, and no change.
KT_API int32_t KtOnlyAllowCPUSupport(uint32_t bits) noexcept;
KT_API void KtDisallowCPUSupport(uint32_t bits) noexcept;
KT_API void KtAllowCPUSupport(uint32_t bits) noexcept;

// From now on the class tells what is allowed (6 for SSE2, 5 for SSE, 4 for MMX, else 0), not what the processor is.
KT_API void KtSetCPUClassBySupport() noexcept;
