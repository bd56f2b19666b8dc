#include "audio/sample_type.h"

namespace clipfio::audio {
namespace {

struct TypeRow {
    KTSAMPLETYPE type;
    uint16_t tag;
    uint8_t bits;
    uint8_t bytes;
};

constexpr TypeRow kTypes[] = {
    {KTSAMPLETYPE_PCM8, kTagPcm, 8, 1},
    {KTSAMPLETYPE_PCM16, kTagPcm, 16, 2},
    {KTSAMPLETYPE_PCM24, kTagPcm, 24, 3},
    {KTSAMPLETYPE_PCM32, kTagPcm, 32, 4},
    {KTSAMPLETYPE_FLOAT32, kTagFloat, 32, 4},
    {KTSAMPLETYPE_FLOAT64, kTagFloat, 64, 8},
    {KTSAMPLETYPE_PCM24IN32, kTagPcm24In32, 32, 4},
    {KTSAMPLETYPE_PCM8S, kTagPcmSigned8, 8, 1},
    {KTSAMPLETYPE_PCM16BE, kTagPcmBigEndian, 16, 2},
    {KTSAMPLETYPE_PCM24BE, kTagPcmBigEndian, 24, 3},
    {KTSAMPLETYPE_PCM32BE, kTagPcmBigEndian, 32, 4},
};

constexpr TypeRow RowOf(KTSAMPLETYPE type) noexcept {
    for (const TypeRow& row : kTypes) {
        if (row.type == type) return row;
    }
    return {};
}

}  // namespace
}  // namespace clipfio::audio

using namespace clipfio::audio;

KTSAMPLETYPE KtAudio_GetSampleType2(uint32_t tag, uint32_t bits) noexcept {
    switch (tag) {
        case kTagPcm:
        case kTagPcmSigned8:
            switch (bits) {
                case 8:
                    return tag == kTagPcm ? KTSAMPLETYPE_PCM8 : KTSAMPLETYPE_PCM8S;
                case 16:
                    return KTSAMPLETYPE_PCM16;
                case 20:
                case 24:
                    return KTSAMPLETYPE_PCM24;
                case 32:
                    return KTSAMPLETYPE_PCM32;
            }
            break;
        case kTagFloat:
            if (bits == 32) return KTSAMPLETYPE_FLOAT32;
            if (bits == 64) return KTSAMPLETYPE_FLOAT64;
            break;
        case kTagPcm24In32:
            if (bits == 24 || bits == 32) return KTSAMPLETYPE_PCM24IN32;
            break;
        case kTagPcmBigEndian:
            switch (bits) {
                case 8:
                    return KTSAMPLETYPE_PCM8;
                case 16:
                    return KTSAMPLETYPE_PCM16BE;
                case 24:
                    return KTSAMPLETYPE_PCM24BE;
                case 32:
                    return KTSAMPLETYPE_PCM32BE;
            }
            break;
        case kTagX:
            if (bits == 16) return KTSAMPLETYPE_X16;
            if (bits == 24) return KTSAMPLETYPE_X24;
            break;
    }
    return KTSAMPLETYPE_NONE;
}

uint32_t KtAudio_FormatTagFromSampleType(KTSAMPLETYPE type) noexcept { return RowOf(type).tag; }
uint32_t KtAudio_BitsFromSampleType(KTSAMPLETYPE type) noexcept { return RowOf(type).bits; }
uint32_t KtAudio_BytesFromSampleType(KTSAMPLETYPE type) noexcept { return RowOf(type).bytes; }
