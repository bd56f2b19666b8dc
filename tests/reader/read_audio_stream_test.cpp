#include <bit>
#include <cstring>

#include "audio/wave_format.h"
#include "tests/reader/reader_scene.h"

namespace reader_tests {
namespace {

using fake_decoder::Sound;

class ReadAudioStream : public ReaderTest {};

constexpr float kUntouched = -77.0f;

float Converted(int32_t sample) { return static_cast<float>(sample) / 2147483648.0f; }

// Samples of `memory` that are as the decoder gave them from `first` on, before the first that is not.
int32_t GoodSamples(const std::vector<float>& memory, uint64_t first, uint32_t channels) {
    std::size_t i = 0;
    while (i < memory.size()) {
        const auto expected = Converted(Sound(first + i / channels, static_cast<uint32_t>(i % channels)));
        if (std::bit_cast<uint32_t>(memory[i]) != std::bit_cast<uint32_t>(expected)) break;
        ++i;
    }
    return static_cast<int32_t>(i / channels);
}

TEST_F(ReadAudioStream, TellsLengthsAndFormats) {
    Told().clip.channel_mask = 0x37;  // three of the lowest four
    Told().clip.samples = 144000;
    Told().clip.sample_size = 0x10018;  // the low half counts
    const auto file = MeasuredFile();
    const auto audio = AudioOf(file.Get());
    EXPECT_EQ(Got(audio, &IKtReadAudioStream::GetDuration), 30000000);
    EXPECT_EQ(Got(audio, &IKtReadAudioStream::GetLength), 144000u);
    EXPECT_EQ(Got(audio, &IKtReadAudioStream::GetBlockAlign), 12u);

    _ktstreaminfo info = Got(audio, &IKtReadAudioStream::GetFormat);
    EXPECT_EQ(info.size, 184u);
    EXPECT_EQ(info.kind, 1u);
    EXPECT_EQ(info.length, 144000u);
    EXPECT_EQ(info.frameFormat.size, 0u);
    const auto delivered = FormatIn<_ktwaveformat>(info);
    EXPECT_EQ(delivered.sampleType, KTSAMPLETYPE_FLOAT32);
    EXPECT_EQ(delivered.channels, 3);
    EXPECT_EQ(delivered.averageBytesPerSecond, 576000u);
    EXPECT_EQ(audio->CheckFormat(&info), S_FALSE);
    info = Got(audio, &IKtReadAudioStream::GetNativeFormat);
    const auto native = FormatIn<_ktwaveformat>(info);
    EXPECT_EQ(native.size, 32u);
    EXPECT_EQ(native.flags, _ktwaveformat::kOpaque);
    EXPECT_EQ(native.formatTag, 0x30);
    EXPECT_EQ(native.bitsPerSample, 24);
    EXPECT_EQ(native.channels, 3);
    EXPECT_EQ(native.samplesPerSecond, 48000u);
    EXPECT_EQ(audio->CheckFormat(&info), S_OK);
    info.format[0] = 0xFF;  // a size that goes far beyond the record
    info.format[1] = 0xFF;
    info.format[32] = 0xFF;
    EXPECT_EQ(audio->CheckFormat(&info), S_FALSE);
}

TEST_F(ReadAudioStream, ReadsUntilTheCountIsThere) {
    const struct {
        std::vector<fake_decoder::AudioAnswer> answers;
        int32_t count;
        HRESULT result;
        int32_t read;
        std::size_t calls;
    } kRows[] = {
        {{}, 100, S_OK, 100, 1},       {{{0, 30}, {0, 30}}, 100, S_OK, 100, 3},
        {{}, 0, S_OK, 0, 0},           {{{0, 50}, {8, 0}}, 100, S_FALSE, 50, 2},
        {{}, -5, S_OK, 0, 0},          {{{0, 50}, {0, 0}}, 100, S_FALSE, 50, 2},  // no more, though good
        {{{8, 0}}, 100, E_FAIL, 0, 1}, {{{0, 1}, {0, 1}, {-3, 0}}, 3, S_FALSE, 2, 3},
        {{{0, 0}}, 100, S_OK, 0, 1},
    };
    for (const uint32_t mask : {1u, 3u, 15u}) {
        Told().clip.channel_mask = mask;
        const auto channels = static_cast<uint32_t>(std::popcount(mask));
        const auto file = OpenFile();
        const auto audio = AudioOf(file.Get());
        for (const auto& row : kRows) {
            SCOPED_TRACE(&row - kRows);
            Told().audio = {row.answers.begin(), row.answers.end()};
            Told().audio_calls.clear();
            std::vector<float> memory(100 * channels, kUntouched);
            const auto token = TokenOf(memory.data(), memory.size() * 4);
            int32_t read = -1;
            EXPECT_EQ(audio->ReadSamples(1000, &token, row.count, &read), row.result);
            EXPECT_EQ(read, row.read);
            EXPECT_EQ(GoodSamples(memory, 1000, channels), row.read);
            for (std::size_t i = static_cast<std::size_t>(row.read) * channels; i < memory.size(); ++i) {
                EXPECT_EQ(memory[i], kUntouched);
            }
            ASSERT_EQ(Told().audio_calls.size(), row.calls);
            uint64_t first = 1000;
            auto left = static_cast<uint64_t>(row.count);
            for (const fake_decoder::AudioCall& call : Told().audio_calls) {
                EXPECT_EQ(call.first, first);
                EXPECT_EQ(call.count, left);
                EXPECT_EQ(call.bytes, left * channels * 4);
                EXPECT_EQ(call.buffer % 512, 0u);
                const std::size_t index = static_cast<std::size_t>(&call - Told().audio_calls.data());
                const uint64_t got = index < row.answers.size() ? std::min(left, row.answers[index].most) : left;
                first += got;
                left -= got;
            }
        }
    }
}

TEST_F(ReadAudioStream, EndsAtTheEndOfTheClip) {
    const auto file = OpenFile();
    const auto audio = AudioOf(file.Get());
    std::vector<float> memory(200, kUntouched);
    const auto token = TokenOf(memory.data(), 800);
    int32_t read = -1;
    EXPECT_EQ(audio->ReadSamples(480000 - 60, &token, 100, &read), S_FALSE);
    EXPECT_EQ(read, 60);
    EXPECT_EQ(GoodSamples(memory, 480000 - 60, 2), 60);
    for (const int64_t past : {int64_t{480000}, int64_t{-1}, std::numeric_limits<int64_t>::min()}) {
        EXPECT_EQ(audio->ReadSamples(past, &token, 100, &read), E_FAIL) << past;
        EXPECT_EQ(read, 0);
    }
    EXPECT_EQ(audio->Close(), S_OK);
    EXPECT_EQ(audio->ReadSamples(0, &token, 100, &read), S_OK);  // with a new buffer
    EXPECT_EQ(GoodSamples(memory, 0, 2), 100);
    EXPECT_EQ(file->Close(), S_OK);
    EXPECT_EQ(audio->ReadSamples(0, &token, 100, &read), E_FAIL);
}

TEST_F(ReadAudioStream, RefusesWhatItCannotWriteTo) {
    const auto file = OpenFile();
    const auto audio = AudioOf(file.Get());
    std::vector<float> memory(200, kUntouched);
    const auto token = TokenOf(memory.data(), 800);
    int32_t read = -1;
    EXPECT_EQ(audio->ReadSamples(0, &token, 100, nullptr), E_INVALIDARG);
    EXPECT_EQ(audio->ReadSamples(0, nullptr, 100, &read), E_INVALIDARG);
    EXPECT_EQ(read, 0);
    auto tokens = UnusableTokens(token);
    tokens.push_back(TokenOf(memory.data(), 799));  // short of one byte
    for (const auto& bad : tokens) {
        read = -1;
        EXPECT_EQ(audio->ReadSamples(0, &bad, 100, &read), E_INVALIDARG);
        EXPECT_EQ(read, 0);
    }
    EXPECT_EQ(audio->ReadSamples(0, &token, 0x7FFFFFFF, &read), E_INVALIDARG);
    EXPECT_TRUE(Told().audio_calls.empty());
    EXPECT_EQ(memory, std::vector<float>(200, kUntouched));
}

TEST_F(ReadAudioStream, ClipWithoutChannelsHasNoSound) {
    Told().clip.channel_mask = 0x10;
    const auto file = OpenFile();
    const auto audio = AudioOf(file.Get());
    EXPECT_EQ(Got(audio, &IKtReadAudioStream::GetLength), 0u);  // measuring ended before it
    float samples[4] = {kUntouched, kUntouched, kUntouched, kUntouched};
    const auto token = TokenOf(samples, sizeof samples);
    int32_t read = -1;
    EXPECT_EQ(audio->ReadSamples(0, &token, 2, &read), E_FAIL);
    EXPECT_EQ(read, 0);
    EXPECT_TRUE(Told().audio_calls.empty());
    EXPECT_EQ(samples[0], kUntouched);
    EXPECT_EQ(Got(file, &IKtReadFile::GetStreamCount), 2);
    EXPECT_EQ(Got(file, &IKtReadFile::GetDuration), 0);  // the pictures are not reached
}

}  // namespace
}  // namespace reader_tests
