#include "host/timecode.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "host/numbers.h"

namespace clipfio::host {
namespace {

constexpr int64_t kSecond = 10'000'000;
constexpr double kMostFps = 1000;

uint32_t FpsOf(double rate) { return static_cast<uint32_t>(std::lround(std::clamp(rate, 1.0, kMostFps))); }

// Numbers that drop-frame counting leaves out at the start of each minute but every tenth.
uint32_t DroppedPerMinute(decoder::TimecodeRate rate) { return rate.drop_frame ? rate.fps / 30 * 2 : 0; }

// 29.97 and 59.94.
bool MayDropFrames(double rate) {
    const uint32_t fps = FpsOf(rate);
    return (fps == 30 || fps == 60) && std::fabs(rate - fps / 1.001) < 0.005;
}

}  // namespace

std::optional<TimecodeLabel> SplitTimecode(std::string_view text) {
    std::array<uint32_t, 4> numbers{};
    char last_separator = ':';
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const std::size_t end = i + 1 < numbers.size() ? text.find_first_of(":;") : text.size();
        if (end == std::string_view::npos) return std::nullopt;
        if (i < 2 && text[end] != ':') return std::nullopt;
        const auto number = ReadNumber<uint32_t>(text.substr(0, end));
        if (!number) return std::nullopt;
        numbers[i] = *number;
        if (end < text.size()) last_separator = text[end];
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return TimecodeLabel{{numbers[0], numbers[1], numbers[2], numbers[3]}, last_separator == ';'};
}

bool IsOnClock(const decoder::Timecode& code, uint32_t fps) {
    return code.hours < 24 && code.minutes < 60 && code.seconds < 60 && code.frames < fps;
}

bool IsLeftOut(const decoder::Timecode& code, decoder::TimecodeRate rate) {
    return code.seconds == 0 && code.frames < DroppedPerMinute(rate) && code.minutes % 10 != 0;
}

uint64_t FrameOf(const decoder::Timecode& code, decoder::TimecodeRate rate) {
    const uint64_t minutes = uint64_t{code.hours} * 60 + code.minutes;
    const uint64_t number = (minutes * 60 + code.seconds) * rate.fps + code.frames;
    return number - DroppedPerMinute(rate) * (minutes - minutes / 10);
}

std::string TimecodeText(const decoder::Timecode& code) {
    char text[64];
    std::snprintf(text, sizeof text, "%02u:%02u:%02u:%02u", code.hours, code.minutes, code.seconds, code.frames);
    return text;
}

decoder::Timecode TimecodeOfTime(int64_t time, double rate) {
    const auto seconds = static_cast<uint64_t>(std::max<int64_t>(time, 0) / kSecond);
    const double part = static_cast<double>(std::max<int64_t>(time, 0) % kSecond) / static_cast<double>(kSecond);
    return {static_cast<uint32_t>(seconds / 3600), static_cast<uint32_t>(seconds / 60 % 60),
            static_cast<uint32_t>(seconds % 60),
            static_cast<uint32_t>(std::lround(part * std::clamp(rate, 0.0, kMostFps)))};
}

std::optional<ClipTimecode> ClipTimecode::Of(Clip& clip) {
    const auto first = clip.Timecode(kKtMetaFirstTimecode);
    const auto last = clip.Timecode(kKtMetaLastTimecode);
    if (!first || !last) return std::nullopt;
    const double rate = clip.FrameRate();
    ClipTimecode result;
    result.first_ = TimecodeOfTime(*first, rate);
    result.last_ = TimecodeOfTime(*last, rate);
    result.frames_ = clip.FrameCount();
    result.rate_.fps = FpsOf(rate);
    // The module tells numbers only. Where the last one lies later than the frames account for, numbers were left out;
    // where none were, both ways to count agree on all of the clip.
    if (MayDropFrames(rate)) {
        const decoder::TimecodeRate drop{result.rate_.fps, true};
        result.rate_.drop_frame = result.FramesFromFirst(result.last_, drop) + 1 == result.frames_;
    }
    return result;
}

uint64_t ClipTimecode::FramesFromFirst(const decoder::Timecode& code, decoder::TimecodeRate rate) const {
    const uint64_t day = decoder::FramesPerDay(rate);
    return (FrameOf(code, rate) % day + day - FrameOf(first_, rate) % day) % day;
}

std::optional<uint64_t> ClipTimecode::Find(const decoder::Timecode& code) const {
    if (!IsOnClock(code, rate_.fps) || IsLeftOut(code, rate_)) return std::nullopt;
    const uint64_t frame = FramesFromFirst(code, rate_);
    if (frame >= frames_) return std::nullopt;
    return frame;
}

}  // namespace clipfio::host
