// The sample layouts of the system, and how format tags name them.
//
// The tags 0xFE00 to 0xFE03 are private to the system: 24 bits in a 32-bit word, signed 8 bits, big-endian, and one
// whose two layouts are recognised and nothing more. Any thread.
#pragma once

#include "platform/base.h"

enum KTSAMPLETYPE : uint32_t {
    KTSAMPLETYPE_NONE = 0,
    KTSAMPLETYPE_PCM8 = 16,  // unsigned, silence 0x80
    KTSAMPLETYPE_PCM16 = 17,
    KTSAMPLETYPE_PCM24 = 18,      // packed, three bytes
    KTSAMPLETYPE_PCM32 = 19,      // little-endian, as are 17 and 18
    KTSAMPLETYPE_FLOAT32 = 32,    // full scale 1.0
    KTSAMPLETYPE_FLOAT64 = 33,    // full scale 1.0
    KTSAMPLETYPE_PCM24IN32 = 48,  // a signed 24-bit value, sign-extended in a 32-bit word
    KTSAMPLETYPE_PCM8S = 49,      // signed
    KTSAMPLETYPE_PCM16BE = 64,
    KTSAMPLETYPE_PCM24BE = 65,  // packed, three bytes
    KTSAMPLETYPE_PCM32BE = 66,
    KTSAMPLETYPE_X16 = 128,  // known to KtAudio_GetSampleType2 only, as is X24
    KTSAMPLETYPE_X24 = 129,
};

// KTSAMPLETYPE_NONE for a pair that has no layout.
KT_API KTSAMPLETYPE KtAudio_GetSampleType2(uint32_t tag, uint32_t bits) noexcept;

// Format tag, bits and bytes of one sample; 0 for NONE, X16, X24 and values that are no type.
KT_API uint32_t KtAudio_FormatTagFromSampleType(KTSAMPLETYPE type) noexcept;
KT_API uint32_t KtAudio_BitsFromSampleType(KTSAMPLETYPE type) noexcept;
KT_API uint32_t KtAudio_BytesFromSampleType(KTSAMPLETYPE type) noexcept;

namespace clipfio::audio {

inline constexpr uint16_t kTagPcm = 1;
inline constexpr uint16_t kTagFloat = 3;
inline constexpr uint16_t kTagPcm24In32 = 0xFE00;
inline constexpr uint16_t kTagPcmSigned8 = 0xFE01;
inline constexpr uint16_t kTagPcmBigEndian = 0xFE02;
inline constexpr uint16_t kTagX = 0xFE03;
inline constexpr uint16_t kTagExtensible = 0xFFFE;

}  // namespace clipfio::audio
