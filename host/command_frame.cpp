// clipfio frame: one frame as a picture file.
#include "host/clip.h"
#include "host/command.h"
#include "host/console.h"
#include "host/failure.h"
#include "host/frame_options.h"
#include "host/frames.h"
#include "host/output_file.h"
#include "host/pfm_writer.h"
#include "host/positions.h"

namespace clipfio::host {
namespace {

constexpr double kMostGamma = 10;

struct Options {
    std::string clip;
    std::string number;
    std::string output;
    FrameOptions frame;
};

std::string LowerExtension(const std::string& path) {
    std::string extension = Utf8FromPath(PathFromUtf8(path).extension());
    for (char& c : extension) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return extension;
}

std::string DefaultOutput(const Options& options, uint64_t number) {
    return Utf8FromPath(PathFromUtf8(options.clip).stem()) + "-" + std::to_string(number) +
           (options.frame.bits == 128 ? ".pfm" : ".png");
}

int Run(Context& context, const Options& options) {
    const FramePosition position = ParseFrame(options.number, "N");
    const bool is_float_file =
        options.output.empty() ? options.frame.bits == 128 : LowerExtension(options.output) == ".pfm";
    if (is_float_file && options.frame.bits == 32) throw UsageError("a PFM file takes the floats of --bits 128");
    if (options.frame.gamma != 0 && options.frame.bits == 32) throw UsageError("--gamma goes with --bits 128");

    const InterruptScope interrupts;
    Clip clip = OpenClip(context, options.clip);
    const uint64_t number = FindFrame(position, clip);
    const std::string output = options.output.empty() ? DefaultOutput(options, number) : options.output;
    CheckOutput(output, options.clip);
    Frame frame;
    ReadFrame(clip.Video(), number, options.frame, frame);
    InterruptScope::Check();
    if (is_float_file) {
        WritePfm(output, frame.width, frame.height, ToRgbFloat(frame));
    } else if (options.frame.bits == 128) {
        WritePng(output, ToRgb16(frame));
    } else {
        WritePng(output, ToRgb8(frame));
    }
    Say("frame " + std::to_string(number) + ", " + std::to_string(frame.width) + "x" + std::to_string(frame.height) +
        ", in " + output);
    return kExitDone;
}

}  // namespace

void AddFrame(CommandLine& line, Context& context) {
    const auto options = std::make_shared<Options>();
    Arguments arguments = line.Add("frame", "Writes one frame as a PNG or PFM file",
                                   [options, &context] { return Run(context, *options); });

    AddClip(arguments, options->clip);
    arguments.Text("number", options->number, "The frame, from 0, or its timecode hh:mm:ss:ff", "N",
                   Arguments::kRequired);
    arguments.Text("-o,--output", options->output, "The file; .pfm holds floats, everything else is PNG", "FILE");
    AddFrameOptions(arguments, options->frame);
    arguments.Choice("--bits", options->frame.bits, {32, 128},
                     "32: 8 bits a sample. 128: floats; 16 bits a sample in a PNG");
    arguments.Real("--gamma", options->frame.gamma, 0, Arguments::kIncluded, kMostGamma,
                   "With --bits 128: 1 for linear light, 0 or 2.2222 for Rec. 709", "G");
}

}  // namespace clipfio::host
