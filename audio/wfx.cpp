#include "audio/wfx.h"

#include <bit>
#include <cstring>

namespace clipfio::audio {
namespace {

constexpr GUID kSubFormatBase = {0x00000000, 0x0000, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};

bool IsPcmOrFloat(const GUID& subFormat) noexcept {
    const std::optional<uint16_t> tag = TagOfSubFormat(subFormat);
    // NOLINTNEXTLINE(misc-redundant-expression): the tool compares the types alone
    return tag == kTagPcm || tag == kTagFloat;
}

bool IsSystemTag(uint16_t tag) noexcept {
    return tag == kTagPcm || tag == kTagFloat || tag == kTagPcm24In32 || tag == kTagPcmSigned8 ||
           tag == kTagPcmBigEndian;
}

uint32_t FrameBytes(uint32_t bits, uint32_t channels) noexcept { return (bits >> 3) * channels; }

}  // namespace

ExtensiblePart ReadExtensiblePart(const tWAVEFORMATEX* wfx) noexcept {
    // Copied whole: the record may stand at any address.
    WAVEFORMATEXTENSIBLE format;
    std::memcpy(&format, wfx, sizeof format);
    return {format.Samples.wValidBitsPerSample, format.dwChannelMask, format.SubFormat};
}

std::optional<uint16_t> TagOfSubFormat(const GUID& subFormat) noexcept {
    GUID base = subFormat;
    base.Data1 &= 0xFFFF0000u;
    if (!(base == kSubFormatBase)) return std::nullopt;
    return static_cast<uint16_t>(subFormat.Data1);
}

void WritePlain(tWAVEFORMATEX* wfx, const WfxFields& fields) noexcept {
    wfx->wFormatTag = fields.tag;
    wfx->nChannels = fields.channels;
    wfx->nSamplesPerSec = fields.rate;
    wfx->nAvgBytesPerSec = fields.averageBytes;
    wfx->nBlockAlign = fields.blockAlign;
    wfx->wBitsPerSample = fields.bits;
    wfx->cbSize = 0;
}

void WriteExtensible(tWAVEFORMATEX* wfx, const WfxFields& fields, uint32_t mask) noexcept {
    WAVEFORMATEXTENSIBLE format;
    WritePlain(&format.Format, fields);
    format.Format.wFormatTag = kTagExtensible;
    format.Format.cbSize = kExtensibleExtra;
    format.Samples.wValidBitsPerSample = fields.bits;
    format.dwChannelMask = mask ? mask : DefaultChannelMask(fields.channels);
    format.SubFormat = kSubFormatBase;
    format.SubFormat.Data1 = fields.tag;
    std::memcpy(static_cast<void*>(wfx), &format, sizeof format);
}

WfxFields UncompressedFields(uint32_t tag, uint32_t rate, uint32_t bits, uint32_t channels) noexcept {
    const auto blockAlign = static_cast<uint16_t>(FrameBytes(bits, channels));
    return {static_cast<uint16_t>(tag), static_cast<uint16_t>(channels), rate, blockAlign * rate, blockAlign,
            static_cast<uint16_t>(bits)};
}

uint32_t PlausibleMask(uint32_t mask, uint32_t channels) noexcept {
    return static_cast<uint32_t>(std::popcount(mask)) > channels ? 0 : mask;
}

}  // namespace clipfio::audio

using namespace clipfio::audio;

KTSAMPLETYPE KtAudio_GetSampleType(const tWAVEFORMATEX* wfx) noexcept {
    if (!wfx) return KTSAMPLETYPE_NONE;
    if (wfx->wFormatTag != kTagExtensible) return KtAudio_GetSampleType2(wfx->wFormatTag, wfx->wBitsPerSample);
    const ExtensiblePart part = ReadExtensiblePart(wfx);
    const std::optional<uint16_t> tag = TagOfSubFormat(part.subFormat);
    if (!tag) return KTSAMPLETYPE_NONE;
    const KTSAMPLETYPE type = KtAudio_GetSampleType2(*tag, wfx->wBitsPerSample);
    return type == KTSAMPLETYPE_PCM32 && part.validBits == 24 ? KTSAMPLETYPE_PCM24IN32 : type;
}

uint16_t KtAudio_GetWaveFormatTag(const tWAVEFORMATEX* wfx) noexcept {
    if (!wfx) return 0;
    if (wfx->wFormatTag != kTagExtensible || wfx->cbSize < kExtensibleExtra) return wfx->wFormatTag;
    return TagOfSubFormat(ReadExtensiblePart(wfx).subFormat).value_or(0);
}

int32_t KtAudio_GetFormatTagExtensible(const WAVEFORMATEXTENSIBLE* format, uint16_t* tag) noexcept {
    if (tag) *tag = 0;
    if (!format || !tag) return 0;
    const GUID subFormat = format->SubFormat;
    if (!IsPcmOrFloat(subFormat)) return 0;
    *tag = static_cast<uint16_t>(subFormat.Data1);
    return 1;
}

int32_t KtAudio_IsCompressed(const tWAVEFORMATEX* wfx) noexcept {
    if (!wfx) return 0;
    if (wfx->wFormatTag == kTagExtensible) {
        return wfx->cbSize < kExtensibleExtra || !IsPcmOrFloat(ReadExtensiblePart(wfx).subFormat);
    }
    if (!IsSystemTag(wfx->wFormatTag)) return 1;
    return wfx->nBlockAlign != FrameBytes(wfx->wBitsPerSample, wfx->nChannels);
}

int32_t KtAudio_IsCompressedExtensible(const WAVEFORMATEXTENSIBLE* format) noexcept {
    if (!format) return 0;
    const GUID subFormat = format->SubFormat;
    return !IsPcmOrFloat(subFormat);
}

int32_t KtAudio_IsEqualFormat(const tWAVEFORMATEX* a, const tWAVEFORMATEX* b) noexcept {
    if (!a || !b) return 0;
    return a->nChannels == b->nChannels && a->nSamplesPerSec == b->nSamplesPerSec && a->wFormatTag == b->wFormatTag &&
           a->wBitsPerSample == b->wBitsPerSample;
}

int32_t KtAudio_FixBadWfx(tWAVEFORMATEX* wfx) noexcept {
    if (!wfx || wfx->wFormatTag != kTagPcm) return 0;
    int32_t changed = 0;
    if (wfx->wBitsPerSample == 20) {
        wfx->wBitsPerSample = 24;
        changed = 1;
    }
    const auto blockAlign = static_cast<uint16_t>(FrameBytes(wfx->wBitsPerSample, wfx->nChannels));
    if (wfx->nBlockAlign != blockAlign) {
        wfx->nBlockAlign = blockAlign;
        changed = 1;
    }
    return changed;
}

void KtAudio_InitWfx(tWAVEFORMATEX* wfx, uint32_t rate, KTSAMPLETYPE type, uint32_t channels) noexcept {
    if (!wfx) return;
    WritePlain(wfx, UncompressedFields(KtAudio_FormatTagFromSampleType(type), rate, KtAudio_BitsFromSampleType(type),
                                       channels));
}

void KtAudio_InitWfxFlex(tWAVEFORMATEX* wfx, uint32_t tag, uint32_t rate, uint32_t bits, uint32_t channels,
                         uint32_t mask, uint32_t room) noexcept {
    if (!wfx || room < kPlainBytes) return;
    const WfxFields fields = UncompressedFields(tag, rate, bits, channels);
    const bool defaultLayout = channels < 3 && mask == DefaultChannelMask(channels);
    if (mask == 0 || defaultLayout || room < kExtensibleBytes) {
        WritePlain(wfx, fields);
    } else {
        WriteExtensible(wfx, fields, PlausibleMask(mask, channels));
    }
}
