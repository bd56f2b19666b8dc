#include "kernel/music_time.h"

#include <cmath>

#include "kernel/print.h"
#include "kernel/time_fields.h"
#include "kernel/time_units.h"

namespace {

using clipfio::CutToInteger;
using clipfio::HeldProduct;
using clipfio::HeldSum;

constexpr double kMinutesPerUnit = 1.6666666666666665e-9;
constexpr double kUnitsPerMinute = 6e8;
// A part of a measure that rounding may have taken.
constexpr double kMeasureSlack = 5e-5;

template <class Out, class Value>
void Store(Out* out, Value value) noexcept {
    if (out) *out = value;
}

int32_t Held32(int64_t value) noexcept {
    using Limits = std::numeric_limits<int32_t>;
    if (value < Limits::min()) return Limits::min();
    return value > Limits::max() ? Limits::max() : static_cast<int32_t>(value);
}

struct Division {
    int64_t quotient = 0;
    int64_t rest = 0;  // from 0 on
};

// By a divisor above 0; nothing is left of the value when it is 0.
Division Floored(int64_t value, int64_t divisor) noexcept {
    if (divisor == 0) return {};
    Division result{value / divisor, value % divisor};
    if (result.rest < 0) {
        --result.quotient;
        result.rest += divisor;
    }
    return result;
}

int64_t QuartersOf(int64_t ticks, const _ktposfmt& format) noexcept {
    return format.beatValue ? ticks * 4 / format.beatValue : 0;
}

// A number that may be counted from 1.
uint32_t FromZero(uint32_t number, bool from_one) noexcept { return from_one && number > 0 ? number - 1 : number; }

}  // namespace

void KtNanoTimeToMeasures(int64_t time, const _ktposfmt* format, int32_t* measure, int32_t* beat,
                          int32_t* tick) noexcept {
    double measures = 0;
    double beats = 0;
    double ticks = 0;
    if (format && format->beatsPerMeasure) {
        measures =
            static_cast<double>(time) * format->tempo / format->beatsPerMeasure * kMinutesPerUnit + kMeasureSlack;
        beats = (measures - std::trunc(measures)) * format->beatsPerMeasure;
        ticks = (beats - std::trunc(beats)) * format->ticksPerBeat;
    }
    Store(measure, CutToInteger<int32_t>(measures));
    Store(beat, CutToInteger<int32_t>(beats));
    Store(tick, CutToInteger<int32_t>(ticks));
}

int32_t KtTicksToText(WCHAR* out, const _ktposfmt* format, int64_t ticks, int32_t base, int32_t compact,
                      uint32_t divisor) noexcept {
    if (!out || !format) return 0;
    const Division in_measures = Floored(ticks, int64_t{format->beatsPerMeasure} * format->ticksPerBeat);
    return KtMeasuresAndTicksToText(out, format, Held32(in_measures.quotient), in_measures.rest, base, compact,
                                    divisor);
}

int32_t KtMeasuresAndTicksToText(WCHAR* out, const _ktposfmt* format, int32_t measure, int64_t ticks, int32_t base,
                                 int32_t compact, uint32_t divisor) noexcept {
    if (!out || !format) return 0;
    int64_t measures = measure;
    if (ticks < 0) {
        const Division back =
            Floored(ticks, QuartersOf(int64_t{format->beatsPerMeasure} * format->ticksPerBeat, *format));
        measures = HeldSum(measures, back.quotient);
        ticks = back.rest;
    }
    const Division beats = Floored(ticks, QuartersOf(format->ticksPerBeat, *format));
    int64_t beat = Floored(beats.quotient, format->beatsPerMeasure).rest;
    const int64_t tick = beats.rest / (divisor ? divisor : 1);
    if (base == 1) {
        ++beat;
        if (measures >= 0) ++measures;
    }
    return KtPrintF(out, compact ? W("%d$&:%1u") : W("%d$&:%u$&.%03u"), Held32(measures), static_cast<uint32_t>(beat),
                    static_cast<uint32_t>(tick));
}

int64_t KtTextToMusicTimeToken(const WCHAR* text, const _ktposfmt* format, uint32_t flags, const WCHAR** end) noexcept {
    const bool is_short = (flags & KTPOSTEXT_SHORT) != 0;
    const clipfio::TimeFields<3> fields(text, is_short ? 2 : 3);
    if (end) *end = fields.end;
    if (!format) return 0;
    const bool from_one = format->format == KTPOSFMT_MEASURES && (flags & KTPOSTEXT_RAW) == 0;
    const uint32_t measure = FromZero(fields[is_short ? 1 : 0], from_one);
    const uint32_t beat = FromZero(fields[is_short ? 2 : 1], from_one);
    const uint32_t tick = is_short ? 0 : fields[2];
    double beats = static_cast<double>(format->beatsPerMeasure) * measure + beat;
    if (format->ticksPerBeat) beats += static_cast<double>(tick) / format->ticksPerBeat;
    return format->tempo > 0 ? CutToInteger<int64_t>(beats / format->tempo * kUnitsPerMinute) : 0;
}

int64_t KtTextToMeasuresBeatsTicks(const WCHAR* text, const _ktposfmt* format, int32_t base, uint32_t multiplier,
                                   int32_t* measure, int32_t* beat, int32_t* tick) noexcept {
    if (!text) text = W("");
    while (clipfio::IsBlank(*text)) ++text;
    const bool has_sign = *text == W('-');
    if (has_sign) ++text;
    const clipfio::TimeFields<3> fields(text);
    auto measures = static_cast<int64_t>(FromZero(fields.FromLeft(0), base == 1 && !has_sign));
    if (has_sign) measures = -measures;
    const uint32_t beats = FromZero(fields.FromLeft(1), base == 1);
    const int64_t ticks = int64_t{multiplier} * fields.FromLeft(2);
    Store(measure, Held32(measures));
    Store(beat, Held32(beats));
    Store(tick, Held32(ticks));
    if (!format) return 0;
    const int64_t all_beats = HeldSum(HeldProduct(format->beatsPerMeasure, measures), beats);
    return HeldSum(HeldProduct(all_beats, format->ticksPerBeat), ticks);
}

int64_t KtTextToTicks(const WCHAR* text, const _ktposfmt* format, int32_t base, uint32_t multiplier) noexcept {
    return KtTextToMeasuresBeatsTicks(text, format, base, multiplier, nullptr, nullptr, nullptr);
}

int64_t KtTextToBeatsTicks(const WCHAR* text, const _ktposfmt* format, uint32_t multiplier, int32_t* beats,
                           int32_t* ticks) noexcept {
    const clipfio::TimeFields<2> fields(text);
    const int64_t all_ticks = int64_t{multiplier} * fields.FromLeft(1);
    Store(beats, Held32(fields.FromLeft(0)));
    Store(ticks, Held32(all_ticks));
    if (!format) return 0;
    return HeldSum(HeldProduct(format->ticksPerBeat, fields.FromLeft(0)), all_ticks);
}
