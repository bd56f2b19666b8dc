#include "reader/frame_delivery.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <vector>

namespace clipfio {
namespace {

constexpr DeliveryLevel kFastLevels[] = {DeliveryLevel::Ssse3, DeliveryLevel::Avx2, DeliveryLevel::Avx512};
constexpr uint8_t kGuard = 0xA5;
constexpr uint64_t kGuardBytes = 64;

// Memory of `bytes` at an address that is `past` behind a multiple of 64, with guards on both sides.
class Placed {
  public:
    Placed(uint64_t bytes, uint64_t past) : bytes_(bytes), memory_(bytes + past + 3 * kGuardBytes, kGuard) {
        const uint64_t over = reinterpret_cast<uintptr_t>(memory_.data()) % 64;
        begin_ = memory_.data() + (64 - over) % 64 + kGuardBytes + past;
    }
    uint8_t* Begin() { return begin_; }
    bool GuardsStand() const {
        for (uint64_t i = 1; i <= kGuardBytes; ++i) {
            if (begin_[-static_cast<int64_t>(i)] != kGuard || begin_[bytes_ + i - 1] != kGuard) return false;
        }
        return true;
    }
    bool Equals(const Placed& other) const { return std::memcmp(begin_, other.begin_, bytes_) == 0; }

  private:
    uint64_t bytes_;
    std::vector<uint8_t> memory_;
    uint8_t* begin_;
};

void Fill(uint8_t* data, uint64_t bytes) {
    uint32_t state = 12345;
    for (uint64_t i = 0; i < bytes; ++i) {
        state = state * 1664525 + 1013904223;
        data[i] = static_cast<uint8_t>(state >> 24);
    }
}

struct Kind {
    FrameDelivery::Move FrameDelivery::*move;
    uint64_t in;  // bytes of a pixel
    uint64_t out;
};
constexpr Kind kKinds[] = {{&FrameDelivery::bgra8, 4, 4}, {&FrameDelivery::rgb16_to_floats, 6, 16}};

void ExpectAsPlain(const Kind& kind, uint64_t width, uint64_t height, uint64_t in_past, uint64_t out_past) {
    Placed in(width * height * kind.in, in_past);
    Fill(in.Begin(), width * height * kind.in);
    Placed expected(width * height * kind.out, 0);
    (FrameDeliveryAt(DeliveryLevel::Plain)->*kind.move)(in.Begin(), expected.Begin(), width, height);
    EXPECT_TRUE(expected.GuardsStand());
    for (const DeliveryLevel level : kFastLevels) {
        const FrameDelivery* delivery = FrameDeliveryAt(level);
        if (!delivery) continue;
        Placed out(width * height * kind.out, out_past);
        (delivery->*kind.move)(in.Begin(), out.Begin(), width, height);
        EXPECT_TRUE(out.Equals(expected) && out.GuardsStand())
            << static_cast<int>(level) << ": " << width << "x" << height << " " << in_past << " " << out_past;
    }
}

// Large pictures go past the cache, where the addresses of the rows matter.
TEST(FrameDelivery, EveryLevelGivesWhatThePlainOneGives) {
    for (const Kind& kind : kKinds) {
        for (uint64_t width = 0; width <= 35; ++width) ExpectAsPlain(kind, width, 3, width % 7, width * 5 % 64);
        for (uint64_t past = 0; past < 64; ++past) ExpectAsPlain(kind, 21, 2, 63 - past, past);
        for (const uint64_t past : {0u, 4u, 16u, 17u, 32u, 48u, 63u}) {
            for (const uint64_t width : {1001u, 1922u}) ExpectAsPlain(kind, width, 270, past, past);
        }
    }
}

TEST(FrameDelivery, PlainTurnsThePictureOverAndTheSamplesRound) {
    const uint8_t four[2][2][4] = {{{1, 2, 3, 4}, {5, 6, 7, 8}}, {{9, 10, 11, 12}, {13, 14, 15, 16}}};
    uint8_t turned[2][2][4];
    FrameDeliveryAt(DeliveryLevel::Plain)->bgra8(four, turned, 2, 2);
    EXPECT_EQ(std::memcmp(turned[0], four[1], 8), 0);
    EXPECT_EQ(std::memcmp(turned[1], four[0], 8), 0);

    const uint16_t samples[2][3] = {{65535, 1, 0}, {2, 3, 4}};  // one pixel wide
    float floats[2][4];
    FrameDeliveryAt(DeliveryLevel::Plain)->rgb16_to_floats(samples, floats, 1, 2);
    const float k = std::bit_cast<float>(0x37800080u);
    const float expected[2][4] = {{4 * k, 3 * k, 2 * k, 0.0f}, {0.0f, k, 65535 * k, 0.0f}};
    EXPECT_EQ(std::memcmp(floats, expected, sizeof floats), 0);
    EXPECT_EQ(floats[1][2], 1.0f);
}

TEST(FrameDelivery, EverySampleValueIsExactAtEveryLevel) {
    constexpr uint64_t kWidth = 65536;
    std::vector<uint16_t> samples(kWidth * 3);
    for (uint64_t x = 0; x < kWidth; ++x) {
        for (uint64_t s = 0; s < 3; ++s) samples[x * 3 + s] = static_cast<uint16_t>(x + s * 21845);
    }
    std::vector<float> floats(kWidth * 4);
    for (const DeliveryLevel level :
         {DeliveryLevel::Plain, DeliveryLevel::Ssse3, DeliveryLevel::Avx2, DeliveryLevel::Avx512}) {
        if (!FrameDeliveryAt(level)) continue;
        FrameDeliveryAt(level)->rgb16_to_floats(samples.data(), floats.data(), kWidth, 1);
        uint64_t wrong = 0;
        for (uint64_t x = 0; x < kWidth; ++x) {
            for (uint64_t s = 0; s < 3; ++s) {
                const float expected = static_cast<float>(samples[x * 3 + 2 - s]) * std::bit_cast<float>(0x37800080u);
                wrong += std::bit_cast<uint32_t>(floats[x * 4 + s]) != std::bit_cast<uint32_t>(expected);
            }
            wrong += std::bit_cast<uint32_t>(floats[x * 4 + 3]) != 0;
        }
        EXPECT_EQ(wrong, 0u) << static_cast<int>(level);
    }
}

}  // namespace
}  // namespace clipfio
