// Several threads on one file object, as a host uses it. Built with the thread sanitizer these are the proof that
// nothing is read unguarded.
#include <atomic>
#include <cstring>
#include <functional>
#include <thread>

#include "tests/reader/reader_scene.h"

namespace reader_tests {
namespace {

class ReaderThreads : public ReaderTest {
  protected:
    void SetUp() override {
        ReaderTest::SetUp();
        Told().remembers = false;
        Told().clip.width = 64;
        Told().clip.height = 32;
    }
};

constexpr int kRounds = 150;

// Runs the tasks at once, `kRounds` times each.
void RunTogether(const std::vector<std::function<void(int)>>& tasks) {
    // Not std::barrier: where the platform has no futex, GCC 12's atomic waits may miss the call that ends them.
    std::atomic<std::size_t> missing{tasks.size()};
    std::vector<std::thread> threads;
    for (const auto& task : tasks) {
        threads.emplace_back([&] {
            for (--missing; missing != 0;) std::this_thread::yield();
            for (int round = 0; round < kRounds; ++round) task(round);
        });
    }
    for (std::thread& thread : threads) thread.join();
}

// Reads a frame; its picture is right whenever the read succeeded.
HRESULT ReadPicture(IKtReadVideoStream* video, int round) {
    std::vector<uint8_t> memory(64 * 32 * 4);
    const auto token = TokenOf(memory.data(), memory.size());
    const auto request = Request(32);
    _ktframeinfo info;
    uint32_t bytes = 0;
    const auto frame = static_cast<uint64_t>(round);
    const HRESULT hr = video->ReadFrame(frame, &request, &token, &info, &bytes);
    if (hr == S_OK) {
        EXPECT_EQ(memory[31 * 256], fake_decoder::Sample8(frame, 0));
        EXPECT_EQ(memory[255], fake_decoder::Sample8(frame, 31 * 256 + 255));
    }
    return hr;
}

HRESULT ReadSound(IKtReadAudioStream* audio, int round) {
    std::vector<float> memory(2000);
    const auto token = TokenOf(memory.data(), memory.size() * 4);
    int32_t read = 0;
    const HRESULT hr = audio->ReadSamples(round * 1000, &token, 1000, &read);
    if (hr == S_OK) {
        const int32_t last = fake_decoder::Sound(static_cast<uint64_t>(round) * 1000 + 999, 1);
        EXPECT_EQ(memory[1999], static_cast<float>(last) / 2147483648.0f);
    }
    return hr;
}

void AskFile(IKtReadFile* file) {
    int64_t duration = 0;
    EXPECT_EQ(file->GetDuration(&duration), S_OK);
    EXPECT_EQ(duration, 100000000);
    _ktstreaminfo info[2] = {};
    EXPECT_EQ(file->GetStreamInfo(info, 0, 2), S_OK);
    EXPECT_EQ(info[1].length, 480000u);
    WCHAR text[100];
    EXPECT_EQ(file->GetStreamText(text, 100, 0, 2), S_OK);
    EXPECT_EQ(file->GetStreamText(text, 100, 1, 2), S_OK);
    EXPECT_EQ(file->GetFileName(text, 100), S_OK);
    double rate = 0.0;
    EXPECT_EQ(file->GetStreamValue(&rate, 8, 0, 6), S_OK);
    static_cast<void>(file->IsOpen());
    static_cast<void>(file->GetFileValue(&rate, 4, 1));
}

TEST_F(ReaderThreads, ReadBothStreamsWhileTheFileIsAsked) {
    const auto file = OpenFile();
    const auto video = VideoOf(file.Get());
    const auto audio = AudioOf(file.Get());
    RunTogether({
        [&](int round) { EXPECT_EQ(ReadPicture(video.Get(), round), S_OK); },
        [&](int round) { EXPECT_EQ(ReadSound(audio.Get(), round), S_OK); },
        [&](int) { AskFile(file.Get()); },
        [&](int) {
            int64_t time = 0;
            EXPECT_EQ(video->GetDuration(&time), S_OK);
            EXPECT_EQ(audio->GetDuration(&time), S_OK);
            EXPECT_EQ(video->SetRatio(1.5), S_OK);
            EXPECT_EQ(video->SetUserValue(3), S_OK);
            EXPECT_EQ(audio->SetUserValue(3), S_OK);
        },
    });
}

TEST_F(ReaderThreads, OpenCloseAndDuplicateInBetween) {
    const auto file = OpenFile();
    const auto video = VideoOf(file.Get());
    const auto audio = AudioOf(file.Get());
    ComPtr<IKtReadMeta> meta;
    ASSERT_EQ(file->GetMeta(meta.OutVoid()), S_OK);
    std::atomic<int> frames{0};
    RunTogether({
        [&](int round) {
            const HRESULT hr = ReadPicture(video.Get(), round);
            EXPECT_TRUE(hr == S_OK || hr == E_FAIL);
            frames += hr == S_OK;
        },
        [&](int round) {
            const HRESULT hr = ReadSound(audio.Get(), round);
            EXPECT_TRUE(hr == S_OK || hr == E_FAIL);
        },
        [&](int) { AskFile(file.Get()); },
        [&](int round) { EXPECT_EQ(round % 2 ? file->Open(0, 0) : file->Close(), S_OK); },
        [&](int) {
            WCHAR text[40];
            const HRESULT hr = meta->GetValue(0x444F4354, text, 40);
            EXPECT_TRUE(hr == S_OK || hr == E_UNEXPECTED);
        },
        [&](int round) {
            if (round % 10) return;
            ComPtr<IKtReadFile> copy;
            ASSERT_EQ(file->Duplicate(copy.Out()), S_OK);
            EXPECT_EQ(copy->Open(0, 0), S_OK);
            EXPECT_EQ(ReadPicture(VideoOf(copy.Get()).Get(), round), S_OK);
        },
        [&](int) {
            ComPtr<IKtReadVideoStream> again;
            EXPECT_EQ(file->GetStream(again.OutVoid(), 0, 0), S_OK);
        },
    });
    EXPECT_EQ(file->Open(0, 0), S_OK);
    EXPECT_EQ(ReadPicture(video.Get(), 0), S_OK);
}

TEST_F(ReaderThreads, FirstNameWhileItIsAsked) {
    for (int i = 0; i < 20; ++i) {
        const auto file = EmptyFile();
        ComPtr<IKtReadMeta> meta;
        ASSERT_EQ(file->GetMeta(meta.OutVoid()), S_OK);
        std::thread other([&] {
            for (int round = 0; round < 20; ++round) {
                WCHAR text[40];
                static_cast<void>(meta->GetValue(0x444F4354, text, 40));
                void* out = nullptr;
                if (SUCCEEDED(file->GetStream(&out, 0, 0))) static_cast<IUnknown*>(out)->Release();
            }
        });
        EXPECT_EQ(file->SetFileName(kNoFile), S_OK);
        other.join();
    }
}

TEST_F(ReaderThreads, ClassesAndFilesComeAndGo) {
    RunTogether(std::vector<std::function<void(int)>>(4, [&](int round) {
        const auto file_class = NewFileClass();
        ComPtr<IKtReadFile> file;
        EXPECT_EQ(file_class->CreateNamed(file.Out(), 0, 0, kNoFile, 1), S_OK);
        EXPECT_EQ(ReadPicture(VideoOf(file.Get()).Get(), round), S_OK);
        const uint32_t id = static_cast<uint32_t>(round) % 8;
        BSTR text = nullptr;
        EXPECT_EQ(file_class->GetClassStrings(&id, 1, &text), S_OK);
        SysFreeString(text);
    }));
}

}  // namespace
}  // namespace reader_tests
