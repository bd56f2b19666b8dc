// The processor's features and the masks that restrict them.
#include "kernel/cpu.h"

#include <cpuid.h>
#include <gtest/gtest.h>

#include <utility>

namespace {

// With nothing allowed the class that was set becomes 0 again, which is as if none had been set.
class CpuSupport : public testing::Test {
  protected:
    void TearDown() override {
        KtDisallowCPUSupport(0x70);
        KtSetCPUClassBySupport();
        KtAllowCPUSupport(0xFFFFFFFF);
    }
};

TEST_F(CpuSupport, ReportsWhatTheProcessorHas) {
    const uint32_t all = KtGetCPUSupport(0);
    EXPECT_EQ(all & KTCPU_CLASS, 6u);  // every 64-bit processor
    EXPECT_EQ(all & 0x70, 0x70u);
    EXPECT_EQ(all & ~0x7FFu, 0u);  // AVX and the rest are never usable
    uint32_t a = 0, b = 0, c = 0, d = 0;
    ASSERT_TRUE(__get_cpuid(1, &a, &b, &c, &d));
    EXPECT_EQ((all & KTCPU_SSE3) != 0, (c & 1) != 0);
    EXPECT_EQ((all & KTCPU_SSSE3) != 0, (c >> 9 & 1) != 0);
    EXPECT_EQ((all & KTCPU_SSE41) != 0, (c >> 19 & 1) != 0);
    EXPECT_EQ((all & KTCPU_SSE42) != 0, (c >> 20 & 1) != 0);
    EXPECT_EQ(KtGetCPUSupport(KTCPU_SSE), uint32_t{KTCPU_SSE});
}

TEST_F(CpuSupport, TheClassStaysUntilItIsSetByWhatIsAllowed) {
    KtDisallowCPUSupport(KTCPU_SSE2);
    EXPECT_EQ(KtGetCPUSupport(KTCPU_SSE2), 0u);
    EXPECT_EQ(KtGetCPUSupport(0) & KTCPU_CLASS, 6u);
    KtSetCPUClassBySupport();
    EXPECT_EQ(KtGetCPUSupport(KTCPU_MMX), KTCPU_MMX | 5u);  // the set class comes with every answer
    for (const auto& [feature, left] : {std::pair<uint32_t, uint32_t>{KTCPU_SSE, 4}, {KTCPU_MMX, 0}}) {
        KtDisallowCPUSupport(feature);
        KtSetCPUClassBySupport();
        EXPECT_EQ(KtGetCPUSupport(KTCPU_CLASS), left);
    }
}

TEST_F(CpuSupport, OnlyAllowReplacesTheFeatureBitsAlone) {
    KtDisallowCPUSupport(0x1);
    EXPECT_EQ(KtOnlyAllowCPUSupport(KTCPU_SSE), 1);
    EXPECT_EQ(KtGetCPUSupport(0), KTCPU_SSE | 6u);
    EXPECT_EQ(KtOnlyAllowCPUSupport(0x1000), 0);
    EXPECT_EQ(KtOnlyAllowCPUSupport(KTCPU_SSE2 | 1), 0);
    EXPECT_EQ(KtGetCPUSupport(0), KTCPU_SSE | 6u);
    KtAllowCPUSupport(KTCPU_SSE2);
    EXPECT_EQ(KtGetCPUSupport(0), KTCPU_SSE | KTCPU_SSE2 | 6u);
}

}  // namespace
