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

Range ParseFrameRange(const std::string& from, const std::string& to, std::uint64_t frame_count) {
    Range range{0, frame_count - 1};
    if (!from.empty()) range.first = ParsePosition(from, "--from");
    if (!to.empty()) range.last = ParsePosition(to, "--to");
    if (!to.empty() && range.first > range.last) {
        throw UsageError("--from " + std::to_string(range.first) + " lies behind --to " + std::to_string(range.last));
    }
    CheckFrame(range.first, frame_count);
    CheckFrame(range.last, frame_count);
    return range;
}

}  // namespace clipfio::host
