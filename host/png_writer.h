// PNG files of RGB pictures.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace clipfio::host {

// Rows top first, three samples a pixel, without padding. Samples of 16 bits are in the machine's order.
struct RgbImage8 {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::vector<std::uint8_t> samples;
};

struct RgbImage16 {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::vector<std::uint16_t> samples;
    bool linear = false;  // told to the reader of the file
};

// Whether a picture of 8 bits a sample can be written.
[[nodiscard]] bool FitsPng8(std::uint64_t width, std::uint64_t height);

// Throw Failure; nothing remains of a file that could not be written whole.
void WritePng(const std::string& path, const RgbImage8& image);
void WritePng(const std::string& path, const RgbImage16& image);

}  // namespace clipfio::host
