// Reading a clip's sound in portions.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>

#include "host/clip.h"

namespace clipfio::host {

struct SoundFormat {
    uint32_t rate = 0;
    uint16_t channels = 0;
    uint32_t channel_mask = 0;
    uint64_t samples = 0;  // per channel
};
// Throws Failure for a clip without sound.
[[nodiscard]] SoundFormat DescribeSound(Clip& clip);

// Calls `take` with interleaved samples until `count` samples per channel from `first` on were taken. Throws Failure
// when the clip gives fewer, or when the user stops.
void ReadSound(Clip& clip, const SoundFormat& format, uint64_t first, uint64_t count,
               const std::function<void(std::span<const float>)>& take);

}  // namespace clipfio::host
