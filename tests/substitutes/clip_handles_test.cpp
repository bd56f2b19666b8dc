// Handles: their life, wrong ones, and many threads on one.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "platform/endian.h"
#include "platform/text.h"
#include "substitutes/decoder_library.h"

namespace clipfio::decoder::test {
namespace {

// Everything that a handle without a clip must bear.
void ExpectNoClip(uintptr_t handle) {
    EXPECT_NE(Library().clip_status(handle), 0u);
    EXPECT_EQ(Library().clip_width(handle), 0u);
    EXPECT_EQ(Library().clip_height(handle), 0u);
    EXPECT_EQ(Library().clip_frame_count(handle), 0u);
    EXPECT_EQ(Library().clip_frame_rate(handle), 0.0f);
    EXPECT_EQ(Library().audio_sample_count(handle), 0u);
    uint64_t value = 1;
    EXPECT_EQ(Library().audio_block_info(handle, &value), 0u);
    EXPECT_EQ(value, 0u);
    EXPECT_EQ(Library().frame_timecode(handle, 0), nullptr);
    EXPECT_EQ(Library().get_metadata_number(handle, "samplerate"), 0u);
    DecodeSettingsRecord look = NeutralLook();
    uint8_t pixel[4];
    const VideoDecodeJob job = JobOf(pixel, 1, 1, PixelType::Bgra8, look);
    EXPECT_EQ(Library().decode_frame(handle, 0, &job), Number(Status::NoClip));
    value = 1;
    EXPECT_EQ(Library().decode_audio(handle, 0, &value, pixel, sizeof pixel), Number(Status::NoClip));
    EXPECT_EQ(value, 0u);
    Library().get_clip_settings(handle, &look);
    EXPECT_EQ(look.imageGammaCurve, DecodeSettingsRecord{}.imageGammaCurve);
    Library().get_clip_settings(handle, nullptr);
    Library().close_clip(handle);
}

TEST(ClipHandles, WrongAndEndedHandlesDoNoHarm) {
    const TestFile file;
    WriteClip(file, {.width = 2, .height = 2}, {NoisePicture(2, 2, 1)});
    const uintptr_t ended = Library().create_clip();
    ASSERT_EQ(Library().load_clip(ended, file.Utf8().c_str()), 0u);
    Library().destroy_clip(ended);  // with its clip still loaded
    for (const uintptr_t handle :
         {uintptr_t{0}, ended, ended + 1000, reinterpret_cast<uintptr_t>(&file), ~uintptr_t{0}}) {
        EXPECT_EQ(Library().load_clip(handle, file.Utf8().c_str()), Number(Status::NoClip));
        ExpectNoClip(handle);
        Library().destroy_clip(handle);
    }
}

TEST(ClipHandles, TheEndOfTheLibraryEndsClipsThatWereLeft) {
    const TestFile file;
    WriteClip(file, {.width = 2, .height = 2}, {NoisePicture(2, 2, 1)});
    const TestClip left(file);
    ASSERT_EQ(Library().clip_status(left.Handle()), 0u);
    void (*const finalize)() = Symbol("RED_LIB_FINALIZE");
    finalize();
    EXPECT_EQ(Library().clip_status(left.Handle()), Number(Status::NoClip));
}

TEST(ClipHandles, AHandleIsLoadedClosedAndLoadedAgain) {
    const TestFile first, second, missing;
    WriteClip(first, {.width = 2, .height = 3}, {NoisePicture(2, 3, 1)});
    WriteClip(second, {.width = 4, .height = 5}, {NoisePicture(4, 5, 1)});
    const TestClip clip;
    ExpectNoClip(clip.Handle());
    EXPECT_EQ(clip.Load(first.Utf8()), 0u);
    EXPECT_EQ(Library().clip_status(clip.Handle()), 0u);
    EXPECT_EQ(clip.Load(second.Utf8()), 0u) << "over the first";
    EXPECT_EQ(Library().clip_width(clip.Handle()), 4u);
    Library().close_clip(clip.Handle());
    ExpectNoClip(clip.Handle());
    EXPECT_EQ(clip.Load(first.Utf8()), 0u);
    EXPECT_EQ(clip.Load(missing.Utf8()), Number(Status::CannotOpen));
    EXPECT_EQ(Library().clip_status(clip.Handle()), Number(Status::CannotOpen));
    ExpectNoClip(clip.Handle());
    EXPECT_EQ(clip.Load(""), Number(Status::BadArguments));
    EXPECT_EQ(Library().load_clip(clip.Handle(), nullptr), Number(Status::BadArguments));
}

TEST(ClipHandles, APathIsUtf8OrLatin1) {
    const TestFile file("-\xC3\xA9t\xC3\xA9 \xC3\xBF.r3d");
    WriteClip(file, {.width = 2, .height = 2}, {NoisePicture(2, 2, 1)});
    const TestClip clip;
    EXPECT_EQ(clip.Load(file.Utf8()), 0u);
    std::string latin1;
    for (const WCHAR c : file.Path()) latin1.push_back(static_cast<char>(c));
    EXPECT_EQ(clip.Load(latin1), 0u);
    EXPECT_EQ(clip.Load(latin1 + "x"), Number(Status::CannotOpen));
}

// Two picture threads with looks of their own, two sound threads, and one that asks: everyone gets what is his.
TEST(ClipHandles, PictureAndSoundOfOneClipOnManyThreads) {
    constexpr uint32_t kWidth = 320, kHeight = 200;
    constexpr size_t kSamples = 9000;
    const ClipDescription d{.width = kWidth, .height = kHeight, .sample_rate = 48000, .channel_mask = 1};
    const std::vector<std::vector<uint16_t>> pictures = {NoisePicture(kWidth, kHeight, 1),
                                                         NoisePicture(kWidth, kHeight, 2)};
    std::vector<int32_t> sound(kSamples);
    for (size_t i = 0; i < kSamples; ++i) sound[i] = static_cast<int32_t>(i);
    const TestFile file;
    WriteClip(file, d, pictures, sound);
    const TestClip clip(file);
    DecodeSettingsRecord brighter = NeutralLook();
    brighter.exposureCompensation = 1.0f;
    const std::vector<uint16_t> bright = clip.Rgb16(0, DecodeMode::HalfGood, brighter);
    ASSERT_FALSE(bright.empty());

    std::atomic<int> wrong = 0;
    std::atomic<bool> go = false;
    const auto run = [&](auto step) {
        return std::jthread([&go, step] {
            while (!go) std::this_thread::yield();
            for (uint64_t i = 0; i < 40; ++i) step(i);
        });
    };
    const auto show = [&](uint64_t i) {
        if (clip.Rgb16(i % 2, DecodeMode::FullPremium, NeutralLook()) != pictures[i % 2]) ++wrong;
    };
    const auto show_bright = [&](uint64_t) {
        if (clip.Rgb16(0, DecodeMode::HalfGood, brighter) != bright) ++wrong;
    };
    const auto listen = [&](uint64_t i) {
        const uint64_t first = i * 211 % kSamples;
        std::vector<uint8_t> out(500 * 4);
        uint64_t count = 500;
        if (Library().decode_audio(clip.Handle(), first, &count, out.data(), out.size()) != 0) ++wrong;
        for (uint64_t k = 0; k < count; ++k) {
            if (platform::LoadBig<int32_t>(out.data() + k * 4) != sound[first + k]) ++wrong;
        }
    };
    const auto ask = [&](uint64_t i) {
        const char* text = Library().frame_timecode(clip.Handle(), i % 2);
        if (text == nullptr || std::string(text) != (i % 2 == 0 ? "00:00:00:00" : "00:00:00:01")) ++wrong;
    };
    {
        const std::jthread threads[] = {run(show), run(show_bright), run(listen), run(listen), run(ask)};
        go = true;
    }
    EXPECT_EQ(wrong, 0);
}

TEST(ClipHandles, ClosingWhileOthersReadHarmsNobody) {
    const TestFile file;
    WriteClip(file, {.width = 200, .height = 100}, {NoisePicture(200, 100, 1)});
    const TestClip clip(file);
    std::atomic<bool> stop = false;
    std::jthread reader([&] {
        while (!stop) (void)clip.Bgra8(0, DecodeMode::FullPremium, NeutralLook());
    });
    for (int i = 0; i < 50; ++i) {
        Library().close_clip(clip.Handle());
        ASSERT_EQ(clip.Load(file.Utf8()), 0u);
    }
    stop = true;
}

}  // namespace
}  // namespace clipfio::decoder::test
