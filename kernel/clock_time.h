// Hours, minutes, seconds and frames of a time in units of 100 nanoseconds. Any thread.
#pragma once

#include <cstdint>

#include "kernel/smpte.h"

// The format of `value` is set by the caller and stays. 1 to 6 are timecode (KTSMPTE_NanoToSMPTE), and the rate is not
// looked at. Any other is a plain clock at `rate` frames a second, rounded to the nearest frame, whose hours run on
// past 24 with `keep_days` and start again from 0 without; a time below 0 counts as 0. Null does nothing.
KT_API void KtNanoTimeToHMSF(int64_t time, _smpteval* value, double rate, int32_t keep_days) noexcept;

// The other way. A rate that is not above 0 counts no frames. Null gives 0.
KT_API int64_t KtHMSFToNanoTime(const _smpteval* value, double rate) noexcept;

namespace clipfio {

// A clock as a time, rounded to the nearest unit.
int64_t TimeOfClock(double hours, double minutes, double seconds, double frames, double rate) noexcept;

}  // namespace clipfio
