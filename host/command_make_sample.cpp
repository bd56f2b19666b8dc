// clipfio make-sample: a clip with a moving test picture and a test sound.
#include <algorithm>
#include <cmath>
#include <vector>

#include "host/clip_making.h"
#include "host/command.h"
#include "host/console.h"
#include "host/failure.h"
#include "host/frame_options.h"
#include "host/progress.h"
#include "substitutes/decoder/test_pattern.h"

namespace clipfio::host {
namespace {

constexpr uint32_t kSampleRate = 48000;
constexpr uint32_t kDefaultFrames = 48;
constexpr uint32_t kMostFrames = 10'000'000;
constexpr double kMostSeconds = 10'000'000;
constexpr uint32_t kMostChannels = 4;
constexpr uint64_t kSamplesPerPortion = 65536;

struct Options {
    std::string output;
    std::string size = "640x360";
    std::string rate = "24";
    uint32_t frames = 0;
    double seconds = 0;
    uint32_t channels = 2;
};

uint64_t FrameCount(const Options& options, double rate) {
    if (options.frames > 0 && options.seconds > 0) throw UsageError("--seconds and --frames exclude each other");
    if (options.frames > 0) return options.frames;
    if (options.seconds <= 0) return kDefaultFrames;
    const double frames = std::ceil(options.seconds * rate - 1e-9);
    if (frames > static_cast<double>(kMostFrames)) throw UsageError("--seconds: that is more than ten million frames");
    return std::max(uint64_t{1}, static_cast<uint64_t>(frames));
}

// In portions, for a frame may last hours.
void AddTone(ClipMaker& maker, const decoder::TestSound& tone, uint32_t channels, uint64_t first, uint64_t end) {
    std::vector<int32_t> sound;
    while (first < end) {
        InterruptScope::Check();
        const auto count = static_cast<std::size_t>(std::min(end - first, kSamplesPerPortion));
        sound.resize(count * channels);
        tone.Fill(first, count, sound.data());
        maker.AddAudio(sound, count);
        first += count;
    }
}

void MakeSample(ClipMaker& maker, PictureSize size, uint64_t frames, double frames_per_second, uint32_t channels) {
    decoder::TestPattern pattern(size.width, size.height);
    const decoder::TestSound tone(kSampleRate, channels);
    const auto sample_at = [&](uint64_t frame) {
        return static_cast<uint64_t>(std::llround(static_cast<double>(frame) / frames_per_second * kSampleRate));
    };
    Progress progress("make-sample", frames);
    for (uint64_t frame = 0; frame < frames; ++frame) {
        InterruptScope::Check();
        maker.AddFrame(pattern.Frame(frame));
        if (channels > 0) AddTone(maker, tone, channels, sample_at(frame), sample_at(frame + 1));
        progress.Step();
    }
}

int Run(const Options& options) {
    const PictureSize size = ParseSize(options.size);
    const Rate rate = ParseRate(options.rate);
    decoder::ClipDescription description = DescribeClip(size, rate);
    const double frames_per_second = double{1} * rate.numerator / rate.denominator;
    const uint64_t frames = FrameCount(options, frames_per_second);
    ParseStartTimecode("01:00:00:00", description);
    if (options.channels > 0) {
        description.sample_rate = kSampleRate;
        description.channel_mask = (1u << options.channels) - 1;
    }

    const InterruptScope interrupts;
    ClipMaker maker(options.output, description);
    MakeSample(maker, size, frames, frames_per_second, options.channels);
    maker.Finish();
    Say(std::to_string(frames) + " frames in " + options.output);
    return kExitDone;
}

}  // namespace

void AddMakeSample(CommandLine& line, Context&) {
    const auto options = std::make_shared<Options>();
    Arguments arguments = line.Add("make-sample", "Makes a clip with a moving test picture and a test sound",
                                   [options] { return Run(*options); });
    arguments.Text("output", options->output, "The clip to write", "OUT.r3d", Arguments::kRequired);
    arguments.Text("--size", options->size, "Size of the picture", "WxH");
    arguments.Text("--rate", options->rate, "Frames a second: 24, 23.976, 30000/1001", "R");
    arguments.Number("--frames", options->frames, 1, kMostFrames, "Frames (else 48)", "N");
    arguments.Real("--seconds", options->seconds, 0, Arguments::kExcluded, kMostSeconds, "Length in place of --frames",
                   "S");
    arguments.Number("--channels", options->channels, 0, kMostChannels, "Channels of sound, 0 for none", "C");
}

}  // namespace clipfio::host
