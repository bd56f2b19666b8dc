// What a frame costs in memory, once the first ones have been read.
#include "support/temp_file.h"
#include "support/whole_file.h"
#include "tests/module/allocation_counter.h"
#include "tests/reader/reader_scene.h"

namespace reader_tests {
namespace {

class SteadyState : public ReaderTest {};

// What the platform takes to look for a settings file, and to read one that is there.
long AllocationsOfLooking(const WCHAR* path) {
    const long before = Allocations();
    ComPtr<IStream> stream;
    if (SUCCEEDED(SHCreateStreamOnFileW(path, STGM_READ, stream.Out()))) {
        char block[16];
        ULONG read = 0;
        EXPECT_EQ(stream->Read(block, sizeof block, &read), S_OK);
    }
    stream.Reset();
    return Allocations() - before;
}

TEST_F(SteadyState, FrameTakesNoMemoryBeyondOpeningItsSettings) {
    const support::TempFile clip(".r3d");
    const WString settings = WString(clip.Path(), WStringView(clip.Path()).size() - 3) + W("KtDecProp");
    Told().remembers = false;
    const auto file = OpenFile(clip.Path());
    const auto video = VideoOf(file.Get());
    std::vector<uint8_t> memory(10 * 6 * 16);
    const auto token = TokenOf(memory.data(), memory.size());
    _ktframeinfo info;
    uint32_t bytes = 0;
    const auto read = [&](uint64_t frame) {
        for (const double scale : {1.0, 0.5}) {
            for (const uint32_t bits : {128u, 32u}) {
                const auto request = Request(bits, scale);
                ASSERT_EQ(video->ReadFrame(frame, &request, &token, &info, &bytes), S_OK);
            }
        }
    };
    for (const bool has_settings : {false, true}) {
        if (has_settings) support::WriteWhole(settings.c_str(), "Tint=4|UserCurve[3]=0.5|ImageISO=800|");
        read(0);
        const long of_looking = AllocationsOfLooking(settings.c_str());
        const long before = Allocations();
        for (uint64_t frame = 1; frame <= 5; ++frame) read(frame);
        EXPECT_EQ(Allocations() - before, 5 * 4 * of_looking) << has_settings;
        EXPECT_GT(of_looking, 0);  // the counter counts
    }
    DeleteFileW(settings.c_str());
}

TEST_F(SteadyState, SoundTakesNoMemory) {
    Told().remembers = false;
    const auto file = OpenFile();
    const auto audio = AudioOf(file.Get());
    std::vector<float> memory(2000);
    const auto token = TokenOf(memory.data(), 8000);
    int32_t read = 0;
    ASSERT_EQ(audio->ReadSamples(0, &token, 1000, &read), S_OK);
    const long before = Allocations();
    for (int64_t first = 0; first < 10000; first += 1000) {
        ASSERT_EQ(audio->ReadSamples(first, &token, 1000, &read), S_OK);
    }
    EXPECT_EQ(Allocations() - before, 0);
}

}  // namespace
}  // namespace reader_tests
