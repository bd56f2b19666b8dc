// One frame of 3840 by 2160 pixels into the host's memory, over a decoder that costs nothing, against its bound: the
// faster of memcpy and a copy with streaming stores, which read and write the same bytes. A 128-bit frame writes more
// than it reads: there each piece of the source is copied until as much is written. Beside it stands the ratio to a
// plain copy of half the bytes in all. Frame and bounds are timed in turn, so that other work of the machine meets all
// alike; medians count.
#include <benchmark/benchmark.h>
#include <emmintrin.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <vector>

#include "bench/summary.h"
#include "platform/modules.h"
#include "platform/scoped.h"
#include "platform/text.h"
#include "reader/plugin_module.h"
#include "reader/read_file_class.h"
#include "tests/reader/fake_decoder.h"

namespace clipfio {
namespace {

using platform::ComPtr;

constexpr uint64_t kWidth = 3840;
constexpr uint64_t kHeight = 2160;

struct Free {
    void operator()(uint8_t* p) const { std::free(p); }
};
using Buffer = std::unique_ptr<uint8_t, Free>;

// Written to once, so that each page is there.
Buffer MakeBuffer(size_t bytes) {
    Buffer buffer(static_cast<uint8_t*>(std::aligned_alloc(4096, bytes)));
    if (!buffer) std::abort();
    std::memset(buffer.get(), 1, bytes);
    return buffer;
}

class Scene {
  public:
    Scene() {
        SetEnvironmentVariableW(W("R3DSDKPATH"), platform::Wide(CLIPFIO_BENCH_DECODER).c_str());
        const HMODULE library = LoadLibraryW(platform::Wide(CLIPFIO_BENCH_DECODER "/REDR3D-x64.dll").c_str());
        const auto state = reinterpret_cast<decltype(&FakeDecoderState)>(
            reinterpret_cast<void*>(GetProcAddress(library, "FakeDecoderState")));
        fake_decoder::Script& script = state()->script;
        script.remembers = false;
        script.clip.width = kWidth;
        script.clip.height = kHeight;
        if (!AttachProcess(nullptr)) std::abort();
        file_class_ = ComPtr<IKtReadFileClass>(new (std::nothrow) CReadFileClass);
        if (file_class_->CreateNamed(file_.Out(), 0, 0, W("/no such folder/clip.r3d"), 1) != S_OK) std::abort();
        if (file_->GetStream(video_.OutVoid(), 0, 0) != S_OK) std::abort();
        Read(128);  // makes the decode buffer, and each page of it
        script.writes_pictures = false;
    }
    ~Scene() {
        video_.Reset();
        file_.Reset();
        DetachProcess();
    }

    void Read(uint32_t bits) {
        _ktframerequest request = {};
        request.bitsPerPixel = bits;
        request.quality = 4;
        request.scale = 1.0;
        _ktmemorytoken token = {};
        token.address = reinterpret_cast<uintptr_t>(host_.get());
        token.size = kWidth * kHeight * 16;
        token.processId = GetCurrentProcessId();
        _ktframeinfo info;
        uint32_t bytes = 0;
        if (video_->ReadFrame(0, &request, &token, &info, &bytes) != S_OK) std::abort();
    }
    uint8_t* Host() const { return host_.get(); }
    const uint8_t* Other() const { return other_.get(); }

  private:
    Buffer host_ = MakeBuffer(kWidth * kHeight * 16);
    Buffer other_ = MakeBuffer(kWidth * kHeight * 16);
    ComPtr<IKtReadFileClass> file_class_;
    ComPtr<IKtReadFile> file_;
    ComPtr<IKtReadVideoStream> video_;
};

void StreamCopy(uint8_t* to, const uint8_t* from, size_t bytes) {
    for (size_t i = 0; i + 64 <= bytes; i += 64) {
        for (size_t j = 0; j < 64; j += 16) {
            _mm_stream_si128(reinterpret_cast<__m128i*>(to + i + j),
                             _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + i + j)));
        }
    }
    _mm_sfence();
}

// A run before the one that counts leaves the caches as this action leaves them: what the one before it left there is
// not its affair.
template <class Action>
double Seconds(Action&& action) {
    action();
    const auto start = std::chrono::steady_clock::now();
    action();
    benchmark::ClobberMemory();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double Median(std::vector<double> times) {
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

// Reads `in` bytes and writes `out` of them, which are as many or more: piece by piece, so that each piece is read from
// memory once.
template <class Copy>
void CopyWidening(Copy copy, uint8_t* to, const uint8_t* from, size_t in, size_t out) {
    if (in == out) return copy(to, from, in);
    const size_t piece = in / kHeight;
    const size_t wide = out / kHeight;
    for (size_t y = 0; y < kHeight; ++y, from += piece) {
        for (size_t left = wide; left > 0;) {
            const size_t part = std::min(piece, left);
            copy(to, from, part);
            to += part;
            left -= part;
        }
    }
}

void PlainCopy(uint8_t* to, const uint8_t* from, size_t bytes) { std::memcpy(to, from, bytes); }

struct Ratio {
    double to_same_bytes;
    double to_half_of_all;
};
std::map<uint32_t, Ratio>& Ratios() {
    static std::map<uint32_t, Ratio> ratios;
    return ratios;
}

void ReadFrame(benchmark::State& state) {
    static Scene scene;
    const auto bits = static_cast<uint32_t>(state.range(0));
    const size_t decoded = kWidth * kHeight * (bits == 128 ? 6 : 4);
    const size_t delivered = kWidth * kHeight * bits / 8;
    const size_t half = (decoded + delivered) / 2;
    std::vector<double> frames, copies, streams, half_copies, half_streams;
    for (auto _ : state) {
        frames.push_back(Seconds([&] { scene.Read(bits); }));
        copies.push_back(Seconds([&] { CopyWidening(PlainCopy, scene.Host(), scene.Other(), decoded, delivered); }));
        streams.push_back(Seconds([&] { CopyWidening(StreamCopy, scene.Host(), scene.Other(), decoded, delivered); }));
        half_copies.push_back(Seconds([&] { PlainCopy(scene.Host(), scene.Other(), half); }));
        half_streams.push_back(Seconds([&] { StreamCopy(scene.Host(), scene.Other(), half); }));
        state.SetIterationTime(frames.back());
    }
    Ratio& ratio = Ratios()[bits];
    ratio.to_same_bytes = Median(frames) / std::min(Median(copies), Median(streams));
    ratio.to_half_of_all = Median(frames) / std::min(Median(half_copies), Median(half_streams));
    state.counters["ratio"] = ratio.to_same_bytes;
    state.SetBytesProcessed(static_cast<int64_t>(decoded + delivered) * state.iterations());
}
BENCHMARK(ReadFrame)
    ->Name("reader/read_frame")
    ->Arg(32)
    ->Arg(128)
    ->Iterations(61)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

void PrintGoals() {
    const std::map<uint32_t, double> goals = {{32, 1.15}, {128, 1.2}};
    for (const auto& [bits, ratio] : Ratios()) {
        const double goal = goals.at(bits);
        std::printf(
            "reader: a %u-bit frame takes %.3f of its bound, %.3f of a copy of half of all bytes; goal %.2f: %s\n",
            bits, ratio.to_same_bytes, ratio.to_half_of_all, goal, ratio.to_same_bytes <= goal ? "met" : "MISSED");
    }
}

[[maybe_unused]] const bool g_added = bench::AddSummary(PrintGoals);

}  // namespace
}  // namespace clipfio
