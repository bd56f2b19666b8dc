// Positions as text.
//
// Times are in units of 100 nanoseconds. `flags` are KTPOSTEXT; a position before the offset begins with "-". The
// user's separators and digit groups are used, but for timecode, CD time and feet. A format that is not in the list
// shows the time's units. All return the length in characters; a null destination or format gives 0. Any thread.
//
// The destination of the operations without a size needs room for the whole text: 64 characters hold any of the
// format's own, unless a rate or tempo is out of all proportion. Sizes are in characters, terminator included; what
// does not fit is cut, and a size of 0 writes nothing.
#pragma once

#include <cstdint>

#include "kernel/position_format.h"

KT_API int32_t KtNanoTimeToText(WCHAR* out, const _ktposfmt* format, int64_t time, int32_t short_form) noexcept;
KT_API int32_t KtNanoTimeToTextN(WCHAR* out, uint32_t size, const _ktposfmt* format, int64_t time,
                                 int32_t short_form) noexcept;
KT_API int32_t KtNanoTimeToTextEx(WCHAR* out, const _ktposfmt* format, int64_t time, uint32_t flags) noexcept;
KT_API int32_t KtNanoTimeToTextExN(WCHAR* out, uint32_t size, const _ktposfmt* format, int64_t time,
                                   uint32_t flags) noexcept;

// `text` is a format of KtPrintF that takes what the position's format gives:
//   samples, units, microseconds   a 64-bit integer
//   seconds, frames, beats         a double; "$.0f" prints it as a whole number
//   clocks, CD time and timecode   hours, minutes, seconds, frames (milliseconds with KTPOSFMT_TIME), 32-bit
//   measures                       measure, beat, tick, 32-bit
//   feet                           feet, frames, 64-bit
// Null stands for the format's own. KTPOSFMT_SHORT_TIME and formats that are not in the list do not look at it. From a
// tenth of a second below 24 hours KTPOSFMT_TIME prints days, hours, minutes and seconds instead; with a size, and in
// all other clocks, hours run on.
KT_API int32_t KtNanoTimeToTextFormat(WCHAR* out, const _ktposfmt* format, int64_t time, const WCHAR* text,
                                      uint32_t flags) noexcept;
KT_API int32_t KtNanoTimeToTextFormatN(WCHAR* out, uint32_t size, const _ktposfmt* format, int64_t time,
                                       const WCHAR* text, uint32_t flags) noexcept;
