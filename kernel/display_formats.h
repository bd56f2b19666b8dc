// What each display format prints and which timecode it shows.
#pragma once

#include <array>
#include <cstdint>

#include "kernel/position_format.h"
#include "kernel/smpte.h"

namespace clipfio {

struct DisplayFormat {
    KTPOSFMT format;
    const WCHAR* full_text;
    const WCHAR* short_text;
    uint32_t smpte = KTSMPTEFORMAT_HMSF;
};

inline constexpr const WCHAR* kWholeUnits = W("$I64d");
inline constexpr const WCHAR* kWholeNumber = W("$.0f");
inline constexpr const WCHAR* kLabel = W("%02u:%02u:%02u:%02u");
inline constexpr const WCHAR* kDropLabel = W("%02u:%02u:%02u;%02u");
inline constexpr const WCHAR* kClock = W("%02u$:%02u$:%02u");

inline constexpr auto kDisplayFormats = std::to_array<DisplayFormat>({
    {KTPOSFMT_SAMPLES, kWholeUnits, kWholeUnits},
    {KTPOSFMT_TIME, W("%02u$:%02u$:%02u$*%03u"), kClock},
    {KTPOSFMT_SECONDS, W("$.3f"), kWholeNumber},
    {KTPOSFMT_TIME_FRAMES, W("%02u$:%02u$:%02u$*%02u"), kClock},
    {KTPOSFMT_FRAMES, W("$.3f"), kWholeNumber},
    {KTPOSFMT_MEASURES, W("$u$&:%u$&.%03u"), W("$u$&:%u")},
    {KTPOSFMT_SMPTE_2997, kLabel, kLabel, KTSMPTEFORMAT_2997},
    {KTPOSFMT_SMPTE_30, kLabel, kLabel, KTSMPTEFORMAT_30},
    {KTPOSFMT_SMPTE_DROP, kDropLabel, kDropLabel, KTSMPTEFORMAT_DROP},
    {KTPOSFMT_SMPTE_25, kLabel, kLabel, KTSMPTEFORMAT_25},
    {KTPOSFMT_SMPTE_24, kLabel, kLabel, KTSMPTEFORMAT_24},
    {KTPOSFMT_NANOS, kWholeUnits, kWholeUnits},
    {KTPOSFMT_MICROS, kWholeUnits, kWholeUnits},
    {KTPOSFMT_MEASURES0, W("$u$&:%u$&.%03u"), W("$u$&:%u")},
    {KTPOSFMT_BEATS, W("$.3f"), kWholeNumber},
    {KTPOSFMT_FEET_16MM, W("$I64d+$I64d"), W("$I64d+$I64d")},
    {KTPOSFMT_FEET_35MM, W("$I64d+$I64d"), W("$I64d+$I64d")},
    {KTPOSFMT_CD, kLabel, kClock},
    {KTPOSFMT_SMPTE_23976, kLabel, kLabel, KTSMPTEFORMAT_23976},
    {KTPOSFMT_SHORT_TIME, kClock, kClock},
});
static_assert([] {
    int32_t i = 0;
    for (const DisplayFormat& row : kDisplayFormats) {
        if (row.format != i++) return false;
    }
    return true;
}());

// A format that is not in the list counts units of time, as KTPOSFMT_NANOS does.
constexpr const DisplayFormat& DisplayFormatOf(int32_t format) noexcept {
    const bool listed = format >= 0 && static_cast<std::size_t>(format) < kDisplayFormats.size();
    return kDisplayFormats[static_cast<std::size_t>(listed ? format : KTPOSFMT_NANOS)];
}

inline constexpr double kCdFramesPerSecond = 75;
inline constexpr uint32_t kFramesPerFoot16 = 40;
inline constexpr uint32_t kFramesPerFoot35 = 16;

}  // namespace clipfio
