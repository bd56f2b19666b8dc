// clipfio audio: the sound as a WAV file.
#include "host/clip.h"
#include "host/command.h"
#include "host/console.h"
#include "host/failure.h"
#include "host/frame_options.h"
#include "host/output_file.h"
#include "host/positions.h"
#include "host/progress.h"
#include "host/sound.h"
#include "host/wav_writer.h"

namespace clipfio::host {
namespace {

struct Options {
    std::string clip;
    std::string output;
    std::string from;
    std::string count;
};

int Run(Context& context, const Options& options) {
    const uint64_t first = options.from.empty() ? 0 : ParsePosition(options.from, "--from");
    const std::string output =
        options.output.empty() ? Utf8FromPath(PathFromUtf8(options.clip).stem()) + ".wav" : options.output;
    CheckOutput(output, options.clip);
    const InterruptScope interrupts;
    Clip clip = OpenClip(context, options.clip);
    const SoundFormat format = DescribeSound(clip);
    const uint64_t left = format.samples - std::min(first, format.samples);
    const uint64_t count = options.count.empty() ? left : ParsePosition(options.count, "--count");
    if (first > format.samples || count > left) {
        throw Failure("the clip has " + std::to_string(format.samples) + " samples; from " + std::to_string(first) +
                      " on there are " + std::to_string(left));
    }

    WavWriter writer(output, {format.rate, format.channels, format.channel_mask}, count);
    {
        Progress progress("audio", count);
        ReadSound(clip, format, first, count, [&](std::span<const float> samples) {
            writer.Write(samples);
            progress.Step(samples.size() / format.channels);
        });
    }
    writer.Finish();
    Say(std::to_string(count) + " samples, " + std::to_string(format.channels) + " channels at " +
        std::to_string(format.rate) + " Hz, in " + output);
    return kExitDone;
}

}  // namespace

void AddAudio(CommandLine& line, Context& context) {
    const auto options = std::make_shared<Options>();
    Arguments arguments = line.Add("audio", "Writes the sound as a WAV file of 32-bit floats",
                                   [options, &context] { return Run(context, *options); });

    AddClip(arguments, options->clip);
    arguments.Text("-o,--output", options->output, "The file (else the clip's name with .wav)", "FILE");
    arguments.Text("--from", options->from, "First sample, from 0", "A");
    arguments.Text("--count", options->count, "Samples per channel (else up to the end)", "N");
}

}  // namespace clipfio::host
