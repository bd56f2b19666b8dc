// clipfio waveform: a picture of the sound.
#include <algorithm>
#include <cmath>

#include "host/canvas.h"
#include "host/clip.h"
#include "host/command.h"
#include "host/console.h"
#include "host/failure.h"
#include "host/frame_options.h"
#include "host/output_file.h"
#include "host/progress.h"
#include "host/sound.h"

namespace clipfio::host {
namespace {

constexpr Colour kBackground{24, 26, 30};
constexpr Colour kGrid{60, 64, 70};
constexpr Colour kPeak{70, 130, 180};
constexpr Colour kMean{150, 205, 240};
constexpr Colour kClipped{230, 80, 60};
constexpr uint32_t kDefaultWidth = 1200;
constexpr uint32_t kDefaultLane = 160;
constexpr uint32_t kLargestSide = 16384;
// What a sound of 16 bits reaches at the most: limited sound lies there, whatever its number of bits.
constexpr float kFullScale = 32767.0f / 32768.0f;

struct Options {
    std::string clip;
    std::string output;
    std::string size;
};

// What one column of one channel holds.
struct Column {
    float low = 0.0f;
    float high = 0.0f;
    double squares = 0.0;
    uint64_t count = 0;

    void Add(float sample) {
        if (!(std::fabs(sample) <= 16.0f)) return;  // no number, or none of sound
        low = count == 0 ? sample : std::min(low, sample);
        high = count == 0 ? sample : std::max(high, sample);
        squares += double{sample} * double{sample};
        ++count;
    }
};

// Columns of one channel after the other.
std::vector<Column> Collect(Clip& clip, const SoundFormat& format, uint32_t width) {
    std::vector<Column> columns(std::size_t{format.channels} * width);
    Progress progress("waveform", format.samples);
    uint64_t at = 0;
    ReadSound(clip, format, 0, format.samples, [&](std::span<const float> samples) {
        for (std::size_t i = 0; i < samples.size(); i += format.channels, ++at) {
            const auto x =
                static_cast<std::size_t>(static_cast<double>(at) / static_cast<double>(format.samples) * width);
            for (std::size_t channel = 0; channel < format.channels; ++channel) {
                columns[channel * width + std::min<std::size_t>(x, width - 1)].Add(samples[i + channel]);
            }
        }
        progress.Step(samples.size() / format.channels);
    });
    return columns;
}

void DrawLane(RgbImage8& image, int64_t top, int64_t height, std::span<const Column> columns) {
    const auto y_of = [&](double value) {
        return top + std::llround((1.0 - std::clamp(value, -1.0, 1.0)) / 2.0 * static_cast<double>(height - 1));
    };
    for (const double level : {1.0, 0.5, 0.0, -0.5, -1.0}) FillBox(image, 0, y_of(level), image.width, 1, kGrid);
    for (std::size_t x = 0; x < columns.size(); ++x) {
        const Column& column = columns[x];
        if (column.count == 0) continue;
        const auto bar = [&](double low, double high, Colour colour) {
            FillBox(image, static_cast<int64_t>(x), y_of(high), 1, y_of(low) - y_of(high) + 1, colour);
        };
        const bool clipped = column.high >= kFullScale || column.low <= -kFullScale;
        bar(column.low, column.high, clipped ? kClipped : kPeak);
        const double rms = std::sqrt(column.squares / static_cast<double>(column.count));
        bar(std::max<double>(-rms, column.low), std::min<double>(rms, column.high), kMean);
    }
}

int Run(Context& context, const Options& options) {
    const PictureSize given = options.size.empty() ? PictureSize{} : ParseSize(options.size);
    if (given.width > kLargestSide || given.height > kLargestSide) throw UsageError("--size: at most 16384x16384");
    CheckOutput(options.output, options.clip);
    const InterruptScope interrupts;
    Clip clip = OpenClip(context, options.clip);
    const SoundFormat format = DescribeSound(clip);
    const PictureSize size = options.size.empty() ? PictureSize{kDefaultWidth, kDefaultLane * format.channels} : given;
    const std::vector<Column> columns = Collect(clip, format, size.width);
    RgbImage8 image = MakeImage(size.width, size.height, kBackground);
    for (uint32_t channel = 0; channel < format.channels; ++channel) {
        const int64_t top = int64_t{size.height} * channel / format.channels;
        const int64_t bottom = int64_t{size.height} * (channel + 1) / format.channels;
        DrawLane(image, top + 2, std::max<int64_t>(bottom - top - 4, 1),
                 std::span(columns).subspan(std::size_t{channel} * size.width, size.width));
    }
    WritePng(options.output, image);
    Say(std::to_string(format.samples) + " samples, " + std::to_string(format.channels) + " channels, in " +
        options.output);
    return kExitDone;
}

}  // namespace

void AddWaveform(CommandLine& line, Context& context) {
    const auto options = std::make_shared<Options>();
    Arguments arguments = line.Add("waveform", "Draws the sound into a PNG file, a lane for each channel",
                                   [options, &context] { return Run(context, *options); });

    AddClip(arguments, options->clip);
    arguments.Text("-o,--output", options->output, "The file", "FILE", Arguments::kRequired);
    arguments.Text("--size", options->size, "Size of the picture (else 1200 by 160 a channel)", "WxH");
}

}  // namespace clipfio::host
