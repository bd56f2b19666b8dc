#include "kernel/smpte.h"

#include <array>
#include <cmath>
#include <compare>
#include <tuple>

#include "kernel/time_fields.h"
#include "kernel/time_units.h"

namespace {

using clipfio::CutToInteger;
using clipfio::IsSmpteFormat;
using clipfio::kUnitsPerSecond;

constexpr uint32_t kFramesPerTenMinutesDrop = 17982;
constexpr uint32_t kFramesPerMinuteDrop = 1798;
constexpr double kUnits = static_cast<double>(kUnitsPerSecond);

struct FormatFacts {
    uint32_t fps;  // of the label
    double rate;   // of time
    bool drop;
    uint32_t frames_per_day;
};

// By format; the first row is for whatever is not in the list.
constexpr auto kFormats = std::to_array<FormatFacts>({
    {30, 30.0, true, 2589408},
    {30, 30.0, false, 2592000},
    {30, 30000.0 / 1001, true, 2589408},
    {25, 25.0, false, 2160000},
    {24, 24.0, false, 2073600},
    {30, 30000.0 / 1001, false, 2592000},
    {24, 24000.0 / 1001, false, 2073600},
});
static_assert(kFormats.size() == KTSMPTEFORMAT_23976 + 1);

const FormatFacts& FactsOf(uint32_t format) { return kFormats[IsSmpteFormat(format) ? format : 0]; }

// Numbers that drop-frame has left out up to frame `count`. Of each ten minutes the first is whole, so the numbers of
// the others start two later.
constexpr uint32_t DroppedBefore(uint32_t count) {
    const uint32_t rest = count % kFramesPerTenMinutesDrop;
    return count / kFramesPerTenMinutesDrop * 18 + (rest < 2 ? 0 : (rest - 2) / kFramesPerMinuteDrop * 2);
}

constexpr bool DropsNumbersAt(uint32_t minutes) { return minutes % 10 != 0; }

constexpr bool IsLeftOut(const _smpteval& value) {
    return value.format == KTSMPTEFORMAT_DROP && value.seconds == 0 && value.frames < 2 &&
           DropsNumbersAt(value.minutes);
}

// By constants, which the compiler turns into products.
constexpr uint32_t SecondsOf(uint32_t number, uint32_t fps) {
    return fps == 30 ? number / 30 : fps == 25 ? number / 25 : number / 24;
}

// `count` lies within the day.
void SetLabel(_smpteval& value, const FormatFacts& facts, uint32_t count) {
    const uint32_t number = facts.drop ? count + DroppedBefore(count) : count;
    const uint32_t seconds = SecondsOf(number, facts.fps);
    const uint32_t minutes = seconds / 60;
    value.frames = number - seconds * facts.fps;
    value.seconds = seconds - minutes * 60;
    value.hours = minutes / 60;
    value.minutes = minutes - value.hours * 60;
}

void SetCount(_smpteval& value, int64_t count) {
    const FormatFacts& facts = FactsOf(value.format);
    const int64_t day = facts.frames_per_day;
    if (count < 0 || count >= day) {
        count %= day;
        if (count < 0) count += day;
    }
    SetLabel(value, facts, static_cast<uint32_t>(count));
}

// Hours are kept in five bits by those who pack a label.
uint32_t HourOf(const _smpteval& value) { return value.hours & 31; }

void CarryNumbers(_smpteval& value) {
    if (IsSmpteFormat(value.format)) {
        const uint32_t fps = FactsOf(value.format).fps;
        const uint32_t seconds = SecondsOf(value.frames, fps);
        value.seconds += seconds;
        value.frames -= seconds * fps;
    }
    value.minutes += value.seconds / 60;
    value.seconds %= 60;
    value.hours = (value.hours + value.minutes / 60) % 24;
    value.minutes %= 60;
}

// Reads "hh:mm:ss:ff" with any separators, the way labels are printed; false for any other text.
bool ReadWholeLabel(const WCHAR* text, _smpteval& value) {
    uint32_t* const numbers[] = {&value.hours, &value.minutes, &value.seconds, &value.frames};
    for (uint32_t* number : numbers) {
        if (!clipfio::IsDigit(text[0]) || !clipfio::IsDigit(text[1]) || clipfio::IsDigit(text[2])) return false;
        *number = static_cast<uint32_t>((text[0] - W('0')) * 10 + (text[1] - W('0')));
        const bool is_last = number == &value.frames;
        if ((text[2] == 0) != is_last) return false;
        text += 3;
    }
    return true;
}

}  // namespace

void KTSMPTE_FrameCountToSMPTE(_smpteval* value, uint32_t frames) noexcept {
    if (value) SetCount(*value, frames);
}

void KTSMPTE_NanoToSMPTE(int64_t time, _smpteval* value) noexcept {
    if (!value) return;
    const double frames = static_cast<double>(time) * FactsOf(value->format).rate / kUnits + 5e-6;
    SetCount(*value, CutToInteger<int64_t>(frames < 0 ? std::floor(frames) : frames));
}

uint32_t KTSMPTE_SMPTEToFrameCount(const _smpteval* value) noexcept {
    if (!value || !IsSmpteFormat(value->format)) return 0;
    const FormatFacts& facts = FactsOf(value->format);
    const uint32_t frames = IsLeftOut(*value) ? 2 : value->frames;
    const uint32_t number = ((value->hours * 60 + value->minutes) * 60 + value->seconds) * facts.fps + frames;
    if (!facts.drop) return number;
    return number - value->hours * 108 - (value->minutes - value->minutes / 10) * 2;
}

int64_t KTSMPTE_SMPTEToNanos(const _smpteval* value) noexcept {
    if (!value) return 0;
    const double count = KTSMPTE_SMPTEToFrameCount(value);
    return CutToInteger<int64_t>(count / FactsOf(value->format).rate * kUnits + 0.999);
}

int64_t KTSMPTE_SmpteLikeToNanos(double rate, const _smpteval* value) noexcept {
    if (!value) return 0;
    const double seconds = (static_cast<double>(value->hours) * 60 + value->minutes) * 60 + value->seconds;
    const double time = rate > 0 ? (seconds * rate + value->frames) / rate : seconds;
    return CutToInteger<int64_t>(time * kUnits + 0.999);
}

WCHAR KTSMPTE_TextToSMPTE(const WCHAR* text, _smpteval* value) noexcept {
    if (!value) return 0;
    if (text && ReadWholeLabel(text, *value)) {
        CarryNumbers(*value);
        return 0;
    }
    *value = {value->format, 0, 0, 0, 0};
    clipfio::TimeFieldReader reader(text, clipfio::TimeFieldReader::kPairs);
    clipfio::TimeField field;
    for (int i = 0; i < 4 && reader.Next(field); ++i) {
        *value = {value->format, value->minutes, value->seconds, value->frames, field.value};
    }
    CarryNumbers(*value);
    return reader.IsAllRead() ? WCHAR{0} : W(' ');
}

void KTSMPTE_AddSMPTE(_smpteval* a, const _smpteval* b) noexcept {
    if (!a || !b || !IsSmpteFormat(a->format)) return;
    SetCount(*a, int64_t{KTSMPTE_SMPTEToFrameCount(a)} + KTSMPTE_SMPTEToFrameCount(b));
}

void KTSMPTE_SubtractSMPTE(_smpteval* a, const _smpteval* b) noexcept {
    if (!a || !b || !IsSmpteFormat(a->format)) return;
    SetCount(*a, int64_t{KTSMPTE_SMPTEToFrameCount(a)} - KTSMPTE_SMPTEToFrameCount(b));
}

int32_t KTSMPTE_SMPTECompare(const _smpteval* a, const _smpteval* b) noexcept {
    if (!a || !b) return 0;
    const auto order =
        std::tie(a->hours, a->minutes, a->seconds, a->frames) <=> std::tie(b->hours, b->minutes, b->seconds, b->frames);
    return order > 0 ? 1 : order < 0 ? -1 : 0;  // NOLINT(modernize-use-nullptr): the literal 0 is what it compares with
}

void KTSMPTE_IncrementByFrame(_smpteval* value) noexcept {
    if (!value) return;
    if (++value->frames < FactsOf(value->format).fps) return;
    value->frames = 0;
    if (++value->seconds < 60) return;
    value->seconds = 0;
    if (++value->minutes >= 60) {
        value->minutes = 0;
        value->hours = HourOf(*value) < 23 ? HourOf(*value) + 1 : 0;
    }
    if (IsLeftOut(*value)) value->frames = 2;
}

void KTSMPTE_DeccrementByFrame(_smpteval* value, uint32_t) noexcept {
    if (!value) return;
    const bool drops = value->format == KTSMPTEFORMAT_DROP && value->seconds == 0 && DropsNumbersAt(value->minutes);
    if (value->frames > (drops ? 2u : 0u)) {
        --value->frames;
        return;
    }
    value->frames = FactsOf(value->format).fps - 1;
    if (value->seconds > 0) {
        --value->seconds;
        return;
    }
    value->seconds = 59;
    if (value->minutes > 0) {
        --value->minutes;
        return;
    }
    value->minutes = 59;
    value->hours = HourOf(*value) > 0 ? HourOf(*value) - 1 : 23;
}
