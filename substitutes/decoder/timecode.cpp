#include "substitutes/decoder/timecode.h"

#include <algorithm>
#include <cstdio>

namespace clipfio::decoder {
namespace {

// Frame numbers left out at the start of a minute.
uint64_t DroppedNumbers(TimecodeRate rate) noexcept { return rate.drop_frame ? uint64_t{rate.fps} / 30 * 2 : 0; }

uint64_t FramesPerTenMinutes(TimecodeRate rate) noexcept { return uint64_t{rate.fps} * 600 - 9 * DroppedNumbers(rate); }

}  // namespace

uint32_t NominalFps(uint32_t numerator, uint32_t denominator) noexcept {
    if (denominator == 0) return 1;
    const uint64_t rounded = (uint64_t{numerator} + denominator / 2) / denominator;
    return static_cast<uint32_t>(std::max<uint64_t>(rounded, 1));
}

bool MayDropFrames(uint32_t numerator, uint32_t denominator) noexcept {
    const uint64_t scaled = uint64_t{numerator} * 1001;
    return scaled == uint64_t{denominator} * 30000 || scaled == uint64_t{denominator} * 60000;
}

uint64_t FramesPerDay(TimecodeRate rate) noexcept { return FramesPerTenMinutes(rate) * 6 * 24; }

Timecode TimecodeOf(uint64_t frame, TimecodeRate rate) noexcept {
    uint64_t number = frame % FramesPerDay(rate);
    if (const uint64_t dropped = DroppedNumbers(rate); dropped != 0) {
        const uint64_t ten_minutes = FramesPerTenMinutes(rate);
        const uint64_t minute = uint64_t{rate.fps} * 60 - dropped;
        const uint64_t rest = number % ten_minutes;
        // The first minute of ten is whole, so its numbers start `dropped` later than those of the others.
        const uint64_t minutes_that_dropped = rest < dropped ? 0 : (rest - dropped) / minute;
        number += dropped * (9 * (number / ten_minutes) + minutes_that_dropped);
    }
    const uint64_t seconds = number / rate.fps;
    return {static_cast<uint32_t>(seconds / 3600), static_cast<uint32_t>(seconds / 60 % 60),
            static_cast<uint32_t>(seconds % 60), static_cast<uint32_t>(number % rate.fps)};
}

void FormatTimecode(uint64_t frame, TimecodeRate rate, char (&out)[kTimecodeChars]) noexcept {
    const Timecode code = TimecodeOf(frame, rate);
    std::snprintf(out, sizeof out, "%02u:%02u:%02u%c%02u", code.hours, code.minutes, code.seconds,
                  rate.drop_frame ? ';' : ':', code.frames);
}

}  // namespace clipfio::decoder
