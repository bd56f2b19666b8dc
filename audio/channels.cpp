#include "audio/channels.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "audio/copy_engine.h"
#include "audio/sample_rule.h"
#include "audio/wfx.h"

namespace clipfio::audio {
namespace {

// How the samples of a format lie.
struct Layout {
    KTSAMPLETYPE type;
    uint32_t bytes;  // of one sample; 0 when the type is none of the eleven
    uint32_t channels;

    [[nodiscard]] int64_t FrameBytes() const noexcept { return int64_t{bytes} * channels; }
    [[nodiscard]] bool IsKnown() const noexcept { return bytes != 0 && channels != 0; }
    [[nodiscard]] bool IsBasic() const noexcept { return IsKnown() && type <= KTSAMPLETYPE_FLOAT64; }
};

Layout LayoutOf(KTSAMPLETYPE type, uint32_t channels) noexcept {
    return {type, KtAudio_BytesFromSampleType(type), channels};
}
Layout LayoutOf(const tWAVEFORMATEX& format) noexcept {
    return LayoutOf(KtAudio_GetSampleType(&format), format.nChannels);
}

uint8_t* At(void* buffer, int64_t offset) noexcept { return static_cast<uint8_t*>(buffer) + offset; }
const uint8_t* At(const void* buffer, int64_t offset) noexcept { return static_cast<const uint8_t*>(buffer) + offset; }

// Calls `action` with the bytes of a sample as a compile-time constant.
template <class Action>
void WithBytes(uint32_t bytes, Action&& action) {
    switch (bytes) {
        case 1:
            return action(std::integral_constant<size_t, 1>{});
        case 2:
            return action(std::integral_constant<size_t, 2>{});
        case 3:
            return action(std::integral_constant<size_t, 3>{});
        case 4:
            return action(std::integral_constant<size_t, 4>{});
        case 8:
            return action(std::integral_constant<size_t, 8>{});
    }
}

// One sample in each frame to one sample in each other frame.
void CopyStrided(uint32_t bytes, void* destination, int64_t destinationStride, const void* source, int64_t sourceStride,
                 int32_t frames) noexcept {
    WithBytes(bytes, [&](auto size) {
        for (int64_t f = 0; f < frames; ++f) {
            std::memmove(At(destination, f * destinationStride), At(source, f * sourceStride), size);
        }
    });
}

// One sample of each source frame to all samples of the destination frame. In place the walk must not overtake the
// samples that it has still to read.
void SpreadSample(uint32_t bytes, void* destination, uint32_t destinationChannels, const void* source,
                  uint32_t sourceChannels, uint32_t channel, int32_t frames) noexcept {
    const int64_t destinationStride = int64_t{bytes} * destinationChannels;
    const int64_t sourceStride = int64_t{bytes} * sourceChannels;
    const void* const first = At(source, int64_t{bytes} * channel);
    const bool backward = destinationChannels > sourceChannels;
    WithBytes(bytes, [&](auto size) {
        for (int64_t i = 0; i < frames; ++i) {
            const int64_t f = backward ? frames - 1 - i : i;
            uint8_t sample[size];
            std::memcpy(sample, At(first, f * sourceStride), size);
            uint8_t* out = At(destination, f * destinationStride);
            for (uint32_t c = 0; c < destinationChannels; ++c, out += size) std::memcpy(out, sample, size);
        }
    });
}

// --- Mixing to mono

template <class F>
double SumOfFrame(const uint8_t* frame, uint32_t channels) noexcept {
    double sum = 0.0;
    for (uint32_t c = 0; c < channels; ++c) sum += ReadNormalised<F>(frame + int64_t{c} * F::kBytes);
    return sum;
}

void WriteMeanOf8Bit(uint8_t* out, const uint8_t* frame, uint32_t channels) noexcept {
    int32_t sum = 0;
    for (uint32_t c = 0; c < channels; ++c) sum += Pcm8::Load(frame + c) * 256;
    const int32_t mean = std::clamp(sum / static_cast<int32_t>(channels), -32768, 32767);
    WriteNormalised<Pcm8>(out, mean * (1.0 / FullScale(16)));
}

template <class F>
void MixToMono(void* destination, const void* source, uint32_t channels, int32_t frames, bool mean) noexcept {
    const int64_t stride = int64_t{channels} * F::kBytes;
    for (int64_t f = 0; f < frames; ++f) {
        uint8_t* const out = At(destination, f * F::kBytes);
        const uint8_t* const frame = At(source, f * stride);
        if constexpr (std::is_same_v<F, Pcm8>) {
            if (mean) {
                WriteMeanOf8Bit(out, frame, channels);
                continue;
            }
        }
        const double sum = SumOfFrame<F>(frame, channels);
        WriteNormalised<F>(out, mean ? sum / channels : sum);
    }
}

HRESULT ChangeChannels(void* destination, uint32_t destinationChannels, const void* source,
                       const tWAVEFORMATEX* sourceFormat, int32_t frames, bool mean) noexcept {
    if (frames < 1) return S_OK;
    if (!destination || !source || !sourceFormat) return E_INVALIDARG;
    const uint32_t channels = sourceFormat->nChannels;
    if (destinationChannels == channels) {
        return KtAudio_Copy(sourceFormat, destination, sourceFormat, source, frames, 1.0f);
    }
    if (channels == 0) return E_FAIL;
    // Samples as wide as the block align says: spreading a mono sample needs no type.
    const uint32_t bytes = sourceFormat->nBlockAlign / channels;
    if (destinationChannels < channels) {
        const Layout layout = LayoutOf(*sourceFormat);
        if (destinationChannels != 1 || !layout.IsKnown() || layout.bytes != bytes) return E_FAIL;
        WithFormat(layout.type, [&]<class F>(F) { MixToMono<F>(destination, source, channels, frames, mean); });
        return S_OK;
    }
    const bool plainSize = bytes == 8 || (bytes >= 1 && bytes <= 4);
    if (channels != 1 || !plainSize) return E_FAIL;
    SpreadSample(bytes, destination, destinationChannels, source, 1, 0, frames);
    return S_OK;
}

// --- The mean of a frame in every channel of it

// Of the codes as they stand, cut towards zero: the 8-bit codes are unsigned.
template <class F, class Sum>
void WriteMeanCode(uint8_t* out, const uint8_t* frame, uint32_t channels) noexcept {
    Sum sum = 0;
    for (uint32_t c = 0; c < channels; ++c) {
        if constexpr (std::is_same_v<F, Pcm8>) {
            sum += frame[c];
        } else {
            sum += F::Load(frame + int64_t{c} * F::kBytes);
        }
    }
    const auto mean = static_cast<int32_t>(sum / static_cast<Sum>(channels));
    if constexpr (std::is_same_v<F, Pcm8>) {
        *out = static_cast<uint8_t>(mean);
    } else {
        F::Store(out, mean);
    }
}

template <class F>
void WriteMean(uint8_t* out, const uint8_t* frame, uint32_t channels) noexcept {
    if constexpr (std::is_same_v<F, Pcm32>) {
        WriteMeanCode<F, int64_t>(out, frame, channels);
    } else if constexpr (std::is_same_v<F, Pcm8> || std::is_same_v<F, Pcm16>) {
        WriteMeanCode<F, int32_t>(out, frame, channels);
    } else {
        WriteNormalised<F>(out, SumOfFrame<F>(frame, channels) / channels);
    }
}

template <class F>
void SpreadMean(void* destination, const void* source, uint32_t channels, int32_t frames) noexcept {
    const int64_t stride = int64_t{channels} * F::kBytes;
    for (int64_t f = 0; f < frames; ++f) {
        uint8_t mean[F::kBytes];
        WriteMean<F>(mean, At(source, f * stride), channels);
        uint8_t* out = At(destination, f * stride);
        for (uint32_t c = 0; c < channels; ++c, out += F::kBytes) std::memcpy(out, mean, F::kBytes);
    }
}

HRESULT Mute(void* buffer, const Layout& layout, uint32_t channel, int32_t frames) noexcept {
    if (frames < 1) return S_OK;
    if (!buffer) return E_INVALIDARG;
    if (!layout.IsKnown()) return E_FAIL;
    uint8_t silence[8] = {};
    if (layout.type == KTSAMPLETYPE_PCM8) silence[0] = 0x80;
    CopyStrided(layout.bytes, At(buffer, int64_t{channel} * layout.bytes), layout.FrameBytes(), silence, 0, frames);
    return S_OK;
}

HRESULT SwapStereo(void* destination, const void* source, const tWAVEFORMATEX* format, int32_t frames) noexcept {
    if (frames < 1) return S_OK;
    if (!destination || !source || !format) return E_INVALIDARG;
    const Layout layout = LayoutOf(*format);
    if (layout.channels == 1) return S_OK;
    if (!layout.IsBasic()) return E_FAIL;
    const int64_t stride = format->nBlockAlign - format->nBlockAlign % format->nChannels;
    if (stride < 2 * int64_t{layout.bytes}) return E_FAIL;
    WithBytes(layout.bytes, [&](auto size) {
        for (int64_t f = 0; f < frames; ++f) {
            uint8_t* const out = At(destination, f * stride);
            const uint8_t* const in = At(source, f * stride);
            uint8_t pair[2 * size];
            std::memcpy(pair, in + size, size);
            std::memcpy(pair + size, in, size);
            if (out != in) std::memcpy(out, in, static_cast<size_t>(stride));
            std::memcpy(out, pair, 2 * size);
        }
    });
    return S_OK;
}

}  // namespace
}  // namespace clipfio::audio

using namespace clipfio::audio;

HRESULT KtAudio_ChannelChange(void* destination, uint32_t destinationChannels, const void* source,
                              const tWAVEFORMATEX* sourceFormat, int32_t frames) noexcept {
    return ChangeChannels(destination, destinationChannels, source, sourceFormat, frames, false);
}

HRESULT KtAudio_ChannelChangeAvg(void* destination, uint32_t destinationChannels, const void* source,
                                 const tWAVEFORMATEX* sourceFormat, int32_t frames) noexcept {
    return ChangeChannels(destination, destinationChannels, source, sourceFormat, frames, true);
}

HRESULT KtAudio_ExtractChannel(void* destination, uint32_t channel, const void* source,
                               const tWAVEFORMATEX* sourceFormat, int32_t frames) noexcept {
    if (frames < 1) return S_OK;
    if (!sourceFormat) return E_INVALIDARG;
    return KtAudio_ExtractChannel(destination, channel, source, KtAudio_GetSampleType(sourceFormat),
                                  sourceFormat->nChannels, frames);
}

HRESULT KtAudio_ExtractChannel(void* destination, uint32_t channel, const void* source, KTSAMPLETYPE type,
                               uint32_t sourceChannels, int32_t frames) noexcept {
    if (frames < 1) return S_OK;
    if (!destination || !source) return E_INVALIDARG;
    const Layout layout = LayoutOf(type, sourceChannels);
    if (!layout.IsKnown()) return E_FAIL;
    if (layout.channels == 1) return CopySamples(type, destination, type, source, frames, 1.0f);
    CopyStrided(layout.bytes, destination, layout.bytes, At(source, int64_t{channel} * layout.bytes),
                layout.FrameBytes(), frames);
    return S_OK;
}

HRESULT KtAudio_ExtractChannelPair(void* destination, uint32_t firstChannel, const void* source,
                                   const tWAVEFORMATEX* sourceFormat, int32_t frames) noexcept {
    if (frames < 1) return S_OK;
    if (!destination || !source || !sourceFormat) return E_INVALIDARG;
    const Layout layout = LayoutOf(*sourceFormat);
    if (layout.channels == 2) return KtAudio_Copy(sourceFormat, destination, sourceFormat, source, frames, 1.0f);
    if (!layout.IsBasic() || layout.channels < 2) return E_FAIL;
    const void* const first = At(source, int64_t{firstChannel} * layout.bytes);
    const int64_t pairBytes = 2 * int64_t{layout.bytes};
    CopyStrided(layout.bytes, destination, pairBytes, first, layout.FrameBytes(), frames);
    CopyStrided(layout.bytes, At(destination, layout.bytes), pairBytes, At(first, layout.bytes), layout.FrameBytes(),
                frames);
    return S_OK;
}

HRESULT KtAudio_InsertChannel(void* destination, KTSAMPLETYPE type, uint32_t destinationChannels, uint32_t channel,
                              const void* source, int32_t frames) noexcept {
    if (frames < 1) return S_OK;
    if (!destination || !source) return E_INVALIDARG;
    const Layout layout = LayoutOf(type, destinationChannels);
    if (!layout.IsKnown()) return E_FAIL;
    if (layout.channels == 1) return CopySamples(type, destination, type, source, frames, 1.0f);
    CopyStrided(layout.bytes, At(destination, int64_t{channel} * layout.bytes), layout.FrameBytes(), source,
                layout.bytes, frames);
    return S_OK;
}

HRESULT KtAudio_MonoChannel(void* destination, const void* source, const tWAVEFORMATEX* format,
                            int32_t frames) noexcept {
    if (frames < 1) return S_OK;
    if (!destination || !source || !format) return E_INVALIDARG;
    const Layout layout = LayoutOf(*format);
    if (layout.channels == 1) return KtAudio_Copy(format, destination, format, source, frames, 1.0f);
    if (!layout.IsBasic()) return E_FAIL;
    WithBasicFormat(layout.type, [&]<class F>(F) { SpreadMean<F>(destination, source, layout.channels, frames); });
    return S_OK;
}

HRESULT KtAudio_CopyChannelToAll(void* destination, const void* source, const tWAVEFORMATEX* sourceFormat,
                                 const tWAVEFORMATEX* destinationFormat, uint32_t channel, int32_t frames) noexcept {
    if (frames < 1) return S_OK;
    if (!destination || !source || !sourceFormat || !destinationFormat) return E_INVALIDARG;
    const Layout from = LayoutOf(*sourceFormat);
    const Layout to = LayoutOf(*destinationFormat);
    if (from.type != to.type) return E_NOTIMPL;
    if (to.channels == 1) return KtAudio_ExtractChannel(destination, channel, source, sourceFormat, frames);
    if (!from.IsKnown() || !to.IsKnown()) return E_FAIL;
    SpreadSample(from.bytes, destination, to.channels, source, from.channels, channel, frames);
    return S_OK;
}

HRESULT KtAudio_CopyChannelToMultiMono(void* destination, const tWAVEFORMATEX* destinationFormat, const void* source,
                                       const tWAVEFORMATEX* sourceFormat, uint32_t channel, int32_t frames) noexcept {
    if (frames < 1) return S_OK;
    if (!sourceFormat || !destinationFormat) return E_INVALIDARG;
    const Layout from = LayoutOf(*sourceFormat);
    const Layout to = LayoutOf(*destinationFormat);
    if (from.type != to.type) return E_INVALIDARG;
    return KtAudio_CopyChannelToMultiMono2(destination, to.channels, source, from.channels, channel, frames, from.type);
}

HRESULT KtAudio_CopyChannelToMultiMono2(void* destination, uint32_t destinationChannels, const void* source,
                                        uint32_t sourceChannels, uint32_t channel, int32_t frames,
                                        KTSAMPLETYPE type) noexcept {
    if (frames < 1) return S_OK;
    const Layout layout = LayoutOf(type, sourceChannels);
    if (!destination || !source || !layout.IsKnown() || destinationChannels == 0) return E_INVALIDARG;
    SpreadSample(layout.bytes, destination, destinationChannels, source, sourceChannels, channel, frames);
    return S_OK;
}

HRESULT KtAudio_CopyChannelToChannel(void* buffer, const tWAVEFORMATEX* format, uint32_t from, uint32_t to,
                                     int32_t frames) noexcept {
    if (frames < 1) return S_OK;
    if (!buffer || !format) return E_INVALIDARG;
    const Layout layout = LayoutOf(*format);
    if (layout.channels == 1) return S_OK;
    if (!layout.IsBasic()) return E_FAIL;
    CopyStrided(layout.bytes, At(buffer, int64_t{to} * layout.bytes), layout.FrameBytes(),
                At(buffer, int64_t{from} * layout.bytes), layout.FrameBytes(), frames);
    return S_OK;
}

HRESULT KtAudio_MuteChannel(void* buffer, const tWAVEFORMATEX* format, uint32_t channel, int32_t frames) noexcept {
    return format ? Mute(buffer, LayoutOf(*format), channel, frames) : E_INVALIDARG;
}

HRESULT KtAudio_MuteChannel(void* buffer, const _ktwaveformat* format, uint32_t channel, int32_t frames) noexcept {
    return format ? Mute(buffer, LayoutOf(format->sampleType, format->channels), channel, frames) : E_INVALIDARG;
}

HRESULT KtAudio_MuteChannel(void* buffer, KTSAMPLETYPE type, uint32_t channels, uint32_t channel,
                            int32_t frames) noexcept {
    return Mute(buffer, LayoutOf(type, channels), channel, frames);
}

HRESULT KtAudio_SwapStereoChannels(void* buffer, const tWAVEFORMATEX* format, int32_t frames) noexcept {
    return SwapStereo(buffer, buffer, format, frames);
}

HRESULT KtAudio_CopySwapStereoChannels(void* destination, const void* source, const tWAVEFORMATEX* format,
                                       int32_t frames) noexcept {
    return SwapStereo(destination, source, format, frames);
}
