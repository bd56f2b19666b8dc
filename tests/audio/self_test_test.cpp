// The engine's own test passes, and finds a converter that rounds wrongly.
#include "audio/self_test.h"

#include "audio/copy_engine.h"
#include "audio/sample_data.h"
#include "kernel/cpu.h"
#include "support/fail_each.h"

namespace clipfio::audio {
namespace {

HWND AnyWindow() { return reinterpret_cast<HWND>(&AnyWindow); }

class RecordingReporter final : public SelfTestReporter {
  public:
    void Begin() noexcept override { failed.clear(); }
    void ShowWaitCursor() noexcept override { ++waits; }
    void RestoreCursor() noexcept override { ++restores; }
    void AddFailure(int32_t node, HRESULT code) noexcept override {
        failed.push_back(node);
        if (first == S_OK) first = code;
    }
    HRESULT FirstFailure() noexcept override { return first; }
    void ShowFailure(HWND window) noexcept override { shownOn = window; }

    std::vector<int32_t> failed;
    int waits = 0;
    int restores = 0;
    HRESULT first = S_OK;
    HWND shownOn = nullptr;
};

class CopySelfTest : public testing::Test {
  protected:
    void SetUp() override { SetSelfTestReporter(&reporter_); }
    void TearDown() override { SetSelfTestReporter(nullptr); }

    static void CutInsteadOfRound(void* destination, const void* source, int32_t count, float) {
        for (int32_t i = 0; i < count; ++i) {
            static_cast<int8_t*>(destination)[i] =
                static_cast<int8_t>(std::floor(static_cast<const float*>(source)[i] * 128.0f));
        }
    }

    static SelfTestNode Node(bool good, uint32_t processorClass = 0) {
        return {KTSAMPLETYPE_PCM8S, KTSAMPLETYPE_FLOAT32, processorClass,
                KtAudio_GetCopyFunction2(KTSAMPLETYPE_FLOAT32, KTSAMPLETYPE_PCM8S),
                good ? KtAudio_GetCopyFunction2(KTSAMPLETYPE_PCM8S, KTSAMPLETYPE_FLOAT32) : CutInsteadOfRound};
    }

    RecordingReporter reporter_;
};

TEST_F(CopySelfTest, PassesInAllNodes) {
    EXPECT_EQ(KtAudioCopy_UnitTest(nullptr), S_OK);
    EXPECT_EQ(reporter_.waits, 17);
    EXPECT_TRUE(reporter_.failed.empty());
}

TEST_F(CopySelfTest, NamesTheNodesThatFailAndGoesOn) {
    const SelfTestNode nodes[] = {Node(true), Node(false), Node(true), Node(false, 7), Node(false, 6)};
    EXPECT_EQ(RunSelfTest(nodes, nullptr), E_UNEXPECTED);
    EXPECT_EQ(reporter_.failed, (std::vector<int32_t>{1, 4}));  // no processor has class 7
    EXPECT_EQ(reporter_.waits, 4);
    EXPECT_EQ(reporter_.restores, 1);
    EXPECT_EQ(reporter_.shownOn, nullptr);
    EXPECT_EQ(RunSelfTest(nodes, AnyWindow()), S_OK);
    EXPECT_EQ(reporter_.shownOn, AnyWindow());
}

TEST_F(CopySelfTest, WithNobodyAboveTheFailureIsReturned) {
    SetSelfTestReporter(nullptr);
    const SelfTestNode nodes[] = {Node(false)};
    EXPECT_EQ(RunSelfTest(nodes, nullptr), E_UNEXPECTED);
    EXPECT_EQ(RunSelfTest(nodes, AnyWindow()), E_UNEXPECTED);
}

TEST_F(CopySelfTest, EndsWhenMemoryIsNotToBeHad) {
    const SelfTestNode nodes[] = {Node(true), Node(false)};
    const int buffers = support::FailEach<support::FailingCall>(
        [&] { return RunSelfTest(nodes, nullptr); },
        [](HRESULT result, bool hit) { EXPECT_EQ(result, hit ? E_OUTOFMEMORY : E_UNEXPECTED); });
    EXPECT_EQ(reporter_.restores, buffers + 1);
    EXPECT_LE(buffers, 6) << "three buffers for each node";
}

}  // namespace
}  // namespace clipfio::audio
