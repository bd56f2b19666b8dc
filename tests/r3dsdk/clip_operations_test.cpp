#include "r3dsdk/clip_operations.h"

#include "r3dsdk/sdk_loader.h"
#include "tests/r3dsdk/candidate_scene.h"

namespace clipfio {
namespace {

class ClipOperations : public CandidateScene {};

TEST_F(ClipOperations, ReachTheLibrary) {
    ASSERT_EQ(Initialize("@good"), 0) << log;
    TakeEvents();
    EXPECT_TRUE(HasClipOperations());
    EXPECT_EQ(CreateClip(), 5u);
    const ClipHandle clip = 100;
    EXPECT_EQ(ClipStatus(clip), 101);
    EXPECT_EQ(LoadClip(clip, "a/b.r3d"), 102);
    CloseClip(clip);
    DestroyClip(clip);
    DestroyClip(0);
    EXPECT_EQ(TakeEvents(), "good LoadClip a/b.r3d\ngood CloseClip 100\ngood DestroyClip 100\n");

    uint64_t count = 0;
    char buffer[1] = {};
    EXPECT_EQ(DecodeAudio(clip, 7, &count, buffer, 8), 104);
    EXPECT_EQ(count, 15u);
    EXPECT_EQ(buffer[0], 'b');
    DecodeSettingsRecord settings;
    GetClipSettings(clip, &settings);
    EXPECT_EQ(settings.imageIso, 105u);
    EXPECT_EQ(ClipWidth(clip), 106u);
    EXPECT_EQ(ClipHeight(clip), 107u);
    EXPECT_EQ(ClipFrameCount(clip), 108u);
    EXPECT_EQ(ClipFrameRate(clip), 100.5f);
    uint64_t largest = 0;
    EXPECT_EQ(AudioBlockInfo(clip, &largest), 109u);
    EXPECT_EQ(largest, 110u);
    EXPECT_EQ(AudioSampleCount(clip), 111u);
    EXPECT_STREQ(FrameTimecode(clip, 3), "00:00:00:03");
    EXPECT_EQ(FrameTimecode(clip, 4), nullptr);
    EXPECT_EQ(GetMetadataNumber(clip, "samplerate"), 100u + 's');
}

TEST_F(ClipOperations, TheLibraryGetsACopyOfTheJob) {
    ASSERT_EQ(Initialize("@good"), 0) << log;
    TakeEvents();
    VideoDecodeJob job;
    job.output = &job;
    EXPECT_EQ(DecodeFrame(100, 12, job), 103);
    const uint64_t words[] = {1, 42};
    job.reserved2 = reinterpret_cast<uintptr_t>(words);
    EXPECT_EQ(DecodeFrame(100, 13, job), 103);
    EXPECT_EQ(TakeEvents(), "good DecodeFrame 12 1 64 0\ngood DecodeFrame 13 1 64 42\n");
    EXPECT_EQ(job.output, &job) << "the library wrote over its own copy";
}

TEST_F(ClipOperations, AreSafeWithoutALibrary) {
    for (bool after_one : {false, true}) {
        if (after_one) {
            ASSERT_EQ(Initialize("@good"), 0);
            Capture([] { SdkFinalize(); });
        }
        EXPECT_FALSE(HasClipOperations());
        EXPECT_EQ(CreateClip(), 0u);
        DestroyClip(5);
        CloseClip(5);
        EXPECT_EQ(ClipStatus(5), kNoClipLibrary);
        EXPECT_EQ(LoadClip(5, "x"), kNoClipLibrary);
        EXPECT_EQ(DecodeFrame(5, 0, {}), kNoClipLibrary);
        uint64_t count = 3;
        EXPECT_EQ(DecodeAudio(5, 0, &count, nullptr, 0), kNoClipLibrary);
        EXPECT_EQ(count, 0u);
        EXPECT_EQ(DecodeAudio(5, 0, nullptr, nullptr, 0), kNoClipLibrary);
        DecodeSettingsRecord settings;
        GetClipSettings(5, &settings);
        EXPECT_EQ(settings.imageIso, 320u);
        EXPECT_EQ(ClipWidth(5) + ClipHeight(5) + ClipFrameCount(5) + AudioSampleCount(5), 0u);
        EXPECT_EQ(ClipFrameRate(5), 0.0f);
        uint64_t largest = 3;
        EXPECT_EQ(AudioBlockInfo(5, &largest), 0u);
        EXPECT_EQ(largest, 0u);
        EXPECT_EQ(AudioBlockInfo(5, nullptr), 0u);
        EXPECT_EQ(FrameTimecode(5, 0), nullptr);
        EXPECT_EQ(GetMetadataNumber(5, "samplerate"), 0u);
    }
}

}  // namespace
}  // namespace clipfio
