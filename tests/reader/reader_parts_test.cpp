// The reader's parts that stand without a clip: the choice of a size, time, channels, buffers.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "reader/aligned_buffer.h"
#include "reader/read_audio_stream.h"
#include "reader/read_meta.h"
#include "reader/read_video_stream.h"

namespace clipfio {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TEST(VideoSize, IsTheNextOneAvailable) {
    constexpr struct {
        double scale;
        uint32_t divisor;
    } kRows[] = {
        {1.0, 1},  {0.5, 2},       {0.25, 4},       {0.125, 8},     {0.0625, 16},   {0.3, 2},
        {0.4, 2},  {0.45, 2},      {0.67, 1},       {0.66, 2},      {0.2858, 2},    {0.2857, 4},
        {0.13, 8}, {0.134, 4},     {0.0646, 8},     {0.0645, 16},   {0.01, 16},     {1e-9, 16},
        {2.0, 1},  {4.0, 1},       {1000.0, 1},     {0.0, 1},       {-0.0, 1},      {-0.5, 1},
        {kNan, 1}, {kInfinity, 1}, {-kInfinity, 1}, {2.0 / 3.0, 2}, {2.0 / 7.0, 4},
    };
    for (const auto& row : kRows) EXPECT_EQ(ChooseDivisor(row.scale), row.divisor) << row.scale;
}

TEST(VideoSize, QualityChoosesTheModeOnlyAtHalfSize) {
    constexpr struct {
        uint32_t divisor, quality;
        const char* mode;
    } kRows[] = {
        {1, 0, "PRFD"}, {1, 1, "PRFD"},  {1, 9, "PRFD"},  {2, 0, "PRFD"},  {2, 1, "GRHD"},          {2, 3, "GRHD"},
        {2, 4, "PRHD"}, {2, 99, "PRHD"}, {4, 0, "PRFD"},  {4, 1, "GRQD"},  {4, 4, "GRQD"},          {8, 1, "GRED"},
        {8, 0, "PRFD"}, {16, 1, "GRSD"}, {16, 0, "PRFD"}, {16, 4, "GRSD"}, {2, 0xFFFFFFFF, "PRHD"},
    };
    for (const auto& row : kRows) {
        const DecodeMode mode = ChooseDecodeMode(row.divisor, row.quality);
        EXPECT_EQ(std::memcmp(&mode, row.mode, 4), 0) << row.divisor << " " << row.quality;
    }
}

// Release calls it at zero; the host's slots end before it.
TEST(StreamSlots, TheDestructorStandsBehindTheHostsSlots) {
    const auto destroy = [](void* stream, int slot) {
        using Destroy = void* (*)(void*, uint32_t);
        return reinterpret_cast<Destroy>((*static_cast<void***>(stream))[slot])(stream, 1);
    };
    const ClipField no_clip = nullptr;
    EXPECT_EQ(destroy(CReadVideoStream::Make(nullptr, &no_clip), 23), nullptr);
    EXPECT_EQ(destroy(CReadAudioStream::Make(nullptr, &no_clip), 19), nullptr);
}

TEST(Timecode, IsReadIntoUnitsOf100Nanoseconds) {
    constexpr int64_t kMost = std::numeric_limits<int64_t>::max();
    constexpr struct {
        const char* text;
        double rate;
        int64_t time;
    } kRows[] = {
        {"01:00:00:12", 24.0, 36005000000},  {"10:00:00:00", 24.0, 360000000000},
        {"10:00:00;00", 24.0, 360000000000}, {"00:00:01:01", 24000.0 / 1001.0, 10417083},
        {"1:2:3:4", 25.0, 37231600000},      {"", 24.0, 0},
        {" 1: 2: 3: 4", 25.0, 37231600000},  {"no time", 24.0, 0},
        {"01.00.00", 24.0, 36000000000},     {"::::12", 24.0, 0},
        {"01", 24.0, 36000000000},           {"01:00:00:12", -24.0, 36000000000},
        {"01:xx:02:03", 24.0, 36000000000},  {"00:00:00:12 and more", 24.0, 5000000},
        {"01:00:00:12", 0.0, 36000000000},   {"4294967295:00:00:00", 24.0, kMost},
        {"01:00:00:12", kNan, 36000000000},  {"01:99999999999999999999:00:01", 24.0, 36000000000},
        {"4294967296:00:00:01", 24.0, 0},    {"256204778:48:05:47", 1e-9, kMost},
        {"01:00:-1:01", 24.0, 36000000000},  {"00:4294967295:4294967295:0", 24.0, 2619930049950000000},
    };
    for (const auto& row : kRows) {
        int64_t time = -1;
        EXPECT_EQ(ParseTimecode(row.text, row.rate, &time), S_OK);
        EXPECT_EQ(time, row.time) << row.text << " at " << row.rate;
    }
    int64_t time = -1;
    EXPECT_EQ(ParseTimecode(nullptr, 24.0, &time), E_INVALIDARG);
    EXPECT_EQ(time, 0);
}

TEST(AudioChannels, AreTheLowestFourBitsOfTheMask) {
    constexpr uint32_t kRows[][2] = {{0, 0}, {1, 1}, {3, 2}, {0xF, 4}, {0x10, 0}, {0x33, 2}, {0x8, 1}, {0xFFFFFFFF, 4}};
    for (const auto& row : kRows) EXPECT_EQ(ChannelsOfMask(row[0]), row[1]) << row[0];
}

TEST(AlignedBuffer, GrowsAlignedAndNeverShrinks) {
    constexpr int64_t kMost = std::numeric_limits<int64_t>::max(), kLeast = std::numeric_limits<int64_t>::min();
    enum Pointer { None, Same, New };
    constexpr struct {
        int64_t size;
        HRESULT result;
        Pointer pointer;
    } kSteps[] = {
        {0, S_OK, None}, {-1, S_OK, None},     {kLeast, S_OK, None}, {1, S_OK, New},
        {15, S_OK, New}, {513, S_OK, New},     {100000, S_OK, New},  {0, S_OK, Same},
        {1, S_OK, Same}, {100000, S_OK, Same}, {10, S_OK, Same},     {kMost, E_OUTOFMEMORY, None},
        {10, S_OK, New},
    };
    for (const uint64_t alignment : {16u, 512u}) {
        AlignedBuffer buffer(alignment);
        void* last = nullptr;
        for (const auto& step : kSteps) {
            EXPECT_EQ(buffer.Reserve(step.size), step.result);
            void* pointer = &buffer;
            EXPECT_EQ(buffer.GetPointer(&pointer), S_OK);
            EXPECT_EQ(pointer == nullptr, step.pointer == None) << step.size;
            EXPECT_TRUE(step.pointer != Same || pointer == last) << step.size;
            last = pointer;
            if (step.pointer != New) continue;
            EXPECT_EQ(reinterpret_cast<uintptr_t>(pointer) % alignment, 0u);
            const std::vector<uint8_t> zeros(static_cast<size_t>(step.size));
            EXPECT_EQ(std::memcmp(pointer, zeros.data(), zeros.size()), 0);
            std::memset(pointer, 0xFF, zeros.size());
        }
    }
}

}  // namespace
}  // namespace clipfio
