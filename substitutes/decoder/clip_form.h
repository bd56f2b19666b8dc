// The clip form: a 512-byte header, then the pictures at a fixed stride, then the sound. docs/clip-form.md has the
// byte table.
//
// A frame is stored at five sizes, full, 1/2, 1/4, 1/8 and 1/16, one after the other, rows top first, each pixel three
// 16-bit samples red, green, blue. A reduced size is the full one divided and cut down, and each of its pixels covers a
// whole block of the full picture. Sound is 32-bit big-endian, interleaved.
#pragma once

#include <cstddef>
#include <cstdint>

#include "r3dsdk/sdk_records.h"
#include "substitutes/decoder/status.h"

namespace clipfio::decoder {

inline constexpr uint32_t kClipVersion = 1;
inline constexpr uint32_t kMaximumSide = 16384;  // pixels
inline constexpr uint32_t kLevels = 5;           // stored sizes; level n is the full size divided by 2 to the n
inline constexpr uint32_t kBytesPerPixel = 6;
inline constexpr uint32_t kMaximumBlockSamples = 1u << 20;
inline constexpr uint32_t kDropFrameFlag = 1;

// How the samples of a stored picture stand for light. The numbers are those of the gamma curves of the settings.
enum class PictureCoding : uint32_t { Linear = 0, Rec709 = 1, Srgb = 8 };

struct ClipHeader {
    uint32_t headerBytes = 512;
    char mark[4] = {'R', 'E', 'D', '2'};
    uint32_t version = kClipVersion;
    uint32_t checksum = 0;  // CRC-32 of the header with this field zero
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t rateNumerator = 0;  // frames a second
    uint32_t rateDenominator = 0;
    uint64_t frameCount = 0;
    uint64_t frameBytes = 0;  // of all five sizes of one frame
    uint64_t picturesOffset = 512;
    uint32_t startFrame = 0;  // the first frame's timecode, counted in frames from 00:00:00:00
    uint32_t flags = 0;
    uint32_t sampleRate = 0;    // 0 in a clip without sound
    uint32_t sampleSize = 0;    // significant bits: 16, 24 or 32
    uint32_t channelMask = 0;   // a channel for each bit set among the lowest four
    uint32_t blockSamples = 0;  // samples per channel of every block but the last
    uint64_t sampleCount = 0;   // per channel
    uint64_t soundOffset = 0;
    PictureCoding coding = PictureCoding::Rec709;
    uint32_t reserved[7] = {};
    DecodeSettingsRecord settings;
};
static_assert(sizeof(ClipHeader) == 512);
static_assert(offsetof(ClipHeader, mark) == 4);
static_assert(offsetof(ClipHeader, frameCount) == 32);
static_assert(offsetof(ClipHeader, startFrame) == 56);
static_assert(offsetof(ClipHeader, sampleCount) == 80);
static_assert(offsetof(ClipHeader, coding) == 96);
static_assert(offsetof(ClipHeader, settings) == 128);

struct PictureSize {
    uint32_t width;
    uint32_t height;

    [[nodiscard]] constexpr uint64_t Bytes() const noexcept { return uint64_t{width} * height * kBytesPerPixel; }
};

constexpr PictureSize LevelSize(uint32_t width, uint32_t height, uint32_t level) noexcept {
    return {width >> level, height >> level};
}

// Bytes of the levels before `level`; with kLevels, of the whole frame.
constexpr uint64_t LevelOffset(uint32_t width, uint32_t height, uint32_t level) noexcept {
    uint64_t bytes = 0;
    for (uint32_t i = 0; i < level; ++i) bytes += LevelSize(width, height, i).Bytes();
    return bytes;
}

constexpr uint32_t ChannelCount(uint32_t channel_mask) noexcept {
    return static_cast<uint32_t>(__builtin_popcount(channel_mask & 0xF));
}

uint32_t HeaderChecksum(const ClipHeader& header) noexcept;

// Good when every value is within its limits, the checksum included; nothing is compared with a file's length.
[[nodiscard]] Status CheckHeader(const ClipHeader& header) noexcept;

}  // namespace clipfio::decoder
