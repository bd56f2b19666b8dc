// What a client asks of a clip beside its pictures: measures, settings, timecode, sound.
#include <gtest/gtest.h>

#include <cstring>

#include "platform/endian.h"
#include "substitutes/decoder/timecode.h"
#include "substitutes/decoder_library.h"

namespace clipfio::decoder::test {
namespace {

std::vector<int32_t> CountedSound(size_t values) {
    std::vector<int32_t> sound(values);
    for (size_t i = 0; i < values; ++i) sound[i] = static_cast<int32_t>(i * 2654435761u);
    return sound;
}

ClipDescription SmallClip() {
    return {.width = 6,
            .height = 4,
            .rate_numerator = 24000,
            .rate_denominator = 1001,
            .sample_rate = 48000,
            .sample_size = 24,
            .channel_mask = 0x3};
}

TEST(ClipFacts, MeasuresAndSettingsAreThoseOfTheDescription) {
    ClipDescription d = SmallClip();
    d.channel_mask = 0xB;
    d.settings.colorTemperature = 3200.0f;
    d.settings.imageIso = 800;
    d.settings.unlisted8 = 77;
    const TestFile file;
    WriteClip(file, d, {NoisePicture(6, 4, 1), NoisePicture(6, 4, 2)}, CountedSound(3 * 5000));
    const TestClip clip(file);
    const uintptr_t h = clip.Handle();
    EXPECT_EQ(Library().clip_width(h), 6u);
    EXPECT_EQ(Library().clip_height(h), 4u);
    EXPECT_EQ(Library().clip_frame_count(h), 2u);
    EXPECT_EQ(Library().clip_frame_rate(h), static_cast<float>(24000.0 / 1001.0));
    EXPECT_EQ(Library().audio_sample_count(h), 5000u);
    EXPECT_EQ(Library().get_metadata_number(h, "samplerate"), 48000u);
    EXPECT_EQ(Library().get_metadata_number(h, "sample_size"), 24u);
    EXPECT_EQ(Library().get_metadata_number(h, "channel_mask"), 0xBu);
    EXPECT_EQ(Library().get_metadata_number(h, "Samplerate"), 0u);
    EXPECT_EQ(Library().get_metadata_number(h, nullptr), 0u);
    // A block holds the 2002 samples of one frame, for three channels.
    uint64_t largest = 0;
    EXPECT_EQ(Library().audio_block_info(h, &largest), 3u);
    EXPECT_EQ(largest, 2002u * 3 * 4);
    EXPECT_EQ(Library().audio_block_info(h, nullptr), 3u);
    DecodeSettingsRecord settings;
    Library().get_clip_settings(h, &settings);
    EXPECT_EQ(std::memcmp(&settings, &d.settings, sizeof settings), 0);
}

TEST(ClipFacts, AClipWithoutSoundOrWithoutFramesHasNone) {
    ClipDescription d = SmallClip();
    d.sample_rate = 0;
    const TestFile file;
    WriteClip(file, d, {});
    const TestClip clip(file);
    uint64_t largest = 1, count = 1;
    int32_t sample = 0;
    EXPECT_EQ(Library().clip_status(clip.Handle()), 0u);
    EXPECT_EQ(Library().clip_frame_count(clip.Handle()), 0u);
    EXPECT_EQ(Library().frame_timecode(clip.Handle(), 0), nullptr);
    EXPECT_EQ(Library().frame_timecode(clip.Handle(), ~uint64_t{0}), nullptr);
    EXPECT_EQ(Library().audio_block_info(clip.Handle(), &largest), 0u);
    EXPECT_EQ(largest, 0u);
    EXPECT_EQ(Library().decode_audio(clip.Handle(), 0, &count, &sample, 4), Number(Status::EndOfSound));
    EXPECT_EQ(count, 0u);
}

TEST(ClipFacts, SoundIsBigEndianAndEndsWhereItEnds) {
    constexpr uint64_t kAll = 5000, kMany = ~uint64_t{0};
    constexpr struct {
        uint64_t first, wanted, bytes;
        Status status;
        uint64_t given;
    } kReads[] = {
        {0, 100, 800, Status::Good, 100},
        {0, kAll, kAll * 8, Status::Good, kAll},
        {0, kAll + 10, kAll * 8 + 80, Status::Good, kAll},
        {4990, 100, 800, Status::Good, 10},
        {4999, 1, 8, Status::Good, 1},
        {5000, 1, 8, Status::EndOfSound, 0},
        {kMany, 1, 8, Status::EndOfSound, 0},
        {10, 100, 80, Status::Good, 10},          // the buffer holds less than the count says
        {10, kMany, 8 * 7 + 5, Status::Good, 7},  // and what is left over of it stays unused
        {10, 0, 800, Status::Good, 0},
        {10, 1, 7, Status::BadArguments, 0},
        {10, 1, 0, Status::BadArguments, 0},
    };
    const std::vector<int32_t> sound = CountedSound(kAll * 2);
    const TestFile file;
    WriteClip(file, SmallClip(), {NoisePicture(6, 4, 1)}, sound);
    const TestClip clip(file);
    for (const auto& read : kReads) {
        std::vector<uint8_t> out(kAll * 8 + 80, 0x5A);
        uint64_t count = read.wanted;
        const uint32_t status = Library().decode_audio(clip.Handle(), read.first, &count, out.data(), read.bytes);
        EXPECT_EQ(status, Number(read.status)) << "from " << read.first << ", " << read.wanted;
        ASSERT_EQ(count, read.given) << "from " << read.first << ", " << read.wanted;
        for (uint64_t i = 0; i < count * 2; ++i) {
            ASSERT_EQ(platform::LoadBig<int32_t>(out.data() + i * 4), sound[read.first * 2 + i]);
        }
        for (uint64_t i = count * 8; i < out.size(); ++i) ASSERT_EQ(out[i], 0x5A);
    }
    uint64_t count = 1;
    EXPECT_EQ(Library().decode_audio(clip.Handle(), 0, &count, nullptr, 8), Number(Status::BadArguments));
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(Library().decode_audio(clip.Handle(), 0, nullptr, &count, 8), Number(Status::BadArguments));
}

constexpr struct {
    uint32_t numerator, denominator;
    bool drop;
    uint64_t frame;
    const char* text;
} kTimecodes[] = {
    {24, 1, false, 24 * 86400 - 1, "23:59:59:23"},
    {24, 1, false, 24 * 86400, "00:00:00:00"},
    {24000, 1001, false, 86412, "01:00:00:12"},
    {30000, 1001, false, 1800, "00:01:00:00"},
    {30000, 1001, true, 1800, "00:01:00;02"},
    {30000, 1001, true, 2589408, "00:00:00;00"},
    {60000, 1001, true, 3600, "00:01:00;04"},
    {120, 1, false, 119, "00:00:00:119"},
    {1, 4, false, 3, "00:00:03:00"},
};

TEST(ClipFacts, TimecodeRows) {
    for (const auto& row : kTimecodes) {
        char text[kTimecodeChars];
        FormatTimecode(row.frame, {NominalFps(row.numerator, row.denominator), row.drop}, text);
        EXPECT_STREQ(text, row.text) << row.numerator << "/" << row.denominator << " frame " << row.frame;
    }
}

TEST(ClipFacts, DropFrameSkipsTheRightNumbersThroughAWholeDay) {
    for (const uint32_t fps : {30u, 60u}) {
        const TimecodeRate rate{fps, true};
        int wrong = 0;
        uint64_t frame = 0;
        for (uint32_t second = 0; second < 86400; ++second) {
            const bool skips = second % 60 == 0 && second / 60 % 10 != 0;
            for (uint32_t number = skips ? fps / 15 : 0; number < fps; ++number, ++frame) {
                const Timecode wanted{second / 3600, second / 60 % 60, second % 60, number};
                if (TimecodeOf(frame, rate) != wanted && ++wrong <= 10) ADD_FAILURE() << "frame " << frame;
            }
        }
        EXPECT_EQ(frame, FramesPerDay(rate));
    }
}

}  // namespace
}  // namespace clipfio::decoder::test
