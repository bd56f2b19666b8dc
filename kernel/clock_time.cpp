#include "kernel/clock_time.h"

#include <algorithm>
#include <cmath>

#include "kernel/time_units.h"

using clipfio::CutToInteger;

void KtNanoTimeToHMSF(int64_t time, _smpteval* value, double rate, int32_t keep_days) noexcept {
    if (!value) return;
    if (clipfio::IsSmpteFormat(value->format)) {
        KTSMPTE_NanoToSMPTE(time, value);
        return;
    }
    double seconds = static_cast<double>(std::max<int64_t>(time, 0)) * clipfio::kSecondsPerUnit;
    if (rate > 0.01) seconds += 0.5 / rate;
    auto whole = CutToInteger<uint64_t>(seconds);
    int64_t frames = std::max<int64_t>(clipfio::FloorWithSlack((seconds - std::trunc(seconds)) * rate), 0);
    // A second that the sum above has just not reached.
    if (frames > 0 && static_cast<double>(frames) >= rate) {
        frames = 0;
        ++whole;
    }
    const auto hours = static_cast<uint32_t>(whole / 3600);
    value->hours = keep_days ? hours : hours % 24;
    value->minutes = static_cast<uint32_t>(whole / 60 % 60);
    value->seconds = static_cast<uint32_t>(whole % 60);
    value->frames = CutToInteger<uint32_t>(static_cast<double>(frames));
}

int64_t KtHMSFToNanoTime(const _smpteval* value, double rate) noexcept {
    if (!value) return 0;
    if (clipfio::IsSmpteFormat(value->format)) return KTSMPTE_SMPTEToNanos(value);
    return clipfio::TimeOfClock(value->hours, value->minutes, value->seconds, value->frames, rate);
}

namespace clipfio {

int64_t TimeOfClock(double hours, double minutes, double seconds, double frames, double rate) noexcept {
    const double part = rate > 0 ? frames / rate : 0;
    return CutToInteger<int64_t>((hours * 3600 + minutes * 60 + seconds + part) * kUnitsPerSecond + 0.5);
}

}  // namespace clipfio
