// Operations on the channels of interleaved samples.
//
// A frame is one sample a channel, packed: channels times the bytes of the type. Only where an operation says so does
// it follow the block align. Channels count from 0. A channel number is not checked: one behind the last reaches into
// memory that the caller must answer for. Frames below 1: nothing happens, result 0. Any thread, on disjoint buffers.
//
// Results: 0; E_FAIL for a format that the operation does not handle, none having 0 channels; E_INVALIDARG for a null
// format or buffer, unless another result is told. A failure writes nothing. "Types 16 to 33" are 8 to 32 bits
// little-endian and the floats, "16 to 66" all eleven.
#pragma once

#include "audio/wave_format.h"
#include "platform/media.h"

// To another number of channels. The same number is a copy. To mono (types 16 to 66) the channels are summed, or
// averaged, in double and written by the conversion rule: a loud sum is limited. From mono every channel gets the
// sample, from the last frame to the first, so that it works in place. Nothing else is handled.
//
// The mean of 8-bit samples (type 16) is taken on 16-bit integers, cut towards zero, then rounded to 8 bits.
KT_API HRESULT KtAudio_ChannelChange(void* destination, uint32_t destinationChannels, const void* source,
                                     const tWAVEFORMATEX* sourceFormat, int32_t frames) noexcept;
KT_API HRESULT KtAudio_ChannelChangeAvg(void* destination, uint32_t destinationChannels, const void* source,
                                        const tWAVEFORMATEX* sourceFormat, int32_t frames) noexcept;

// One channel to a packed mono buffer. A mono source is copied.
KT_EXPORT HRESULT KtAudio_ExtractChannel(void* destination, uint32_t channel, const void* source,
                                         const tWAVEFORMATEX* sourceFormat, int32_t frames) noexcept;
KT_EXPORT HRESULT KtAudio_ExtractChannel(void* destination, uint32_t channel, const void* source, KTSAMPLETYPE type,
                                         uint32_t sourceChannels, int32_t frames) noexcept;

// Two neighbouring channels to a packed stereo buffer. A stereo source is copied, of whatever type; else types 16
// to 33.
KT_API HRESULT KtAudio_ExtractChannelPair(void* destination, uint32_t firstChannel, const void* source,
                                          const tWAVEFORMATEX* sourceFormat, int32_t frames) noexcept;

// A packed mono source into one channel of the destination. Types 16 to 66.
KT_API HRESULT KtAudio_InsertChannel(void* destination, KTSAMPLETYPE type, uint32_t destinationChannels,
                                     uint32_t channel, const void* source, int32_t frames) noexcept;

// Every channel gets the mean of its frame: of the bytes as they stand for type 16, of the integers, cut towards zero,
// for 17 and 19, by the conversion rule for 18, in double for the floats. In place or not. Types 16 to 33; mono is
// copied.
KT_API HRESULT KtAudio_MonoChannel(void* destination, const void* source, const tWAVEFORMATEX* format,
                                   int32_t frames) noexcept;

// One source channel to every channel of the destination. E_NOTIMPL when the types differ.
KT_API HRESULT KtAudio_CopyChannelToAll(void* destination, const void* source, const tWAVEFORMATEX* sourceFormat,
                                        const tWAVEFORMATEX* destinationFormat, uint32_t channel,
                                        int32_t frames) noexcept;

// The same with another failure: E_INVALIDARG when the types differ or are none of 16 to 66, or a side has no channels.
// Works in place whatever the channel counts.
KT_API HRESULT KtAudio_CopyChannelToMultiMono(void* destination, const tWAVEFORMATEX* destinationFormat,
                                              const void* source, const tWAVEFORMATEX* sourceFormat, uint32_t channel,
                                              int32_t frames) noexcept;
KT_API HRESULT KtAudio_CopyChannelToMultiMono2(void* destination, uint32_t destinationChannels, const void* source,
                                               uint32_t sourceChannels, uint32_t channel, int32_t frames,
                                               KTSAMPLETYPE type) noexcept;

// One channel over another, in place. Types 16 to 33; mono stays as it is.
KT_API HRESULT KtAudio_CopyChannelToChannel(void* buffer, const tWAVEFORMATEX* format, uint32_t from, uint32_t to,
                                            int32_t frames) noexcept;

// Silence in one channel. Types 16 to 66.
KT_EXPORT HRESULT KtAudio_MuteChannel(void* buffer, const tWAVEFORMATEX* format, uint32_t channel,
                                      int32_t frames) noexcept;
KT_EXPORT HRESULT KtAudio_MuteChannel(void* buffer, const _ktwaveformat* format, uint32_t channel,
                                      int32_t frames) noexcept;
KT_EXPORT HRESULT KtAudio_MuteChannel(void* buffer, KTSAMPLETYPE type, uint32_t channels, uint32_t channel,
                                      int32_t frames) noexcept;

// Channels 0 and 1 change places; further channels stay. Types 16 to 33. A mono format does nothing: nothing is copied
// either. The distance of frames is the block align less what is left when it is divided by the channels; one that
// has no room for two samples is E_FAIL.
KT_API HRESULT KtAudio_SwapStereoChannels(void* buffer, const tWAVEFORMATEX* format, int32_t frames) noexcept;
KT_API HRESULT KtAudio_CopySwapStereoChannels(void* destination, const void* source, const tWAVEFORMATEX* format,
                                              int32_t frames) noexcept;
