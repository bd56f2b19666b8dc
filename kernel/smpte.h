// SMPTE timecode: labels, frame counts and times.
//
// Times are in units of 100 nanoseconds. A label counts hours, minutes, seconds and frames of a day. Drop-frame labels
// leave out frames 00 and 01 at the start of each minute but every tenth; where such a label comes in all the same, it
// counts as frame 02. An operation on null does nothing and gives 0. Any thread.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/base.h"

enum KTSMPTEFORMAT : uint32_t {
    KTSMPTEFORMAT_HMSF = 0,  // plain numbers, whose rate is known elsewhere
    KTSMPTEFORMAT_30 = 1,
    KTSMPTEFORMAT_DROP = 2,  // 30 numbers a second at 30000/1001 frames a second
    KTSMPTEFORMAT_25 = 3,
    KTSMPTEFORMAT_24 = 4,
    KTSMPTEFORMAT_2997 = 5,   // 30 numbers a second at 30000/1001 frames a second, none left out
    KTSMPTEFORMAT_23976 = 6,  // 24 numbers a second at 24000/1001 frames a second
};

namespace clipfio {
constexpr bool IsSmpteFormat(uint32_t format) noexcept {
    return format >= KTSMPTEFORMAT_30 && format <= KTSMPTEFORMAT_23976;
}
}  // namespace clipfio

struct _smpteval {
    uint32_t format;  // KTSMPTEFORMAT
    uint32_t hours;
    uint32_t minutes;
    uint32_t seconds;
    uint32_t frames;
};
static_assert(sizeof(_smpteval) == 20);
static_assert(offsetof(_smpteval, format) == 0);
static_assert(offsetof(_smpteval, hours) == 4);
static_assert(offsetof(_smpteval, minutes) == 8);
static_assert(offsetof(_smpteval, seconds) == 12);
static_assert(offsetof(_smpteval, frames) == 16);

// The format is set by the caller and stays. After 24 hours labels start again from 0; a format outside 1 to 6 is
// labelled as drop-frame at 30 frames a second.
KT_API void KTSMPTE_FrameCountToSMPTE(_smpteval* value, uint32_t frames) noexcept;
// A time before 0 counts back from midnight.
KT_API void KTSMPTE_NanoToSMPTE(int64_t time, _smpteval* value) noexcept;

// 0 for a format outside 1 to 6. What does not fit 32 bits wraps.
KT_API uint32_t KTSMPTE_SMPTEToFrameCount(const _smpteval* value) noexcept;
KT_API int64_t KTSMPTE_SMPTEToNanos(const _smpteval* value) noexcept;
// The record as plain numbers at `rate` frames a second, whatever its format. A rate that is not above 0 counts no
// frames.
KT_API int64_t KTSMPTE_SmpteLikeToNanos(double rate, const _smpteval* value) noexcept;

// Reads up to four numbers, the last one being frames: "12" is frame 12, "1:02" a second and two frames. Whatever is no
// digit separates; one at the end stands for a number 0 behind it. Digits without separators count by twos from the
// right, "123456" as 12:34:56. Too many frames, seconds or minutes are carried (frames not in format 0), and hours are
// taken modulo 24. The format is set by the caller and stays. Returns 0 when all was read, else the blank that stands
// for what is left.
KT_API WCHAR KTSMPTE_TextToSMPTE(const WCHAR* text, _smpteval* value) noexcept;

// a + b and a - b in frames, round the day of a's format; a itself becomes the result, and stays as it is when its
// format is not 1 to 6.
KT_API void KTSMPTE_AddSMPTE(_smpteval* a, const _smpteval* b) noexcept;
KT_API void KTSMPTE_SubtractSMPTE(_smpteval* a, const _smpteval* b) noexcept;

// 1, 0 or -1 as a is above, like or below b, label by label; formats are not looked at.
KT_API int32_t KTSMPTE_SMPTECompare(const _smpteval* a, const _smpteval* b) noexcept;

// One frame on and one back, round the day. A format outside 1 to 6 counts 30 frames a second.
KT_API void KTSMPTE_IncrementByFrame(_smpteval* value) noexcept;
KT_API void KTSMPTE_DeccrementByFrame(_smpteval* value, uint32_t unused) noexcept;
