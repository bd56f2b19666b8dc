// Timecode of frames that are counted from midnight.
#pragma once

#include <cstdint>

namespace clipfio::decoder {

// Counts frame numbers in `fps` a second. With drop-frame, the first two numbers (four at 60) of each minute that no
// ten divides are skipped, so that the clock keeps to 29.97 (59.94) frames a second.
struct TimecodeRate {
    uint32_t fps = 24;  // at least 1
    bool drop_frame = false;
};

// A rational rate rounded to whole frames, at least 1.
uint32_t NominalFps(uint32_t numerator, uint32_t denominator) noexcept;

// Whether numbers may be dropped at this rate: 30000/1001 or 60000/1001, reduced or not.
bool MayDropFrames(uint32_t numerator, uint32_t denominator) noexcept;

uint64_t FramesPerDay(TimecodeRate rate) noexcept;

struct Timecode {
    uint32_t hours, minutes, seconds, frames;

    friend bool operator==(const Timecode&, const Timecode&) = default;
};

// After midnight it starts again from 0.
Timecode TimecodeOf(uint64_t frame, TimecodeRate rate) noexcept;

inline constexpr uint32_t kTimecodeChars = 32;

// "hh:mm:ss:ff", with ';' before the frames of a drop-frame rate.
void FormatTimecode(uint64_t frame, TimecodeRate rate, char (&out)[kTimecodeChars]) noexcept;

}  // namespace clipfio::decoder
