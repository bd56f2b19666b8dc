// How positions are shown.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/base.h"

enum KTPOSFMT : int32_t {
    KTPOSFMT_SAMPLES = 0,
    KTPOSFMT_TIME = 1,         // h:m:s.ms
    KTPOSFMT_SECONDS = 2,      // with decimals
    KTPOSFMT_TIME_FRAMES = 3,  // h:m:s.frames
    KTPOSFMT_FRAMES = 4,       // with decimals
    KTPOSFMT_MEASURES = 5,     // measures and beats counted from 1, ticks from 0
    KTPOSFMT_SMPTE_2997 = 6,
    KTPOSFMT_SMPTE_30 = 7,
    KTPOSFMT_SMPTE_DROP = 8,
    KTPOSFMT_SMPTE_25 = 9,
    KTPOSFMT_SMPTE_24 = 10,
    KTPOSFMT_NANOS = 11,  // units of 100 nanoseconds
    KTPOSFMT_MICROS = 12,
    KTPOSFMT_MEASURES0 = 13,  // measures and beats counted from 0
    KTPOSFMT_BEATS = 14,      // with decimals; cannot be read back
    KTPOSFMT_FEET_16MM = 15,  // 40 frames to the foot
    KTPOSFMT_FEET_35MM = 16,  // 16 frames to the foot
    KTPOSFMT_CD = 17,         // h:m:s:frames, 75 a second
    KTPOSFMT_SMPTE_23976 = 18,
    KTPOSFMT_SHORT_TIME = 19,  // as few of h:m:s as will do; cannot be read back
};

// Rates, tempo and the time signature have to be above 0 where the format uses them. Where one is not, nothing is
// divided by it: what depends on it counts as 0.
struct _ktposfmt {
    int32_t format;  // KTPOSFMT
    uint32_t sampleRate;
    double frameRate;
    double tempo;    // beats a minute
    int64_t offset;  // where zero stands, in units of 100 nanoseconds
    uint16_t beatValue;
    uint16_t beatsPerMeasure;
    uint32_t ticksPerBeat;
};
static_assert(sizeof(_ktposfmt) == 40);
static_assert(offsetof(_ktposfmt, format) == 0);
static_assert(offsetof(_ktposfmt, sampleRate) == 4);
static_assert(offsetof(_ktposfmt, frameRate) == 8);
static_assert(offsetof(_ktposfmt, tempo) == 16);
static_assert(offsetof(_ktposfmt, offset) == 24);
static_assert(offsetof(_ktposfmt, beatValue) == 32);
static_assert(offsetof(_ktposfmt, beatsPerMeasure) == 34);
static_assert(offsetof(_ktposfmt, ticksPerBeat) == 36);

// Flags of the operations that print and read positions.
enum KTPOSTEXT : uint32_t {
    KTPOSTEXT_SHORT = 1,
    KTPOSTEXT_RAW = 2,     // no offset; measures and beats counted from 0
    KTPOSTEXT_LIMITS = 4,  // reading only: the default and the limits apply
};
