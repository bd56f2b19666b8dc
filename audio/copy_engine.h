// Samples from any of the eleven formats to any other, with a gain.
//
// Frames are one sample a channel; counts are 32-bit, and below 1 nothing happens (result 0). A gain is a factor, 1.0
// for none. The arithmetic is that of audio/sample_rule.h at every processor level, bit for bit; what lies outside the
// range of an integer format is limited, what is not a number becomes 0 there. At gain 1.0 a 24-bit word of 32
// (type 48) that lies outside 24 bits is limited to them on the way to any other integer format.
//
// Buffers of any address, disjoint or one buffer. A converter to wider samples may then work in place; the others may
// work in place too, except those that narrow to type 66. Any thread.
//
// Results: 0; E_NOTIMPL when there is no converter; E_INVALIDARG for a null format or buffer.
#pragma once

#include "audio/wave_format.h"
#include "platform/media.h"

// A converter takes a count of samples, not of frames.
using KTAUDIOCOPYFUNC = void (*)(void* destination, const void* source, int32_t count, float gain);

// Null for a type without a format, and for the pairs of 48 to 64 and to 65. The converter is the best for the
// processor features that KtGetCPUSupport allows at the time of the call.
KT_API KTAUDIOCOPYFUNC KtAudio_GetCopyFunction2(KTSAMPLETYPE destination, KTSAMPLETYPE source) noexcept;

KT_EXPORT KTAUDIOCOPYFUNC KtAudio_GetCopyFunction(const tWAVEFORMATEX* destination,
                                                  const tWAVEFORMATEX* source) noexcept;
KT_EXPORT KTAUDIOCOPYFUNC KtAudio_GetCopyFunction(const tWAVEFORMATEX* destination,
                                                  const _ktwaveformat* source) noexcept;
KT_EXPORT KTAUDIOCOPYFUNC KtAudio_GetCopyFunction(const _ktwaveformat* destination,
                                                  const tWAVEFORMATEX* source) noexcept;
KT_EXPORT KTAUDIOCOPYFUNC KtAudio_GetCopyFunction(const _ktwaveformat* destination,
                                                  const _ktwaveformat* source) noexcept;

// The source's channel count says how many samples a frame has; the destination's is not read.
KT_EXPORT HRESULT KtAudio_Copy(const tWAVEFORMATEX* destinationFormat, void* destination,
                               const tWAVEFORMATEX* sourceFormat, const void* source, int32_t frames,
                               float gain) noexcept;
KT_EXPORT HRESULT KtAudio_Copy(const tWAVEFORMATEX* destinationFormat, void* destination,
                               const _ktwaveformat* sourceFormat, const void* source, int32_t frames,
                               float gain) noexcept;
KT_EXPORT HRESULT KtAudio_Copy(const _ktwaveformat* destinationFormat, void* destination,
                               const tWAVEFORMATEX* sourceFormat, const void* source, int32_t frames,
                               float gain) noexcept;
KT_EXPORT HRESULT KtAudio_Copy(const _ktwaveformat* destinationFormat, void* destination,
                               const _ktwaveformat* sourceFormat, const void* source, int32_t frames,
                               float gain) noexcept;

// 2^(bits-1) for 8, 16, 24 and 32 bits, 1.0 for anything else.
KT_API double KtAudio_GetNormalizeFactor(uint32_t bits) noexcept;

namespace clipfio::audio {

enum class CpuLevel;

// The converter of one level, whatever is allowed.
KTAUDIOCOPYFUNC FindConverter(CpuLevel level, KTSAMPLETYPE destination, KTSAMPLETYPE source) noexcept;

// KtAudio_Copy on types, with a count of samples that may be beyond 32 bits.
HRESULT CopySamples(KTSAMPLETYPE destinationType, void* destination, KTSAMPLETYPE sourceType, const void* source,
                    int64_t samples, float gain) noexcept;

}  // namespace clipfio::audio
