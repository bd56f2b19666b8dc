#include "audio/copy_engine.h"

#include <algorithm>

#include "audio/converters.h"
#include "audio/cpu_level.h"
#include "audio/sample_rule.h"
#include "audio/wfx.h"
#include "kernel/cpu.h"

namespace clipfio::audio {
namespace {

const ConverterTable& TableOf(CpuLevel level) noexcept {
    switch (level) {
        case CpuLevel::Sse2:
            return kSse2Converters;
        case CpuLevel::Sse41:
            return kSse41Converters;
        case CpuLevel::Avx2:
            return kAvx2Converters;
        case CpuLevel::Avx512:
            return kAvx512Converters;
        default:
            return kReferenceConverters;
    }
}

constexpr bool IsFloatPair(KTSAMPLETYPE a, KTSAMPLETYPE b) noexcept {
    return (a == KTSAMPLETYPE_FLOAT32 && b == KTSAMPLETYPE_FLOAT64) ||
           (a == KTSAMPLETYPE_FLOAT64 && b == KTSAMPLETYPE_FLOAT32);
}

KTSAMPLETYPE TypeOf(const tWAVEFORMATEX* format) noexcept { return KtAudio_GetSampleType(format); }
KTSAMPLETYPE TypeOf(const _ktwaveformat* format) noexcept { return format ? format->sampleType : KTSAMPLETYPE_NONE; }
uint32_t ChannelsOf(const tWAVEFORMATEX* format) noexcept { return format->nChannels; }
uint32_t ChannelsOf(const _ktwaveformat* format) noexcept { return format->channels; }

template <class DestinationFormat, class SourceFormat>
HRESULT CopyFrames(const DestinationFormat* destinationFormat, void* destination, const SourceFormat* sourceFormat,
                   const void* source, int32_t frames, float gain) noexcept {
    if (frames < 1) return S_OK;
    if (!destinationFormat || !sourceFormat) return E_INVALIDARG;
    return CopySamples(TypeOf(destinationFormat), destination, TypeOf(sourceFormat), source,
                       int64_t{frames} * ChannelsOf(sourceFormat), gain);
}

}  // namespace

KTAUDIOCOPYFUNC FindConverter(CpuLevel level, KTSAMPLETYPE destination, KTSAMPLETYPE source) noexcept {
    return TableOf(level).Find(destination, source);
}

HRESULT CopySamples(KTSAMPLETYPE destinationType, void* destination, KTSAMPLETYPE sourceType, const void* source,
                    int64_t samples, float gain) noexcept {
    if (samples < 1) return S_OK;
    const KTAUDIOCOPYFUNC convert = KtAudio_GetCopyFunction2(destinationType, sourceType);
    if (!convert) return E_NOTIMPL;
    if (!destination || !source) return E_INVALIDARG;
    // In pieces, in the walking order of the pair, so that a copy in place stays right.
    constexpr int64_t kPiece = int64_t{1} << 30;
    const int64_t dstBytes = KtAudio_BytesFromSampleType(destinationType);
    const int64_t srcBytes = KtAudio_BytesFromSampleType(sourceType);
    const bool backward = dstBytes > srcBytes || destinationType == KTSAMPLETYPE_PCM32BE;
    for (int64_t done = 0; done < samples;) {
        const int64_t count = std::min(samples - done, kPiece);
        const int64_t at = backward ? samples - done - count : done;
        convert(static_cast<uint8_t*>(destination) + at * dstBytes, static_cast<const uint8_t*>(source) + at * srcBytes,
                static_cast<int32_t>(count), gain);
        done += count;
    }
    return S_OK;
}

}  // namespace clipfio::audio

using namespace clipfio::audio;

KTAUDIOCOPYFUNC KtAudio_GetCopyFunction2(KTSAMPLETYPE destination, KTSAMPLETYPE source) noexcept {
    CpuLevel level = CurrentCpuLevel();
    if (IsFloatPair(destination, source) && !(KtGetCPUSupport(KTCPU_SSE) & KTCPU_SSE)) level = CpuLevel::Scalar;
    return FindConverter(level, destination, source);
}

KTAUDIOCOPYFUNC KtAudio_GetCopyFunction(const tWAVEFORMATEX* destination, const tWAVEFORMATEX* source) noexcept {
    return KtAudio_GetCopyFunction2(TypeOf(destination), TypeOf(source));
}

KTAUDIOCOPYFUNC KtAudio_GetCopyFunction(const tWAVEFORMATEX* destination, const _ktwaveformat* source) noexcept {
    return KtAudio_GetCopyFunction2(TypeOf(destination), TypeOf(source));
}

KTAUDIOCOPYFUNC KtAudio_GetCopyFunction(const _ktwaveformat* destination, const tWAVEFORMATEX* source) noexcept {
    return KtAudio_GetCopyFunction2(TypeOf(destination), TypeOf(source));
}

KTAUDIOCOPYFUNC KtAudio_GetCopyFunction(const _ktwaveformat* destination, const _ktwaveformat* source) noexcept {
    return KtAudio_GetCopyFunction2(TypeOf(destination), TypeOf(source));
}

HRESULT KtAudio_Copy(const tWAVEFORMATEX* destinationFormat, void* destination, const tWAVEFORMATEX* sourceFormat,
                     const void* source, int32_t frames, float gain) noexcept {
    return CopyFrames(destinationFormat, destination, sourceFormat, source, frames, gain);
}

HRESULT KtAudio_Copy(const tWAVEFORMATEX* destinationFormat, void* destination, const _ktwaveformat* sourceFormat,
                     const void* source, int32_t frames, float gain) noexcept {
    return CopyFrames(destinationFormat, destination, sourceFormat, source, frames, gain);
}

HRESULT KtAudio_Copy(const _ktwaveformat* destinationFormat, void* destination, const tWAVEFORMATEX* sourceFormat,
                     const void* source, int32_t frames, float gain) noexcept {
    return CopyFrames(destinationFormat, destination, sourceFormat, source, frames, gain);
}

HRESULT KtAudio_Copy(const _ktwaveformat* destinationFormat, void* destination, const _ktwaveformat* sourceFormat,
                     const void* source, int32_t frames, float gain) noexcept {
    return CopyFrames(destinationFormat, destination, sourceFormat, source, frames, gain);
}

double KtAudio_GetNormalizeFactor(uint32_t bits) noexcept {
    return bits == 8 || bits == 16 || bits == 24 || bits == 32 ? FullScale(static_cast<int>(bits)) : 1.0;
}
