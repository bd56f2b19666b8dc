// Text as positions: what kernel/time_text.h prints, and what people write.
//
// Times are in units of 100 nanoseconds and are held within their type. Numbers, digit groups and the decimal separator
// are the user's, and the digits of every script count. Where a text is read as fields, whatever is no digit separates
// them, and the last field read is the smallest unit: "12" is 12 frames of a clock. A character other than a blank
// behind the last digit stands for one more field, 0: "5:" is 5 seconds and no frames. A blank is a space or a tab.
// Fields that are not there count as 0, as do what depends on a rate or tempo that is not above 0, and a text without
// digits. A null text is empty; a null format gives 0. `end` may be null, and gets the place in the text behind what
// was read. Any thread.
#pragma once

#include <cstdint>

#include "kernel/position_format.h"

// Reads what the position's format shows, with an optional "-" before it, and adds the offset unless KTPOSTEXT_RAW is
// set. An empty text stands for the default value, to which the offset is added as well. KTPOSFMT_BEATS,
// KTPOSFMT_SHORT_TIME and formats that are not in the list are not read: 0.
//
// With KTPOSTEXT_LIMITS a text that reads as 0 and was not read up to its end or a blank gives the default value,
// without the offset, and the result is raised to the minimum, else lowered to the maximum.
KT_API int64_t KtTextToNanoTimeToken2(const WCHAR* text, const _ktposfmt* format, int64_t default_value,
                                      int64_t minimum, int64_t maximum, uint32_t flags, const WCHAR** end) noexcept;
// The same without default and limits, and with them.
KT_API int64_t KtTextToNanoTimeToken(const WCHAR* text, const _ktposfmt* format, int32_t short_form,
                                     const WCHAR** end) noexcept;
KT_API int64_t KtTextToNanoTimeTokenEx(const WCHAR* text, const _ktposfmt* format, int32_t short_form,
                                       int64_t default_value, int64_t minimum, int64_t maximum,
                                       const WCHAR** end) noexcept;

// Milliseconds of up to four fields: hours, minutes, seconds and a decimal fraction, "1.5" being 1500. A field that
// stands alone counts seconds, or is a fraction when something stands before it: ".5" is 500. In short form up to three
// fields without a fraction.
KT_API int64_t KtTextToTimeToken(const WCHAR* text, const _ktposfmt* format, int32_t short_form,
                                 const WCHAR** end) noexcept;

// Up to four fields: hours, minutes, seconds, frames at the format's frame rate; in short form up to three without
// frames.
KT_API int64_t KtTextToHMSFToken(const WCHAR* text, const _ktposfmt* format, int32_t short_form,
                                 const WCHAR** end) noexcept;

// Up to two numbers with digit groups: feet and frames, at 40 frames to the foot or 16.
KT_API int64_t KtTextToFeetAndFramesToken(const WCHAR* text, const _ktposfmt* format, int32_t is_16mm) noexcept;
