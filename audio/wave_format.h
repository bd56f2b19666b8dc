// The system's own audio format record. It crosses the host interface: its layout is fixed, little-endian, and it may
// stand at any address. A record with extra data is longer than this struct: the bytes follow it.
#pragma once

#include "audio/sample_type.h"
#include "platform/media.h"

#pragma pack(push, 1)

// Two uses of one record: a sample type with everything computed from it, or an opaque format (flag 0x08) that keeps
// the tag, the bits and the codec's extra data of the format it came from.
//
// Behind the 32 bytes: u16 extra length at 32, the extra data at 34. They exist only when `size` is at least 34; the
// length is at most 1024 and never more than `size` - 32. The caller of an Init gives the bytes that the record has
// in all: below 33 counts as 32, and all of them are cleared.
struct KT_EXPORT _ktwaveformat {
    uint32_t size;  // 32, or 32 + extra length
    KTSAMPLETYPE sampleType;
    uint32_t samplesPerSecond;
    uint16_t channels;
    uint16_t blockAlign;     // bytes per frame
    uint32_t channelMask;    // speaker bits; 0 means the lowest bit of each channel
    uint32_t flags;          // kOpaque, kFromExtensible; the others stay 0
    uint16_t formatTag;      // of an opaque format
    uint16_t bitsPerSample;  // of an opaque format
    uint32_t averageBytesPerSecond;

    static constexpr uint32_t kOpaque = 0x08;
    static constexpr uint32_t kFromExtensible = 0x10;

    void Init(uint32_t rate, KTSAMPLETYPE type, uint32_t channelCount, uint32_t mask, uint32_t recordSize) noexcept;
    // A tag and bits that name no sample type make an opaque format.
    void InitAsWfx(uint32_t tag, uint32_t rate, uint32_t bits, uint32_t channelCount, uint32_t mask,
                   uint32_t recordSize) noexcept;
    // Extra data of a format without a sample type is kept as far as `recordSize` holds it. Reads behind the 18 bytes
    // as KtAudio_GetSampleType does, and then as many bytes as the extra size says.
    void Init(uint32_t recordSize, const tWAVEFORMATEX* wfx) noexcept;

    // Recomputes block align and average bytes from the sample type; an opaque format stays. Gives the block align.
    uint32_t UpdateBlockAlign() noexcept;

    [[nodiscard]] uint32_t FormatTag() const noexcept;
    [[nodiscard]] uint32_t BitsPerSample() const noexcept;
    [[nodiscard]] uint32_t BytesPerSample() const noexcept;
    [[nodiscard]] bool IsCompressed() const noexcept;  // true for every opaque format

    // Block align is never compared, and a mask of 0 equals the default one. Opaque formats match with their extra
    // data, other formats by sample type.
    bool operator==(const _ktwaveformat& other) const noexcept;
    bool operator==(const tWAVEFORMATEX& other) const noexcept;
};

#pragma pack(pop)

static_assert(sizeof(_ktwaveformat) == 32);
static_assert(offsetof(_ktwaveformat, sampleType) == 4);
static_assert(offsetof(_ktwaveformat, samplesPerSecond) == 8);
static_assert(offsetof(_ktwaveformat, channels) == 12);
static_assert(offsetof(_ktwaveformat, blockAlign) == 14);
static_assert(offsetof(_ktwaveformat, channelMask) == 16);
static_assert(offsetof(_ktwaveformat, flags) == 20);
static_assert(offsetof(_ktwaveformat, formatTag) == 24);
static_assert(offsetof(_ktwaveformat, bitsPerSample) == 26);
static_assert(offsetof(_ktwaveformat, averageBytesPerSecond) == 28);

namespace clipfio::audio {

inline constexpr uint32_t kExtraLengthOffset = 32;
inline constexpr uint32_t kExtraDataOffset = 34;
inline constexpr uint32_t kMaxExtra = 1024;

// Extra bytes of a record, 0 when it has none; and where they stand.
uint32_t ExtraLength(const _ktwaveformat& format) noexcept;
const uint8_t* ExtraData(const _ktwaveformat& format) noexcept;
// Also sets the size field. The record must have room for the length field unless `length` is 0.
void SetExtraLength(_ktwaveformat& format, uint32_t length) noexcept;

}  // namespace clipfio::audio
