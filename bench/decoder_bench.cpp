// A frame of 3840 x 2160 from the clip file to the client's picture, on one thread, through the built decoder library.
// Aims: full size below 60 ms, quarter size below 15 ms, whatever the settings.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <vector>

#include "platform/files.h"
#include "platform/modules.h"
#include "platform/text.h"
#include "r3dsdk/sdk_records.h"
#include "substitutes/decoder/clip_writer.h"
#include "substitutes/decoder/test_pattern.h"

namespace {

using clipfio::DecodeMode;
using clipfio::DecodeSettingsRecord;
using clipfio::PixelType;
using clipfio::VideoDecodeJob;

constexpr uint32_t kWidth = 3840, kHeight = 2160;

template <class Function>
Function* Bind(HMODULE library, const char* symbol) {
    const FARPROC address = GetProcAddress(library, symbol);
    if (address == nullptr) std::abort();
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(address));
}

WString ClipPath() {
    WCHAR folder[MAX_PATH + 1] = {};
    GetTempPathW(MAX_PATH, folder);
    return folder + WString(W("decoder_bench.r3d"));
}

// By its whole path: another library of that file name may have been loaded from elsewhere.
WString LibraryPath() {
    WCHAR program[1024] = {};
    const WString path(program, GetModuleFileNameW(nullptr, program, 1024));
    return path.substr(0, path.find_last_of(W("\\/")) + 1) + W("REDR3D-x64.dll");
}

// One clip of two frames, open in the library for the life of the program.
class Scene {
  public:
    static Scene& Get() {
        static Scene scene;
        return scene;
    }

    void Decode(uint64_t frame, DecodeMode mode, uint32_t divisor, PixelType type, const DecodeSettingsRecord& look) {
        const uint32_t pixel_bytes = type == PixelType::Bgra8 ? 4 : 6;
        VideoDecodeJob job;
        job.decodeMode = mode;
        job.pixelType = type;
        job.output = output_.data();
        job.rowBytes = uint64_t{kWidth / divisor} * pixel_bytes;
        job.outputBytes = job.rowBytes * (kHeight / divisor);
        job.settings = &look;
        if (decode_frame_(clip_, frame, &job) != 0) std::abort();
        benchmark::DoNotOptimize(output_.data());
    }

  private:
    Scene() : path_(ClipPath()), output_(size_t{kWidth} * kHeight * 3) {
        clipfio::decoder::TestPattern pattern(kWidth, kHeight);
        clipfio::decoder::ClipWriter writer;
        bool good = writer.Open(path_, {.width = kWidth, .height = kHeight});
        for (uint64_t i = 0; i < 2; ++i) good = good && writer.AddFrame(pattern.Frame(i));
        const HMODULE library = LoadLibraryW(LibraryPath().c_str());
        if (!good || !writer.Finish() || library == nullptr) std::abort();
        decode_frame_ = Bind<uint32_t(uintptr_t, uint64_t, const VideoDecodeJob*)>(library, "R3D_AAI");
        clip_ = Bind<uintptr_t()>(library, "R3D_AAB")();
        if (Bind<uint32_t(uintptr_t, const char*)>(library, "R3D_AAE")(clip_, platform::Utf8(path_).c_str()) != 0) {
            std::abort();
        }
    }
    ~Scene() { DeleteFileW(path_.c_str()); }

    WString path_;
    std::vector<uint16_t> output_;
    uint32_t (*decode_frame_)(uintptr_t, uint64_t, const VideoDecodeJob*) = nullptr;
    uintptr_t clip_ = 0;
};

DecodeSettingsRecord Neutral() {
    DecodeSettingsRecord look;
    look.imageColorSpace = 1;
    look.imageGammaCurve = 1;
    return look;
}

DecodeSettingsRecord Graded() {
    DecodeSettingsRecord look = Neutral();
    look.colorTemperature = 4800.0f;
    look.exposureCompensation = 0.5f;
    look.contrast = 0.2f;
    look.lggRed.gamma = 1.1f;
    look.userCurve.xy[5] = 0.55f;
    return look;
}

// Saturation mixes the channels, and shadows cannot be folded into the mixing: the longest way.
DecodeSettingsRecord Mixed() {
    DecodeSettingsRecord look = Graded();
    look.saturation = 1.2f;
    look.shadow = 0.5f;
    return look;
}

void Frames(benchmark::State& state, DecodeMode mode, uint32_t divisor, PixelType type, DecodeSettingsRecord look) {
    Scene& scene = Scene::Get();  // made before the clock starts
    uint64_t frame = 0;
    for (auto _ : state) scene.Decode(frame++ % 2, mode, divisor, type, look);
}

// Every frame with another exposure, as while a slider is dragged: the tables are made anew.
void DraggedFrames(benchmark::State& state) {
    Scene& scene = Scene::Get();
    DecodeSettingsRecord look = Mixed();
    for (auto _ : state) {
        look.exposureCompensation += 0.0001f;
        scene.Decode(0, DecodeMode::QuarterGood, 4, PixelType::Bgra8, look);
    }
}

BENCHMARK_CAPTURE(Frames, full8_neutral, DecodeMode::FullPremium, 1, PixelType::Bgra8, Neutral())
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Frames, full8_graded, DecodeMode::FullPremium, 1, PixelType::Bgra8, Graded())
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Frames, full8_mixed, DecodeMode::FullPremium, 1, PixelType::Bgra8, Mixed())
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Frames, full16_neutral, DecodeMode::FullPremium, 1, PixelType::Rgb16, Neutral())
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Frames, full16_mixed, DecodeMode::FullPremium, 1, PixelType::Rgb16, Mixed())
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Frames, half8_mixed, DecodeMode::HalfGood, 2, PixelType::Bgra8, Mixed())
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Frames, quarter8_mixed, DecodeMode::QuarterGood, 4, PixelType::Bgra8, Mixed())
    ->Unit(benchmark::kMillisecond);
BENCHMARK(DraggedFrames)->Unit(benchmark::kMillisecond);

}  // namespace
