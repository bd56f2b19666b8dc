// clipfio pipe: raw frames on standard output, for an encoder.
#include "host/clip.h"
#include "host/command.h"
#include "host/console.h"
#include "host/failure.h"
#include "host/frame_options.h"
#include "host/frames.h"
#include "host/positions.h"
#include "host/progress.h"
#include "platform/program.h"

namespace clipfio::host {
namespace {

struct Options {
    std::string clip;
    RangeText range;
    FrameOptions frame;
};

// False when nobody reads any more.
[[nodiscard]] bool WriteRows(const Frame& frame) {
    for (uint32_t y = 0; y < frame.height; ++y) {
        if (!WriteStandardOutput(frame.Row(y), std::size_t{frame.width} * 4)) return false;
    }
    return true;
}

int Run(Context& context, const Options& options) {
    Clip clip = OpenClip(context, options.clip);
    const Range range = ParseFrameRange(options.range.from, options.range.to, clip);
    const FrameSize size = MeasureFrame(clip.Video(), options.frame);
    Say("pipe this into: ffmpeg -f rawvideo -pix_fmt bgra -s " + std::to_string(size.width) + "x" +
        std::to_string(size.height) + " -r " + RateText(clip.FrameRate()) + " -i - out.mov");

    if (platform::IsTerminal(stdout)) throw Failure("standard output is a terminal: pipe the frames into a program");
    Progress progress("pipe", range.Count());
    Frame frame;
    for (uint64_t number = range.first; number <= range.last; ++number) {
        ReadFrame(clip.Video(), number, options.frame, frame);
        if (!WriteRows(frame)) return kExitDone;
        progress.Step();
    }
    return kExitDone;
}

}  // namespace

void AddPipe(CommandLine& line, Context& context) {
    const auto options = std::make_shared<Options>();
    Arguments arguments = line.Add("pipe", "Writes raw frames (8-bit B, G, R, A; top row first) to standard output",
                                   [options, &context] { return Run(context, *options); });

    AddClip(arguments, options->clip);
    AddFrameRange(arguments, options->range);
    AddFrameOptions(arguments, options->frame);
}

}  // namespace clipfio::host
