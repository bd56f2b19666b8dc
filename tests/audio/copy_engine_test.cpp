// KtAudio_Copy, and which implementation a look-up gives.
#include "audio/copy_engine.h"

#include <cstring>

#include "audio/cpu_level.h"
#include "audio/sample_data.h"
#include "audio/wfx.h"
#include "kernel/cpu.h"

namespace clipfio::audio {
namespace {

struct SomeFormats {
    tWAVEFORMATEX wfx16, wfx48, wfx64;
    _ktwaveformat record16, recordFloat;

    SomeFormats() {
        KtAudio_InitWfx(&wfx16, 48000, KTSAMPLETYPE_PCM16, 2);
        KtAudio_InitWfx(&wfx48, 48000, KTSAMPLETYPE_PCM24IN32, 2);
        KtAudio_InitWfx(&wfx64, 48000, KTSAMPLETYPE_PCM16BE, 1);
        record16.Init(48000, KTSAMPLETYPE_PCM16, 2, 0, 32);
        recordFloat.Init(48000, KTSAMPLETYPE_FLOAT32, 1, 0, 32);
    }
};

TEST(AudioCopy, TheSourceSaysHowManySamplesAFrameHas) {
    const SomeFormats formats;
    const int16_t source[] = {16384, -16384, 8192, -32768, 1, 1};
    float destination[6] = {9, 9, 9, 9, 9, 9};
    // The destination's record says mono: two frames of the stereo source are four samples all the same.
    EXPECT_EQ(KtAudio_Copy(&formats.recordFloat, destination, &formats.wfx16, source, 2, 0.5f), S_OK);
    EXPECT_EQ(std::vector<float>(destination, destination + 6),
              (std::vector<float>{0.25f, -0.25f, 0.125f, -0.5f, 9, 9}));
    EXPECT_EQ(KtAudio_Copy(&formats.recordFloat, destination, &formats.record16, source, 1, 2.0f), S_OK);
    EXPECT_EQ(destination[0], 1.0f);
    int16_t swapped[2] = {};
    EXPECT_EQ(KtAudio_Copy(&formats.wfx64, swapped, &formats.record16, source, 1, 1.0f), S_OK);
    EXPECT_EQ(swapped[0], 0x0040);
    EXPECT_EQ(KtAudio_Copy(&formats.wfx64, swapped, &formats.wfx16, source + 4, 1, 1.0f), S_OK);
    EXPECT_EQ(swapped[0], 0x0100);
}

TEST(AudioCopy, FailuresAndEmptyCopiesWriteNothing) {
    const SomeFormats formats;
    const int32_t source[] = {1, 2, 3, 4};
    uint8_t destination[16];
    std::memset(destination, 0xEE, sizeof destination);
    EXPECT_EQ(KtAudio_Copy(&formats.wfx64, destination, &formats.wfx48, source, 2, 1.0f), E_NOTIMPL);
    for (const int32_t frames : {0, -1, std::numeric_limits<int32_t>::min()}) {
        EXPECT_EQ(KtAudio_Copy(&formats.wfx64, destination, &formats.wfx48, source, frames, 1.0f), S_OK);
        EXPECT_EQ(KtAudio_Copy(&formats.wfx16, destination, &formats.wfx16, source, frames, 1.0f), S_OK);
        KtAudio_GetCopyFunction2(KTSAMPLETYPE_PCM16, KTSAMPLETYPE_PCM32)(destination, source, frames, 1.0f);
    }
    EXPECT_EQ(KtAudio_Copy(&formats.wfx16, destination, &formats.wfx16, nullptr, 1, 1.0f), E_INVALIDARG);
    EXPECT_EQ(KtAudio_Copy(static_cast<const tWAVEFORMATEX*>(nullptr), destination, &formats.wfx16, source, 1, 1.0f),
              E_INVALIDARG);
    for (const uint8_t byte : destination) ASSERT_EQ(byte, 0xEE);
}

TEST(AudioCopy, NormalizeFactors) {
    EXPECT_EQ(KtAudio_GetNormalizeFactor(8), 128.0);
    EXPECT_EQ(KtAudio_GetNormalizeFactor(16), 32768.0);
    EXPECT_EQ(KtAudio_GetNormalizeFactor(24), 8388608.0);
    EXPECT_EQ(KtAudio_GetNormalizeFactor(32), 2147483648.0);
    for (const uint32_t bits : {0u, 12u, 20u, 64u, 0xFFFFFFFFu}) EXPECT_EQ(KtAudio_GetNormalizeFactor(bits), 1.0);
}

// What may be used is asked at every look-up.
class ChosenConverter : public testing::Test {
  protected:
    void TearDown() override {
        KtAllowCPUSupport(0xFF0);
        ResetCpuLevel();
    }

    static bool IsScalar(KTSAMPLETYPE destination, KTSAMPLETYPE source) {
        return KtAudio_GetCopyFunction2(destination, source) == kReferenceConverters.Find(destination, source);
    }
};

TEST_F(ChosenConverter, FollowsTheFeaturesThatAreAllowed) {
    constexpr KTSAMPLETYPE k16 = KTSAMPLETYPE_PCM16, kF = KTSAMPLETYPE_FLOAT32, kD = KTSAMPLETYPE_FLOAT64;
    ASSERT_FALSE(IsScalar(k16, kF) || IsScalar(kF, k16) || IsScalar(kF, kD) || IsScalar(kD, kF));
    KtDisallowCPUSupport(KTCPU_SSE);
    EXPECT_FALSE(IsScalar(k16, kF) || IsScalar(kF, k16));
    EXPECT_TRUE(IsScalar(kF, kD) && IsScalar(kD, kF));
    KtAllowCPUSupport(KTCPU_SSE);
    KtDisallowCPUSupport(KTCPU_SSE2);
    EXPECT_TRUE(IsScalar(k16, kF) && IsScalar(kF, k16) && IsScalar(kF, kD) && IsScalar(kD, kF));
    KtAllowCPUSupport(KTCPU_SSE2);
    KtDisallowCPUSupport(KTCPU_SSSE3);
    EXPECT_EQ(CurrentCpuLevel(), CpuLevel::Sse2);
    KtAllowCPUSupport(KTCPU_SSSE3);
    KtDisallowCPUSupport(KTCPU_SSE42);
    EXPECT_EQ(CurrentCpuLevel(), std::min(CpuLevel::Sse41, VectorLevels().back()));
}

}  // namespace
}  // namespace clipfio::audio
