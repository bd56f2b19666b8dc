// Pictures from the writer to the client: every size, both layouts, and jobs that cannot be done.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "substitutes/decoder/picture_coding.h"
#include "substitutes/decoder_library.h"

namespace clipfio::decoder::test {
namespace {

constexpr DecodeMode kModes[] = {DecodeMode::FullPremium, DecodeMode::HalfPremium, DecodeMode::HalfGood,
                                 DecodeMode::QuarterGood, DecodeMode::EighthGood,  DecodeMode::SixteenthGood};

struct Size {
    uint32_t width, height;
};
constexpr Size kSizes[] = {{1, 1}, {16, 16}, {17, 31}, {64, 33}, {37, 21}, {513, 18}};

class PicturesOfSize : public testing::TestWithParam<Size> {};
INSTANTIATE_TEST_SUITE_P(Sizes, PicturesOfSize, testing::ValuesIn(kSizes), [](const auto& info) {
    return std::to_string(info.param.width) + "x" + std::to_string(info.param.height);
});

// The mean light of a block, worked out slowly.
double MeanLight(const std::vector<uint16_t>& picture, Size size, PictureCoding coding, uint32_t divisor, uint32_t x,
                 uint32_t y, uint32_t c) {
    double sum = 0;
    for (uint32_t row = y * divisor; row < (y + 1) * divisor; ++row) {
        for (uint32_t column = x * divisor; column < (x + 1) * divisor; ++column) {
            sum += LinearFromCoded(coding, picture[(size_t{row} * size.width + column) * 3 + c] / 65535.0);
        }
    }
    return sum / (divisor * divisor);
}

TEST_P(PicturesOfSize, EveryModeGivesTheMeanLightOfItsBlocks) {
    const Size size = GetParam();
    for (const PictureCoding coding : {PictureCoding::Linear, PictureCoding::Rec709, PictureCoding::Srgb}) {
        const std::vector<uint16_t> picture = NoisePicture(size.width, size.height, 7);
        const TestFile file;
        WriteClip(file, {.width = size.width, .height = size.height, .coding = coding}, {picture});
        const TestClip clip(file);
        DecodeSettingsRecord look = NeutralLook();
        look.imageGammaCurve = static_cast<uint32_t>(coding);
        for (const DecodeMode mode : kModes) {
            const uint32_t divisor = DivisorOf(mode);
            const uint32_t width = size.width / divisor, height = size.height / divisor;
            const std::vector<uint16_t> out = clip.Rgb16(0, mode, look);
            const std::vector<uint8_t> eight = clip.Bgra8(0, mode, look);
            ASSERT_EQ(out.size(), size_t{width} * height * 3) << "divisor " << divisor;
            ASSERT_EQ(eight.size(), size_t{width} * height * 4) << "divisor " << divisor;
            size_t wrong = 0;
            for (size_t i = 0; i < out.size(); ++i) {
                const auto pixel = static_cast<uint32_t>(i / 3), c = static_cast<uint32_t>(i % 3);
                const double light = MeanLight(picture, size, coding, divisor, pixel % width, pixel / width, c);
                // The code whose light is nearest: half a code on either side, and a hair for floats.
                const double below = LinearFromCoded(coding, (out[i] - 0.505) / 65535.0);
                const double above = LinearFromCoded(coding, (out[i] + 0.505) / 65535.0);
                if (light < below || light > above) ++wrong;
                // And the same picture in 8 bits.
                if (std::abs(eight[pixel * 4 + 2 - c] * 257 - out[i]) > 129 || eight[pixel * 4 + 3] != 255) ++wrong;
            }
            EXPECT_EQ(wrong, 0u) << "divisor " << divisor << ", coding " << static_cast<uint32_t>(coding);
        }
    }
}

TEST(ClipPictures, RowsKeepTheirDistanceAndNothingIsWrittenBetweenThem) {
    const TestFile file;
    const std::vector<uint16_t> picture = NoisePicture(5, 4, 9);
    WriteClip(file, {.width = 5, .height = 4}, {picture});
    const TestClip clip(file);
    const DecodeSettingsRecord look = NeutralLook();
    std::vector<uint16_t> out(4 * 40, 0xABCD);
    VideoDecodeJob job = JobOf(out.data(), 5, 4, PixelType::Rgb16, look);
    job.rowBytes = 80;
    job.outputBytes = 3 * 80 + 30;
    ASSERT_EQ(Library().decode_frame(clip.Handle(), 0, &job), 0u);
    for (size_t y = 0; y < 4; ++y) {
        for (size_t x = 0; x < 40; ++x) EXPECT_EQ(out[y * 40 + x], x < 15 ? picture[y * 15 + x] : 0xABCD);
    }
}

TEST(ClipPictures, JobsThatCannotBeDoneFailAndWriteNothing) {
    const struct {
        const char* name;
        void (*spoil)(VideoDecodeJob&, DecodeSettingsRecord&, uint64_t&);
        Status status;
    } kBad[] = {
        {"version", [](auto& job, auto&, auto&) { job.version = 2; }, Status::BadArguments},
        {"size", [](auto& job, auto&, auto&) { job.size = 56; }, Status::BadArguments},
        {"mode", [](auto& job, auto&, auto&) { job.decodeMode = DecodeMode{0x12345678}; }, Status::NoSuchPicture},
        {"no mode", [](auto& job, auto&, auto&) { job.decodeMode = DecodeMode{}; }, Status::NoSuchPicture},
        {"pixel type", [](auto& job, auto&, auto&) { job.pixelType = PixelType{1}; }, Status::NoSuchPicture},
        {"divisor", [](auto& job, auto&, auto&) { job.decodeMode = DecodeMode::SixteenthGood; }, Status::NoSuchPicture},
        {"no output", [](auto& job, auto&, auto&) { job.output = nullptr; }, Status::BadArguments},
        {"no settings", [](auto& job, auto&, auto&) { job.settings = nullptr; }, Status::BadArguments},
        {"settings version", [](auto&, auto& look, auto&) { look.version = 1; }, Status::BadArguments},
        {"settings size", [](auto&, auto& look, auto&) { look.size = 383; }, Status::BadArguments},
        {"row bytes", [](auto& job, auto&, auto&) { --job.rowBytes; }, Status::BadArguments},
        {"no row bytes", [](auto& job, auto&, auto&) { job.rowBytes = 0; }, Status::BadArguments},
        {"most row bytes", [](auto& job, auto&, auto&) { job.rowBytes = ~uint64_t{1}; }, Status::BadArguments},
        {"output bytes", [](auto& job, auto&, auto&) { --job.outputBytes; }, Status::BadArguments},
        {"no output bytes", [](auto& job, auto&, auto&) { job.outputBytes = 0; }, Status::BadArguments},
        {"frame after the last", [](auto&, auto&, auto& frame) { frame = 2; }, Status::NoSuchFrame},
        {"most of frames", [](auto&, auto&, auto& frame) { frame = ~uint64_t{0}; }, Status::NoSuchFrame},
    };
    const TestFile file;
    WriteClip(file, {.width = 8, .height = 5}, {NoisePicture(8, 5, 1), NoisePicture(8, 5, 2)});
    const TestClip clip(file);
    for (const PixelType type : {PixelType::Bgra8, PixelType::Rgb16}) {
        for (const auto& bad : kBad) {
            std::vector<uint16_t> out(8 * 5 * 3, 0xABCD);
            DecodeSettingsRecord look = NeutralLook();
            VideoDecodeJob job = JobOf(out.data(), 8, 5, type, look);
            uint64_t frame = 1;
            ASSERT_EQ(Library().decode_frame(clip.Handle(), frame, &job), 0u);
            std::fill(out.begin(), out.end(), uint16_t{0xABCD});
            bad.spoil(job, look, frame);
            EXPECT_EQ(Library().decode_frame(clip.Handle(), frame, &job), Number(bad.status)) << bad.name;
            EXPECT_EQ(std::count(out.begin(), out.end(), 0xABCD), 8 * 5 * 3) << bad.name;
        }
    }
    EXPECT_EQ(Library().decode_frame(clip.Handle(), 0, nullptr), Number(Status::BadArguments));
}

}  // namespace
}  // namespace clipfio::decoder::test
