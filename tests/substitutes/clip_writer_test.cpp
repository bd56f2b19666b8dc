// The writer of clips: what it writes, what it refuses, what it leaves behind.
#include <gtest/gtest.h>

#include "platform/files.h"
#include "substitutes/decoder_library.h"

namespace clipfio::decoder::test {
namespace {

ClipDescription SmallClip() { return {.width = 4, .height = 2, .sample_rate = 48000, .channel_mask = 1}; }

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

TEST(ClipWriter, DescriptionsThatMakeNoClipAreRefused) {
    const struct {
        const char* part_of_error;
        void (*spoil)(ClipDescription&);
    } kBad[] = {
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
    for (const auto& bad : kBad) {
        const TestFile file;
        ClipDescription d = SmallClip();
        bad.spoil(d);
        ClipWriter writer;
        EXPECT_FALSE(writer.Open(file.Path(), d)) << bad.part_of_error;
        EXPECT_NE(writer.Error().find(bad.part_of_error), std::string::npos) << writer.Error();
        EXPECT_EQ(GetFileAttributesW(file.Path().c_str()), INVALID_FILE_ATTRIBUTES);
        EXPECT_EQ(UnfinishedFiles(file), 0u);
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
    EXPECT_EQ(UnfinishedFiles(file), 0u);
    ASSERT_TRUE(writer.Open(file.Path(), SmallClip()));
    EXPECT_FALSE(writer.AddFrame(nullptr));
    EXPECT_EQ(UnfinishedFiles(file), 0u);
}

}  // namespace
}  // namespace clipfio::decoder::test
