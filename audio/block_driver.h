// Runs a vector kernel, which knows only whole blocks of samples, over any number of samples at any address.
#pragma once

#include <cstddef>
#include <cstdint>

namespace clipfio::audio {

inline constexpr int kMaxBlockSamples = 64;
inline constexpr int kMaxSampleBytes = 8;

// Converts `blocks` whole blocks. Reads and writes exactly their bytes, at any address, in the walking order of the
// pair, and loads whatever a store may cover before that store.
using BlockKernel = void (*)(uint8_t* dst, const uint8_t* src, size_t blocks, float gain);

// What the driver has to know of a pair.
struct BlockPair {
    BlockKernel unityGain;  // null: the samples are copied as they stand
    BlockKernel anyGain;
    int blockSamples;  // at most kMaxBlockSamples
    int dstBytes;      // of one sample
    int srcBytes;
    bool backward;
};

void RunBlocks(const BlockPair& pair, void* destination, const void* source, int32_t count, float gain) noexcept;

}  // namespace clipfio::audio
