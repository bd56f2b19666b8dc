// Silence, and one sample over and over. Any thread. E_INVALIDARG for a null format or buffer.
#pragma once

#include "audio/wave_format.h"
#include "platform/media.h"

// Fill block align times frames bytes; none of them is result 0, whatever the format.
//
// The platform's record: the system's tags 1, 3 and 0xFE00 to 0xFE02 and extensible formats of PCM or float. Any other
// extensible format succeeds with nothing written, any other tag is E_FAIL. Only unsigned 8 bits have a silence of
// 0x80.
KT_EXPORT HRESULT KtAudio_FillSilence(const tWAVEFORMATEX* format, void* buffer, int32_t frames) noexcept;
// By the sample type; E_FAIL when it is none of the eleven.
KT_EXPORT HRESULT KtAudio_FillSilence(const _ktwaveformat* format, void* buffer, int32_t frames) noexcept;

// One channel of packed frames, by tag and bits: tags 1 and 0xFE00 to 0xFE02 with 8, 16, 24 or 32 bits, tag 3 with 32
// or 64; else E_FAIL, as for a channel behind the last. A sample is as wide as its part of the block,
// which may be wider than its bits. A mono format goes to KtAudio_FillSilence.
KT_API HRESULT KtAudio_FillSilenceChannel(const tWAVEFORMATEX* format, void* buffer, uint32_t channel,
                                          int32_t frames) noexcept;

// Equal types: every frame becomes a copy of the destination's block align bytes at `sample`. Different types: `sample`
// is a frame of two channels, converted to the destination, whose channels behind the second are silent and which takes
// the first alone when it is mono; from types 17, 18, 32, 33 and 48 to 17, 18, 19, 32, 33 and 48. Every other pair
// fills the destination with silence and succeeds.
KT_API HRESULT KtAudio_FillWithSample(const tWAVEFORMATEX* destinationFormat, void* destination,
                                      const tWAVEFORMATEX* sampleFormat, const void* sample, int32_t frames) noexcept;
