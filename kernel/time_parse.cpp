#include "kernel/time_parse.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "kernel/clock_time.h"
#include "kernel/display_formats.h"
#include "kernel/internationals.h"
#include "kernel/music_time.h"
#include "kernel/text_to_number.h"
#include "kernel/time_fields.h"
#include "kernel/time_units.h"

namespace {

using clipfio::CutToInteger;
using clipfio::FloorWithSlack;
using clipfio::HeldProduct;
using clipfio::HeldSum;
using clipfio::TimeField;
using clipfio::TimeFields;

constexpr double kUnits = clipfio::kUnitsPerSecond;
// Seconds that a text may mean: half of all times back, a quarter of them on.
constexpr double kMostSecondsBack = 4611686018427387904.0 / kUnits;
constexpr double kMostSeconds = 2305843009213693952.0 / kUnits;
constexpr double kFastestFilm = 200;

struct Text {
    const WCHAR* start;
    bool is_negative = false;
};

Text SkipSign(const WCHAR* text) noexcept {
    if (!text) text = W("");
    while (clipfio::IsBlank(*text)) ++text;
    if (*text != W('-')) return {text};
    ++text;
    return {text, *text != 0};
}

bool IsDigit(WCHAR c) noexcept { return clipfio::DigitValue(c) >= 0; }

// Where the reading of timecode and its like stops, which do not tell: at the end, but they do not start without a
// digit.
const WCHAR* EndOfFields(const WCHAR* text) noexcept {
    const WCHAR* const end = text + WStringView(text).size();
    return std::any_of(text, end, IsDigit) ? end : text;
}

// The first three decimals.
uint32_t MillisecondsOf(const TimeField& fraction) noexcept {
    uint32_t milliseconds = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        const int digit = i < fraction.digits.size() ? clipfio::DigitValue(fraction.digits[i]) : 0;
        milliseconds = milliseconds * 10 + static_cast<uint32_t>(digit);
    }
    return milliseconds;
}

int64_t ReadSamples(const WCHAR* text, const _ktposfmt& position, const WCHAR** end) noexcept {
    const double rate = position.sampleRate;
    const auto samples = static_cast<double>(KtTextToLongLongToken(text, end));
    const double held = std::clamp(samples, 0.5 - rate * kMostSecondsBack, rate * kMostSeconds + 0.5);
    return rate > 0 ? CutToInteger<int64_t>(held / rate * kUnits + 0.5) : 0;
}

int64_t ReadSeconds(const WCHAR* text, const WCHAR** end) noexcept {
    const double seconds = KtTextToDoubleToken(text, end, 1);
    return CutToInteger<int64_t>(std::clamp(seconds, std::trunc(-kMostSecondsBack), std::trunc(kMostSeconds)) * kUnits);
}

int64_t ReadFrames(const WCHAR* text, double rate, const WCHAR** end) noexcept {
    const double frames = KtTextToDoubleToken(text, end, 1);
    if (!(rate > 0)) return 0;
    const auto least = static_cast<double>(FloorWithSlack(-rate * kMostSecondsBack));
    const auto most = static_cast<double>(FloorWithSlack(rate * kMostSeconds));
    return CutToInteger<int64_t>(std::clamp(frames, least, most) / rate * kUnits + 0.5);
}

int64_t ReadCdTime(const WCHAR* text) noexcept {
    _smpteval clock{};
    KTSMPTE_TextToSMPTE(text, &clock);
    return KtHMSFToNanoTime(&clock, clipfio::kCdFramesPerSecond);
}

int64_t ReadTimecode(const WCHAR* text, uint32_t format) noexcept {
    _smpteval label{format, 0, 0, 0, 0};
    KTSMPTE_TextToSMPTE(text, &label);
    return KTSMPTE_SMPTEToNanos(&label);
}

// `end` keeps its value where nothing tells how far the text was read.
int64_t ReadPosition(const WCHAR* text, const _ktposfmt& position, uint32_t flags, const WCHAR** end) noexcept {
    const int32_t is_short = flags & KTPOSTEXT_SHORT ? 1 : 0;
    switch (position.format) {
        case KTPOSFMT_SAMPLES:
            return ReadSamples(text, position, end);
        case KTPOSFMT_TIME:
            return HeldProduct(KtTextToTimeToken(text, &position, is_short, end), 10000);
        case KTPOSFMT_SECONDS:
            return ReadSeconds(text, end);
        case KTPOSFMT_TIME_FRAMES:
            return KtTextToHMSFToken(text, &position, is_short, end);
        case KTPOSFMT_FRAMES:
            return ReadFrames(text, position.frameRate, end);
        case KTPOSFMT_MEASURES:
        case KTPOSFMT_MEASURES0:
            return KtTextToMusicTimeToken(text, &position, flags, end);
        case KTPOSFMT_NANOS:
            return KtTextToLongLongToken(text, end);
        case KTPOSFMT_MICROS:
            return HeldProduct(KtTextToLongLongToken(text, end), 10);
        case KTPOSFMT_FEET_16MM:
        case KTPOSFMT_FEET_35MM:
            return KtTextToFeetAndFramesToken(text, &position, position.format == KTPOSFMT_FEET_16MM);
        case KTPOSFMT_CD:
            return ReadCdTime(text);
        default:
            break;
    }
    const uint32_t smpte = clipfio::DisplayFormatOf(position.format).smpte;
    return smpte ? ReadTimecode(text, smpte) : 0;
}

// Where a number ends whose first group of digits is `digits`: a thousands separator belongs to it between digits only.
const WCHAR* EndOfGroups(WStringView digits) noexcept {
    const KTINTERNATIONALS& record = clipfio::InternationalsRecord();
    const WStringView separator(record.thousands.text, record.thousands.length);
    const WCHAR* end = digits.data() + digits.size();
    while (!separator.empty() && WStringView(end).starts_with(separator) && IsDigit(end[separator.size()])) {
        end += separator.size();
        while (IsDigit(*end)) ++end;
    }
    return end;
}

int32_t ReadWhole(WStringView number) noexcept {
    WCHAR text[64];
    *std::copy_n(number.data(), std::min(number.size(), std::size(text) - 1), text) = 0;
    return KtTextToLongToken(text, nullptr);
}

}  // namespace

int64_t KtTextToNanoTimeToken2(const WCHAR* text, const _ktposfmt* format, int64_t default_value, int64_t minimum,
                               int64_t maximum, uint32_t flags, const WCHAR** end) noexcept {
    const Text unsigned_text = SkipSign(text);
    const WCHAR* stop = nullptr;
    int64_t time = default_value;
    if (*unsigned_text.start) time = format ? ReadPosition(unsigned_text.start, *format, flags, &stop) : 0;
    const bool has_limits = (flags & KTPOSTEXT_LIMITS) != 0;
    bool has_failed = false;
    if (has_limits || end) {
        if (!stop) stop = EndOfFields(unsigned_text.start);
        has_failed = time == 0 && *stop && !clipfio::IsBlank(*stop);
        if (end) *end = stop;
    }
    if (unsigned_text.is_negative) time = clipfio::HeldDifference(0, time);
    if (format && !(flags & KTPOSTEXT_RAW)) time = HeldSum(time, format->offset);
    if (!has_limits) return time;
    if (has_failed) time = default_value;
    return time < minimum ? minimum : std::min(time, maximum);
}

int64_t KtTextToNanoTimeToken(const WCHAR* text, const _ktposfmt* format, int32_t short_form,
                              const WCHAR** end) noexcept {
    return KtTextToNanoTimeToken2(text, format, 0, 0, 0, short_form ? KTPOSTEXT_SHORT : 0u, end);
}

int64_t KtTextToNanoTimeTokenEx(const WCHAR* text, const _ktposfmt* format, int32_t short_form, int64_t default_value,
                                int64_t minimum, int64_t maximum, const WCHAR** end) noexcept {
    const uint32_t flags = KTPOSTEXT_LIMITS | (short_form ? KTPOSTEXT_SHORT : 0u);
    return KtTextToNanoTimeToken2(text, format, default_value, minimum, maximum, flags, end);
}

int64_t KtTextToTimeToken(const WCHAR* text, const _ktposfmt*, int32_t short_form, const WCHAR** end) noexcept {
    if (!text) text = W("");
    int64_t seconds = 0;
    uint32_t milliseconds = 0;
    TimeFields<4> fields(text, short_form ? 3 : 4);
    if (end) *end = fields.end;
    if (!short_form && (fields.count > 1 || (fields.count == 1 && !IsDigit(*text)))) {
        milliseconds = MillisecondsOf(fields.fields[3]);
        seconds = (int64_t{fields[0]} * 60 + fields[1]) * 60 + fields[2];
    } else {
        seconds = (int64_t{fields[1]} * 60 + fields[2]) * 60 + fields[3];
    }
    return seconds * 1000 + milliseconds;
}

int64_t KtTextToHMSFToken(const WCHAR* text, const _ktposfmt* format, int32_t short_form, const WCHAR** end) noexcept {
    const TimeFields<4> fields(text, short_form ? 3 : 4);
    if (end) *end = fields.end;
    if (!format) return 0;
    if (short_form) return clipfio::TimeOfClock(fields[1], fields[2], fields[3], 0, format->frameRate);
    return clipfio::TimeOfClock(fields[0], fields[1], fields[2], fields[3], format->frameRate);
}

int64_t KtTextToFeetAndFramesToken(const WCHAR* text, const _ktposfmt* format, int32_t is_16mm) noexcept {
    if (!text || !format || !(format->frameRate > 0)) return 0;
    int64_t feet = 0;
    int64_t frames = 0;
    clipfio::TimeFieldReader reader(text, clipfio::TimeFieldReader::kWhole);
    TimeField field;
    for (int i = 0; i < 2 && reader.Next(field); ++i) {
        feet = frames;
        frames = 0;
        if (field.digits.empty()) continue;
        const WCHAR* const end = EndOfGroups(field.digits);
        frames = ReadWhole({field.digits.data(), end});
        reader.ContinueAt(end);
    }
    const int64_t all = feet * (is_16mm ? clipfio::kFramesPerFoot16 : clipfio::kFramesPerFoot35) + frames;
    const double time = static_cast<double>(all) * kUnits / format->frameRate;
    if (format->frameRate <= kFastestFilm) return FloorWithSlack(time + 1e-5);
    return CutToInteger<int64_t>(std::nearbyint(time + 1.5e-8));
}
