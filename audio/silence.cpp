#include "audio/silence.h"

#include <algorithm>
#include <cstring>

#include "audio/channels.h"
#include "audio/copy_engine.h"
#include "audio/wfx.h"

namespace clipfio::audio {
namespace {

enum class Silence { Zero, Middle, Nothing, Unknown };

Silence SilenceOf(uint32_t tag, uint32_t bits) noexcept {
    switch (tag) {
        case kTagPcm:
        case kTagPcmBigEndian:
            return bits == 8 ? Silence::Middle : Silence::Zero;
        case kTagFloat:
        case kTagPcm24In32:
        case kTagPcmSigned8:
            return Silence::Zero;
        default:
            return Silence::Unknown;
    }
}

Silence SilenceOf(const tWAVEFORMATEX& format) noexcept {
    if (format.wFormatTag != kTagExtensible) return SilenceOf(format.wFormatTag, format.wBitsPerSample);
    const uint16_t tag = TagOfSubFormat(ReadExtensiblePart(&format).subFormat).value_or(0);
    return tag == kTagPcm || tag == kTagFloat ? SilenceOf(tag, format.wBitsPerSample) : Silence::Nothing;
}

HRESULT Fill(void* buffer, size_t bytes, Silence silence) noexcept {
    switch (silence) {
        case Silence::Unknown:
            return E_FAIL;
        case Silence::Nothing:
            return S_OK;
        default:
            if (!buffer) return E_INVALIDARG;
            std::memset(buffer, silence == Silence::Middle ? 0x80 : 0, bytes);
            return S_OK;
    }
}

size_t FillBytes(uint32_t blockAlign, int32_t frames) noexcept {
    return frames < 1 ? 0 : size_t{blockAlign} * static_cast<size_t>(frames);
}

bool HasChannelSilence(uint32_t tag, uint32_t bits) noexcept {
    switch (tag) {
        case kTagPcm:
        case kTagPcm24In32:
        case kTagPcmSigned8:
        case kTagPcmBigEndian:
            return bits == 8 || bits == 16 || bits == 24 || bits == 32;
        case kTagFloat:
            return bits == 32 || bits == 64;
        default:
            return false;
    }
}

bool ConvertsSample(KTSAMPLETYPE destination, KTSAMPLETYPE source) noexcept {
    const auto isOneOf = [](KTSAMPLETYPE type) {
        return type == KTSAMPLETYPE_PCM16 || type == KTSAMPLETYPE_PCM24 || type == KTSAMPLETYPE_FLOAT32 ||
               type == KTSAMPLETYPE_FLOAT64 || type == KTSAMPLETYPE_PCM24IN32;
    };
    return isOneOf(source) && (isOneOf(destination) || destination == KTSAMPLETYPE_PCM32);
}

// `block` over and over.
void Repeat(void* destination, const void* block, size_t blockBytes, int32_t frames) noexcept {
    auto* out = static_cast<uint8_t*>(destination);
    for (int32_t f = 0; f < frames; ++f, out += blockBytes) std::memcpy(out, block, blockBytes);
}

}  // namespace
}  // namespace clipfio::audio

using namespace clipfio::audio;

HRESULT KtAudio_FillSilence(const tWAVEFORMATEX* format, void* buffer, int32_t frames) noexcept {
    if (!format) return E_INVALIDARG;
    const size_t bytes = FillBytes(format->nBlockAlign, frames);
    return bytes == 0 ? S_OK : Fill(buffer, bytes, SilenceOf(*format));
}

HRESULT KtAudio_FillSilence(const _ktwaveformat* format, void* buffer, int32_t frames) noexcept {
    if (!format) return E_INVALIDARG;
    const size_t bytes = FillBytes(format->blockAlign, frames);
    if (bytes == 0) return S_OK;
    if (KtAudio_BytesFromSampleType(format->sampleType) == 0) return E_FAIL;
    return Fill(buffer, bytes, format->sampleType == KTSAMPLETYPE_PCM8 ? Silence::Middle : Silence::Zero);
}

HRESULT KtAudio_FillSilenceChannel(const tWAVEFORMATEX* format, void* buffer, uint32_t channel,
                                   int32_t frames) noexcept {
    if (!format) return E_INVALIDARG;
    if (channel >= format->nChannels) return E_FAIL;
    if (frames < 1) return S_OK;
    if (format->nChannels == 1) return KtAudio_FillSilence(format, buffer, frames);
    const uint32_t bits = format->wBitsPerSample;
    if (!HasChannelSilence(format->wFormatTag, bits)) return E_FAIL;
    if (!buffer) return E_INVALIDARG;
    // A sample may lie in a wider container.
    const size_t container =
        format->nBlockAlign % format->nChannels == 0 ? format->nBlockAlign / format->nChannels : 0u;
    const size_t bytes = std::max<size_t>(container, bits / 8);
    const uint8_t value = bits == 8 && format->wFormatTag != kTagPcmSigned8 ? 0x80 : 0;
    uint8_t* out = static_cast<uint8_t*>(buffer) + channel * bytes;
    for (int32_t f = 0; f < frames; ++f, out += format->nChannels * bytes) std::memset(out, value, bytes);
    return S_OK;
}

HRESULT KtAudio_FillWithSample(const tWAVEFORMATEX* destinationFormat, void* destination,
                               const tWAVEFORMATEX* sampleFormat, const void* sample, int32_t frames) noexcept {
    if (frames < 1) return S_OK;
    if (!destinationFormat || !destination || !sampleFormat || !sample) return E_INVALIDARG;
    const KTSAMPLETYPE destinationType = KtAudio_GetSampleType(destinationFormat);
    const KTSAMPLETYPE sampleType = KtAudio_GetSampleType(sampleFormat);
    if (destinationType == sampleType) {
        Repeat(destination, sample, destinationFormat->nBlockAlign, frames);
        return S_OK;
    }
    KtAudio_FillSilence(destinationFormat, destination, frames);
    if (!ConvertsSample(destinationType, sampleType)) return S_OK;
    uint8_t converted[2 * sizeof(double)];
    KtAudio_GetCopyFunction2(destinationType, sampleType)(converted, sample, 2, 1.0f);
    const size_t bytes = KtAudio_BytesFromSampleType(destinationType);
    const size_t used =
        std::min<size_t>({2 * bytes, destinationFormat->nChannels * bytes, destinationFormat->nBlockAlign});
    auto* out = static_cast<uint8_t*>(destination);
    for (int32_t f = 0; f < frames; ++f, out += destinationFormat->nBlockAlign) std::memcpy(out, converted, used);
    return S_OK;
}
