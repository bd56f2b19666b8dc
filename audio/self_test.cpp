#include "audio/self_test.h"

#include <algorithm>
#include <cstring>

#include "audio/copy_engine.h"
#include "audio/cpu_level.h"
#include "audio/sample_rule.h"
#include "kernel/cpu.h"
#include "platform/memory.h"

namespace clipfio::audio {
namespace {

constexpr int32_t kChunk = 65536;

SelfTestReporter* reporter_above = nullptr;

// Remembers the first failure, and can show nothing.
class PlainReporter final : public SelfTestReporter {
  public:
    void Begin() noexcept override { first_ = S_OK; }
    void ShowWaitCursor() noexcept override {}
    void RestoreCursor() noexcept override {}
    void AddFailure(int32_t, HRESULT code) noexcept override {
        if (first_ == S_OK) first_ = code;
    }
    HRESULT FirstFailure() noexcept override { return first_; }
    void ShowFailure(HWND) noexcept override {}

  private:
    HRESULT first_ = S_OK;
};

class Block {
  public:
    explicit Block(size_t bytes) noexcept : handle_(GlobalAlloc(GPTR, bytes)) {}
    ~Block() {
        if (handle_) GlobalFree(handle_);
    }
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;
    [[nodiscard]] uint8_t* Get() const noexcept { return static_cast<uint8_t*>(handle_); }

  private:
    HGLOBAL handle_;  // a fixed block: its address
};

template <class F>
void FillCodes(uint8_t* codes, int32_t first, int32_t count) noexcept {
    for (int32_t i = 0; i < count; ++i) F::Store(codes + i * F::kBytes, first + i);
}

// Half a step above a code lies as near to the next one: the even one of the two is right.
template <class F>
void RoundCodes(uint8_t* codes, int32_t count) noexcept {
    constexpr int32_t kHighest = (1 << (F::kDepth - 1)) - 1;
    for (int32_t i = 0; i < count; ++i) {
        uint8_t* const p = codes + i * F::kBytes;
        const int32_t code = F::Load(p);
        F::Store(p, std::min(code + (code & 1), kHighest));
    }
}

template <class T>
void AddHalfStep(uint8_t* samples, int32_t count, int depth) noexcept {
    const T half = static_cast<T>(0.5 / FullScale(depth));
    for (int32_t i = 0; i < count; ++i) {
        uint8_t* const p = samples + static_cast<size_t>(i) * sizeof(T);
        platform::StoreLittle(p, std::clamp<T>(platform::LoadLittle<T>(p) + half, T{-1}, T{1}));
    }
}

enum class Outcome { Passed, Failed, NoMemory };

template <class F>
Outcome RunChunk(const SelfTestNode& node, int32_t first, int32_t count) noexcept {
    const auto samples = static_cast<size_t>(count);
    const Block codes(samples * F::kBytes);
    const Block floats(samples * KtAudio_BytesFromSampleType(node.floatType));
    const Block back(samples * F::kBytes);
    if (!codes.Get() || !floats.Get() || !back.Get()) return Outcome::NoMemory;
    FillCodes<F>(codes.Get(), first, count);
    node.toFloat(floats.Get(), codes.Get(), count, 1.0f);
    if (node.floatType == KTSAMPLETYPE_FLOAT32) {
        AddHalfStep<float>(floats.Get(), count, F::kDepth);
    } else {
        AddHalfStep<double>(floats.Get(), count, F::kDepth);
    }
    RoundCodes<F>(codes.Get(), count);
    node.fromFloat(back.Get(), floats.Get(), count, 1.0f);
    return std::memcmp(codes.Get(), back.Get(), samples * F::kBytes) == 0 ? Outcome::Passed : Outcome::Failed;
}

Outcome RunNode(const SelfTestNode& node) noexcept {
    Outcome outcome = Outcome::Passed;
    WithFormat(node.integerType, [&]<class F>(F) {
        if constexpr (!kIsFloat<F>) {
            if constexpr (F::kDepth <= 24) {
                constexpr int32_t kCodes = 1 << F::kDepth;
                constexpr int32_t kCount = std::min(kCodes, kChunk);
                for (int32_t done = 0; done < kCodes && outcome == Outcome::Passed; done += kCount) {
                    outcome = RunChunk<F>(node, done - kCodes / 2, kCount);
                }
            }
        }
    });
    return outcome;
}

SelfTestNode PlainNode(KTSAMPLETYPE integerType, KTSAMPLETYPE floatType) noexcept {
    return {integerType, floatType, 0, FindConverter(CpuLevel::Scalar, floatType, integerType),
            FindConverter(CpuLevel::Scalar, integerType, floatType)};
}

// With the converters that a caller would get.
SelfTestNode ChosenNode(KTSAMPLETYPE integerType, KTSAMPLETYPE floatType, uint32_t processorClass) noexcept {
    return {integerType, floatType, processorClass, KtAudio_GetCopyFunction2(floatType, integerType),
            KtAudio_GetCopyFunction2(integerType, floatType)};
}

}  // namespace

void SetSelfTestReporter(SelfTestReporter* reporter) noexcept { reporter_above = reporter; }

HRESULT RunSelfTest(std::span<const SelfTestNode> nodes, HWND window) noexcept {
    PlainReporter plain;
    SelfTestReporter& reporter = reporter_above ? *reporter_above : plain;
    reporter.Begin();
    const uint32_t processorClass = KtGetCPUSupport(KTCPU_CLASS) & KTCPU_CLASS;
    bool noMemory = false;
    for (size_t i = 0; i < nodes.size() && !noMemory; ++i) {
        if (nodes[i].processorClass > processorClass) continue;
        reporter.ShowWaitCursor();
        const Outcome outcome = RunNode(nodes[i]);
        noMemory = outcome == Outcome::NoMemory;
        if (outcome == Outcome::Failed) reporter.AddFailure(static_cast<int32_t>(i), E_UNEXPECTED);
    }
    reporter.RestoreCursor();
    if (noMemory) return E_OUTOFMEMORY;
    const HRESULT result = reporter.FirstFailure();
    if (result == S_OK || !window || !reporter_above) return result;
    reporter.ShowFailure(window);
    return S_OK;
}

}  // namespace clipfio::audio

using namespace clipfio::audio;

HRESULT KtAudioCopy_UnitTest(HWND window) noexcept {
    constexpr KTSAMPLETYPE kFloat = KTSAMPLETYPE_FLOAT32;
    constexpr KTSAMPLETYPE kDouble = KTSAMPLETYPE_FLOAT64;
    const SelfTestNode nodes[] = {
        ChosenNode(KTSAMPLETYPE_PCM8, kFloat, 0),       ChosenNode(KTSAMPLETYPE_PCM8S, kFloat, 0),
        PlainNode(KTSAMPLETYPE_PCM16, kFloat),  // node 14 has the other implementation of this pair
        ChosenNode(KTSAMPLETYPE_PCM16BE, kFloat, 0),    ChosenNode(KTSAMPLETYPE_PCM24, kFloat, 0),
        ChosenNode(KTSAMPLETYPE_PCM24BE, kFloat, 0),    ChosenNode(KTSAMPLETYPE_PCM24IN32, kFloat, 0),
        ChosenNode(KTSAMPLETYPE_PCM8, kDouble, 0),      ChosenNode(KTSAMPLETYPE_PCM8S, kDouble, 0),
        ChosenNode(KTSAMPLETYPE_PCM16, kDouble, 0),     ChosenNode(KTSAMPLETYPE_PCM16BE, kDouble, 0),
        ChosenNode(KTSAMPLETYPE_PCM24, kDouble, 0),     ChosenNode(KTSAMPLETYPE_PCM24BE, kDouble, 0),
        ChosenNode(KTSAMPLETYPE_PCM24IN32, kDouble, 0), ChosenNode(KTSAMPLETYPE_PCM16, kFloat, 6),
        ChosenNode(KTSAMPLETYPE_PCM8, kDouble, 6),      ChosenNode(KTSAMPLETYPE_PCM16, kDouble, 6),
    };
    return RunSelfTest(nodes, window);
}
