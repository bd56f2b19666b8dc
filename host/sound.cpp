#include "host/sound.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "audio/wave_format.h"
#include "host/console.h"
#include "host/failure.h"
#include "host/result_text.h"
#include "platform/process.h"

namespace clipfio::host {
namespace {

constexpr uint64_t kSamplesPerRead = 65536;

}  // namespace

SoundFormat DescribeSound(Clip& clip) {
    _ktstreaminfo info{};
    info.size = sizeof info;
    Require(clip.Audio().GetFormat(&info), "the clip does not describe its sound");
    _ktwaveformat format;
    std::memcpy(&format, info.format, sizeof format);
    if (format.channels == 0) throw Failure("the clip's sound has no channels");
    const uint32_t all = (1u << std::min<uint32_t>(format.channels, 31)) - 1;
    return {format.samplesPerSecond, format.channels, format.channelMask != 0 ? format.channelMask : all, info.length};
}

void ReadSound(Clip& clip, const SoundFormat& format, uint64_t first, uint64_t count,
               const std::function<void(std::span<const float>)>& take) {
    std::vector<float> buffer(static_cast<std::size_t>(std::min(count, kSamplesPerRead)) * format.channels);
    _ktmemorytoken token{};
    token.address = reinterpret_cast<std::uintptr_t>(buffer.data());
    token.size = static_cast<uint32_t>(buffer.size() * sizeof(float));
    token.type = kKtMemoryPlain;
    token.processId = GetCurrentProcessId();
    for (uint64_t done = 0; done < count;) {
        InterruptScope::Check();
        const auto wanted = static_cast<int32_t>(std::min(count - done, kSamplesPerRead));
        int32_t read = 0;
        const HRESULT result = clip.Audio().ReadSamples(static_cast<int64_t>(first + done), &token, wanted, &read);
        if (result != S_OK || read < wanted) {
            throw Failure("the sound ends at sample " +
                          std::to_string(first + done + static_cast<uint64_t>(std::max(read, 0))) + " (" +
                          ResultText(result) + "): the clip may be damaged or cut short");
        }
        take(std::span(buffer).first(static_cast<std::size_t>(read) * format.channels));
        done += static_cast<uint64_t>(read);
    }
}

}  // namespace clipfio::host
