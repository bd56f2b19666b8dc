#include "substitutes/decoder/reduced_sizes.h"

#include <algorithm>
#include <new>

#include "substitutes/decoder/picture_coding.h"

namespace clipfio::decoder {
namespace {

constexpr uint32_t kStripRows = 1u << (kLevels - 1);
constexpr uint32_t kLightSteps = 65536;

}  // namespace

ReducedSizes::ReducedSizes(uint32_t width, uint32_t height, PictureCoding coding)
    : width_(width), height_(height), light_(LinearTable(coding)), first_(kLightSteps + 1) {
    if (light_ == nullptr) throw std::bad_alloc();
    uint32_t code = 0;
    for (uint32_t step = 0; step <= kLightSteps; ++step) {
        const float light = static_cast<float>(step) / static_cast<float>(kLightSteps);
        while (code < 65535 && light_[code + 1] <= light) ++code;
        first_[step] = static_cast<uint16_t>(code);
    }
    strip_.resize(size_t{width} * 3 * kStripRows);
    out_.resize((LevelOffset(width, height, kLevels) - LevelOffset(width, height, 1)) / sizeof(uint16_t));
}

const std::vector<uint16_t>& ReducedSizes::Make(const uint16_t* rgb) {
    for (uint32_t row = 0; row < height_; row += kStripRows) {
        uint32_t rows = std::min(kStripRows, height_ - row);
        LoadStrip(rgb, row, rows);
        for (uint32_t level = 1; level < kLevels; ++level) {
            rows /= 2;
            HalveStrip(rows, width_ >> level);
            StoreStrip(level, row >> level, rows);
        }
    }
    return out_;
}

void ReducedSizes::LoadStrip(const uint16_t* rgb, uint32_t row, uint32_t rows) {
    const size_t samples = size_t{rows} * width_ * 3;
    const uint16_t* from = rgb + size_t{row} * width_ * 3;
    for (size_t i = 0; i < samples; ++i) strip_[i] = light_[from[i]];
}

// Turns a strip of 2 * rows rows, 2 * width or one pixel more wide, into one of `rows` rows. The rows lie at the pitch
// of the full picture throughout, so that a row is never written before it was read.
void ReducedSizes::HalveStrip(uint32_t rows, uint32_t width) {
    const size_t pitch = size_t{width_} * 3;
    for (uint32_t y = 0; y < rows; ++y) {
        const float* upper = strip_.data() + size_t{y} * 2 * pitch;
        const float* lower = upper + pitch;
        float* out = strip_.data() + size_t{y} * pitch;
        for (size_t x = 0; x < width; ++x) {
            for (size_t c = 0; c < 3; ++c) {
                const size_t from = x * 6 + c;
                out[x * 3 + c] = 0.25f * ((upper[from] + upper[from + 3]) + (lower[from] + lower[from + 3]));
            }
        }
    }
}

void ReducedSizes::StoreStrip(uint32_t level, uint32_t row, uint32_t rows) {
    const PictureSize size = LevelSize(width_, height_, level);
    const uint64_t start = LevelOffset(width_, height_, level) - LevelOffset(width_, height_, 1);
    uint16_t* out = out_.data() + start / sizeof(uint16_t) + size_t{row} * size.width * 3;
    for (uint32_t y = 0; y < rows; ++y) {
        const float* from = strip_.data() + size_t{y} * width_ * 3;
        for (size_t i = 0; i < size_t{size.width} * 3; ++i) *out++ = Code(from[i]);
    }
}

uint16_t ReducedSizes::Code(float light) const noexcept {
    uint32_t code = first_[static_cast<uint32_t>(light * static_cast<float>(kLightSteps))];
    while (code < 65535 && light_[code + 1] <= light) ++code;
    if (code < 65535 && light_[code + 1] - light < light - light_[code]) ++code;
    return static_cast<uint16_t>(code);
}

}  // namespace clipfio::decoder
