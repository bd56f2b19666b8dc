// The four reduced sizes of a picture, made by averaging light.
#pragma once

#include <cstdint>
#include <vector>

#include "substitutes/decoder/clip_form.h"

namespace clipfio::decoder {

// Every pixel of a reduced size is the mean light of its block of 2x2, 4x4, 8x8 or 16x16 full-size pixels, coded again
// to the nearest sample value. What is left over at the right and below after the last whole block counts for nothing.
class ReducedSizes {
  public:
    // Throws std::bad_alloc, as Make does.
    ReducedSizes(uint32_t width, uint32_t height, PictureCoding coding);

    // The four pictures, half size first, packed as they are stored. Valid until the next call.
    const std::vector<uint16_t>& Make(const uint16_t* rgb);

  private:
    void LoadStrip(const uint16_t* rgb, uint32_t row, uint32_t rows);
    void HalveStrip(uint32_t rows, uint32_t width);
    void StoreStrip(uint32_t level, uint32_t row, uint32_t rows);
    [[nodiscard]] uint16_t Code(float light) const noexcept;

    uint32_t width_;
    uint32_t height_;
    const float* light_;           // of each sample value
    std::vector<uint16_t> first_;  // a lower bound of the code for each step of light
    std::vector<float> strip_;     // light of up to 16 rows, halved in place level by level
    std::vector<uint16_t> out_;
};

}  // namespace clipfio::decoder
