// The writer of clips: what it writes, what it refuses, what it leaves behind.
#include <gtest/gtest.h>

#include <functional>

#include "platform/files.h"
#include "substitutes/decoder_library.h"

namespace clipfio::decoder::test {
namespace {

bool Exists(const WString& path) { return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES; }

void ExpectNothingLeft(const TestFile& file) { EXPECT_EQ(UnfinishedFiles(file), 0u); }

ClipDescription SmallClip() { return {.width = 4, .height = 2, .sample_rate = 48000, .channel_mask = 1}; }

TEST(ClipWriter, NothingIsThereUntilItIsFinished) {
    const TestFile file;
    const std::vector<uint16_t> picture = NoisePicture(4, 2, 1);
    const int32_t sound[] = {1, 2, 3};
    {
        ClipWriter writer;
        ASSERT_TRUE(writer.Open(file.Path(), SmallClip()));
        EXPECT_TRUE(writer.AddAudio(sound, 3));
        EXPECT_TRUE(writer.AddFrame(picture.data()));
        EXPECT_EQ(writer.FrameCount(), 1u);
        EXPECT_FALSE(Exists(file.Path()));
        EXPECT_EQ(UnfinishedFiles(file), 2u);
    }
    EXPECT_FALSE(Exists(file.Path()));
    ExpectNothingLeft(file);

    WriteClip(file, SmallClip(), {picture}, {1, 2, 3});
    const std::vector<uint8_t> before = file.Bytes();
    {
        ClipWriter writer;
        ASSERT_TRUE(writer.Open(file.Path(), SmallClip()));
        EXPECT_TRUE(writer.AddFrame(picture.data()));
    }
    EXPECT_EQ(file.Bytes(), before) << "an older clip stays when the new one is given up";
    WriteClip(file, SmallClip(), {picture, picture});
    EXPECT_NE(file.Bytes(), before);
    ExpectNothingLeft(file);
}

TEST(ClipWriter, PicturesAndSoundComeInAnyOrder) {
    const TestFile one, other;
    const std::vector<uint16_t> picture = NoisePicture(4, 2, 1);
    std::vector<int32_t> sound(600000);
    for (size_t i = 0; i < sound.size(); ++i) sound[i] = static_cast<int32_t>(i * 77777);
    WriteClip(one, SmallClip(), {picture, picture}, sound);
    ClipWriter writer;
    ASSERT_TRUE(writer.Open(other.Path(), SmallClip()));
    EXPECT_TRUE(writer.AddAudio(sound.data(), 1));
    EXPECT_TRUE(writer.AddFrame(picture.data()));
    EXPECT_TRUE(writer.AddAudio(nullptr, 0));
    EXPECT_TRUE(writer.AddAudio(sound.data() + 1, sound.size() - 1));
    EXPECT_TRUE(writer.AddFrame(picture.data()));
    EXPECT_TRUE(writer.Finish());
    EXPECT_TRUE(one.Bytes() == other.Bytes());
    EXPECT_FALSE(writer.Finish());
    EXPECT_FALSE(writer.AddFrame(picture.data()));
    EXPECT_FALSE(writer.Error().empty());
}

TEST(ClipWriter, TwoWritersOfOneClipDoNotMeet) {
    const TestFile file, alone;
    const std::vector<uint16_t> picture = NoisePicture(4, 2, 1), other = NoisePicture(4, 2, 2);
    const int32_t sound[] = {1, 2, 3};
    WriteClip(alone, SmallClip(), {other, other}, {1, 2, 3});
    ClipWriter first, second;
    ASSERT_TRUE(first.Open(file.Path(), SmallClip()));
    EXPECT_TRUE(first.AddFrame(picture.data()) && first.AddAudio(sound, 1));
    ASSERT_TRUE(second.Open(file.Path(), SmallClip()));
    EXPECT_TRUE(second.AddFrame(other.data()) && second.AddAudio(sound, 3) && second.AddFrame(other.data()));
    EXPECT_TRUE(first.Finish());
    EXPECT_TRUE(second.Finish()) << "the last one to finish wins";
    EXPECT_EQ(file.Bytes(), alone.Bytes());
    ExpectNothingLeft(file);
}

struct BadDescription {
    const char* part_of_error;
    std::function<void(ClipDescription&)> spoil;
};

TEST(ClipWriter, DescriptionsThatMakeNoClipAreRefused) {
    const BadDescription kBad[] = {
        {"width", [](auto& d) { d.width = 0; }},
        {"height", [](auto& d) { d.height = 16385; }},
        {"rate", [](auto& d) { d.rate_numerator = 0; }},
        {"rate", [](auto& d) { d.rate_denominator = 0; }},
        {"drop-frame", [](auto& d) { d.drop_frame = true; }},
        {"timecode", [](auto& d) { d.start_frame = 24 * 86400; }},
        {"coding", [](auto& d) { d.coding = PictureCoding{7}; }},
        {"settings", [](auto& d) { d.settings.size = 1; }},
        {"sample size", [](auto& d) { d.sample_size = 20; }},
        {"channel mask", [](auto& d) { d.channel_mask = 0; }},
        {"channel mask", [](auto& d) { d.channel_mask = 0x1F; }},
    };
    for (const BadDescription& bad : kBad) {
        const TestFile file;
        ClipDescription d = SmallClip();
        bad.spoil(d);
        ClipWriter writer;
        EXPECT_FALSE(writer.Open(file.Path(), d)) << bad.part_of_error;
        EXPECT_NE(writer.Error().find(bad.part_of_error), std::string::npos) << writer.Error();
        EXPECT_FALSE(Exists(file.Path()));
        ExpectNothingLeft(file);
    }
}

TEST(ClipWriter, FailuresAreToldAndLeaveNothing) {
    const TestFile file;
    ClipWriter writer;
    EXPECT_FALSE(writer.AddFrame(nullptr));
    EXPECT_FALSE(writer.Open({}, SmallClip()));
    EXPECT_FALSE(writer.Open(file.Path() + W("/no/such/folder.r3d"), SmallClip()));
    EXPECT_NE(writer.Error().find("no such folder"), std::string::npos) << writer.Error();
    ClipDescription silent = SmallClip();
    silent.sample_rate = 0;
    ASSERT_TRUE(writer.Open(file.Path(), silent));
    const int32_t sound = 1;
    EXPECT_FALSE(writer.AddAudio(&sound, 1));
    EXPECT_FALSE(writer.Finish()) << "a failed clip stays failed";
    EXPECT_NE(writer.Error().find("without sound"), std::string::npos) << "and the first reason is kept";
    ExpectNothingLeft(file);
    ASSERT_TRUE(writer.Open(file.Path(), SmallClip()));
    EXPECT_FALSE(writer.AddFrame(nullptr));
    ExpectNothingLeft(file);
}

}  // namespace
}  // namespace clipfio::decoder::test
