// Drop-frame labels from times and times from labels, beside what libavutil takes for the same with frame numbers in
// the place of times. The ratios are printed last.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <random>

extern "C" {
#include <libavutil/timecode.h>
}

#include "bench/summary.h"
#include "kernel/time_parse.h"
#include "kernel/time_text.h"

namespace {

constexpr std::size_t kCount = 1024;
constexpr _ktposfmt kFormat{KTPOSFMT_SMPTE_DROP, 48000, 30000.0 / 1001, 120.0, 0, 4, 4, 960};
constexpr AVRational kRate{30000, 1001};

// The same frames of a day in all forms.
struct Scene {
    Scene() {
        std::mt19937 random(1);
        av_timecode_init(&timecode, kRate, AV_TIMECODE_FLAG_DROPFRAME, 0, nullptr);
        for (std::size_t i = 0; i < kCount; ++i) {
            frames[i] = static_cast<int>(random() % 2589408);
            av_timecode_make_string(&timecode, narrow[i].data(), frames[i]);
            for (std::size_t c = 0; c < narrow[i].size(); ++c) wide[i][c] = static_cast<WCHAR>(narrow[i][c]);
            times[i] = KtTextToNanoTimeToken(wide[i].data(), &kFormat, 0, nullptr);
        }
    }

    AVTimecode timecode{};
    std::array<int, kCount> frames{};
    std::array<int64_t, kCount> times{};
    std::array<std::array<char, AV_TIMECODE_STR_SIZE>, kCount> narrow{};
    std::array<std::array<WCHAR, AV_TIMECODE_STR_SIZE>, kCount> wide{};
};

const Scene& TheScene() {
    static const Scene scene;
    return scene;
}

void Label(std::size_t i) {
    WCHAR text[32];
    KtNanoTimeToText(text, &kFormat, TheScene().times[i], 0);
    benchmark::DoNotOptimize(text);
}

void LabelOfLibavutil(std::size_t i) {
    char text[AV_TIMECODE_STR_SIZE];
    av_timecode_make_string(&TheScene().timecode, text, TheScene().frames[i]);
    benchmark::DoNotOptimize(text);
}

void Time(std::size_t i) {
    benchmark::DoNotOptimize(KtTextToNanoTimeToken(TheScene().wide[i].data(), &kFormat, 0, nullptr));
}

void TimeOfLibavutil(std::size_t i) {
    AVTimecode timecode;
    av_timecode_init_from_string(&timecode, kRate, TheScene().narrow[i].data(), nullptr);
    benchmark::DoNotOptimize(timecode);
}

template <void (*Operation)(std::size_t)>
void Run(benchmark::State& state) {
    std::size_t i = 0;
    TheScene();
    for (auto _ : state) Operation(i++ % kCount);
    state.SetItemsProcessed(state.iterations());
}

BENCHMARK(Run<Label>)->Name("timecode/drop_label_of_a_time");
BENCHMARK(Run<LabelOfLibavutil>)->Name("timecode/drop_label_of_a_frame_libavutil");
BENCHMARK(Run<Time>)->Name("timecode/time_of_a_drop_label");
BENCHMARK(Run<TimeOfLibavutil>)->Name("timecode/frame_of_a_drop_label_libavutil");

struct Ratio {
    const char* name;
    void (*ours)(std::size_t);
    void (*theirs)(std::size_t);
    double value = 0;
};
std::array<Ratio, 2> ratios{{{"Drop-frame label of a time, times as fast as libavutil", Label, LabelOfLibavutil},
                             {"Time of a drop-frame label, times as fast as libavutil", Time, TimeOfLibavutil}}};

// The best of many short runs, taken in turn: what else the machine does disturbs both alike.
void Compare(benchmark::State& state) {
    const auto seconds = [](void (*operation)(std::size_t)) {
        const auto start = std::chrono::steady_clock::now();
        for (std::size_t i = 0; i < kCount; ++i) operation(i);
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    Ratio& ratio = ratios[static_cast<std::size_t>(state.range(0))];
    double ours = 1e9, theirs = 1e9;
    for (auto _ : state) {
        ours = std::min(ours, seconds(ratio.ours));
        theirs = std::min(theirs, seconds(ratio.theirs));
    }
    ratio.value = theirs / ours;
    state.counters["ratio"] = ratio.value;
}
BENCHMARK(Compare)->Name("timecode/libavutil_to_ours")->Arg(0)->Arg(1)->Iterations(200)->Unit(benchmark::kMillisecond);

void PrintReport() {
    constexpr double kGoal = 5;
    for (const Ratio& ratio : ratios) {
        if (ratio.value == 0) continue;
        std::printf("%-58s %6.2f  goal %.2f  %s\n", ratio.name, ratio.value, kGoal,
                    ratio.value >= kGoal ? "met" : "MISSED");
    }
}

[[maybe_unused]] const bool reported = clipfio::bench::AddSummary(PrintReport);

}  // namespace
