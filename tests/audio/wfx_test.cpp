// The platform's format record: which sample type it names, and how it is put right and written.
#include "audio/wfx.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "audio/sample_data.h"

namespace clipfio::audio {
namespace {

constexpr GUID kBase = {0, 0, 0x0010, {0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71}};

GUID SubFormat(uint32_t first) {
    GUID guid = kBase;
    guid.Data1 = first;
    return guid;
}

WAVEFORMATEXTENSIBLE Extensible(const GUID& subFormat, uint16_t bits, uint16_t validBits, uint16_t extra = 22) {
    WAVEFORMATEXTENSIBLE format{};
    format.Format.wFormatTag = WAVE_FORMAT_EXTENSIBLE;
    format.Format.nChannels = 2;
    format.Format.nSamplesPerSec = 48000;
    format.Format.wBitsPerSample = bits;
    format.Format.nBlockAlign = static_cast<uint16_t>(bits / 8 * 2);
    format.Format.cbSize = extra;
    format.Samples.wValidBitsPerSample = validBits;
    format.SubFormat = subFormat;
    return format;
}

tWAVEFORMATEX Plain(uint16_t tag, uint16_t bits, uint16_t channels, uint16_t blockAlign) {
    tWAVEFORMATEX wfx{};
    wfx.wFormatTag = tag;
    wfx.nChannels = channels;
    wfx.nSamplesPerSec = 44100;
    wfx.nAvgBytesPerSec = 1234;
    wfx.nBlockAlign = blockAlign;
    wfx.wBitsPerSample = bits;
    return wfx;
}

TEST(SampleType, EveryPairOfTagAndBits) {
    const struct {
        uint32_t tag, bits, type;
    } kRows[] = {
        {1, 8, 16},       {0xFE01, 8, 49},  {1, 16, 17},      {0xFE01, 16, 17},  {1, 20, 18},
        {1, 24, 18},      {0xFE01, 20, 18}, {0xFE01, 24, 18}, {1, 32, 19},       {0xFE01, 32, 19},
        {3, 32, 32},      {3, 64, 33},      {0xFE00, 24, 48}, {0xFE00, 32, 48},  {0xFE02, 8, 16},
        {0xFE02, 16, 64}, {0xFE02, 24, 65}, {0xFE02, 32, 66}, {0xFE03, 16, 128}, {0xFE03, 24, 129},
    };
    for (const uint32_t tag : {0u, 1u, 2u, 3u, 0x55u, 0xFE00u, 0xFE01u, 0xFE02u, 0xFE03u, 0xFFFEu, 0x10001u}) {
        for (uint32_t bits = 0; bits < 80; ++bits) {
            uint32_t expected = 0;
            for (const auto& row : kRows) {
                if (row.tag == tag && row.bits == bits) expected = row.type;
            }
            EXPECT_EQ(KtAudio_GetSampleType2(tag, bits), expected) << tag << ", " << bits;
        }
    }
}

TEST(SampleType, TagBitsAndBytes) {
    const struct {
        uint32_t type, tag, bits, bytes;
    } kRows[] = {
        {0, 0, 0, 0},       {16, 1, 8, 1},      {17, 1, 16, 2},     {18, 1, 24, 3},    {19, 1, 32, 4},
        {32, 3, 32, 4},     {33, 3, 64, 8},     {48, 65024, 32, 4}, {49, 65025, 8, 1}, {64, 65026, 16, 2},
        {65, 65026, 24, 3}, {66, 65026, 32, 4}, {128, 0, 0, 0},     {129, 0, 0, 0},    {77, 0, 0, 0},
    };
    for (const auto& row : kRows) {
        const auto type = static_cast<KTSAMPLETYPE>(row.type);
        EXPECT_EQ(KtAudio_FormatTagFromSampleType(type), row.tag) << row.type;
        EXPECT_EQ(KtAudio_BitsFromSampleType(type), row.bits) << row.type;
        EXPECT_EQ(KtAudio_BytesFromSampleType(type), row.bytes) << row.type;
    }
}

TEST(SampleType, LooksThroughExtensibleFormats) {
    GUID foreign = SubFormat(1);
    foreign.Data4[7] = 0x72;
    const struct {
        WAVEFORMATEXTENSIBLE format;
        uint32_t type;
    } kRows[] = {
        {Extensible(SubFormat(1), 16, 16), 17},
        {Extensible(SubFormat(1), 32, 24), 48},
        {Extensible(SubFormat(1), 32, 32), 19},
        {Extensible(SubFormat(1), 32, 20), 19},
        {Extensible(SubFormat(3), 32, 24), 32},
        {Extensible(SubFormat(0xFE02), 16, 16), 64},
        {Extensible(SubFormat(0x10001), 16, 16), 0},  // only 16 bits are the tag's
        {Extensible(foreign, 16, 16), 0},
        {Extensible(GUID{}, 16, 16), 0},
        {Extensible(SubFormat(1), 16, 16, 0), 17},  // the extra size is not looked at
    };
    for (const auto& row : kRows) {
        EXPECT_EQ(KtAudio_GetSampleType(&row.format.Format), row.type);
        // At an odd address too.
        uint8_t moved[41];
        std::memcpy(moved + 1, &row.format, 40);
        EXPECT_EQ(KtAudio_GetSampleType(reinterpret_cast<const tWAVEFORMATEX*>(moved + 1)), row.type);
    }
    EXPECT_EQ(KtAudio_GetSampleType(nullptr), 0u);
}

TEST(Wfx, TagOfAnExtensibleFormatIsThatOfItsSubFormat) {
    const tWAVEFORMATEX plain = Plain(0x55, 0, 2, 1);
    EXPECT_EQ(KtAudio_GetWaveFormatTag(&plain), 0x55);
    EXPECT_EQ(KtAudio_GetWaveFormatTag(nullptr), 0);
    const WAVEFORMATEXTENSIBLE coded = Extensible(SubFormat(0x161), 16, 16);
    const WAVEFORMATEXTENSIBLE shorter = Extensible(SubFormat(1), 16, 16, 21);
    const WAVEFORMATEXTENSIBLE foreign = Extensible(GUID{1, 2, 3, {}}, 16, 16);
    EXPECT_EQ(KtAudio_GetWaveFormatTag(&coded.Format), 0x161);
    EXPECT_EQ(KtAudio_GetWaveFormatTag(&shorter.Format), 0xFFFE);
    EXPECT_EQ(KtAudio_GetWaveFormatTag(&foreign.Format), 0);
    uint16_t tag = 77;
    EXPECT_EQ(KtAudio_GetFormatTagExtensible(&coded, &tag), 0);
    EXPECT_EQ(tag, 0);
    for (const uint16_t known : {kTagPcm, kTagFloat}) {
        const WAVEFORMATEXTENSIBLE format = Extensible(SubFormat(known), 32, 32);
        EXPECT_EQ(KtAudio_GetFormatTagExtensible(&format, &tag), 1);
        EXPECT_EQ(tag, known);
        EXPECT_EQ(KtAudio_IsCompressedExtensible(&format), 0);
    }
    EXPECT_EQ(KtAudio_IsCompressedExtensible(&coded), 1);
    EXPECT_EQ(KtAudio_IsCompressedExtensible(&foreign), 1);
}

TEST(Wfx, Compressed) {
    for (const uint16_t tag : std::initializer_list<uint16_t>{0x1, 0x3, 0xFE00, 0xFE01, 0xFE02}) {
        const tWAVEFORMATEX good = Plain(tag, 32, 2, 8), bad = Plain(tag, 32, 2, 6);
        EXPECT_EQ(KtAudio_IsCompressed(&good), 0) << tag;
        EXPECT_EQ(KtAudio_IsCompressed(&bad), 1) << tag;
    }
    for (const uint16_t tag : std::initializer_list<uint16_t>{0x0, 0x2, 0x55, 0xFE03}) {
        const tWAVEFORMATEX other = Plain(tag, 16, 2, 4);
        EXPECT_EQ(KtAudio_IsCompressed(&other), 1) << tag;
    }
    const WAVEFORMATEXTENSIBLE pcm = Extensible(SubFormat(1), 16, 16), shorter = Extensible(SubFormat(1), 16, 16, 0),
                               own = Extensible(SubFormat(0xFE02), 16, 16);
    EXPECT_EQ(KtAudio_IsCompressed(&pcm.Format), 0);
    EXPECT_EQ(KtAudio_IsCompressed(&shorter.Format), 1);
    EXPECT_EQ(KtAudio_IsCompressed(&own.Format), 1);
}

TEST(Wfx, EqualInFourFields) {
    const tWAVEFORMATEX a = Plain(1, 16, 2, 4);
    tWAVEFORMATEX b = a;
    b.nBlockAlign = 9;
    b.nAvgBytesPerSec = 9;
    EXPECT_EQ(KtAudio_IsEqualFormat(&a, &b), 1);
    b.nSamplesPerSec = 1;
    for (const tWAVEFORMATEX& other : {Plain(1, 16, 3, 4), Plain(3, 16, 2, 4), Plain(1, 24, 2, 4), b}) {
        EXPECT_EQ(KtAudio_IsEqualFormat(&a, &other), 0);
    }
}

TEST(Wfx, PutRight) {
    const struct {
        tWAVEFORMATEX in;
        uint16_t bits, blockAlign;
        int32_t changed;
    } kRows[] = {
        {Plain(1, 16, 2, 2), 16, 4, 1}, {Plain(1, 16, 2, 4), 16, 4, 0}, {Plain(1, 20, 2, 6), 24, 6, 1},
        {Plain(1, 12, 2, 4), 12, 2, 1}, {Plain(3, 32, 2, 1), 32, 1, 0}, {Plain(1, 64, 0xFFFF, 0xFFF8), 64, 0xFFF8, 0},
    };
    for (const auto& row : kRows) {
        tWAVEFORMATEX wfx = row.in;
        EXPECT_EQ(KtAudio_FixBadWfx(&wfx), row.changed);
        EXPECT_EQ(wfx.wBitsPerSample, row.bits);
        EXPECT_EQ(wfx.nBlockAlign, row.blockAlign);
        EXPECT_EQ(wfx.nAvgBytesPerSec, 1234u);
    }
}

TEST(Wfx, PlainOrExtensibleByMaskAndRoom) {
    const struct {
        uint32_t channels, mask, room;
        uint32_t writtenMask;  // 0: the plain form
    } kRows[] = {
        {2, 3, 18, 0}, {6, 63, 40, 63},  {2, 3, 40, 0},  {6, 63, 18, 0}, {2, 0, 40, 0}, {2, 0xFF, 40, 3},
        {1, 1, 40, 0}, {2, 0xFF, 18, 0}, {6, 63, 39, 0}, {3, 7, 128, 7}, {2, 2, 40, 2}, {40, 0x8000, 40, 0x8000},
        {1, 4, 40, 4},
    };
    for (const auto& row : kRows) {
        std::vector<uint8_t> buffer(row.room + 1, 0xEE);
        auto* const wfx = reinterpret_cast<tWAVEFORMATEX*>(buffer.data());
        KtAudio_InitWfxFlex(wfx, 1, 48000, 24, row.channels, row.mask, row.room);
        EXPECT_EQ(wfx->nChannels, row.channels);
        EXPECT_EQ(wfx->nBlockAlign, 3 * row.channels);
        EXPECT_EQ(wfx->nAvgBytesPerSec, 48000 * 3 * row.channels);
        EXPECT_EQ(wfx->wBitsPerSample, 24);
        EXPECT_EQ(buffer.back(), 0xEE);
        if (row.writtenMask == 0) {
            EXPECT_EQ(wfx->wFormatTag, 1) << row.channels << ", " << row.mask << ", " << row.room;
            EXPECT_EQ(wfx->cbSize, 0);
            EXPECT_EQ(buffer[18], 0xEE);
        } else {
            ASSERT_EQ(wfx->wFormatTag, 0xFFFE) << row.channels << ", " << row.mask << ", " << row.room;
            EXPECT_EQ(wfx->cbSize, 22);
            const ExtensiblePart part = ReadExtensiblePart(wfx);
            EXPECT_EQ(part.validBits, 24);
            EXPECT_EQ(part.mask, row.writtenMask);
            EXPECT_TRUE(part.subFormat == SubFormat(1));
        }
    }
    uint8_t small[17] = {};
    KtAudio_InitWfxFlex(reinterpret_cast<tWAVEFORMATEX*>(small), 1, 48000, 16, 2, 3, sizeof small);
    EXPECT_EQ(small[0], 0);
}

TEST(Wfx, DefaultMasks) {
    EXPECT_EQ(DefaultChannelMask(0), 0u);
    EXPECT_EQ(DefaultChannelMask(6), 63u);
    EXPECT_EQ(DefaultChannelMask(31), 0x7FFFFFFFu);
    for (const uint32_t channels : {32u, 33u, 64u, 65535u}) EXPECT_EQ(DefaultChannelMask(channels), 0xFFFFFFFFu);
}

}  // namespace
}  // namespace clipfio::audio
