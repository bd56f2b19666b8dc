// Every call of the system and every allocation fails once: an error, nothing left behind, and all is well afterwards.
#include <gtest/gtest.h>

#include "platform/files.h"
#include "substitutes/decoder_library.h"
#include "support/fail_each.h"

namespace clipfio::decoder::test {
namespace {

using support::FailingCall;

bool Exists(const WString& path) { return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES; }

ClipDescription SmallClip() { return {.width = 8, .height = 8, .sample_rate = 48000, .channel_mask = 1}; }

template <class Failing>
void ExpectTheWriterLeavesNothing() {
    const TestFile file;
    const std::vector<uint16_t> picture = NoisePicture(8, 8, 1);
    const std::vector<int32_t> sound(100, 5);
    const ClipDescription description = SmallClip();
    const WString& path = file.Path();
    support::FailEach<Failing>(
        [&] {
            ClipWriter writer;
            const bool good = writer.Open(path, description) && writer.AddFrame(picture.data()) &&
                              writer.AddAudio(sound.data(), sound.size()) && writer.Finish();
            EXPECT_EQ(writer.Error().empty(), good);
            return good;
        },
        [&](bool good, bool hit) {
            EXPECT_TRUE(good || hit);
            EXPECT_EQ(Exists(path), good);
            EXPECT_EQ(UnfinishedFiles(file), 0u);
            DeleteFileW(path.c_str());
        });
}

template <class Failing>
void ExpectTheDecoderRecovers() {
    static_cast<void>(Library());  // loaded before anything fails
    const TestFile file;
    const std::vector<uint16_t> picture = NoisePicture(8, 8, 1);
    WriteClip(file, SmallClip(), {picture}, std::vector<int32_t>(100, 5));
    const std::string path = file.Utf8();
    const DecodeSettingsRecord look = NeutralLook();
    std::vector<uint16_t> out(picture.size());
    std::vector<int32_t> sound(100);
    const VideoDecodeJob job = JobOf(out.data(), 8, 8, PixelType::Rgb16, look);
    uint64_t count = 0;
    uint32_t decoded = 0, heard = 0;
    support::FailEach<Failing>(
        [&] {
            count = sound.size();
            const uintptr_t clip = Library().create_clip();
            (void)Library().load_clip(clip, path.c_str());
            decoded = Library().decode_frame(clip, 0, &job);
            heard = Library().decode_audio(clip, 0, &count, sound.data(), sound.size() * 4);
            return clip;
        },
        [&](uintptr_t clip, bool hit) {
            EXPECT_TRUE(decoded != 0 || out == picture);
            EXPECT_EQ(heard == 0, count == sound.size());
            EXPECT_TRUE(hit || (decoded == 0 && heard == 0));
            // The same handle, or a new one where there was no memory for it, does all of it now.
            if (clip == 0) clip = Library().create_clip();
            EXPECT_EQ(Library().load_clip(clip, path.c_str()), 0u);
            EXPECT_EQ(Library().decode_frame(clip, 0, &job), 0u);
            Library().destroy_clip(clip);
        });
}

TEST(ClipFailures, TheWriterLeavesNothingWhenACallFails) { ExpectTheWriterLeavesNothing<FailingCall>(); }
TEST(ClipFailures, TheWriterLeavesNothingWhenMemoryFails) { ExpectTheWriterLeavesNothing<FailingNew>(); }
TEST(ClipFailures, TheDecoderRecoversWhenACallFails) { ExpectTheDecoderRecovers<FailingCall>(); }
TEST(ClipFailures, TheDecoderRecoversWhenMemoryFails) { ExpectTheDecoderRecovers<FailingNew>(); }

}  // namespace
}  // namespace clipfio::decoder::test
