// WAV files of 32-bit float samples.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "host/output_file.h"

namespace clipfio::host {

// Nothing remains of a file that was not finished. All operations throw Failure.
class WavWriter {
  public:
    // The mask says which speaker each channel feeds.
    WavWriter(const std::string& path, std::uint32_t rate, std::uint16_t channels, std::uint32_t channel_mask);

    // Interleaved samples. Throws once the file would outgrow the 4 GiB of its form.
    void Write(std::span<const float> samples);
    void Finish();

  private:
    OutputFile file_;
    std::uint16_t channels_;
    std::uint64_t data_bytes_ = 0;
};

}  // namespace clipfio::host
