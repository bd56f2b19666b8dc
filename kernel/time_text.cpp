#include "kernel/time_text.h"

#include <algorithm>
#include <array>
#include <limits>

#include "kernel/clock_time.h"
#include "kernel/display_formats.h"
#include "kernel/music_time.h"
#include "kernel/print.h"
#include "kernel/text_copy.h"
#include "kernel/time_units.h"

namespace {

using clipfio::CutToInteger;
using clipfio::DisplayFormat;
using clipfio::FloorWithSlack;

constexpr double kMilliseconds = 1000;
constexpr double kFrameSlack = 1e-5;  // of a frame that rounding may have taken
constexpr int64_t kDaysFrom = 863999000001;
constexpr uint64_t kNoLimit = std::numeric_limits<uint64_t>::max();

// The caller's buffer, with a size or without.
class Destination {
  public:
    explicit Destination(WCHAR* out, uint64_t size = kNoLimit) noexcept : out_(out), size_(size) {}

    [[nodiscard]] bool HasRoom() const noexcept { return out_ && size_ > 0; }
    [[nodiscard]] bool HasLimit() const noexcept { return size_ != kNoLimit; }
    [[nodiscard]] int32_t Length() const noexcept { return static_cast<int32_t>(length_); }

    template <class... Arguments>
    void Print(const WCHAR* format, Arguments... arguments) noexcept {
        uint32_t length = 0;
        if (HasLimit()) {
            (void)KtCchPrintF(out_ + length_, static_cast<uint32_t>(size_) - length_, &length, format, arguments...);
        } else {
            length = static_cast<uint32_t>(KtPrintF(out_ + length_, format, arguments...));
        }
        length_ += length;
    }
    void Put(WStringView text) noexcept {
        if (!HasLimit()) {
            *std::copy_n(text.data(), text.size(), out_ + length_) = 0;
            length_ += static_cast<uint32_t>(text.size());
            return;
        }
        const auto room = std::min<uint64_t>(size_ - length_, std::numeric_limits<int32_t>::max());
        length_ += static_cast<uint32_t>(clipfio::CopyText(out_ + length_, static_cast<int32_t>(room), text));
    }

  private:
    WCHAR* out_;
    uint64_t size_;
    uint32_t length_ = 0;
};

// The two digits of each number below 100.
constexpr auto kPairs = [] {
    std::array<std::array<WCHAR, 2>, 100> pairs{};
    for (unsigned i = 0; i < pairs.size(); ++i) {
        pairs[i] = {static_cast<WCHAR>(W('0') + i / 10), static_cast<WCHAR>(W('0') + i % 10)};
    }
    return pairs;
}();

// A label as kLabel and kDropLabel have it, without the printer.
void PutLabel(Destination& out, const WCHAR* format, const _smpteval& label) noexcept {
    constexpr std::size_t kLength = 11;
    const std::array<WCHAR, 2> pairs[] = {kPairs[label.hours], kPairs[label.minutes], kPairs[label.seconds],
                                          kPairs[label.frames]};
    const WCHAR colon = W(':');
    constexpr std::size_t kBeforeFrames = 14;
    static_assert(clipfio::kLabel[kBeforeFrames] == W(':') && clipfio::kDropLabel[kBeforeFrames] == W(';'));
    const WCHAR last = format[kBeforeFrames];
    const WCHAR text[kLength] = {pairs[0][0], pairs[0][1], colon, pairs[1][0], pairs[1][1], colon,
                                 pairs[2][0], pairs[2][1], last,  pairs[3][0], pairs[3][1]};
    out.Put({text, kLength});
}

void PrintClock(Destination& out, const WCHAR* format, int64_t time, double rate) noexcept {
    _smpteval clock{};
    KtNanoTimeToHMSF(time, &clock, rate, 1);
    out.Print(format, clock.hours, clock.minutes, clock.seconds, clock.frames);
}

void PrintDays(Destination& out, int64_t time) noexcept {
    _smpteval clock{};
    KtNanoTimeToHMSF(time, &clock, kMilliseconds, 1);
    out.Print(W("%02u$:%02u$:%02u$:%02u"), clock.hours / 24, clock.hours % 24, clock.minutes, clock.seconds);
}

void PrintShortTime(Destination& out, int64_t time) noexcept {
    _smpteval clock{};
    KtNanoTimeToHMSF(time, &clock, kMilliseconds, 1);
    if (clock.hours != 0) {
        out.Print(W("%u$:%02u$:%02u"), clock.hours, clock.minutes, clock.seconds);
    } else {
        out.Print(clock.minutes < 10 ? W("%u$:%02u") : W("%02u$:%02u"), clock.minutes, clock.seconds);
    }
}

void PrintMeasures(Destination& out, const WCHAR* format, int64_t time, const _ktposfmt& position,
                   int32_t from) noexcept {
    int32_t measure = 0;
    int32_t beat = 0;
    int32_t tick = 0;
    KtNanoTimeToMeasures(time, &position, &measure, &beat, &tick);
    out.Print(format, static_cast<uint32_t>(measure) + static_cast<uint32_t>(from),
              static_cast<uint32_t>(beat) + static_cast<uint32_t>(from), tick);
}

void PrintFeet(Destination& out, const WCHAR* format, double frames, int64_t frames_per_foot) noexcept {
    const int64_t whole = FloorWithSlack(frames);
    out.Print(format, whole / frames_per_foot, whole % frames_per_foot);
}

// In the display's own text when `format` is null.
void PrintSmpte(Destination& out, const WCHAR* format, int64_t time, const DisplayFormat& display) noexcept {
    _smpteval label{display.smpte, 0, 0, 0, 0};
    KTSMPTE_NanoToSMPTE(time, &label);
    if (format) {
        out.Print(format, label.hours, label.minutes, label.seconds, label.frames);
    } else {
        PutLabel(out, display.full_text, label);
    }
}

// `time` from 0 on, and no timecode.
void PrintPosition(Destination& out, const WCHAR* format, int64_t time, const _ktposfmt& position,
                   uint32_t flags) noexcept {
    const double seconds = static_cast<double>(time) * clipfio::kSecondsPerUnit;
    const double frames = seconds * position.frameRate + kFrameSlack;
    const double beats = seconds * position.tempo / 60;
    const bool is_whole = WStringView(format) == clipfio::kWholeNumber;
    const auto real = [&](double value, int64_t whole) {
        is_whole ? out.Print(clipfio::kWholeUnits, whole) : out.Print(format, value);
    };
    switch (position.format) {
        case KTPOSFMT_SAMPLES:
            return out.Print(format, CutToInteger<int64_t>(seconds * position.sampleRate + 0.5));
        case KTPOSFMT_TIME:
            return time >= kDaysFrom && !out.HasLimit() ? PrintDays(out, time)
                                                        : PrintClock(out, format, time, kMilliseconds);
        case KTPOSFMT_SECONDS:
            return real(seconds, CutToInteger<int64_t>(seconds));
        case KTPOSFMT_TIME_FRAMES:
            return PrintClock(out, format, time, position.frameRate);
        case KTPOSFMT_FRAMES:
            return real(frames, FloorWithSlack(frames));
        case KTPOSFMT_MEASURES:
            return PrintMeasures(out, format, time, position, flags & KTPOSTEXT_RAW ? 0 : 1);
        case KTPOSFMT_MEASURES0:
            return PrintMeasures(out, format, time, position, 0);
        case KTPOSFMT_MICROS:
            return out.Print(format, clipfio::HeldSum(time, 5) / 10);
        case KTPOSFMT_BEATS:
            return real(beats, CutToInteger<int64_t>(beats));
        case KTPOSFMT_FEET_16MM:
            return PrintFeet(out, format, frames, clipfio::kFramesPerFoot16);
        case KTPOSFMT_FEET_35MM:
            return PrintFeet(out, format, frames, clipfio::kFramesPerFoot35);
        case KTPOSFMT_CD:
            return PrintClock(out, format, time, clipfio::kCdFramesPerSecond);
        case KTPOSFMT_SHORT_TIME:
            return PrintShortTime(out, time);
        case KTPOSFMT_NANOS:
            return out.Print(format, time);
        default:
            return out.Print(clipfio::kWholeUnits, time);
    }
}

int32_t Print(Destination out, const _ktposfmt* position, int64_t time, const WCHAR* format, uint32_t flags) noexcept {
    if (!position || !out.HasRoom()) return 0;
    if (!(flags & KTPOSTEXT_RAW)) time = clipfio::HeldDifference(time, position->offset);
    if (time < 0) {
        out.Put(W("-"));
        time = clipfio::HeldDifference(0, time);
    }
    const DisplayFormat& display = clipfio::DisplayFormatOf(position->format);
    if (display.smpte) {
        PrintSmpte(out, format, time, display);
    } else {
        if (!format) format = flags & KTPOSTEXT_SHORT ? display.short_text : display.full_text;
        PrintPosition(out, format, time, *position, flags);
    }
    return out.Length();
}

uint32_t FlagsOf(int32_t short_form) noexcept { return short_form ? KTPOSTEXT_SHORT : 0u; }

}  // namespace

int32_t KtNanoTimeToText(WCHAR* out, const _ktposfmt* format, int64_t time, int32_t short_form) noexcept {
    return Print(Destination(out), format, time, nullptr, FlagsOf(short_form));
}

int32_t KtNanoTimeToTextN(WCHAR* out, uint32_t size, const _ktposfmt* format, int64_t time,
                          int32_t short_form) noexcept {
    return Print(Destination(out, size), format, time, nullptr, FlagsOf(short_form));
}

int32_t KtNanoTimeToTextEx(WCHAR* out, const _ktposfmt* format, int64_t time, uint32_t flags) noexcept {
    return Print(Destination(out), format, time, nullptr, flags);
}

int32_t KtNanoTimeToTextExN(WCHAR* out, uint32_t size, const _ktposfmt* format, int64_t time, uint32_t flags) noexcept {
    return Print(Destination(out, size), format, time, nullptr, flags);
}

int32_t KtNanoTimeToTextFormat(WCHAR* out, const _ktposfmt* format, int64_t time, const WCHAR* text,
                               uint32_t flags) noexcept {
    return Print(Destination(out), format, time, text, flags);
}

int32_t KtNanoTimeToTextFormatN(WCHAR* out, uint32_t size, const _ktposfmt* format, int64_t time, const WCHAR* text,
                                uint32_t flags) noexcept {
    return Print(Destination(out, size), format, time, text, flags);
}
