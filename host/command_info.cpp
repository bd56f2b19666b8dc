// clipfio info: what a clip is.
#include <array>
#include <cstring>
#include <nlohmann/json.hpp>

#include "audio/wave_format.h"
#include "host/clip.h"
#include "host/command.h"
#include "host/failure.h"
#include "host/look.h"
#include "host/memory_stream.h"
#include "host/numbers.h"
#include "host/result_text.h"
#include "host/timecode.h"
#include "platform/text.h"

namespace clipfio::host {
namespace {

using Json = nlohmann::ordered_json;

constexpr double kSecond = 10'000'000.0;
constexpr int32_t kTextSize = 260;

struct Options {
    std::vector<std::string> clips;
    bool json = false;
};

template <class Ask>
std::string TextOf(Ask ask) {
    std::array<WCHAR, kTextSize> buffer{};
    // A text may come with S_FALSE; what was not written is empty.
    if (FAILED(ask(buffer.data(), kTextSize))) return {};
    return platform::Utf8(WStringView(buffer.data()));
}

std::string StreamText(Clip& clip, int32_t stream, uint32_t key) {
    return TextOf([&](WCHAR* buffer, int32_t size) { return clip.File().GetStreamText(buffer, size, stream, key); });
}

Json StreamRate(Clip& clip, int32_t stream) {
    uint32_t rate = 0;
    if (clip.File().GetStreamValue(&rate, sizeof rate, stream, kKtStreamValueDataRate) != S_OK) return nullptr;
    return rate;
}

Json StreamCode(Clip& clip, int32_t stream) {
    char code[4] = {};
    if (clip.File().GetStreamValue(code, sizeof code, stream, kKtStreamValueCode) != S_OK) return nullptr;
    return std::string(code, sizeof code);
}

_ktstreaminfo StreamInfo(Clip& clip, int32_t stream) {
    _ktstreaminfo info{};
    info.size = sizeof info;
    Require(clip.File().GetStreamInfo(&info, stream, 1), "the clip does not describe its streams");
    return info;
}

Json VideoEntry(Clip& clip) {
    // Of the stream itself: what the file says of it may be left out where the sound is out of order.
    _ktstreaminfo native{};
    Require(clip.Video().GetNativeFormat(&native), "the clip does not tell its picture format");
    BITMAPINFOHEADER bitmap;
    std::memcpy(&bitmap, native.format, sizeof bitmap);
    return {{"code", StreamCode(clip, 0)},
            {"type", StreamText(clip, 0, kKtStreamTextType)},
            {"format", StreamText(clip, 0, kKtStreamTextFormat)},
            {"width", bitmap.biWidth},
            {"height", bitmap.biHeight},
            {"bits_per_pixel", bitmap.biBitCount},
            {"frames", clip.FrameCount()},
            {"frame_rate", clip.FrameRate()},
            {"data_rate", StreamRate(clip, 0)}};
}

Json AudioEntry(Clip& clip) {
    if (!clip.HasAudio()) return nullptr;
    const _ktstreaminfo info = StreamInfo(clip, 1);
    _ktwaveformat format;
    std::memcpy(&format, info.format, sizeof format);
    return {{"code", StreamCode(clip, 1)},
            {"type", StreamText(clip, 1, kKtStreamTextType)},
            {"format", StreamText(clip, 1, kKtStreamTextFormat)},
            {"channels", format.channels},
            {"sample_rate", format.samplesPerSecond},
            {"samples", info.length},
            {"data_rate", StreamRate(clip, 1)}};
}

Json TimecodeEntry(Clip& clip) {
    if (clip.FrameCount() == 0) return nullptr;
    const auto first = clip.Timecode(kKtMetaFirstTimecode);
    const auto last = clip.Timecode(kKtMetaLastTimecode);
    if (!first || !last) return nullptr;
    const double rate = clip.FrameRate();
    return {{"first", TimecodeText(TimecodeOfTime(*first, rate))},
            {"last", TimecodeText(TimecodeOfTime(*last, rate))},
            {"first_ticks", *first},
            {"last_ticks", *last}};
}

std::string Text(const Json& value) {
    return value.is_null() ? "unknown" : value.is_string() ? value.get<std::string>() : value.dump();
}

std::string Describe(const std::string& path, const Json& entry, const Look& look) {
    const Json& video = entry["video"];
    const Json& audio = entry["audio"];
    const Json& timecode = entry["timecode"];
    const auto line = [](const char* name, const std::string& text) {
        std::string label = std::string("  ") + name;
        label.resize(14, ' ');
        return label + text + "\n";
    };
    std::string text = path + "\n";
    text += line("type", Text(entry["class"]["name"]));
    text += line("duration", NumberText(entry["duration"]["seconds"].get<double>()) + " s, " + Text(video["frames"]) +
                                 " frames at " + NumberText(video["frame_rate"].get<double>()) + " a second");
    text += line("data rate", Text(entry["data_rate"]) + " bytes a second");
    text += line("video", Text(video["type"]) + ", " + Text(video["format"]) + ", " + Text(video["data_rate"]) +
                              " bytes a second");
    text += line("audio", audio.is_null()
                              ? "none"
                              : Text(audio["type"]) + ", " + Text(audio["format"]) + ", " + Text(audio["samples"]) +
                                    " samples, " + Text(audio["data_rate"]) + " bytes a second");
    text += line("timecode", timecode.is_null() ? "none" : Text(timecode["first"]) + " to " + Text(timecode["last"]));
    text += line("decoder", Text(entry["decoder"]));
    text += line("settings", entry["settings"]["source"] == "file" ? "from " + Text(entry["settings"]["file"])
                                                                   : std::string("the clip's own"));
    return text + DescribeLook(look, "    ");
}

std::string Inspect(Context& context, const std::string& path, Json& entry) {
    const Module& module = context.GetModule();
    Clip clip(module, path);
    const auto strings = module.ClassStrings();
    const auto string = [&strings](uint32_t id) {
        const auto at = strings.find(id);
        return at == strings.end() ? Json(nullptr) : Json(at->second);
    };
    GUID format_id{};
    Require(module.FileClass().GetFormatId(&format_id), "the module does not tell its format");
    entry["class"] = {{"name", string(kClassName)},
                      {"short_name", string(kClassShortName)},
                      {"pattern", string(kClassPattern)},
                      {"format_id", GuidText(format_id)}};
    int64_t duration = 0;
    Require(clip.File().GetDuration(&duration), "the clip does not tell its duration");
    entry["duration"] = {{"seconds", static_cast<double>(duration) / kSecond}, {"ticks", duration}};
    uint32_t rate = 0;
    const bool has_rate = clip.File().GetFileValue(&rate, sizeof rate, kKtFileValueDataRate) == S_OK;
    entry["data_rate"] = has_rate ? Json(rate) : Json(nullptr);
    entry["video"] = VideoEntry(clip);
    entry["audio"] = AudioEntry(clip);
    entry["timecode"] = TimecodeEntry(clip);

    const Look look = GatherLook(clip);
    entry["decoder"] = look.decoder.empty() ? Json(nullptr) : Json(look.decoder);
    entry["settings"] = SettingsEntry(path, look);
    return Describe(path, entry, look);
}

int Run(Context& context, const Options& options) {
    if (options.clips.empty()) throw UsageError("info: name at least one clip");
    FileResults results(options.json);
    for (const std::string& path : options.clips) {
        results.Add(path, [&](Json& entry) { return Inspect(context, path, entry); });
    }
    return results.Finish();
}

}  // namespace

void AddInfo(CommandLine& line, Context& context) {
    const auto options = std::make_shared<Options>();
    Arguments arguments = line.Add("info", "Tells what clips are: streams, duration, timecode, settings in force",
                                   [options, &context] { return Run(context, *options); });
    arguments.Texts("clips", options->clips, "The clips", "CLIP");
    arguments.Flag("--json", options->json, "One JSON object for all clips");
}

}  // namespace clipfio::host
