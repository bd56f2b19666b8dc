// Every call of the system and every allocation fails once: an error, nothing left behind, and all is well afterwards.
#include <gtest/gtest.h>

#include "platform/faults.h"
#include "platform/files.h"
#include "substitutes/decoder_library.h"
#include "support/failing_new.h"

namespace clipfio::decoder::test {
namespace {

// Counts down calls of the system or allocations, until it goes out of scope.
class FailingCall {
  public:
    explicit FailingCall(int n) noexcept { platform::faults::FailAfter(n); }
    ~FailingCall() { platform::faults::Clear(); }
    FailingCall(const FailingCall&) = delete;
    FailingCall& operator=(const FailingCall&) = delete;
    [[nodiscard]] bool Hit() const noexcept { return platform::faults::Hit(); }
};

bool Exists(const WString& path) { return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES; }

ClipDescription SmallClip() {
    ClipDescription d;
    d.width = 8;
    d.height = 8;
    d.sample_rate = 48000;
    d.channel_mask = 1;
    return d;
}

template <class Failing>
void ExpectTheWriterLeavesNothing() {
    const TestFile file;
    const std::vector<uint16_t> picture = NoisePicture(8, 8, 1);
    const std::vector<int32_t> sound(100, 5);
    const ClipDescription description = SmallClip();
    const WString& path = file.Path();
    for (int n = 0;; ++n) {
        ASSERT_LT(n, 1000);
        bool good = false, hit = false;
        {
            ClipWriter writer;
            const Failing fail(n);
            good = writer.Open(path, description) && writer.AddFrame(picture.data()) &&
                   writer.AddAudio(sound.data(), sound.size()) && writer.Finish();
            hit = fail.Hit();
            EXPECT_EQ(writer.Error().empty(), good) << n;
        }
        EXPECT_EQ(Exists(path), good) << n;
        EXPECT_EQ(UnfinishedFiles(file), 0u) << n;
        DeleteFileW(path.c_str());
        if (!hit) {
            EXPECT_TRUE(good);
            break;
        }
    }
}

template <class Failing>
void ExpectTheDecoderRecovers() {
    const DecoderLibrary& library = DecoderLibrary::Get();
    const TestFile file;
    const std::vector<uint16_t> picture = NoisePicture(8, 8, 1);
    WriteClip(file, SmallClip(), {picture}, std::vector<int32_t>(100, 5));
    const std::string path = file.Utf8();
    const DecodeSettingsRecord look = NeutralLook();
    std::vector<uint16_t> out(picture.size());
    std::vector<int32_t> sound(100);
    VideoDecodeJob job;
    job.decodeMode = DecodeMode::FullPremium;
    job.pixelType = PixelType::Rgb16;
    job.output = out.data();
    job.rowBytes = 8 * 6;
    job.outputBytes = out.size() * 2;
    job.settings = &look;
    for (int n = 0;; ++n) {
        ASSERT_LT(n, 1000);
        uint64_t count = sound.size();
        uint32_t decoded = 0, heard = 0;
        bool hit = false;
        uintptr_t clip = 0;
        {
            const Failing fail(n);
            clip = library.create_clip();
            (void)library.load_clip(clip, path.c_str());
            decoded = library.decode_frame(clip, 0, &job);
            heard = library.decode_audio(clip, 0, &count, sound.data(), sound.size() * 4);
            hit = fail.Hit();
        }
        EXPECT_TRUE(decoded != 0 || out == picture) << n;
        EXPECT_EQ(heard == 0, count == sound.size()) << n;
        EXPECT_TRUE(hit || (decoded == 0 && heard == 0)) << n;
        // The same handle, or a new one where there was no memory for it, does all of it now.
        if (clip == 0) clip = library.create_clip();
        EXPECT_EQ(library.load_clip(clip, path.c_str()), 0u) << n;
        EXPECT_EQ(library.decode_frame(clip, 0, &job), 0u) << n;
        library.destroy_clip(clip);
        if (!hit) break;
    }
}

TEST(ClipFailures, TheWriterLeavesNothingWhenACallFails) { ExpectTheWriterLeavesNothing<FailingCall>(); }
TEST(ClipFailures, TheWriterLeavesNothingWhenMemoryFails) { ExpectTheWriterLeavesNothing<FailingNew>(); }
TEST(ClipFailures, TheDecoderRecoversWhenACallFails) { ExpectTheDecoderRecovers<FailingCall>(); }
TEST(ClipFailures, TheDecoderRecoversWhenMemoryFails) { ExpectTheDecoderRecovers<FailingNew>(); }

}  // namespace
}  // namespace clipfio::decoder::test
