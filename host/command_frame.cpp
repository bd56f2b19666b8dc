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

std::string DefaultOutput(const Options& options) {
    return Utf8FromPath(PathFromUtf8(options.clip).stem()) + "-" + options.number +
           (options.frame.bits == 128 ? ".pfm" : ".png");
}

int Run(Context& context, const Options& options) {
    const uint64_t number = ParsePosition(options.number, "N");
    const std::string output = options.output.empty() ? DefaultOutput(options) : options.output;
    const bool is_float_file = LowerExtension(output) == ".pfm";
    if (is_float_file && options.frame.bits == 32) throw UsageError("a PFM file takes the floats of --bits 128");

    const InterruptScope interrupts;
    Clip clip = OpenClip(context, options.clip);
    CheckFrame(number, clip.FrameCount());
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
    Say("frame " + options.number + ", " + std::to_string(frame.width) + "x" + std::to_string(frame.height) + ", in " +
        output);
    return kExitDone;
}

}  // namespace

void AddFrame(CLI::App& app, Context& context) {
    const auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand("frame", "Writes one frame as a PNG or PFM file");
    AddClip(*command, options->clip);
    command->add_option("number", options->number, "The frame, from 0")->required()->type_name("N");
    command->add_option("-o,--output", options->output, "The file; .pfm holds floats, everything else is PNG")
        ->type_name("FILE");
    AddFrameOptions(*command, options->frame);
    command->add_option("--bits", options->frame.bits, "32: 8 bits a sample. 128: floats; 16 bits a sample in a PNG")
        ->check(CLI::IsMember({32, 128}))
        ->capture_default_str();
    command
        ->add_option("--gamma", options->frame.gamma, "With --bits 128: 1 for linear light, 0 or 2.2222 for Rec. 709")
        ->check(CLI::Range(0.0, 10.0))
        ->type_name("G")
        ->capture_default_str();
    command->callback([options, &context] { context.run = [options, &context] { return Run(context, *options); }; });
}

}  // namespace clipfio::host
