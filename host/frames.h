// Reading frames into memory of our own.
#pragma once

#include <cstdint>
#include <vector>

#include "host/png_writer.h"
#include "reader/host_interfaces.h"

namespace clipfio::host {

struct FrameOptions {
    double scale = 1.0;
    uint32_t quality = 4;
    uint32_t bits = 32;  // 32 or 128
    double gamma = 0.0;  // of 128 bits
};

// As the module gives it: rows bottom first; 8-bit B, G, R, A, or 32-bit float B, G, R, 0.
struct Frame {
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t bits = 0;
    double gamma = 0.0;  // that it was decoded in; 0 for that of a display
    std::vector<uint8_t> pixels;

    [[nodiscard]] const uint8_t* Row(uint32_t y_from_top) const {
        return pixels.data() + std::size_t{height - 1 - y_from_top} * width * (bits / 8);
    }
};

// The size that a frame will have.
struct FrameSize {
    uint32_t width;
    uint32_t height;
};
[[nodiscard]] FrameSize MeasureFrame(IKtReadVideoStream& stream, const FrameOptions& options);

// Throws Failure. The memory of `frame` is used again.
void ReadFrame(IKtReadVideoStream& stream, uint64_t number, const FrameOptions& options, Frame& frame);

[[nodiscard]] RgbImage8 ToRgb8(const Frame& frame);               // from 32 bits
[[nodiscard]] RgbImage16 ToRgb16(const Frame& frame);             // from 128 bits, limited to 0..1
[[nodiscard]] std::vector<float> ToRgbFloat(const Frame& frame);  // from 128 bits, rows bottom first

}  // namespace clipfio::host
