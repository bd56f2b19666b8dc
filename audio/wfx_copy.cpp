#include "audio/wfx_copy.h"

#include <algorithm>
#include <cstring>

#include "audio/wfx.h"
#include "platform/memory.h"

namespace clipfio::audio {
namespace {

constexpr uint32_t kTransitBytes = 128;
constexpr uint32_t kRecordBytes = sizeof(_ktwaveformat);

// A record with room for extra data.
struct TransitRecord {
    alignas(_ktwaveformat) uint8_t bytes[kTransitBytes];

    explicit TransitRecord(const tWAVEFORMATEX* wfx) noexcept { Get()->Init(kTransitBytes, wfx); }
    _ktwaveformat* Get() noexcept { return reinterpret_cast<_ktwaveformat*>(bytes); }
};

bool HasOwnMask(const _ktwaveformat& format) noexcept {
    return format.channelMask != 0 && format.channelMask != DefaultChannelMask(format.channels);
}

bool NeedsExtensible(const _ktwaveformat& format) noexcept {
    return (format.flags & _ktwaveformat::kFromExtensible) != 0 || HasOwnMask(format);
}

bool WantsExtensible(const _ktwaveformat& format, uint32_t room, KTWAVEFORMAT_COPY_DEST dest) noexcept {
    if (room < kExtensibleBytes) return false;
    switch (dest) {
        case KTWAVEFORMAT_COPY_DEST_IFNEEDED:
            return NeedsExtensible(format);
        case KTWAVEFORMAT_COPY_DEST_MULTI:
            return format.channels > 2;
        case KTWAVEFORMAT_COPY_DEST_EXTENSIBLE:
            return true;
        default:
            return false;
    }
}

void CopyUncompressed(tWAVEFORMATEX* wfx, uint32_t room, const _ktwaveformat& format, uint32_t mask,
                      bool extensible) noexcept {
    const uint32_t tag = KtAudio_FormatTagFromSampleType(format.sampleType);
    const uint32_t bits = KtAudio_BitsFromSampleType(format.sampleType);
    if (extensible) {
        WriteExtensible(wfx, UncompressedFields(tag, format.samplesPerSecond, bits, format.channels),
                        PlausibleMask(mask, format.channels));
    } else {
        KtAudio_InitWfxFlex(wfx, tag, format.samplesPerSecond, bits, format.channels, mask, room);
    }
}

void CopyOpaque(tWAVEFORMATEX* wfx, uint32_t room, const _ktwaveformat& format, uint32_t mask,
                bool extensible) noexcept {
    const WfxFields fields = {format.formatTag,        format.channels,
                              format.samplesPerSecond, format.averageBytesPerSecond,
                              format.blockAlign,       format.bitsPerSample};
    // The stored mask decides even where the copy drops it.
    if (extensible || (HasOwnMask(format) && room >= kExtensibleBytes + ExtraLength(format))) {
        WriteExtensible(wfx, fields, mask);
    } else {
        WritePlain(wfx, fields);
    }
}

void AppendExtra(tWAVEFORMATEX* wfx, uint32_t room, const _ktwaveformat& format) noexcept {
    const uint32_t form =
        wfx->wFormatTag == kTagExtensible && wfx->cbSize == kExtensibleExtra ? kExtensibleBytes : kPlainBytes;
    const uint32_t length = std::min(ExtraLength(format), room - form);
    std::memcpy(reinterpret_cast<uint8_t*>(wfx) + form, ExtraData(format), length);
    wfx->cbSize = static_cast<WORD>(wfx->cbSize + length);
}

tWAVEFORMATEX* AllocWfx(uint32_t bytes) noexcept {
    const HGLOBAL block = GlobalAlloc(GHND, bytes);
    if (!block) return nullptr;
    void* const memory = GlobalLock(block);
    if (!memory) GlobalFree(block);
    return static_cast<tWAVEFORMATEX*>(memory);
}

bool BlockIsExtensible(const _ktwaveformat& format, KTWAVEFORMAT_COPY_DEST dest) noexcept {
    switch (dest) {
        case KTWAVEFORMAT_COPY_DEST_IFNEEDED:
            return NeedsExtensible(format);
        case KTWAVEFORMAT_COPY_DEST_PLAIN:
            return HasOwnMask(format);
        case KTWAVEFORMAT_COPY_DEST_MULTI:
            return format.channels > 2;
        case KTWAVEFORMAT_COPY_DEST_EXTENSIBLE:
            return true;
        default:
            return false;
    }
}

bool HasWantedForm(const tWAVEFORMATEX& wfx, KTWAVEFORMAT_COPY_DEST dest) noexcept {
    const bool extensible = wfx.wFormatTag == kTagExtensible;
    switch (dest) {
        case KTWAVEFORMAT_COPY_DEST_IFNEEDED:
            return true;
        case KTWAVEFORMAT_COPY_DEST_PLAIN:
        case KTWAVEFORMAT_COPY_DEST_NOMASK:
            return !extensible;
        case KTWAVEFORMAT_COPY_DEST_EXTENSIBLE:
            return extensible;
        default:
            return false;
    }
}

}  // namespace
}  // namespace clipfio::audio

using namespace clipfio::audio;

tWAVEFORMATEX* KtAudio_GeneralCopyWfx(tWAVEFORMATEX* wfx, uint32_t room, const _ktwaveformat* format,
                                      KTWAVEFORMAT_COPY_DEST dest) noexcept {
    if (!wfx || !format || room < kPlainBytes) return wfx;
    const uint32_t mask = dest == KTWAVEFORMAT_COPY_DEST_NOMASK ? 0 : format->channelMask;
    const bool extensible = WantsExtensible(*format, room, dest);
    if (format->IsCompressed()) {
        CopyOpaque(wfx, room, *format, mask, extensible);
    } else {
        CopyUncompressed(wfx, room, *format, mask, extensible);
    }
    AppendExtra(wfx, room, *format);
    return wfx;
}

_ktwaveformat* KtAudio_GeneralCopyKtWaveFormat(_ktwaveformat* out, uint32_t room, const _ktwaveformat* format,
                                               KTWAVEFORMAT_COPY_DEST) noexcept {
    if (!out || !format) return out;
    if (room == 0) room = kRecordBytes;
    uint32_t extra = ExtraLength(*format);
    const uint32_t size = format->size;
    const uint32_t used = std::min(size ? size : kRecordBytes, kRecordBytes + extra);
    const uint32_t copied = std::min(used, room);
    auto* const bytes = reinterpret_cast<uint8_t*>(out);
    std::memmove(bytes, format, copied);
    std::memset(bytes + copied, 0, room - copied);
    if (room < kRecordBytes) return out;  // no whole record: nothing to set right
    const uint32_t limit = room < kExtraDataOffset ? 0 : std::min(room - kExtraDataOffset, kMaxExtra);
    if (extra > limit) {
        std::memset(bytes + kRecordBytes, 0, std::min<uint32_t>(room - kRecordBytes, sizeof(uint16_t)));
        extra = 0;
    }
    SetExtraLength(*out, extra);
    return out;
}

void KtAudio_CopyWfx(tWAVEFORMATEX* out, uint32_t room, const tWAVEFORMATEX* wfx,
                     KTWAVEFORMAT_COPY_DEST dest) noexcept {
    TransitRecord record(wfx);
    KtAudio_GeneralCopyWfx(out, room, record.Get(), dest);
}

void KtAudio_CopyWfExt(WAVEFORMATEXTENSIBLE* out, const tWAVEFORMATEX* wfx, KTWAVEFORMAT_COPY_DEST dest) noexcept {
    KtAudio_CopyWfx(reinterpret_cast<tWAVEFORMATEX*>(out), kExtensibleBytes, wfx, dest);
}

tWAVEFORMATEX* KtAudio_AllocAndCopyWfx(const tWAVEFORMATEX* wfx, KTWAVEFORMAT_COPY_DEST dest) noexcept {
    if (!wfx) return nullptr;
    if (!HasWantedForm(*wfx, dest)) return KtAudio_AllocAndCopyWfx(TransitRecord(wfx).Get(), dest);
    const uint32_t bytes = kPlainBytes + wfx->cbSize;
    tWAVEFORMATEX* const copy = AllocWfx(bytes);
    if (copy) std::memcpy(static_cast<void*>(copy), wfx, bytes);
    return copy;
}

tWAVEFORMATEX* KtAudio_AllocAndCopyWfx(const _ktwaveformat* format, KTWAVEFORMAT_COPY_DEST dest) noexcept {
    if (!format) return nullptr;
    const uint32_t bytes = (BlockIsExtensible(*format, dest) ? kExtensibleBytes : kPlainBytes) + ExtraLength(*format);
    tWAVEFORMATEX* const copy = AllocWfx(bytes);
    return copy ? KtAudio_GeneralCopyWfx(copy, bytes, format, dest) : nullptr;
}

_ktwaveformat_wfxcopyhelper::_ktwaveformat_wfxcopyhelper(const _ktwaveformat& format) noexcept : wfx{} {
    KtAudio_GeneralCopyWfx(*this, sizeof *this, &format, KTWAVEFORMAT_COPY_DEST_IFNEEDED);
}

_ktwaveformat_wfxecopyhelper::_ktwaveformat_wfxecopyhelper(const _ktwaveformat& format) noexcept : wfx{} {
    KtAudio_GeneralCopyWfx(*this, sizeof *this, &format, KTWAVEFORMAT_COPY_DEST_IFNEEDED);
}

void _ktwaveformat_wfxplus::Init(const tWAVEFORMATEX* source, KTWAVEFORMAT_COPY_DEST dest) noexcept {
    KtAudio_CopyWfx(*this, sizeof *this, source, dest);
}
