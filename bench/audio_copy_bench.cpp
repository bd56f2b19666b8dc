// Sample conversion against its bound: the faster of memcpy and a copy with streaming stores that reads and writes as
// many bytes in all. Conversion and bound are timed in turn, so that other work of the machine meets both alike, and
// the fastest round of each counts: what a busy machine adds is not theirs.
#include <benchmark/benchmark.h>
#include <emmintrin.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "audio/converter_table.h"
#include "audio/copy_engine.h"
#include "audio/cpu_level.h"
#include "bench/summary.h"

namespace clipfio::audio {
namespace {

constexpr int32_t kLarge = 1 << 20;
constexpr int32_t kSmall = 1 << 12;
constexpr int kRounds = 51;

constexpr KTSAMPLETYPE kTypes[] = {KTSAMPLETYPE_PCM8,      KTSAMPLETYPE_PCM16,   KTSAMPLETYPE_PCM24,
                                   KTSAMPLETYPE_PCM32,     KTSAMPLETYPE_FLOAT32, KTSAMPLETYPE_FLOAT64,
                                   KTSAMPLETYPE_PCM24IN32, KTSAMPLETYPE_PCM8S,   KTSAMPLETYPE_PCM16BE,
                                   KTSAMPLETYPE_PCM24BE,   KTSAMPLETYPE_PCM32BE};

struct TypePair {
    KTSAMPLETYPE destination;
    KTSAMPLETYPE source;
    auto operator<=>(const TypePair&) const = default;
};

// One column of the report: a level, a size and a gain.
struct Column {
    CpuLevel level;
    int32_t samples;
    float gain;
    auto operator<=>(const Column&) const = default;
};

struct AlignedFree {
    void operator()(uint8_t* p) const { std::free(p); }
};
using Buffer = std::unique_ptr<uint8_t, AlignedFree>;

Buffer MakeBuffer() {
    constexpr size_t kBytes = size_t{kLarge} * 8;
    Buffer buffer(static_cast<uint8_t*>(std::aligned_alloc(4096, kBytes)));
    if (!buffer) std::abort();
    // Sound in every format: no code of it makes a float that is slow or not a number.
    for (size_t i = 0; i < kBytes; ++i) buffer.get()[i] = static_cast<uint8_t>(0x30 + i % 7);
    return buffer;
}

uint8_t* Source() {
    static const Buffer buffer = MakeBuffer();
    return buffer.get();
}

uint8_t* Destination() {
    static const Buffer buffer = MakeBuffer();
    return buffer.get();
}

void StreamCopy(uint8_t* dst, const uint8_t* src, size_t bytes) {
    for (size_t i = 0; i + 64 <= bytes; i += 64) {
        for (size_t j = 0; j < 64; j += 16) {
            _mm_stream_si128(reinterpret_cast<__m128i*>(dst + i + j),
                             _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + i + j)));
        }
    }
    _mm_sfence();
}

double Fastest(const std::vector<double>& times) { return *std::min_element(times.begin(), times.end()); }

// Seconds for one call, over enough calls for the clock. A call before them leaves the caches as this action leaves
// them: a streaming copy, for one, would throw the others' buffers out.
template <class Action>
double Time(int32_t samples, Action&& action) {
    const int calls = std::max(1, kLarge / 2 / samples);
    action();
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < calls; ++i) {
        action();
        benchmark::ClobberMemory();
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() / calls;
}

std::map<Column, std::map<TypePair, double>>& Ratios() {
    static std::map<Column, std::map<TypePair, double>> ratios;
    return ratios;
}

void Convert(benchmark::State& state, TypePair pair, Column column) {
    const KTAUDIOCOPYFUNC convert = FindConverter(column.level, pair.destination, pair.source);
    const size_t width = KtAudio_BytesFromSampleType(pair.destination) + KtAudio_BytesFromSampleType(pair.source);
    const size_t halfBytes = static_cast<size_t>(column.samples) * width / 2;
    std::vector<double> conversions, copies, streams;
    const auto timeConversion = [&] {
        conversions.push_back(
            Time(column.samples, [&] { convert(Destination(), Source(), column.samples, column.gain); }));
    };
    const auto timeCopy = [&] {
        copies.push_back(Time(column.samples, [&] { std::memcpy(Destination(), Source(), halfBytes); }));
    };
    for (auto _ : state) {
        // Whoever comes first after the streaming copy finds colder caches: they take turns.
        if (copies.size() % 2 == 0) {
            timeConversion();
            timeCopy();
        } else {
            timeCopy();
            timeConversion();
        }
        streams.push_back(Time(column.samples, [&] { StreamCopy(Destination(), Source(), halfBytes); }));
        state.SetIterationTime(conversions.back());
    }
    const double ratio = Fastest(conversions) / std::min(Fastest(copies), Fastest(streams));
    Ratios()[column][pair] = ratio;
    state.counters["ratio"] = ratio;
    state.SetBytesProcessed(static_cast<int64_t>(2 * halfBytes) * state.iterations());
}

const char* NameOfSize(int32_t samples) { return samples == kLarge ? "1Mi" : "4Ki"; }

std::string NameOfColumn(const Column& column) {
    return std::string(NameOf(column.level)) + "/" + NameOfSize(column.samples) + (column.gain == 1.0f ? "" : "/gain");
}

const CpuLevel kBest = CurrentCpuLevel();

std::vector<Column> Columns() {
    std::vector<Column> columns = {{kBest, kLarge, 1.0f}, {kBest, kSmall, 1.0f}, {kBest, kLarge, 0.7071f}};
    for (const CpuLevel level : {CpuLevel::Avx2, CpuLevel::Sse41, CpuLevel::Sse2}) {
        if (level >= kBest) continue;
        columns.push_back({level, kLarge, 1.0f});
        columns.push_back({level, kSmall, 1.0f});
    }
    return columns;
}

[[maybe_unused]] const bool registered = [] {
    for (const Column& column : Columns()) {
        for (const KTSAMPLETYPE destination : kTypes) {
            for (const KTSAMPLETYPE source : kTypes) {
                if (!FindConverter(column.level, destination, source)) continue;
                const std::string name = "audio_copy/" + NameOfColumn(column) + "/" + std::to_string(destination) +
                                         "_from_" + std::to_string(source);
                benchmark::RegisterBenchmark(name.c_str(), Convert, TypePair{destination, source}, column)
                    ->UseManualTime()
                    ->Iterations(kRounds)
                    ->Unit(benchmark::kMicrosecond);
            }
        }
    }
    return true;
}();

double GeometricMean(const std::map<TypePair, double>& ratios) {
    double logs = 0;
    for (const auto& [pair, ratio] : ratios) logs += std::log(ratio);
    return std::exp(logs / static_cast<double>(ratios.size()));
}

double Largest(const std::map<TypePair, double>& ratios) {
    double largest = 0;
    for (const auto& [pair, ratio] : ratios) largest = std::max(largest, ratio);
    return largest;
}

void PrintGoal(const std::string& what, double value, double goal) {
    std::printf("%-58s %6.2f  goal %.2f  %s\n", what.c_str(), value, goal, value <= goal ? "met" : "MISSED");
}

// Sources are columns, destinations are lines.
void PrintMatrix(const std::map<TypePair, double>& ratios) {
    std::printf("%6s", "to");
    for (const KTSAMPLETYPE source : kTypes) std::printf("%6u", static_cast<unsigned>(source));
    std::printf("\n");
    for (const KTSAMPLETYPE destination : kTypes) {
        std::printf("%6u", static_cast<unsigned>(destination));
        for (const KTSAMPLETYPE source : kTypes) {
            const auto found = ratios.find({destination, source});
            if (found == ratios.end()) {
                std::printf("%6s", "-");
            } else {
                std::printf("%6.2f", found->second);
            }
        }
        std::printf("\n");
    }
}

void PrintReport() {
    for (const Column& column : Columns()) {
        const auto found = Ratios().find(column);
        if (found == Ratios().end()) continue;
        std::printf("\nSample conversion, time over the bound: %s, %zu pairs, geometric mean %.2f, largest %.2f\n",
                    NameOfColumn(column).c_str(), found->second.size(), GeometricMean(found->second),
                    Largest(found->second));
        PrintMatrix(found->second);
    }
    std::printf("\n");
    const auto large = Ratios().find({kBest, kLarge, 1.0f});
    if (large != Ratios().end()) {
        constexpr TypePair kMain[] = {
            {KTSAMPLETYPE_PCM16, KTSAMPLETYPE_FLOAT32},   {KTSAMPLETYPE_FLOAT32, KTSAMPLETYPE_PCM16},
            {KTSAMPLETYPE_FLOAT64, KTSAMPLETYPE_FLOAT32}, {KTSAMPLETYPE_FLOAT32, KTSAMPLETYPE_FLOAT64},
            {KTSAMPLETYPE_FLOAT32, KTSAMPLETYPE_PCM24},   {KTSAMPLETYPE_PCM24, KTSAMPLETYPE_FLOAT32},
            {KTSAMPLETYPE_FLOAT32, KTSAMPLETYPE_PCM32BE}};
        for (const TypePair& pair : kMain) {
            const auto ratio = large->second.find(pair);
            if (ratio == large->second.end()) continue;
            PrintGoal("1Mi samples to " + std::to_string(pair.destination) + " from " + std::to_string(pair.source),
                      ratio->second, 1.25);
        }
        PrintGoal("1Mi samples, all pairs, geometric mean", GeometricMean(large->second), 1.6);
        PrintGoal("1Mi samples, all pairs, largest", Largest(large->second), 3.0);
    }
    const auto small = Ratios().find({kBest, kSmall, 1.0f});
    if (small != Ratios().end()) PrintGoal("4Ki samples, all pairs, geometric mean", GeometricMean(small->second), 4.0);
    const auto sse2 = Ratios().find({CpuLevel::Sse2, kLarge, 1.0f});
    if (sse2 != Ratios().end())
        PrintGoal("1Mi samples with SSE2 alone, geometric mean", GeometricMean(sse2->second), 4.0);
}

[[maybe_unused]] const bool reported = bench::AddSummary(PrintReport);

}  // namespace
}  // namespace clipfio::audio
