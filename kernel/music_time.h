// Measures, beats and ticks.
//
// Times are in units of 100 nanoseconds; outs may be null; a null text is empty, a null format or destination gives 0.
// Texts use the user's separators. Destinations need room for the whole text, 64 characters at most. Any thread.
#pragma once

#include <cstdint>

#include "kernel/position_format.h"

// Counted from 0. What does not fit is held at the type's limits.
KT_API void KtNanoTimeToMeasures(int64_t time, const _ktposfmt* format, int32_t* measure, int32_t* beat,
                                 int32_t* tick) noexcept;

// "measure.beat.tick", or "measure.beat" when `compact`; ticks below 0 count back from the measure before. With `base`
// 1 beats and the measures from 0 on are counted from 1. The ticks of the text are divided by `divisor` (0 divides by
// none). Returns the length.
KT_API int32_t KtTicksToText(WCHAR* out, const _ktposfmt* format, int64_t ticks, int32_t base, int32_t compact,
                             uint32_t divisor) noexcept;
KT_API int32_t KtMeasuresAndTicksToText(WCHAR* out, const _ktposfmt* format, int32_t measure, int64_t ticks,
                                        int32_t base, int32_t compact, uint32_t divisor) noexcept;

// The last of up to three numbers counts ticks, the one before it beats, the one before that measures; with
// KTPOSTEXT_SHORT up to two count measures and beats. KTPOSFMT_MEASURES counts from 1 unless KTPOSTEXT_RAW is set.
// `end` gets the place behind what was read.
KT_API int64_t KtTextToMusicTimeToken(const WCHAR* text, const _ktposfmt* format, uint32_t flags,
                                      const WCHAR** end) noexcept;

// Up to three numbers from the left: measure, beat, tick. A sign before them is the measure's. With `base` 1 a beat
// above 0 and a measure above 0 that has no sign go down by one. `tick` gets `multiplier` ticks for each of the text.
// Returns all in ticks, held within its type.
KT_API int64_t KtTextToMeasuresBeatsTicks(const WCHAR* text, const _ktposfmt* format, int32_t base, uint32_t multiplier,
                                          int32_t* measure, int32_t* beat, int32_t* tick) noexcept;
KT_API int64_t KtTextToTicks(const WCHAR* text, const _ktposfmt* format, int32_t base, uint32_t multiplier) noexcept;

// Up to two numbers from the left: beats, ticks.
KT_API int64_t KtTextToBeatsTicks(const WCHAR* text, const _ktposfmt* format, uint32_t multiplier, int32_t* beats,
                                  int32_t* ticks) noexcept;
