#include "audio/block_driver.h"

#include <algorithm>
#include <cstring>

namespace clipfio::audio {
namespace {

constexpr uintptr_t kLineBytes = 64;

// Fewer samples than a block go through a block of their own.
void RunPart(const BlockPair& pair, BlockKernel kernel, uint8_t* dst, const uint8_t* src, size_t samples,
             float gain) noexcept {
    if (samples == 0) return;
    alignas(kLineBytes) uint8_t in[kMaxBlockSamples * kMaxSampleBytes];
    alignas(kLineBytes) uint8_t out[kMaxBlockSamples * kMaxSampleBytes];
    const size_t inBytes = samples * static_cast<size_t>(pair.srcBytes);
    const size_t blockBytes = static_cast<size_t>(pair.blockSamples * pair.srcBytes);
    std::memcpy(in, src, inBytes);
    std::memset(in + inBytes, 0, blockBytes - inBytes);
    kernel(out, in, 1, gain);
    std::memcpy(dst, out, samples * static_cast<size_t>(pair.dstBytes));
}

// Samples from `dst` to the next line, where one begins at a sample; 0 otherwise.
size_t SamplesToLine(const uint8_t* dst, int dstBytes) noexcept {
    const uintptr_t past = reinterpret_cast<uintptr_t>(dst) % kLineBytes;
    const uintptr_t bytes = past ? kLineBytes - past : 0;
    const auto width = static_cast<uintptr_t>(dstBytes);
    return bytes % width == 0 && kLineBytes % width == 0 ? bytes / width : 0;
}

}  // namespace

void RunBlocks(const BlockPair& pair, void* destination, const void* source, int32_t count, float gain) noexcept {
    if (count < 1 || !destination || !source) return;
    auto* const dst = static_cast<uint8_t*>(destination);
    const auto* const src = static_cast<const uint8_t*>(source);
    const auto total = static_cast<size_t>(count);
    const auto dstBytes = static_cast<size_t>(pair.dstBytes);
    const auto srcBytes = static_cast<size_t>(pair.srcBytes);
    const auto block = static_cast<size_t>(pair.blockSamples);
    const BlockKernel kernel = gain == 1.0f ? pair.unityGain : pair.anyGain;
    if (!kernel) {
        if (dst != src) std::memcpy(dst, src, total * dstBytes);
        return;
    }
    // The whole blocks in the middle start at a line of the destination, where they can.
    const size_t head = total < 4 * block ? 0 : SamplesToLine(dst, pair.dstBytes) % block;
    const size_t blocks = (total - head) / block;
    const size_t tailAt = head + blocks * block;
    const size_t tail = total - tailAt;
    uint8_t* const middle = dst + head * dstBytes;
    const uint8_t* const middleSource = src + head * srcBytes;
    if (pair.backward) {
        RunPart(pair, kernel, dst + tailAt * dstBytes, src + tailAt * srcBytes, tail, gain);
        kernel(middle, middleSource, blocks, gain);
        RunPart(pair, kernel, dst, src, head, gain);
    } else {
        RunPart(pair, kernel, dst, src, head, gain);
        kernel(middle, middleSource, blocks, gain);
        RunPart(pair, kernel, dst + tailAt * dstBytes, src + tailAt * srcBytes, tail, gain);
    }
}

}  // namespace clipfio::audio
