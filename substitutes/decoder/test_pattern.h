// A moving test picture and a test sound, for sample clips.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace clipfio::decoder {

// Rec. 709 video. Above, colour bars that wander to the left, once across in ten seconds' worth of 24 frames; in the
// middle, a grey ramp over a sweep of all hues; below, a breathing zone plate, the frame number, and checks of 1, 2, 4
// and 8 pixels. Any size from 1x1 on. A frame depends on its number alone.
class TestPattern {
  public:
    TestPattern(uint32_t width, uint32_t height);  // throws std::bad_alloc

    // width x height pixels, rows top first, samples red, green, blue. Valid until the next call.
    const uint16_t* Frame(uint64_t number) noexcept;

  private:
    struct Area {
        uint32_t left, top, right, bottom;
    };

    void DrawBars(uint64_t number) noexcept;
    void DrawRamps() noexcept;
    void DrawZonePlate(const Area& area, uint64_t number) noexcept;
    void DrawNumber(const Area& area, uint64_t number) noexcept;
    void DrawChecks(const Area& area) noexcept;
    void CopyRowDown(uint32_t row, uint32_t end) noexcept;
    [[nodiscard]] uint16_t* At(uint32_t x, uint32_t y) noexcept;

    uint32_t width_;
    uint32_t height_;
    uint32_t bars_end_;   // rows
    uint32_t ramps_end_;  // rows
    std::vector<uint16_t> wave_;
    std::vector<uint16_t> picture_;
};

// A sine for each channel, 440 Hz and every next one half as high again, at -20 dB of full scale; at the start of each
// second all of them beep at 1 kHz and -12 dB for a tenth of a second.
class TestSound {
  public:
    TestSound(uint32_t sample_rate, uint32_t channels) noexcept : rate_(sample_rate), channels_(channels) {}

    // Samples from `first` on, interleaved, 32 bits full scale.
    void Fill(uint64_t first, size_t samples, int32_t* interleaved) const noexcept;

  private:
    uint32_t rate_;
    uint32_t channels_;
};

}  // namespace clipfio::decoder
