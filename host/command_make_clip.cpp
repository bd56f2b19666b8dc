// clipfio make-clip: a clip from raw frames and a WAV file.

#include <cstdio>
#include <vector>

#include "host/clip_making.h"
#include "host/command.h"
#include "host/console.h"
#include "host/failure.h"
#include "host/frame_options.h"
#include "host/output_file.h"
#include "platform/program.h"
#include "platform/text.h"
#include "substitutes/decoder/wav_input.h"

namespace clipfio::host {
namespace {

constexpr std::size_t kSamplesPerRead = 65536;
constexpr uint32_t kMostChannels = 4;

struct Options {
    std::string output;
    std::string size;
    std::string rate;
    std::string audio;
    std::string timecode;
};

void OpenSound(decoder::WavInput& sound, const std::string& path, decoder::ClipDescription& description) {
    if (!sound.Open(platform::Wide(path))) throw Failure(path + ": " + sound.Error());
    if (sound.Channels() > kMostChannels) {
        throw Failure(path + ": it has " + std::to_string(sound.Channels()) + " channels, and a clip holds 4 at most");
    }
    if (sound.SampleCount() == 0) Say(path + ": it holds no sound");
    description.sample_rate = sound.SampleRate();
    description.sample_size = sound.SampleSize();
    description.channel_mask = (1u << sound.Channels()) - 1;
}

void TakeFrames(ClipMaker& maker, PictureSize size) {
    std::vector<uint16_t> frame(std::size_t{size.width} * size.height * 3);
    for (;;) {
        const std::size_t bytes = ReadStandardInput(frame.data(), frame.size() * sizeof frame[0]);
        if (bytes == 0) break;
        if (bytes < frame.size() * sizeof frame[0]) {
            throw Failure("standard input ends within frame " + std::to_string(maker.FrameCount()) + ": a frame of " +
                          std::to_string(size.width) + "x" + std::to_string(size.height) + " takes " +
                          std::to_string(frame.size() * sizeof frame[0]) + " bytes of rgb48le; does --size fit?");
        }
        maker.AddFrame(frame.data());
    }
    if (maker.FrameCount() == 0) throw Failure("standard input holds no frame");
}

void TakeSound(ClipMaker& maker, decoder::WavInput& sound) {
    std::vector<int32_t> samples(kSamplesPerRead * sound.Channels());
    uint64_t done = 0;
    while (done < sound.SampleCount()) {
        InterruptScope::Check();
        const std::size_t read = sound.Read(samples.data(), kSamplesPerRead);
        if (read == 0) throw Failure("the sound ends at sample " + std::to_string(done) + ": " + sound.Error());
        maker.AddAudio(samples, read);
        done += read;
    }
}

int Run(const Options& options) {
    const PictureSize size = ParseSize(options.size);
    decoder::ClipDescription description = DescribeClip(size, ParseRate(options.rate));
    if (!options.timecode.empty()) ParseStartTimecode(options.timecode, description);
    if (!options.audio.empty()) CheckOutput(options.output, options.audio);
    if (platform::IsTerminal(stdin)) throw Failure("standard input is a terminal: pipe frames of rgb48le into it");
    decoder::WavInput sound;
    if (!options.audio.empty()) OpenSound(sound, options.audio, description);

    const InterruptScope interrupts;
    ClipMaker maker(options.output, description);
    TakeFrames(maker, size);
    if (!options.audio.empty()) TakeSound(maker, sound);
    const uint64_t frames = maker.FrameCount();
    maker.Finish();
    Say(std::to_string(frames) + " frames in " + options.output);
    return kExitDone;
}

}  // namespace

void AddMakeClip(CommandLine& line, Context&) {
    const auto options = std::make_shared<Options>();
    Arguments arguments = line.Add("make-clip", "Makes a clip of raw frames (rgb48le) from standard input",
                                   [options] { return Run(*options); });
    arguments.Text("output", options->output, "The clip to write", "OUT.r3d", Arguments::kRequired);
    arguments.Text("--size", options->size, "Size of the frames", "WxH", Arguments::kRequired);
    arguments.Text("--rate", options->rate, "Frames a second: 24, 23.976, 30000/1001", "R", Arguments::kRequired);
    arguments.Text("--audio", options->audio, "A WAV file of 1 to 4 channels", "X.wav");
    arguments.Text("--timecode", options->timecode, "Of the first frame; hh:mm:ss;ff counts drop-frame", "hh:mm:ss:ff");
    arguments.Footer("ffmpeg -i X -f rawvideo -pix_fmt rgb48le - | clipfio make-clip OUT.r3d --size WxH --rate R");
}

}  // namespace clipfio::host
