// The platform's format record as the system reads and writes it.
//
// A record with the tag 0xFFFE counts as 40 bytes where its sub-format is asked for, whatever its extra size says,
// unless the operation says otherwise. Sizes are in bytes. A null record is a format that is not known: 0. Any thread.
#pragma once

#include <optional>

#include "audio/sample_type.h"
#include "platform/media.h"

// Looks through an extensible format at its sub-format.
KT_API KTSAMPLETYPE KtAudio_GetSampleType(const tWAVEFORMATEX* wfx) noexcept;

// The sub-format's tag for an extensible format, 0 when that is not a tagged one. With an extra size below 22 an
// extensible format has no sub-format, and the result is its own tag.
KT_API uint16_t KtAudio_GetWaveFormatTag(const tWAVEFORMATEX* wfx) noexcept;

// 1, and the tag, when the sub-format is PCM (tag 1) or IEEE float (tag 3); else 0 and a tag of 0.
KT_API int32_t KtAudio_GetFormatTagExtensible(const WAVEFORMATEXTENSIBLE* format, uint16_t* tag) noexcept;

// 1 for everything but a well-formed record of one of the system's tags, or an extensible one of PCM or IEEE float.
KT_API int32_t KtAudio_IsCompressed(const tWAVEFORMATEX* wfx) noexcept;
// Looks at the sub-format alone.
KT_API int32_t KtAudio_IsCompressedExtensible(const WAVEFORMATEXTENSIBLE* format) noexcept;

// 1 when channels, rate, tag and bits match. Two extensible formats may differ in their sub-formats.
KT_API int32_t KtAudio_IsEqualFormat(const tWAVEFORMATEX* a, const tWAVEFORMATEX* b) noexcept;

// Puts 20 bits and the block align of a PCM record (tag 1) right; average bytes stay. 1 when something changed.
KT_API int32_t KtAudio_FixBadWfx(tWAVEFORMATEX* wfx) noexcept;

// Writes the plain 18-byte form.
KT_API void KtAudio_InitWfx(tWAVEFORMATEX* wfx, uint32_t rate, KTSAMPLETYPE type, uint32_t channels) noexcept;

// Writes the plain form (18 bytes), or the extensible one (40 bytes) when `room` holds it and `mask` tells more than
// the default of the channel count. A mask with more bits than channels is dropped. A room below 18 writes nothing.
KT_API void KtAudio_InitWfxFlex(tWAVEFORMATEX* wfx, uint32_t tag, uint32_t rate, uint32_t bits, uint32_t channels,
                                uint32_t mask, uint32_t room) noexcept;

namespace clipfio::audio {

inline constexpr uint32_t kPlainBytes = 18;
inline constexpr uint32_t kExtensibleBytes = 40;
inline constexpr uint16_t kExtensibleExtra = kExtensibleBytes - kPlainBytes;

// The lowest `channels` speaker bits; all 32 from 32 channels on.
constexpr uint32_t DefaultChannelMask(uint32_t channels) noexcept {
    return channels >= 32 ? 0xFFFFFFFFu : (1u << channels) - 1;
}

// What an extensible record holds behind the plain one.
struct ExtensiblePart {
    uint16_t validBits;
    uint32_t mask;
    GUID subFormat;
};
ExtensiblePart ReadExtensiblePart(const tWAVEFORMATEX* wfx) noexcept;

// The tag inside a sub-format of the standard base {0000tttt-0000-0010-8000-00AA00389B71}.
std::optional<uint16_t> TagOfSubFormat(const GUID& subFormat) noexcept;

// Both write a whole form, with an extra size that covers the form alone.
struct WfxFields {
    uint16_t tag;
    uint16_t channels;
    uint32_t rate;
    uint32_t averageBytes;
    uint16_t blockAlign;
    uint16_t bits;
};
void WritePlain(tWAVEFORMATEX* wfx, const WfxFields& fields) noexcept;
void WriteExtensible(tWAVEFORMATEX* wfx, const WfxFields& fields, uint32_t mask) noexcept;

// The fields of an uncompressed format, block align and average bytes computed.
WfxFields UncompressedFields(uint32_t tag, uint32_t rate, uint32_t bits, uint32_t channels) noexcept;
// `mask`, or 0 when it has more bits than channels.
uint32_t PlausibleMask(uint32_t mask, uint32_t channels) noexcept;

}  // namespace clipfio::audio
