// Silence, and one sample over and over.
#include "audio/silence.h"

#include <cstring>

#include "audio/sample_data.h"
#include "audio/wfx.h"

namespace clipfio::audio {
namespace {

using Samples = std::vector<uint8_t>;

tWAVEFORMATEX Plain(uint32_t tag, uint32_t bits, uint32_t channels) {
    tWAVEFORMATEX wfx;
    KtAudio_InitWfxFlex(&wfx, tag, 48000, bits, channels, 0, sizeof wfx);
    return wfx;
}

WAVEFORMATEXTENSIBLE Extensible(uint32_t tag, uint32_t bits) {
    WAVEFORMATEXTENSIBLE format;
    WriteExtensible(&format.Format, UncompressedFields(tag, 48000, bits, 2), 0);
    return format;
}

constexpr uint8_t kUntouched = 0xEE;

TEST(Silence, OfThePlatformsFormats) {
    const struct {
        uint32_t tag, bits;
        bool extensible;
        HRESULT result;
        uint8_t fill;
    } kRows[] = {
        {1, 16, false, S_OK, 0}, {1, 8, false, S_OK, 0x80},    {0xFE02, 8, false, S_OK, 0x80},
        {1, 24, false, S_OK, 0}, {3, 64, false, S_OK, 0},      {0xFE02, 16, false, S_OK, 0},
        {3, 32, false, S_OK, 0}, {0xFE00, 32, false, S_OK, 0}, {0xFE02, 16, true, S_OK, kUntouched},
        {1, 16, true, S_OK, 0},  {0xFE01, 8, false, S_OK, 0},  {0x55, 8, false, E_FAIL, kUntouched},
        {3, 32, true, S_OK, 0},  {1, 8, true, S_OK, 0x80},     {0xFE03, 16, false, E_FAIL, kUntouched},
    };
    for (const auto& row : kRows) {
        WAVEFORMATEXTENSIBLE format = Extensible(row.tag, row.bits);
        if (!row.extensible) format.Format = Plain(row.tag, row.bits, 2);
        Samples buffer(3 * format.Format.nBlockAlign + 1u, kUntouched);
        EXPECT_EQ(KtAudio_FillSilence(&format.Format, buffer.data(), 3), row.result);
        Samples expected(buffer.size(), row.fill);
        expected.back() = kUntouched;
        EXPECT_EQ(buffer, expected) << row.tag << ", " << row.bits;
        EXPECT_EQ(KtAudio_FillSilence(&format.Format, nullptr, 0), S_OK);
    }
}

TEST(Silence, OfTheSystemsFormat) {
    for (const KTSAMPLETYPE type : kAllTypes) {
        _ktwaveformat format;
        format.Init(48000, type, 2, 0, 32);
        Samples buffer(3 * format.blockAlign + 1u, kUntouched);
        EXPECT_EQ(KtAudio_FillSilence(&format, buffer.data(), 3), S_OK);
        Samples expected(buffer.size(), type == KTSAMPLETYPE_PCM8 ? 0x80 : 0);
        expected.back() = kUntouched;
        EXPECT_EQ(buffer, expected) << type;
    }
    _ktwaveformat opaque;
    opaque.InitAsWfx(0x55, 48000, 16, 2, 0, 32);
    uint8_t byte = kUntouched;
    EXPECT_EQ(KtAudio_FillSilence(&opaque, &byte, 1), E_FAIL);
    EXPECT_EQ(KtAudio_FillSilence(&opaque, &byte, 0), S_OK);
    EXPECT_EQ(byte, kUntouched);
}

TEST(Silence, OfOneChannel) {
    const struct {
        uint32_t tag, bits;
        HRESULT result;
        uint8_t fill;
    } kRows[] = {
        {1, 8, S_OK, 0x80}, {1, 24, S_OK, 0},   {0xFE01, 8, S_OK, 0}, {0xFE02, 8, S_OK, 0x80}, {0xFE00, 32, S_OK, 0},
        {3, 64, S_OK, 0},   {3, 16, E_FAIL, 0}, {1, 20, E_FAIL, 0},   {0x55, 16, E_FAIL, 0},   {0xFFFE, 16, E_FAIL, 0},
    };
    for (const auto& row : kRows) {
        const tWAVEFORMATEX wfx = Plain(row.tag, row.bits, 3);
        const size_t bytes = row.bits / 8;
        Samples buffer(6 * bytes, kUntouched);
        Samples expected = buffer;
        if (row.result == S_OK) {
            std::memset(&expected[bytes], row.fill, bytes);
            std::memset(&expected[4 * bytes], row.fill, bytes);
        }
        EXPECT_EQ(KtAudio_FillSilenceChannel(&wfx, buffer.data(), 1, 2), row.result) << row.tag << ", " << row.bits;
        EXPECT_EQ(buffer, expected) << row.tag << ", " << row.bits;
        EXPECT_EQ(KtAudio_FillSilenceChannel(&wfx, buffer.data(), 3, 0), E_FAIL);
        EXPECT_EQ(KtAudio_FillSilenceChannel(&wfx, buffer.data(), 2, 0), S_OK);
    }
    // 24 bits in a container of 32.
    tWAVEFORMATEX wide = Plain(0xFE00, 24, 2);
    wide.nBlockAlign = 8;
    Samples pair(8, kUntouched);
    EXPECT_EQ(KtAudio_FillSilenceChannel(&wide, pair.data(), 1, 1), S_OK);
    EXPECT_EQ(pair, (Samples{kUntouched, kUntouched, kUntouched, kUntouched, 0, 0, 0, 0}));
    const tWAVEFORMATEX mono = Plain(1, 8, 1);
    Samples buffer(3, kUntouched);
    EXPECT_EQ(KtAudio_FillSilenceChannel(&mono, buffer.data(), 0, 2), S_OK);
    EXPECT_EQ(buffer, (Samples{0x80, 0x80, kUntouched}));
}

TEST(FillWithSample, EqualTypesRepeatTheBlock) {
    const tWAVEFORMATEX wfx = Plain(1, 24, 2);
    const Samples block = {1, 2, 3, 4, 5, 6};
    Samples out(12);
    EXPECT_EQ(KtAudio_FillWithSample(&wfx, out.data(), &wfx, block.data(), 2), S_OK);
    EXPECT_EQ(out, (Samples{1, 2, 3, 4, 5, 6, 1, 2, 3, 4, 5, 6}));
}

TEST(FillWithSample, ConvertsAStereoFrameOfSomeTypesAndIsSilentForOthers) {
    for (const KTSAMPLETYPE destination : kAllTypes) {
        for (const KTSAMPLETYPE source : kAllTypes) {
            if (destination == source) continue;
            const auto isOneOf = [](KTSAMPLETYPE t) { return t == 17 || t == 18 || t == 32 || t == 33 || t == 48; };
            const bool converts = isOneOf(source) && (isOneOf(destination) || destination == 19);
            tWAVEFORMATEX to, from;
            KtAudio_InitWfx(&to, 48000, destination, 2);
            KtAudio_InitWfx(&from, 48000, source, 2);
            const float sound[2] = {0.25f, -0.5f};
            uint8_t sample[16];
            kReferenceConverters.Find(source, KTSAMPLETYPE_FLOAT32)(sample, sound, 2, 1.0f);
            Samples expected(3 * to.nBlockAlign, destination == KTSAMPLETYPE_PCM8 ? 0x80 : 0);
            if (converts) {
                for (size_t f = 0; f < 3; ++f) {
                    kReferenceConverters.Find(destination, source)(&expected[f * to.nBlockAlign], sample, 2, 1.0f);
                }
            }
            Samples out(expected.size(), kUntouched);
            EXPECT_EQ(KtAudio_FillWithSample(&to, out.data(), &from, sample, 3), S_OK);
            EXPECT_EQ(out, expected) << destination << " from " << source;
        }
    }
}

TEST(FillWithSample, FitsTheChannelsOfTheDestination) {
    const int16_t frame[2] = {16384, -16384};
    const tWAVEFORMATEX from = Plain(1, 16, 2), mono = Plain(3, 32, 1), three = Plain(3, 32, 3);
    std::vector<float> out(6, 9.0f);
    EXPECT_EQ(KtAudio_FillWithSample(&mono, out.data(), &from, frame, 2), S_OK);
    EXPECT_EQ(out, (std::vector<float>{0.5f, 0.5f, 9, 9, 9, 9}));
    EXPECT_EQ(KtAudio_FillWithSample(&three, out.data(), &from, frame, 2), S_OK);
    EXPECT_EQ(out, (std::vector<float>{0.5f, -0.5f, 0, 0.5f, -0.5f, 0}));
    EXPECT_EQ(KtAudio_FillWithSample(&three, out.data(), &from, nullptr, 0), S_OK);
    EXPECT_EQ(KtAudio_FillWithSample(&three, out.data(), &from, nullptr, 1), E_INVALIDARG);
}

}  // namespace
}  // namespace clipfio::audio
