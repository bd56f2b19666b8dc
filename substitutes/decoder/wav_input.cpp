#include "substitutes/decoder/wav_input.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <exception>

#include "platform/endian.h"
#include "platform/result_file.h"

namespace clipfio::decoder {
namespace {

using platform::LoadLittle;

constexpr size_t kRawBytes = size_t{1} << 16;
constexpr uint32_t kMostChannels = 64;
constexpr uint32_t kNoSize = 0xFFFFFFFF;
constexpr uint16_t kPcm = 1;
constexpr uint16_t kFloat = 3;
constexpr uint16_t kExtensible = 0xFFFE;
// Of the id of a sub-format, what follows the tag.
constexpr uint8_t kSubFormatEnd[14] = {0, 0, 0, 0, 0x10, 0, 0x80, 0, 0, 0xAA, 0, 0x38, 0x9B, 0x71};

bool Is(const uint8_t* id, const char (&text)[5]) noexcept { return std::memcmp(id, text, 4) == 0; }

int32_t FromFloat(float value) noexcept {
    if (std::isnan(value)) return 0;
    const double scaled = std::clamp(static_cast<double>(value) * 2147483648.0, -2147483648.0, 2147483647.0);
    return static_cast<int32_t>(std::lrint(scaled));
}

// A little-endian sample of 2, 3 or 4 bytes moved to the upper end of 32 bits.
int32_t FromPcm(const uint8_t* sample, uint32_t bytes) noexcept {
    uint32_t value = 0;
    for (uint32_t i = 0; i < bytes; ++i) value |= uint32_t{sample[i]} << (8 * (4 - bytes + i));
    return static_cast<int32_t>(value);
}

}  // namespace

bool WavInput::Fail(const char* text) {
    error_ = text;
    return false;
}

// For a call of the system that just failed.
bool WavInput::FailHere(const char* what) {
    const std::string_view reason = platform::ErrorText(GetLastError());
    error_ = std::string(what) + ": " + std::string(reason);
    return false;
}

bool WavInput::Open(WStringView path) noexcept {
    rate_ = channels_ = sample_bytes_ = 0;
    offset_ = count_ = left_ = 0;
    try {
        error_.clear();
        raw_.resize(kRawBytes);
        if (!file_.Open(WString(path))) return FailHere("the WAV file cannot be opened");
        if (FindChunks()) return true;
        file_.Close();
        return false;
    } catch (const std::exception&) {
        file_.Close();
        error_ = "out of memory";
        return false;
    }
}

bool WavInput::FindChunks() {
    std::array<uint8_t, 12> head{};
    if (file_.ReadAt(0, head.data(), head.size()) != head.size()) return Fail("not a WAV file: it is too short");
    const bool is_rf64 = Is(head.data(), "RF64");
    if ((!is_rf64 && !Is(head.data(), "RIFF")) || !Is(head.data() + 8, "WAVE")) {
        return Fail("not a WAV file: it does not start as RIFF and WAVE");
    }
    uint64_t long_size = UINT64_MAX;  // of the data, from a ds64 chunk
    for (uint64_t at = 12;;) {
        std::array<uint8_t, 48> chunk{};
        const size_t got = file_.ReadAt(at, chunk.data(), chunk.size());
        if (got < 8)
            return Fail(channels_ == 0 ? "the WAV file has no format chunk" : "the WAV file has no data chunk");
        const auto size = LoadLittle<uint32_t>(chunk.data() + 4);
        const uint8_t* content = chunk.data() + 8;
        const size_t known = std::min<size_t>(got - 8, size);
        if (Is(chunk.data(), "ds64") && known >= 16) long_size = LoadLittle<uint64_t>(content + 8);
        if (Is(chunk.data(), "fmt ") && !TakeFormat(content, known)) return false;
        if (Is(chunk.data(), "data")) {
            if (channels_ == 0) return Fail("the WAV file has no format chunk before its data");
            const uint64_t bytes = size != kNoSize ? size : is_rf64 ? long_size : UINT64_MAX;
            return bytes != 0 ? TakeData(at + 8, bytes) : TakeDataWithoutSize(at + 8);
        }
        at += 8 + uint64_t{size} + (size & 1);
    }
}

bool WavInput::TakeFormat(const uint8_t* chunk, size_t bytes) {
    if (bytes < 16) return Fail("the format chunk of the WAV file is too short");
    auto tag = LoadLittle<uint16_t>(chunk);
    const auto channels = LoadLittle<uint16_t>(chunk + 2);
    const auto rate = LoadLittle<uint32_t>(chunk + 4);
    const auto block = LoadLittle<uint16_t>(chunk + 12);
    const auto bits = LoadLittle<uint16_t>(chunk + 14);
    if (tag == kExtensible) {
        if (bytes < 24 + sizeof kSubFormatEnd + 2 ||
            std::memcmp(chunk + 26, kSubFormatEnd, sizeof kSubFormatEnd) != 0) {
            return Fail("the WAV file is neither PCM nor float");
        }
        tag = LoadLittle<uint16_t>(chunk + 24);
    }
    if (tag != kPcm && tag != kFloat) return Fail("the WAV file is neither PCM nor float");
    if (channels < 1 || channels > kMostChannels) return Fail("the WAV file must have 1 to 64 channels");
    if (rate == 0) return Fail("the WAV file has a sample rate of 0");
    const bool is_float = tag == kFloat;
    if (is_float ? bits != 32 : bits != 16 && bits != 24 && bits != 32) {
        return Fail("the WAV file must have samples of 16, 24 or 32 bits, or 32-bit floats");
    }
    if (block != channels * bits / 8) return Fail("the format chunk of the WAV file contradicts itself");
    rate_ = rate;
    channels_ = channels;
    sample_bytes_ = bits / 8u;
    is_float_ = is_float;
    return true;
}

bool WavInput::TakeData(uint64_t offset, uint64_t bytes) noexcept {
    const uint64_t there = file_.Size() > offset ? file_.Size() - offset : 0;
    offset_ = offset;
    count_ = left_ = std::min(bytes, there) / (uint64_t{channels_} * sample_bytes_);
    return true;
}

// Either there is no sound, or a recorder was cut off before it wrote the size: then what follows is no further chunk.
bool WavInput::TakeDataWithoutSize(uint64_t offset) noexcept {
    std::array<uint8_t, 8> next{};
    const size_t got = file_.ReadAt(offset, next.data(), next.size());
    const auto is_letter = [](uint8_t c) { return c >= ' ' && c <= '~'; };
    const bool is_chunk = got == next.size() && std::all_of(next.begin(), next.begin() + 4, is_letter) &&
                          LoadLittle<uint32_t>(next.data() + 4) <= file_.Size() - offset - next.size();
    return TakeData(offset, is_chunk ? 0 : UINT64_MAX);
}

size_t WavInput::Read(int32_t* interleaved, size_t samples) noexcept {
    const size_t frame_bytes = size_t{channels_} * sample_bytes_;
    size_t done = 0;
    while (done < samples && left_ != 0) {
        const size_t wanted = std::min<uint64_t>({samples - done, left_, kRawBytes / frame_bytes});
        const size_t got = file_.ReadAt(offset_, raw_.data(), wanted * frame_bytes) / frame_bytes;
        if (got == 0) left_ = 0;
        for (size_t i = 0; i < got * channels_; ++i) {
            const uint8_t* sample = raw_.data() + i * sample_bytes_;
            *interleaved++ = is_float_ ? FromFloat(LoadLittle<float>(sample)) : FromPcm(sample, sample_bytes_);
        }
        done += got;
        offset_ += got * frame_bytes;
        left_ -= std::min<uint64_t>(left_, got);
    }
    return done;
}

}  // namespace clipfio::decoder
