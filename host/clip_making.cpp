#include "host/clip_making.h"

#include "host/failure.h"
#include "host/timecode.h"
#include "platform/text.h"
#include "substitutes/decoder/timecode.h"

namespace clipfio::host {
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
    const auto label = SplitTimecode(text);
    if (!label || !IsOnClock(label->numbers, fps)) {
        throw UsageError("--timecode: '" + text + "' is no timecode such as 01:00:00:00 at " + std::to_string(fps) +
                         " frames a second");
    }
    if (label->drop_frame && !decoder::MayDropFrames(description.rate_numerator, description.rate_denominator)) {
        throw UsageError("--timecode: ';' counts drop-frame, which only 29.97 and 59.94 frames a second know");
    }
    const decoder::TimecodeRate rate{fps, label->drop_frame};
    if (IsLeftOut(label->numbers, rate)) {
        throw UsageError("--timecode: drop-frame counting leaves " + text + " out");
    }
    description.drop_frame = label->drop_frame;
    description.start_frame = static_cast<uint32_t>(FrameOf(label->numbers, rate));
}

}  // namespace clipfio::host
