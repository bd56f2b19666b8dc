// Clip files, opened, decoded and listened to. The checksum would stop nearly every input at the door, so that each is
// tried as it is and once more with its checksum put right.
#include <algorithm>
#include <cstring>
#include <vector>

#include "fuzz/fuzzers.h"
#include "fuzz/input_file.h"
#include "substitutes/decoder/loaded_clip.h"

namespace clipfio::decoder {
namespace {

constexpr size_t kMostPixels = 64 * 64;  // of a picture that is worth its time here
constexpr DecodeMode kModes[] = {DecodeMode::FullPremium, DecodeMode::HalfGood, DecodeMode::QuarterGood,
                                 DecodeMode::EighthGood, DecodeMode::SixteenthGood};

void DecodePicture(LoadedClip& clip, uint64_t frame, uint32_t level) {
    const ClipHeader& header = clip.File().Header();
    const PictureSize size = LevelSize(header.width, header.height, level);
    if (size_t{size.width} * size.height > kMostPixels) return;
    std::vector<uint16_t> picture(size_t{size.width} * size.height * 3);
    DecodeSettingsRecord settings = header.settings;
    VideoDecodeJob job{};
    job.version = 1;
    job.size = sizeof job;
    job.output = picture.data();
    job.rowBytes = size.width * kBytesPerPixel;
    job.outputBytes = picture.size() * sizeof(uint16_t);
    job.decodeMode = kModes[level];
    job.pixelType = PixelType::Rgb16;
    job.settings = &settings;
    const Status status = clip.Decode(frame, job);
    const bool is_whole = size.width != 0 && size.height != 0 && clip.File().CheckPicture(frame, level) == Status::Good;
    FuzzRequire((status == Status::Good) == is_whole, "a picture decodes exactly when all of it is there");
}

void ReadSound(ClipFile& file, uint64_t first) {
    constexpr uint64_t kSamples = 100;
    int32_t sound[4 * kSamples];
    const uint64_t there = file.SamplesFrom(first);
    const uint64_t got = file.ReadSamples(first, std::min(there, kSamples), sound);
    FuzzRequire(got == std::min(there, kSamples), "samples that are there can be read");
}

void Use(const uint8_t* data, size_t size) {
    const InputFileOfRun input(data, size);
    LoadedClip clip;
    if (clip.Open(input.Path()) != Status::Good) return;
    const ClipHeader& header = clip.File().Header();
    FuzzRequire(header.width != 0 && header.width <= kMaximumSide && header.height != 0 &&
                    header.height <= kMaximumSide && header.rateNumerator != 0 && header.rateDenominator != 0,
                "an open clip has a size and a rate");
    for (const uint64_t frame : {uint64_t{0}, header.frameCount / 2, header.frameCount - 1, header.frameCount}) {
        for (uint32_t level = 0; level < kLevels; ++level) DecodePicture(clip, frame, level);
    }
    for (const uint64_t first : {uint64_t{0}, header.sampleCount / 2, header.sampleCount})
        ReadSound(clip.File(), first);
}

}  // namespace
}  // namespace clipfio::decoder

int FuzzClip(const uint8_t* data, size_t size) {
    using clipfio::decoder::ClipHeader;
    clipfio::decoder::Use(data, size);
    if (size < sizeof(ClipHeader)) return 0;
    ClipHeader header;
    std::memcpy(&header, data, sizeof header);
    header.checksum = clipfio::decoder::HeaderChecksum(header);
    std::vector<uint8_t> mended(data, data + size);
    std::memcpy(mended.data(), &header, sizeof header);
    clipfio::decoder::Use(mended.data(), size);
    return 0;
}
