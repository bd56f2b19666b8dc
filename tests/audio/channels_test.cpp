// Operations on the channels of interleaved samples.
#include "audio/channels.h"

#include <cstring>

#include "audio/sample_data.h"
#include "audio/sample_rule.h"
#include "audio/wfx.h"

namespace clipfio::audio {
namespace {

constexpr KTSAMPLETYPE kBasicTypes[] = {KTSAMPLETYPE_PCM8,  KTSAMPLETYPE_PCM16,   KTSAMPLETYPE_PCM24,
                                        KTSAMPLETYPE_PCM32, KTSAMPLETYPE_FLOAT32, KTSAMPLETYPE_FLOAT64};

tWAVEFORMATEX Wfx(KTSAMPLETYPE type, uint32_t channels) {
    tWAVEFORMATEX wfx;
    KtAudio_InitWfx(&wfx, 48000, type, channels);
    return wfx;
}

tWAVEFORMATEX Unknown(uint32_t channels) {
    tWAVEFORMATEX wfx = Wfx(KTSAMPLETYPE_PCM16, channels);
    wfx.wFormatTag = 0x55;
    return wfx;
}

using Samples = std::vector<uint8_t>;

// Sample i as bytes that no other sample of the buffer has, whatever the type.
Samples Numbered(KTSAMPLETYPE type, size_t count) {
    Samples out(count * BytesOf(type));
    for (size_t i = 0; i < out.size(); ++i)
        out[i] = static_cast<uint8_t>(i / BytesOf(type) + 0x10 * (i % BytesOf(type)));
    return out;
}

// The samples with these numbers out of `samples`.
Samples Pick(KTSAMPLETYPE type, const Samples& samples, const std::vector<size_t>& numbers) {
    Samples out;
    for (const size_t n : numbers) {
        const auto at = samples.begin() + static_cast<std::ptrdiff_t>(n * BytesOf(type));
        out.insert(out.end(), at, at + static_cast<std::ptrdiff_t>(BytesOf(type)));
    }
    return out;
}

template <class T>
Samples Raw(std::initializer_list<T> values) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(values.begin());
    return {bytes, bytes + values.size() * sizeof(T)};
}

// --- Moving samples: every type, bytes as they stand.

TEST(Channels, MoveWholeSamplesOfEveryType) {
    for (const KTSAMPLETYPE type : kAllTypes) {
        SCOPED_TRACE(type);
        const size_t bytes = BytesOf(type);
        const Samples six = Numbered(type, 6);  // two frames of three channels
        const tWAVEFORMATEX three = Wfx(type, 3), mono = Wfx(type, 1), two = Wfx(type, 2);

        Samples out(2 * bytes);
        EXPECT_EQ(KtAudio_ExtractChannel(out.data(), 2, six.data(), &three, 2), S_OK);
        EXPECT_EQ(out, Pick(type, six, {2, 5}));
        EXPECT_EQ(KtAudio_ExtractChannel(out.data(), 1, six.data(), type, 3, 2), S_OK);
        EXPECT_EQ(out, Pick(type, six, {1, 4}));
        EXPECT_EQ(KtAudio_ExtractChannel(out.data(), 0, six.data(), &mono, 2), S_OK);
        EXPECT_EQ(out, Pick(type, six, {0, 1}));

        Samples four = Numbered(type, 4);
        EXPECT_EQ(KtAudio_InsertChannel(four.data(), type, 2, 1, six.data() + 4 * bytes, 2), S_OK);
        EXPECT_EQ(four, [&] {
            Samples expected = Numbered(type, 4);
            std::memcpy(&expected[bytes], &six[4 * bytes], bytes);
            std::memcpy(&expected[3 * bytes], &six[5 * bytes], bytes);
            return expected;
        }());
        EXPECT_EQ(KtAudio_InsertChannel(out.data(), type, 1, 0, six.data(), 2), S_OK);
        EXPECT_EQ(out, Pick(type, six, {0, 1}));

        Samples all(4 * bytes);
        EXPECT_EQ(KtAudio_CopyChannelToAll(all.data(), six.data(), &three, &two, 1, 2), S_OK);
        EXPECT_EQ(all, Pick(type, six, {1, 1, 4, 4}));
        EXPECT_EQ(KtAudio_CopyChannelToAll(out.data(), six.data(), &three, &mono, 2, 2), S_OK);
        EXPECT_EQ(out, Pick(type, six, {2, 5}));

        // More channels than before: in one buffer, from the last frame.
        Samples grown = Pick(type, six, {0, 1, 2, 3});
        grown.resize(6 * bytes);
        EXPECT_EQ(KtAudio_CopyChannelToMultiMono(grown.data(), &three, grown.data(), &two, 1, 2), S_OK);
        EXPECT_EQ(grown, Pick(type, six, {1, 1, 1, 3, 3, 3}));
        Samples shrunk = six;
        EXPECT_EQ(KtAudio_CopyChannelToMultiMono2(shrunk.data(), 2, shrunk.data(), 3, 2, 2, type), S_OK);
        shrunk.resize(4 * bytes);
        EXPECT_EQ(shrunk, Pick(type, six, {2, 2, 5, 5}));

        Samples spread = Pick(type, six, {0, 1});
        spread.resize(6 * bytes);
        EXPECT_EQ(KtAudio_ChannelChange(spread.data(), 3, spread.data(), &mono, 2), S_OK);
        EXPECT_EQ(spread, Pick(type, six, {0, 0, 0, 1, 1, 1}));

        Samples same(4 * bytes);
        EXPECT_EQ(KtAudio_ChannelChangeAvg(same.data(), 2, six.data(), &two, 2), S_OK);
        EXPECT_EQ(same, Pick(type, six, {0, 1, 2, 3}));
        EXPECT_EQ(KtAudio_ExtractChannelPair(same.data(), 0, six.data(), &two, 2), S_OK);
        EXPECT_EQ(same, Pick(type, six, {0, 1, 2, 3}));
    }
}

TEST(Channels, MoveWithinTheBasicTypes) {
    for (const KTSAMPLETYPE type : kBasicTypes) {
        SCOPED_TRACE(type);
        const Samples six = Numbered(type, 6);
        const tWAVEFORMATEX three = Wfx(type, 3), mono = Wfx(type, 1);

        Samples pair(4 * BytesOf(type));
        EXPECT_EQ(KtAudio_ExtractChannelPair(pair.data(), 1, six.data(), &three, 2), S_OK);
        EXPECT_EQ(pair, Pick(type, six, {1, 2, 4, 5}));

        Samples buffer = six;
        EXPECT_EQ(KtAudio_CopyChannelToChannel(buffer.data(), &three, 2, 0, 2), S_OK);
        EXPECT_EQ(buffer, Pick(type, six, {2, 1, 2, 5, 4, 5}));

        buffer = six;
        EXPECT_EQ(KtAudio_SwapStereoChannels(buffer.data(), &three, 2), S_OK);
        EXPECT_EQ(buffer, Pick(type, six, {1, 0, 2, 4, 3, 5}));
        Samples copy(six.size());
        EXPECT_EQ(KtAudio_CopySwapStereoChannels(copy.data(), six.data(), &three, 2), S_OK);
        EXPECT_EQ(copy, buffer);

        // One channel has nothing to change.
        buffer = six;
        EXPECT_EQ(KtAudio_SwapStereoChannels(buffer.data(), &mono, 6), S_OK);
        EXPECT_EQ(KtAudio_CopyChannelToChannel(buffer.data(), &mono, 1, 0, 6), S_OK);
        EXPECT_EQ(buffer, six);
        EXPECT_EQ(KtAudio_MonoChannel(copy.data(), six.data(), &mono, 6), S_OK);
        EXPECT_EQ(copy, six);
    }
}

TEST(Channels, SwapFollowsTheBlockAlign) {
    tWAVEFORMATEX wfx = Wfx(KTSAMPLETYPE_PCM16, 2);
    wfx.nBlockAlign = 7;  // three bytes a channel and one left over: frames of six bytes
    Samples buffer = {1, 2, 3, 4, 9, 9, 5, 6, 7, 8, 9, 9};
    EXPECT_EQ(KtAudio_SwapStereoChannels(buffer.data(), &wfx, 2), S_OK);
    EXPECT_EQ(buffer, (Samples{3, 4, 1, 2, 9, 9, 7, 8, 5, 6, 9, 9}));
    wfx.nBlockAlign = 2;
    EXPECT_EQ(KtAudio_SwapStereoChannels(buffer.data(), &wfx, 2), E_FAIL);
}

TEST(Channels, MuteWritesTheSilenceOfTheType) {
    for (const KTSAMPLETYPE type : kAllTypes) {
        const uint8_t silence = type == KTSAMPLETYPE_PCM8 ? 0x80 : 0;
        const tWAVEFORMATEX wfx = Wfx(type, 2);
        _ktwaveformat record;
        record.Init(48000, type, 2, 0, 32);
        Samples expected = Numbered(type, 4);
        for (const size_t sample : {1, 3}) std::memset(&expected[sample * BytesOf(type)], silence, BytesOf(type));
        Samples a = Numbered(type, 4), b = a, c = a;
        EXPECT_EQ(KtAudio_MuteChannel(a.data(), &wfx, 1, 2), S_OK);
        EXPECT_EQ(KtAudio_MuteChannel(b.data(), &record, 1, 2), S_OK);
        EXPECT_EQ(KtAudio_MuteChannel(c.data(), type, 2, 1, 2), S_OK);
        EXPECT_EQ(a, expected) << type;
        EXPECT_EQ(b, expected) << type;
        EXPECT_EQ(c, expected) << type;
    }
}

// --- Mixing: one frame in, one sample out.

const struct {
    KTSAMPLETYPE type;
    std::vector<double> in;  // codes of integers, values of floats
    double sum, mean;
} kMixes[] = {
    {KTSAMPLETYPE_FLOAT32, {0.75, 0.75}, 1.5, 0.75},
    {KTSAMPLETYPE_FLOAT64, {0.75, -0.5, 0.25}, 0.5, 0.5 / 3},
    {KTSAMPLETYPE_PCM16, {24576, 24576}, 32767, 24576},
    {KTSAMPLETYPE_PCM16, {-32768, -32768}, -32768, -32768},
    {KTSAMPLETYPE_PCM16, {3, 0}, 3, 2},  // 1.5: to the even one
    {KTSAMPLETYPE_PCM16, {1, 0}, 1, 0},  // 0.5
    {KTSAMPLETYPE_PCM16, {-3, 0}, -3, -2},
    {KTSAMPLETYPE_PCM8S, {100, 100}, 127, 100},
    {KTSAMPLETYPE_PCM8S, {3, 0}, 3, 2},
    {KTSAMPLETYPE_PCM8, {100, 100}, 127, 100},
    {KTSAMPLETYPE_PCM8, {1, 0}, 1, 0},       // 16-bit mean 128 is a tie
    {KTSAMPLETYPE_PCM8, {3, 0}, 3, 2},       // 16-bit mean 384 is a tie
    {KTSAMPLETYPE_PCM8, {-1, 0, 0}, -1, 0},  // 16-bit mean -85.3
    {KTSAMPLETYPE_PCM24, {8388607, 1}, 8388607, 4194304},
    {KTSAMPLETYPE_PCM24BE, {-8388608, -2}, -8388608, -4194305},
    {KTSAMPLETYPE_PCM24IN32, {100, -40, -40}, 20, 7},
    {KTSAMPLETYPE_PCM32, {2147483647, 2147483647}, 2147483647, 2147483647},
    {KTSAMPLETYPE_PCM32BE, {-2147483648.0, 2147483647}, -1, 0},  // -0.5
    {KTSAMPLETYPE_PCM16BE, {1000, 500}, 1500, 750},
};

TEST(Channels, SumAndMeanToMono) {
    for (const auto& mix : kMixes) {
        WithFormat(mix.type, [&]<class F>(F) {
            using Value = decltype(F::Load(nullptr));
            const auto channels = static_cast<uint32_t>(mix.in.size());
            Samples frame(channels * F::kBytes);
            for (uint32_t c = 0; c < channels; ++c) F::Store(&frame[c * F::kBytes], static_cast<Value>(mix.in[c]));
            const tWAVEFORMATEX wfx = Wfx(mix.type, channels);
            uint8_t out[8];
            EXPECT_EQ(KtAudio_ChannelChange(out, 1, frame.data(), &wfx, 1), S_OK);
            EXPECT_EQ(F::Load(out), static_cast<Value>(mix.sum)) << "sum of type " << mix.type;
            EXPECT_EQ(KtAudio_ChannelChangeAvg(frame.data(), 1, frame.data(), &wfx, 1), S_OK);
            EXPECT_EQ(F::Load(frame.data()), static_cast<Value>(mix.mean)) << "mean of type " << mix.type;
        });
    }
}

TEST(Channels, MeanInEveryChannelByTypeOfItsOwn) {
    const struct {
        KTSAMPLETYPE type;
        Samples in, out;
    } kRows[] = {
        {KTSAMPLETYPE_PCM8, {0x81, 0x80, 0xFF, 0xFE}, {0x80, 0x80, 0xFE, 0xFE}},  // unsigned, cut
        {KTSAMPLETYPE_PCM16, Raw<int16_t>({-3, 0, 32767, 32767}), Raw<int16_t>({-1, -1, 32767, 32767})},
        {KTSAMPLETYPE_PCM24,
         {3, 0, 0, 0, 0, 0, 0xFD, 0xFF, 0xFF, 0, 0, 0},
         {2, 0, 0, 2, 0, 0, 0xFE, 0xFF, 0xFF, 0xFE, 0xFF, 0xFF}},
        {KTSAMPLETYPE_PCM32, Raw<int32_t>({2147483647, 2147483646, -2147483647 - 1, -3}),
         Raw<int32_t>({2147483646, 2147483646, -1073741825, -1073741825})},
        {KTSAMPLETYPE_FLOAT32, Raw<float>({3e38f, 3e38f, 1.0f, -0.5f}), Raw<float>({3e38f, 3e38f, 0.25f, 0.25f})},
        {KTSAMPLETYPE_FLOAT64, Raw<double>({1.0, 2.0, 0.5, 0.25}), Raw<double>({1.5, 1.5, 0.375, 0.375})},
    };
    for (const auto& row : kRows) {
        const tWAVEFORMATEX wfx = Wfx(row.type, 2);
        Samples out(row.in.size());
        EXPECT_EQ(KtAudio_MonoChannel(out.data(), row.in.data(), &wfx, 2), S_OK);
        EXPECT_EQ(out, row.out) << row.type;
        out = row.in;
        EXPECT_EQ(KtAudio_MonoChannel(out.data(), out.data(), &wfx, 2), S_OK);
        EXPECT_EQ(out, row.out) << row.type << " in place";
    }
}

// --- Failures: the result, and nothing written.

TEST(Channels, WhatIsNotHandledFailsAndWritesNothing) {
    const Samples in = Numbered(KTSAMPLETYPE_FLOAT64, 8);
    Samples out(64, 0xEE);
    uint8_t* const o = out.data();
    const tWAVEFORMATEX stereo = Wfx(KTSAMPLETYPE_PCM16, 2), three = Wfx(KTSAMPLETYPE_PCM16, 3),
                        mono = Wfx(KTSAMPLETYPE_PCM16, 1), none = Wfx(KTSAMPLETYPE_PCM16, 0),
                        big = Wfx(KTSAMPLETYPE_PCM16BE, 3), strange = Unknown(3), stereo8 = Wfx(KTSAMPLETYPE_PCM8S, 2);
    tWAVEFORMATEX narrow = three;
    narrow.nBlockAlign = 3;

    EXPECT_EQ(KtAudio_ChannelChange(o, 3, in.data(), &stereo, 2), E_FAIL);
    EXPECT_EQ(KtAudio_ChannelChange(o, 2, in.data(), &three, 2), E_FAIL);
    EXPECT_EQ(KtAudio_ChannelChange(o, 0, in.data(), &stereo, 2), E_FAIL);
    EXPECT_EQ(KtAudio_ChannelChange(o, 1, in.data(), &none, 2), E_FAIL);
    EXPECT_EQ(KtAudio_ChannelChangeAvg(o, 1, in.data(), &strange, 2), E_FAIL);
    EXPECT_EQ(KtAudio_ChannelChangeAvg(o, 1, in.data(), &narrow, 2), E_FAIL);
    EXPECT_EQ(KtAudio_ChannelChange(o, 3, in.data(), &strange, 2), E_NOTIMPL);  // a copy, of a type that has none
    EXPECT_EQ(KtAudio_ExtractChannel(o, 0, in.data(), &strange, 2), E_FAIL);
    EXPECT_EQ(KtAudio_ExtractChannel(o, 0, in.data(), KTSAMPLETYPE_X16, 2, 2), E_FAIL);
    EXPECT_EQ(KtAudio_ExtractChannel(o, 0, in.data(), KTSAMPLETYPE_PCM16, 0, 2), E_FAIL);
    EXPECT_EQ(KtAudio_ExtractChannelPair(o, 0, in.data(), &big, 2), E_FAIL);
    EXPECT_EQ(KtAudio_ExtractChannelPair(o, 0, in.data(), &mono, 2), E_FAIL);
    EXPECT_EQ(KtAudio_InsertChannel(o, KTSAMPLETYPE_NONE, 2, 0, in.data(), 2), E_FAIL);
    EXPECT_EQ(KtAudio_MonoChannel(o, in.data(), &big, 2), E_FAIL);
    EXPECT_EQ(KtAudio_CopyChannelToAll(o, in.data(), &stereo, &big, 0, 2), E_NOTIMPL);
    EXPECT_EQ(KtAudio_CopyChannelToAll(o, in.data(), &strange, &strange, 0, 2), E_FAIL);
    EXPECT_EQ(KtAudio_CopyChannelToMultiMono(o, &big, in.data(), &stereo, 0, 2), E_INVALIDARG);
    EXPECT_EQ(KtAudio_CopyChannelToMultiMono(o, &strange, in.data(), &strange, 0, 2), E_INVALIDARG);
    EXPECT_EQ(KtAudio_CopyChannelToMultiMono2(o, 2, in.data(), 1, 0, 2, KTSAMPLETYPE_X24), E_INVALIDARG);
    EXPECT_EQ(KtAudio_CopyChannelToChannel(o, &stereo8, 0, 1, 2), E_FAIL);
    EXPECT_EQ(KtAudio_MuteChannel(o, &strange, 0, 2), E_FAIL);
    EXPECT_EQ(KtAudio_SwapStereoChannels(o, &stereo8, 2), E_FAIL);
    EXPECT_EQ(KtAudio_SwapStereoChannels(o, &none, 2), E_FAIL);
    EXPECT_EQ(KtAudio_CopySwapStereoChannels(o, in.data(), &big, 2), E_FAIL);

    for (const int32_t frames : {0, -5}) {
        EXPECT_EQ(KtAudio_ChannelChange(o, 1, in.data(), &stereo, frames), S_OK);
        EXPECT_EQ(KtAudio_ExtractChannel(o, 0, in.data(), &stereo, frames), S_OK);
        EXPECT_EQ(KtAudio_InsertChannel(o, KTSAMPLETYPE_PCM16, 2, 0, in.data(), frames), S_OK);
        EXPECT_EQ(KtAudio_MonoChannel(o, in.data(), &stereo, frames), S_OK);
        EXPECT_EQ(KtAudio_CopyChannelToMultiMono2(o, 2, in.data(), 1, 0, frames, KTSAMPLETYPE_PCM16), S_OK);
        EXPECT_EQ(KtAudio_MuteChannel(o, &stereo, 0, frames), S_OK);
        EXPECT_EQ(KtAudio_SwapStereoChannels(o, &stereo, frames), S_OK);
    }
    EXPECT_EQ(KtAudio_ChannelChange(o, 1, nullptr, &stereo, 1), E_INVALIDARG);
    EXPECT_EQ(KtAudio_MuteChannel(nullptr, &stereo, 0, 1), E_INVALIDARG);
    EXPECT_EQ(KtAudio_MuteChannel(o, static_cast<const _ktwaveformat*>(nullptr), 0, 1), E_INVALIDARG);
    EXPECT_EQ(out, Samples(64, 0xEE));
}

}  // namespace
}  // namespace clipfio::audio
