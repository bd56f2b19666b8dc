// WAV files of 32-bit float samples.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "host/output_file.h"

namespace clipfio::host {

struct WavFormat {
    std::uint32_t rate = 0;
    std::uint16_t channels = 0;
    std::uint32_t channel_mask = 0;  // which speaker each channel feeds
};

// The header is written first and stands, so that a pipe will do. Nothing remains of a file that was not finished. All
// operations throw Failure.
class WavWriter {
  public:
    // `samples` per channel will be written. Throws when they would outgrow the 4 GiB of the form.
    WavWriter(const std::string& path, const WavFormat& format, std::uint64_t samples);

    // Interleaved samples.
    void Write(std::span<const float> samples);
    void Finish();

  private:
    OutputFile file_;
};

}  // namespace clipfio::host
