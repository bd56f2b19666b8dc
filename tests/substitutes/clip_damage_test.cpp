// Clips that are cut, flipped or no clips at all: an error or the part that is whole, and never a crash.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

#include "substitutes/decoder/file_access.h"
#include "substitutes/decoder_library.h"
#include "support/open_files.h"

namespace clipfio::decoder::test {
namespace {

constexpr uint32_t kWidth = 18, kHeight = 17;
constexpr size_t kFrames = 3, kSamples = 4000;

ClipDescription WholeClip() { return {.width = kWidth, .height = kHeight, .sample_rate = 48000, .channel_mask = 0x3}; }

class DamagedClip : public testing::Test {
  protected:
    void SetUp() override {
        WriteClip(file_, WholeClip(), {kFrames, NoisePicture(kWidth, kHeight, 5)},
                  std::vector<int32_t>(kSamples * 2, 9));
        whole_ = file_.Bytes();
        ASSERT_EQ(whole_.size(), 512 + kFrames * LevelOffset(kWidth, kHeight, kLevels) + kSamples * 8);
    }

    uint32_t LoadBytes(const std::vector<uint8_t>& bytes) {
        Library().close_clip(clip_.Handle());
        file_.Write(bytes);
        return clip_.Load(file_.Utf8());
    }

    // Asks for everything, whatever the file is.
    void UseAll() {
        for (uint64_t frame = 0; frame < kFrames; ++frame) {
            for (const DecodeMode mode : {DecodeMode::FullPremium, DecodeMode::QuarterGood}) {
                (void)clip_.Bgra8(frame, mode, NeutralLook());
            }
            (void)Library().frame_timecode(clip_.Handle(), frame);
        }
        uint64_t count = 100;
        uint8_t sound[800];
        (void)Library().decode_audio(clip_.Handle(), 0, &count, sound, sizeof sound);
    }

    TestFile file_;
    TestClip clip_;
    std::vector<uint8_t> whole_;
};

TEST_F(DamagedClip, HeadersThatAreCutOrFlippedAreRefused) {
    const auto open_files = support::OpenFiles();
    for (size_t at = 0; at < 512; ++at) {
        const auto cut = whole_.begin() + static_cast<ptrdiff_t>(at);
        ASSERT_EQ(LoadBytes({whole_.begin(), cut}), Number(Status::NotAClip)) << at;
        std::vector<uint8_t> bytes = whole_;
        bytes[at] ^= static_cast<uint8_t>(1u << (at % 8));
        ASSERT_NE(LoadBytes(bytes), 0u) << at;
    }
    EXPECT_EQ(support::OpenFiles(), open_files);
}

TEST_F(DamagedClip, CutAfterTheHeaderKeepsWhatIsThere) {
    const size_t frame_bytes = LevelOffset(kWidth, kHeight, kLevels);
    const size_t full_bytes = LevelOffset(kWidth, kHeight, 1);
    for (size_t size = 512; size < whole_.size(); size += 97) {
        ASSERT_EQ(LoadBytes({whole_.begin(), whole_.begin() + static_cast<ptrdiff_t>(size)}), 0u) << size;
        for (uint64_t frame = 0; frame < kFrames; ++frame) {
            const bool is_there = size >= 512 + frame * frame_bytes + full_bytes;
            EXPECT_EQ(!clip_.Rgb16(frame, DecodeMode::FullPremium, NeutralLook()).empty(), is_there) << size;
        }
        std::vector<uint8_t> sound(kSamples * 8);
        uint64_t count = kSamples;
        const uint32_t status = Library().decode_audio(clip_.Handle(), 0, &count, sound.data(), sound.size());
        const size_t sound_start = 512 + kFrames * frame_bytes;
        EXPECT_EQ(count, size > sound_start ? (size - sound_start) / 8 : 0) << size;
        EXPECT_EQ(status == 0, count != 0) << size;
    }
}

TEST_F(DamagedClip, CutWhileItIsOpenFailsWithoutHarm) {
    ASSERT_EQ(LoadBytes(whole_), 0u);
    OutputFile cut;
    if (!cut.Create(file_.Path())) GTEST_SKIP() << "this system lets nobody write to an open clip";
    ASSERT_TRUE(cut.Write(whole_.data(), 600) && cut.Close());
    EXPECT_TRUE(clip_.Rgb16(1, DecodeMode::FullPremium, NeutralLook()).empty());
    UseAll();
}

// Headers that are whole by their checksum and say what cannot be.
TEST_F(DamagedClip, ImpossibleHeadersAreRefused) {
    const struct {
        const char* name;
        void (*spoil)(ClipHeader&);
    } kImpossible[] = {
        {"no width", [](ClipHeader& h) { h.width = 0; }},
        {"too wide", [](ClipHeader& h) { h.width = 16385; }},
        {"too high", [](ClipHeader& h) { h.height = 0xFFFFFFFF; }},
        {"other height", [](ClipHeader& h) { h.height = kHeight + 1; }},
        {"no rate", [](ClipHeader& h) { h.rateNumerator = 0; }},
        {"no rate below", [](ClipHeader& h) { h.rateDenominator = 0; }},
        {"many frames", [](ClipHeader& h) { h.frameCount = ~uint64_t{0}; }},
        {"frames that wrap", [](ClipHeader& h) { h.frameCount = uint64_t{1} << 62; }},
        {"another frame", [](ClipHeader& h) { ++h.frameCount; }},
        {"frame bytes", [](ClipHeader& h) { h.frameBytes = 0; }},
        {"pictures elsewhere", [](ClipHeader& h) { h.picturesOffset = 0; }},
        {"sound elsewhere", [](ClipHeader& h) { h.soundOffset = ~uint64_t{0}; }},
        {"start after a day", [](ClipHeader& h) { h.startFrame = 24 * 86400; }},
        {"drop-frame at 24", [](ClipHeader& h) { h.flags = kDropFrameFlag; }},
        {"unknown flag", [](ClipHeader& h) { h.flags = 2; }},
        {"no sample rate", [](ClipHeader& h) { h.sampleRate = 0; }},
        {"sample size", [](ClipHeader& h) { h.sampleSize = 8; }},
        {"no block", [](ClipHeader& h) { h.blockSamples = 0; }},
        {"huge block", [](ClipHeader& h) { h.blockSamples = 0xFFFFFFFF; }},
        {"many samples", [](ClipHeader& h) { h.sampleCount = ~uint64_t{0}; }},
        {"coding", [](ClipHeader& h) { h.coding = PictureCoding{2}; }},
        {"settings version", [](ClipHeader& h) { h.settings.version = 3; }},
        {"settings size", [](ClipHeader& h) { h.settings.size = 0; }},
        {"later form", [](ClipHeader& h) { h.version = 2; }},
        {"other mark", [](ClipHeader& h) { h.mark[3] = '1'; }},
    };
    for (const auto& impossible : kImpossible) {
        std::vector<uint8_t> bytes = whole_;
        ClipHeader header;
        std::memcpy(&header, bytes.data(), sizeof header);
        impossible.spoil(header);
        header.checksum = HeaderChecksum(header);
        std::memcpy(bytes.data(), &header, sizeof header);
        EXPECT_NE(LoadBytes(bytes), 0u) << impossible.name;
        UseAll();
    }
}

}  // namespace
}  // namespace clipfio::decoder::test
