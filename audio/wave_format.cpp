#include "audio/wave_format.h"

#include <algorithm>
#include <cstring>

#include "audio/wfx.h"

namespace clipfio::audio {
namespace {

constexpr uint32_t kRecordBytes = sizeof(_ktwaveformat);

uint8_t* Bytes(_ktwaveformat& format) noexcept { return reinterpret_cast<uint8_t*>(&format); }
const uint8_t* Bytes(const _ktwaveformat& format) noexcept { return reinterpret_cast<const uint8_t*>(&format); }

void Clear(_ktwaveformat& format, uint32_t recordSize) noexcept {
    std::memset(Bytes(format), 0, std::max(recordSize, kRecordBytes));
    format.size = kRecordBytes;
}

void SetBlockAlign(_ktwaveformat& format, uint32_t blockAlign) noexcept {
    format.blockAlign = static_cast<uint16_t>(blockAlign);
    format.averageBytesPerSecond = format.blockAlign * format.samplesPerSecond;
}

uint32_t EffectiveMask(uint32_t mask, uint32_t channels) noexcept { return mask ? mask : DefaultChannelMask(channels); }

// Some writers leave the sub-format zero. A consistent record of theirs is read by its bits, and 32 bits as float.
KTSAMPLETYPE TypeOfZeroSubFormat(const tWAVEFORMATEX& wfx, const GUID& subFormat) noexcept {
    const bool consistent = subFormat == GUID{} && (wfx.cbSize == 0 || wfx.cbSize == kExtensibleExtra) &&
                            wfx.nChannels * (wfx.wBitsPerSample / 8u) == wfx.nBlockAlign &&
                            uint64_t{wfx.nBlockAlign} * wfx.nSamplesPerSec == wfx.nAvgBytesPerSec;
    if (!consistent) return KTSAMPLETYPE_NONE;
    switch (wfx.wBitsPerSample) {
        case 8:
            return KTSAMPLETYPE_PCM8;
        case 16:
            return KTSAMPLETYPE_PCM16;
        case 24:
            return KTSAMPLETYPE_PCM24;
        case 32:
            return KTSAMPLETYPE_FLOAT32;
        case 64:
            return KTSAMPLETYPE_FLOAT64;
        default:
            return KTSAMPLETYPE_NONE;
    }
}

struct ExtraBytes {
    const uint8_t* data;
    uint32_t length;
};

ExtraBytes ExtraOfWfx(const tWAVEFORMATEX& wfx) noexcept {
    const auto* bytes = reinterpret_cast<const uint8_t*>(&wfx);
    if (wfx.wFormatTag != kTagExtensible) return {bytes + kPlainBytes, wfx.cbSize};
    return {bytes + kExtensibleBytes, wfx.cbSize > kExtensibleExtra ? uint32_t{wfx.cbSize} - kExtensibleExtra : 0};
}

void StoreExtra(_ktwaveformat& format, uint32_t recordSize, const ExtraBytes& extra) noexcept {
    if (recordSize < kExtraDataOffset) return;
    const uint32_t length = std::min({extra.length, recordSize - kExtraDataOffset, kMaxExtra});
    if (length == 0) return;
    std::memcpy(Bytes(format) + kExtraDataOffset, extra.data, length);
    SetExtraLength(format, length);
}

}  // namespace

uint32_t ExtraLength(const _ktwaveformat& format) noexcept {
    if (format.size < kExtraDataOffset) return 0;
    uint16_t length;
    std::memcpy(&length, Bytes(format) + kExtraLengthOffset, sizeof length);
    return std::min({uint32_t{length}, kMaxExtra, format.size - kRecordBytes});
}

const uint8_t* ExtraData(const _ktwaveformat& format) noexcept { return Bytes(format) + kExtraDataOffset; }

void SetExtraLength(_ktwaveformat& format, uint32_t length) noexcept {
    if (length != 0) {
        const auto field = static_cast<uint16_t>(length);
        std::memcpy(Bytes(format) + kExtraLengthOffset, &field, sizeof field);
    }
    format.size = kRecordBytes + length;
}

}  // namespace clipfio::audio

using namespace clipfio::audio;

void _ktwaveformat::Init(uint32_t rate, KTSAMPLETYPE type, uint32_t channelCount, uint32_t mask,
                         uint32_t recordSize) noexcept {
    Clear(*this, recordSize);
    sampleType = type;
    samplesPerSecond = rate;
    channels = static_cast<uint16_t>(channelCount);
    channelMask = mask;
    SetBlockAlign(*this, channelCount * KtAudio_BytesFromSampleType(type));
}

void _ktwaveformat::InitAsWfx(uint32_t tag, uint32_t rate, uint32_t bits, uint32_t channelCount, uint32_t mask,
                              uint32_t recordSize) noexcept {
    Clear(*this, recordSize);
    if (tag == kTagPcm && bits == 20) bits = 24;
    sampleType = KtAudio_GetSampleType2(tag, bits);
    samplesPerSecond = rate;
    channels = static_cast<uint16_t>(channelCount);
    channelMask = mask;
    if (sampleType == KTSAMPLETYPE_NONE) {
        flags |= kOpaque;
        formatTag = static_cast<uint16_t>(tag);
        bitsPerSample = static_cast<uint16_t>(bits);
    }
    SetBlockAlign(*this, channelCount * bits / 8);
}

void _ktwaveformat::Init(uint32_t recordSize, const tWAVEFORMATEX* wfx) noexcept {
    Clear(*this, recordSize);
    if (!wfx) return;
    sampleType = KtAudio_GetSampleType(wfx);
    samplesPerSecond = wfx->nSamplesPerSec;
    channels = wfx->nChannels;
    blockAlign = wfx->nBlockAlign;
    averageBytesPerSecond = wfx->nAvgBytesPerSec;
    if (wfx->wFormatTag == kTagPcm) {
        tWAVEFORMATEX fixed = *wfx;
        KtAudio_FixBadWfx(&fixed);
        blockAlign = fixed.nBlockAlign;
    } else if (wfx->wFormatTag == kTagExtensible) {
        const ExtensiblePart part = ReadExtensiblePart(wfx);
        channelMask = part.mask;
        flags |= kFromExtensible;
        if (sampleType == KTSAMPLETYPE_NONE) sampleType = TypeOfZeroSubFormat(*wfx, part.subFormat);
    }
    if (sampleType != KTSAMPLETYPE_NONE) return;
    flags |= kOpaque;
    formatTag = KtAudio_GetWaveFormatTag(wfx);
    bitsPerSample = wfx->wBitsPerSample;
    if (wfx->wFormatTag != kTagPcm && wfx->wFormatTag != kTagFloat) StoreExtra(*this, recordSize, ExtraOfWfx(*wfx));
}

uint32_t _ktwaveformat::UpdateBlockAlign() noexcept {
    if (sampleType != KTSAMPLETYPE_NONE) SetBlockAlign(*this, channels * KtAudio_BytesFromSampleType(sampleType));
    return blockAlign;
}

uint32_t _ktwaveformat::FormatTag() const noexcept {
    return flags & kOpaque ? formatTag : KtAudio_FormatTagFromSampleType(sampleType);
}

uint32_t _ktwaveformat::BitsPerSample() const noexcept {
    return flags & kOpaque ? bitsPerSample : KtAudio_BitsFromSampleType(sampleType);
}

uint32_t _ktwaveformat::BytesPerSample() const noexcept { return BitsPerSample() >> 3; }

bool _ktwaveformat::IsCompressed() const noexcept { return (flags & kOpaque) != 0; }

bool _ktwaveformat::operator==(const _ktwaveformat& other) const noexcept {
    if (sampleType != other.sampleType || samplesPerSecond != other.samplesPerSecond || channels != other.channels ||
        IsCompressed() != other.IsCompressed() ||
        EffectiveMask(channelMask, channels) != EffectiveMask(other.channelMask, other.channels)) {
        return false;
    }
    if (!IsCompressed()) return true;
    const uint32_t length = ExtraLength(*this);
    return formatTag == other.formatTag && averageBytesPerSecond == other.averageBytesPerSecond &&
           bitsPerSample == other.bitsPerSample && length == ExtraLength(other) &&
           std::memcmp(ExtraData(*this), ExtraData(other), length) == 0;
}

bool _ktwaveformat::operator==(const tWAVEFORMATEX& other) const noexcept {
    if (samplesPerSecond != other.nSamplesPerSec || channels != other.nChannels) return false;
    if (IsCompressed()) {
        if (formatTag != KtAudio_GetWaveFormatTag(&other) || averageBytesPerSecond != other.nAvgBytesPerSec ||
            bitsPerSample != other.wBitsPerSample) {
            return false;
        }
    } else if (sampleType != KtAudio_GetSampleType(&other)) {
        return false;
    }
    const uint32_t otherMask = other.wFormatTag == kTagExtensible ? ReadExtensiblePart(&other).mask : 0;
    if (EffectiveMask(channelMask, channels) != EffectiveMask(otherMask, other.nChannels)) return false;
    if (!IsCompressed()) return true;
    const uint32_t length = ExtraLength(*this);
    const ExtraBytes extra = ExtraOfWfx(other);
    return length == extra.length && std::memcmp(ExtraData(*this), extra.data, length) == 0;
}
