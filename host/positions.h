// Places in a clip as the user writes them.
#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "host/timecode.h"

namespace clipfio::host {

// A frame or sample number, from 0. The one place where such a text is read. Throws UsageError; `option` names the
// argument in its message.
[[nodiscard]] std::uint64_t ParsePosition(const std::string& text, const char* option);

struct Range {
    std::uint64_t first;
    std::uint64_t last;  // still part of the range

    [[nodiscard]] std::uint64_t Count() const { return last - first + 1; }
};

// A frame of a clip: its number, from 0, or its timecode.
struct FramePosition {
    std::string text;
    std::variant<std::uint64_t, TimecodeLabel> place;
};
// Throws UsageError.
[[nodiscard]] FramePosition ParseFrame(const std::string& text, const char* option);
// The frame's number. Throws Failure when the clip has no such frame.
[[nodiscard]] std::uint64_t FindFrame(const FramePosition& position, Clip& clip);

// The frames from `from` to `to`, both included; an empty text means the clip's first or last frame. Throws UsageError
// for a text that is no frame or a range that runs backwards, and Failure for frames that the clip does not have.
[[nodiscard]] Range ParseFrameRange(const std::string& from, const std::string& to, Clip& clip);

// Throws Failure when the clip has no such frame.
void CheckFrame(std::uint64_t frame, std::uint64_t frame_count);

}  // namespace clipfio::host
