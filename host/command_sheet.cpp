// clipfio sheet: frames spread over the clip, in one picture, with their numbers.
#include <algorithm>
#include <cmath>

#include "host/canvas.h"
#include "host/clip.h"
#include "host/command.h"
#include "host/console.h"
#include "host/failure.h"
#include "host/frame_options.h"
#include "host/frames.h"
#include "host/positions.h"
#include "host/progress.h"

namespace clipfio::host {
namespace {

constexpr Colour kBackground{24, 26, 30};
constexpr Colour kLabel{220, 220, 220};
constexpr uint32_t kGap = 8;
constexpr uint32_t kDot = 2;
constexpr uint32_t kLabelHeight = 7 * kDot + 8;
constexpr uint32_t kMostFrames = 400;

struct Options {
    std::string clip;
    std::string output;
    uint32_t frames = 12;
    uint32_t width = 320;
};

// The smallest size that the module gives and that is not smaller than what is wanted.
double ScaleFor(uint32_t full, uint32_t wanted) {
    double scale = 1.0;
    while (scale > 1.0 / 16 && static_cast<double>(full) * scale / 2 >= wanted) scale /= 2;
    return scale;
}

int Run(Context& context, const Options& options) {
    const InterruptScope interrupts;
    Clip clip = OpenClip(context, options.clip);
    const uint64_t frame_count = clip.FrameCount();
    CheckFrame(0, frame_count);
    const auto cells = static_cast<uint32_t>(std::min<uint64_t>(options.frames, frame_count));
    const auto columns = static_cast<uint32_t>(std::ceil(std::sqrt(cells)));
    const uint32_t rows = (cells + columns - 1) / columns;

    FrameOptions request;
    const FrameSize full = MeasureFrame(clip.Video(), request);
    request.scale = ScaleFor(full.width, options.width);
    const uint32_t width = options.width;
    const auto height = static_cast<uint32_t>(std::max<uint64_t>(1, uint64_t{width} * full.height / full.width));
    const uint32_t cell_width = width + kGap;
    const uint32_t cell_height = height + kLabelHeight + kGap;
    if (uint64_t{cell_height} * rows > 65535)
        throw Failure("the sheet would be too large: ask for fewer frames or a smaller --width");
    RgbImage8 image = MakeImage(columns * cell_width + kGap, rows * cell_height + kGap, kBackground);

    Progress progress("sheet", cells);
    Frame frame;
    for (uint32_t cell = 0; cell < cells; ++cell) {
        InterruptScope::Check();
        const uint64_t number = cells > 1 ? cell * (frame_count - 1) / (cells - 1) : 0;
        ReadFrame(clip.Video(), number, request, frame);
        const int64_t left = kGap + int64_t{cell % columns} * cell_width;
        const int64_t top = kGap + int64_t{cell / columns} * cell_height;
        DrawScaled(image, left, top, width, height, ToRgb8(frame));
        DrawDigits(image, left, top + height + 4, kDot, std::to_string(number), kLabel);
        progress.Step();
    }
    WritePng(options.output, image);
    Say(std::to_string(cells) + " of " + std::to_string(frame_count) + " frames, in " + options.output);
    return kExitDone;
}

}  // namespace

void AddSheet(CommandLine& line, Context& context) {
    const auto options = std::make_shared<Options>();
    Arguments arguments = line.Add("sheet", "Draws frames spread over the clip into one PNG file",
                                   [options, &context] { return Run(context, *options); });

    AddClip(arguments, options->clip);
    arguments.Text("-o,--output", options->output, "The file", "FILE", Arguments::kRequired);
    arguments.Number("--frames", options->frames, 1, kMostFrames,
                     "Frames, spread evenly, the first and the last among them", "N");
    arguments.Number("--width", options->width, 16, 2048, "Width of one frame in the sheet", "W");
}

}  // namespace clipfio::host
