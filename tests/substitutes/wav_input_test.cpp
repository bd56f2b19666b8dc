// WAV files of every layout, and files that are none.
#include "substitutes/decoder/wav_input.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

#include "platform/endian.h"
#include "substitutes/decoder_library.h"

namespace clipfio::decoder::test {
namespace {

// A WAV file made of bytes, with every part open to change.
struct Wav {
    std::string riff = "RIFF";
    std::string before_format;  // whole chunks
    uint16_t tag = 1, channels = 2, block = 4, bits = 16;
    uint32_t rate = 48000;
    std::string extension;  // of the format chunk
    std::string before_data;
    uint32_t data_size = 0xFFFFFFFE;  // this one: as long as the data
    std::string data;

    void With(uint16_t bits_, uint16_t block_, std::string data_) {
        bits = bits_, block = block_, data = std::move(data_);
    }

    template <class T>
    static std::string Bytes(T value) {
        std::string text(sizeof value, '\0');
        platform::StoreLittle(text.data(), value);
        return text;
    }
    static std::string Chunk(const std::string& id, const std::string& content) {
        return id + Bytes(static_cast<uint32_t>(content.size())) + content + std::string(content.size() % 2, '\0');
    }

    [[nodiscard]] std::vector<uint8_t> Make() const {
        const std::string format =
            Bytes(tag) + Bytes(channels) + Bytes(rate) + Bytes(rate * block) + Bytes(block) + Bytes(bits) + extension;
        const uint32_t size = data_size == 0xFFFFFFFE ? static_cast<uint32_t>(data.size()) : data_size;
        const std::string all = riff + Bytes(uint32_t{0}) + "WAVE" + before_format + Chunk("fmt ", format) +
                                before_data + "data" + Bytes(size) + data;
        return {all.begin(), all.end()};
    }
};

std::vector<int32_t> ReadAll(WavInput& input) {
    std::vector<int32_t> all;
    std::vector<int32_t> part(3 * input.Channels());
    while (const size_t got = input.Read(part.data(), 3)) {
        all.insert(all.end(), part.begin(), part.begin() + static_cast<ptrdiff_t>(got * input.Channels()));
    }
    return all;
}

TEST(WavInput, EveryLayoutIsReadAtFullScale) {
    const std::string sixteen = {"\x01\x00\xFF\x7F\x00\x80\xFE\xFF", 8};
    const std::vector<int32_t> sixteen_sound = {0x10000, 0x7FFF0000, INT32_MIN, -0x20000};
    const std::string pcm_guid = {
        "\x16\x00\x10\x00\x03\x00\x00\x00\x01\x00\x00\x00\x00\x00\x10\x00\x80\x00\x00\xAA\x00\x38\x9B\x71", 24};
    const auto floats = [](std::initializer_list<float> values) {
        std::string text;
        for (const float value : values) text += Wav::Bytes(value);
        return text;
    };
    const struct {
        const char* name;
        std::function<void(Wav&)> change;
        uint32_t sample_size;
        std::vector<int32_t> sound;
    } kGood[] = {
        {"16 bits", [&](Wav& w) { w.data = sixteen; }, 16, sixteen_sound},
        {"24 bits",
         [](Wav& w) {
             w.With(24, 6, {"\x01\x02\x03\xFF\xFF\xFF", 6});
         },
         24,
         {0x03020100, -0x100}},
        {"32 bits",
         [](Wav& w) {
             w.With(32, 8, {"\4\3\2\1\0\0\0\x80", 8});
         },
         32,
         {0x01020304, INT32_MIN}},
        {"float",
         [&](Wav& w) {
             w.tag = 3, w.bits = 32, w.block = 8;
             w.data = floats({0.5f, -1.0f, 1.0f, 9.0f, -std::numeric_limits<float>::infinity(), std::nanf("")});
         },
         32,
         {0x40000000, INT32_MIN, INT32_MAX, INT32_MAX, INT32_MIN, 0}},
        {"extensible", [&](Wav& w) { w.tag = 0xFFFE, w.extension = pcm_guid, w.data = sixteen; }, 16, sixteen_sound},
        {"other chunks, one of odd length",
         [&](Wav& w) {
             w.before_format = Wav::Chunk("JUNK", "odd"), w.before_data = Wav::Chunk("LIST", "even"), w.data = sixteen;
         },
         16, sixteen_sound},
        {"size left open", [&](Wav& w) { w.data_size = 0xFFFFFFFF, w.data = sixteen; }, 16, sixteen_sound},
        {"size above the file", [&](Wav& w) { w.data_size = 400000, w.data = sixteen; }, 16, sixteen_sound},
        {"size never written", [&](Wav& w) { w.data_size = 0, w.data = sixteen; }, 16, sixteen_sound},
        {"no sound before another chunk",
         [&](Wav& w) { w.data_size = 0, w.data = Wav::Chunk("LIST", "even"); },
         16,
         {}},
        {"cut inside a sample", [&](Wav& w) { w.data = sixteen.substr(0, 7); }, 16, {0x10000, 0x7FFF0000}},
        {"RF64",
         [&](Wav& w) {
             w.riff = "RF64", w.data_size = 0xFFFFFFFF, w.data = sixteen + "LIST....";
             w.before_format =
                 Wav::Chunk("ds64", Wav::Bytes(uint64_t{0}) + Wav::Bytes(uint64_t{8}) + Wav::Bytes(uint64_t{2}));
         },
         16, sixteen_sound},
        {"empty", [](Wav&) {}, 16, {}},
    };
    for (const auto& good : kGood) {
        Wav wav;
        good.change(wav);
        const TestFile file(".wav");
        file.Write(wav.Make());
        WavInput input;
        ASSERT_TRUE(input.Open(file.Path())) << good.name << ": " << input.Error();
        EXPECT_EQ(input.SampleRate(), 48000u);
        EXPECT_EQ(input.Channels(), 2u);
        EXPECT_EQ(input.SampleSize(), good.sample_size) << good.name;
        EXPECT_EQ(input.SampleCount() * 2, good.sound.size()) << good.name;
        EXPECT_EQ(ReadAll(input), good.sound) << good.name;
    }
}

TEST(WavInput, WhatIsNoSoundIsRefusedWithAReason) {
    const struct {
        const char* part_of_error;
        void (*change)(Wav&);
    } kBad[] = {
        {"RIFF", [](Wav& w) { w.riff = "RIFX"; }},
        {"neither PCM nor float", [](Wav& w) { w.tag = 2; }},
        {"neither PCM nor float", [](Wav& w) { w.tag = 0xFFFE; }},
        {"neither PCM nor float",
         [](Wav& w) {
             w.tag = 0xFFFE, w.extension = {"\x16\x00\x10\x00\x03\x00\x00\x00\x01\x00", 10},
             w.extension += std::string(14, 'g');
         }},
        {"channels", [](Wav& w) { w.channels = 0, w.block = 0; }},
        {"channels", [](Wav& w) { w.channels = 65, w.block = 130; }},
        {"rate", [](Wav& w) { w.rate = 0; }},
        {"bits", [](Wav& w) { w.bits = 8, w.block = 2; }},
        {"bits", [](Wav& w) { w.tag = 3; }},
        {"contradicts", [](Wav& w) { w.block = 3; }},
        {"before its data", [](Wav& w) { w.before_format = Wav::Chunk("data", "1234"); }},
        {"too short", [](Wav& w) { w.before_format = Wav::Chunk("fmt ", "12345678"); }},
        {"no format", [](Wav& w) { w.before_format = "JUNK\xF0\xFF\xFF\xFF"; }},
        {"no data", [](Wav& w) { w.before_data = "JUNK\xFF\xFF\xFF\xFF"; }},
    };
    const TestFile file(".wav");
    WavInput input;
    for (const auto& bad : kBad) {
        Wav wav;
        bad.change(wav);
        file.Write(wav.Make());
        EXPECT_FALSE(input.Open(file.Path())) << bad.part_of_error;
        EXPECT_NE(input.Error().find(bad.part_of_error), std::string::npos) << input.Error();
    }
    const std::vector<uint8_t> whole = Wav{}.Make();
    for (size_t size = 0; size < whole.size(); ++size) {
        file.Write({whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size)});
        EXPECT_FALSE(input.Open(file.Path())) << size;
        EXPECT_FALSE(input.Error().empty());
    }
    EXPECT_FALSE(input.Open(file.Path() + W(".missing")));
    EXPECT_NE(input.Error().find("no such file"), std::string::npos) << input.Error();
    EXPECT_EQ(input.Read(nullptr, 1), 0u);
}

}  // namespace
}  // namespace clipfio::decoder::test
