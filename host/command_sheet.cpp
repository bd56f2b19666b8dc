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
#include "host/output_file.h"
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

// The smallest size that the module gives, that is not smaller than the width wanted and has something left of both
// sides.
double ScaleFor(FrameSize full, uint32_t width) {
    uint32_t divisor = 1;
    while (divisor < 16 && full.width / (divisor * 2) >= width && full.height / (divisor * 2) > 0) divisor *= 2;
    return 1.0 / divisor;
}

// The picture with all cells empty, where everything is to go.
struct Sheet {
    uint32_t columns;
    uint32_t width;   // of a frame in it
    uint32_t height;  // likewise
    RgbImage8 image;

    [[nodiscard]] int64_t Left(uint32_t cell) const { return kGap + int64_t{cell % columns} * (width + kGap); }
    [[nodiscard]] int64_t Top(uint32_t cell) const {
        return kGap + int64_t{cell / columns} * (height + kLabelHeight + kGap);
    }
};

Sheet LayOut(FrameSize full, uint32_t width, uint32_t cells) {
    const auto columns = static_cast<uint32_t>(std::ceil(std::sqrt(cells)));
    const uint32_t rows = (cells + columns - 1) / columns;
    const uint64_t height = std::max<uint64_t>(1, uint64_t{width} * full.height / full.width);
    const uint64_t whole_width = uint64_t{columns} * (width + kGap) + kGap;
    const uint64_t whole_height = rows * (height + kLabelHeight + kGap) + kGap;
    if (!FitsPng8(whole_width, whole_height)) {
        throw Failure("the sheet would be too large: ask for fewer frames or a smaller --width");
    }
    return {columns, width, static_cast<uint32_t>(height),
            MakeImage(static_cast<uint32_t>(whole_width), static_cast<uint32_t>(whole_height), kBackground)};
}

void DrawCells(Clip& clip, FrameOptions request, uint64_t frame_count, uint32_t cells, Sheet& sheet) {
    Progress progress("sheet", cells);
    Frame frame;
    for (uint32_t cell = 0; cell < cells; ++cell) {
        InterruptScope::Check();
        const uint64_t number = cells > 1 ? cell * (frame_count - 1) / (cells - 1) : 0;
        ReadFrame(clip.Video(), number, request, frame);
        const int64_t left = sheet.Left(cell);
        const int64_t top = sheet.Top(cell);
        DrawScaled(sheet.image, left, top, sheet.width, sheet.height, ToRgb8(frame));
        DrawDigits(sheet.image, left, top + sheet.height + 4, kDot, std::to_string(number), kLabel);
        progress.Step();
    }
}

int Run(Context& context, const Options& options) {
    CheckOutput(options.output, options.clip);
    const InterruptScope interrupts;
    Clip clip = OpenClip(context, options.clip);
    const uint64_t frame_count = clip.FrameCount();
    CheckFrame(0, frame_count);
    const auto cells = static_cast<uint32_t>(std::min<uint64_t>(options.frames, frame_count));

    FrameOptions request;
    const FrameSize full = MeasureFrame(clip.Video(), request);
    request.scale = ScaleFor(full, options.width);
    Sheet sheet = LayOut(full, options.width, cells);
    DrawCells(clip, request, frame_count, cells, sheet);
    WritePng(options.output, sheet.image);
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
