#include "r3dsdk/clip_operations.h"

#include "tests/reader/reader_scene.h"

namespace clipfio {
namespace {

class ClipOperations : public reader_tests::ReaderTest {};

TEST_F(ClipOperations, TheLibraryGetsACopyOfTheJob) {
    const ClipHandle clip = CreateClip();
    DecodeSettingsRecord settings;
    VideoDecodeJob job;
    job.settings = &settings;
    job.output = &job;
    const uint64_t words[] = {1, 42};
    for (const uint64_t* given : {static_cast<const uint64_t*>(nullptr), words}) {
        job.reserved2 = reinterpret_cast<uintptr_t>(given);
        EXPECT_EQ(DecodeFrame(clip, 12, job), 2);  // no clip is loaded
        EXPECT_EQ(Told().jobs.back().frame, 12u);
        EXPECT_EQ(Told().jobs.back().job.size, 64u);
        EXPECT_EQ(Told().jobs.back().job.reserved2, given ? 42u : 0u);
        EXPECT_EQ(job.output, &job) << "the library wrote over its own copy";
    }
    DestroyClip(clip);
    DestroyClip(0);
}

TEST_F(ClipOperations, AreSafeWithoutALibrary) {
    file_class_.Reset();
    reader_tests::DetachReader();
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

}  // namespace
}  // namespace clipfio
