// Sound from a WAV file, for the writer of clips.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/base.h"
#include "substitutes/decoder/file_access.h"

namespace clipfio::decoder {

// PCM of 16, 24 or 32 bits and 32-bit float, plain or extensible, RIFF or RF64, streamed: memory does not grow with the
// file. A data chunk that says more than the file holds, or that a recorder left without a size (all ones, or 0 with no
// other chunk behind it), is read as far as the file goes. One thread.
class WavInput {
  public:
    // False with a reason in Error(), in English, UTF-8.
    bool Open(WStringView path) noexcept;

    [[nodiscard]] uint32_t SampleRate() const noexcept { return rate_; }
    [[nodiscard]] uint32_t Channels() const noexcept { return channels_; }
    // 16, 24 or 32: the bits of a sample that mean something.
    [[nodiscard]] uint32_t SampleSize() const noexcept { return sample_bytes_ * 8; }
    [[nodiscard]] uint64_t SampleCount() const noexcept { return count_; }  // per channel

    // The next `samples` per channel, interleaved, 32 bits full scale; floats outside -1..1 are limited, and what is
    // not a number is 0. Returns how many there were: fewer at the end of the sound or when the file fails.
    size_t Read(int32_t* interleaved, size_t samples) noexcept;

    [[nodiscard]] const std::string& Error() const noexcept { return error_; }

  private:
    [[nodiscard]] bool Fail(const char* text);
    [[nodiscard]] bool FailHere(const char* what);
    [[nodiscard]] bool FindChunks();
    [[nodiscard]] bool TakeFormat(const uint8_t* chunk, size_t bytes);
    bool TakeData(uint64_t offset, uint64_t bytes) noexcept;
    bool TakeDataWithoutSize(uint64_t offset) noexcept;

    InputFile file_;
    uint32_t rate_ = 0;
    uint32_t channels_ = 0;
    uint32_t sample_bytes_ = 0;
    bool is_float_ = false;
    uint64_t offset_ = 0;  // of the next sample
    uint64_t count_ = 0;
    uint64_t left_ = 0;
    std::vector<uint8_t> raw_;
    std::string error_;
};

}  // namespace clipfio::decoder
