#include "host/positions.h"

#include "host/failure.h"
#include "host/numbers.h"

namespace clipfio::host {

std::uint64_t ParsePosition(const std::string& text, const char* option) {
    const auto value = ReadNumber<std::uint64_t>(text);
    if (!value) throw UsageError(std::string(option) + ": '" + text + "' is not a number from 0");
    return *value;
}

void CheckFrame(std::uint64_t frame, std::uint64_t frame_count) {
    if (frame < frame_count) return;
    if (frame_count == 0) throw Failure("the clip has no frames");
    throw Failure("there is no frame " + std::to_string(frame) + ": the clip has frames 0 to " +
                  std::to_string(frame_count - 1));
}

FramePosition ParseFrame(const std::string& text, const char* option) {
    if (const auto number = ReadNumber<std::uint64_t>(text)) return {text, *number};
    if (const auto label = SplitTimecode(text)) return {text, *label};
    throw UsageError(std::string(option) + ": '" + text + "' is neither a number from 0 nor a timecode hh:mm:ss:ff");
}

std::uint64_t FindFrame(const FramePosition& position, Clip& clip) {
    if (const auto* number = std::get_if<std::uint64_t>(&position.place)) {
        CheckFrame(*number, clip.FrameCount());
        return *number;
    }
    CheckFrame(0, clip.FrameCount());
    const auto timecode = ClipTimecode::Of(clip);
    if (!timecode) throw Failure("the clip has no timecode: name the frame " + position.text + " by its number");
    const auto frame = timecode->Find(std::get<TimecodeLabel>(position.place).numbers);
    if (!frame) {
        throw Failure("there is no frame " + position.text + ": the clip has frames " +
                      TimecodeText(timecode->First()) + " to " + TimecodeText(timecode->Last()));
    }
    return *frame;
}

Range ParseFrameRange(const std::string& from, const std::string& to, Clip& clip) {
    const auto parse = [](const std::string& text, const char* option) {
        return text.empty() ? FramePosition{} : ParseFrame(text, option);
    };
    const FramePosition first = parse(from, "--from");
    const FramePosition last = parse(to, "--to");
    CheckFrame(0, clip.FrameCount());
    Range range{0, clip.FrameCount() - 1};
    if (!from.empty()) range.first = FindFrame(first, clip);
    if (!to.empty()) range.last = FindFrame(last, clip);
    if (range.first > range.last) throw UsageError("--from " + from + " lies behind --to " + to);
    return range;
}

}  // namespace clipfio::host
