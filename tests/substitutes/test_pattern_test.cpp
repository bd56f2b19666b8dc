// The picture and the sound of sample clips.
#include "substitutes/decoder/test_pattern.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace clipfio::decoder::test {
namespace {

TEST(TestPattern, EverySizeHasAPictureThatMovesWithItsNumber) {
    for (const auto& [width, height] : {std::pair{1u, 1u}, {2u, 1u}, {1u, 9u}, {7u, 5u}, {640u, 360u}}) {
        TestPattern pattern(width, height), again(width, height);
        const size_t samples = size_t{width} * height * 3;
        const uint16_t* frame = pattern.Frame(10);
        const std::vector<uint16_t> tenth(frame, frame + samples);
        frame = pattern.Frame(11);
        const std::vector<uint16_t> next(frame, frame + samples);
        frame = again.Frame(10);
        EXPECT_TRUE(std::equal(tenth.begin(), tenth.end(), frame)) << width;
        EXPECT_TRUE(width != 640 || tenth != next);
    }
}

TEST(TestPattern, SoundBeepsEachSecondAndGoesOnWhereItWasLeft) {
    const TestSound sound(8000, 2);
    std::vector<int32_t> whole(2 * 16000), part(2 * 5000);
    sound.Fill(0, 16000, whole.data());
    sound.Fill(9000, 5000, part.data());
    EXPECT_TRUE(std::equal(part.begin(), part.end(), whole.begin() + 18000));
    const auto loudest = [&whole](size_t from, size_t to) {
        int32_t most = 0;
        for (size_t i = from * 2; i < to * 2; ++i) most = std::max(most, std::abs(whole[i]));
        return most / 2147483647.0;
    };
    for (const size_t second : {size_t{0}, size_t{8000}}) {
        EXPECT_NEAR(loudest(second, second + 800), 0.25, 0.01);
        EXPECT_NEAR(loudest(second + 800, second + 8000), 0.1, 0.01);
    }
    EXPECT_NE(whole[2 * 1001], whole[2 * 1001 + 1]) << "each channel has a sound of its own";
}

}  // namespace
}  // namespace clipfio::decoder::test
