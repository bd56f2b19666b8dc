#include "host/clip_making.h"

#include <array>

#include "host/failure.h"
#include "host/numbers.h"
#include "platform/text.h"
#include "substitutes/decoder/timecode.h"

namespace clipfio::host {
namespace {

struct TimecodeParts {
    uint32_t hours;
    uint32_t minutes;
    uint32_t seconds;
    uint32_t frames;
    bool drop_frame;
};

// "hh:mm:ss:ff" in any widths; nothing when it is of another form.
std::optional<TimecodeParts> SplitTimecode(std::string_view text) {
    std::array<uint32_t, 4> numbers{};
    char last_separator = ':';
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const std::size_t end = i + 1 < numbers.size() ? text.find_first_of(":;") : text.size();
        if (end == std::string_view::npos) return std::nullopt;
        const auto number = ReadNumber<uint32_t>(text.substr(0, end));
        if (!number) return std::nullopt;
        numbers[i] = *number;
        if (end < text.size()) last_separator = text[end];
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return TimecodeParts{numbers[0], numbers[1], numbers[2], numbers[3], last_separator == ';'};
}

// Numbers that drop-frame counting leaves out at the start of each minute but every tenth.
uint32_t DroppedPerMinute(uint32_t fps) { return fps / 30 * 2; }

}  // namespace

ClipMaker::ClipMaker(const std::string& path, const decoder::ClipDescription& description) : path_(path) {
    Check(writer_.Open(platform::Wide(path), description));
}

void ClipMaker::AddFrame(const uint16_t* rgb) { Check(writer_.AddFrame(rgb)); }

void ClipMaker::AddAudio(std::span<const int32_t> interleaved, std::size_t samples) {
    Check(writer_.AddAudio(interleaved.data(), samples));
}

void ClipMaker::Finish() { Check(writer_.Finish()); }

void ClipMaker::Check(bool good) const {
    if (!good) throw Failure("cannot write " + path_ + ": " + writer_.Error());
}

decoder::ClipDescription DescribeClip(PictureSize size, Rate rate) {
    if (size.width > decoder::kMaximumSide || size.height > decoder::kMaximumSide) {
        throw UsageError("--size: a clip's picture is at most 16384 pixels wide and high");
    }
    decoder::ClipDescription description;
    description.width = size.width;
    description.height = size.height;
    description.rate_numerator = rate.numerator;
    description.rate_denominator = rate.denominator;
    return description;
}

void ParseStartTimecode(const std::string& text, decoder::ClipDescription& description) {
    const uint32_t fps = decoder::NominalFps(description.rate_numerator, description.rate_denominator);
    const auto parts = SplitTimecode(text);
    if (!parts || parts->hours > 23 || parts->minutes > 59 || parts->seconds > 59 || parts->frames >= fps) {
        throw UsageError("--timecode: '" + text + "' is no timecode such as 01:00:00:00 at " + std::to_string(fps) +
                         " frames a second");
    }
    if (parts->drop_frame && !decoder::MayDropFrames(description.rate_numerator, description.rate_denominator)) {
        throw UsageError("--timecode: ';' counts drop-frame, which only 29.97 and 59.94 frames a second know");
    }
    const uint32_t minutes = parts->hours * 60 + parts->minutes;
    description.drop_frame = parts->drop_frame;
    description.start_frame = (minutes * 60 + parts->seconds) * fps + parts->frames;
    if (!parts->drop_frame) return;
    const uint32_t dropped = DroppedPerMinute(fps);
    if (parts->seconds == 0 && parts->frames < dropped && minutes % 10 != 0) {
        throw UsageError("--timecode: drop-frame counting leaves " + text + " out");
    }
    description.start_frame -= dropped * (minutes - minutes / 10);
}

}  // namespace clipfio::host
