#include <cstring>

#include "audio/wave_format.h"
#include "platform/text.h"
#include "support/in_locale.h"
#include "support/temp_file.h"
#include "tests/reader/reader_scene.h"

namespace reader_tests {
namespace {

using Events = std::vector<std::string>;

class ReadFile : public ReaderTest {
  protected:
    Events TakeEvents() const { return std::exchange(Told().events, {}); }
};

void MakeFile(const WCHAR* path, int64_t bytes) {
    const platform::ScopedHandle file(::CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    LARGE_INTEGER move;
    move.QuadPart = bytes - 1;
    DWORD written = 0;
    ASSERT_TRUE(SetFilePointerEx(file.Get(), move, nullptr, FILE_BEGIN));
    ASSERT_TRUE(WriteFile(file.Get(), "", 1, &written, nullptr));
}

std::string FileText(IKtReadFile* file, uint32_t key, HRESULT result, int32_t size = 100) {
    WCHAR text[100] = W("untouched");
    EXPECT_EQ(file->GetFileText(text, size, key), result) << key;
    return platform::Utf8(text);
}

std::string StreamText(IKtReadFile* file, int32_t stream, uint32_t key, HRESULT result, int32_t size = 100) {
    WCHAR text[100] = W("untouched");
    EXPECT_EQ(file->GetStreamText(text, size, stream, key), result) << stream << " " << key;
    return platform::Utf8(text);
}

TEST_F(ReadFile, IsMeasuredWhenItIsNamed) {
    auto file = EmptyFile();
    EXPECT_EQ(Got(file, &IKtReadFile::GetStreamCount), 0);
    EXPECT_EQ(Got(file, &IKtReadFile::GetItemCount), 0);
    EXPECT_EQ(Got(file, &IKtReadFile::GetDuration), 0);
    EXPECT_TRUE(TakeEvents().empty());

    EXPECT_EQ(file->SetFileName(kNoFile), S_OK);
    EXPECT_EQ(TakeEvents(), (Events{"create", "load C:\\no such folder\\clip.r3d", "close"}));
    EXPECT_EQ(file->IsOpen(), S_FALSE);
    EXPECT_EQ(file->SetFileName(kNoFile), S_OK);  // the same name again
    EXPECT_TRUE(TakeEvents().empty());
    EXPECT_EQ(Got(file, &IKtReadFile::GetStreamCount), 2);
    EXPECT_EQ(Got(file, &IKtReadFile::GetItemCount), 3);
    EXPECT_EQ(Got(file, &IKtReadFile::GetDuration), 100000000);

    EXPECT_EQ(file->Open(0, 0), S_OK);
    EXPECT_EQ(file->IsOpen(), S_OK);
    EXPECT_EQ(file->Close(), S_OK);
    EXPECT_EQ(file->IsOpen(), S_FALSE);
    EXPECT_EQ(file->Close(), S_OK);
    EXPECT_EQ(TakeEvents(), (Events{"load C:\\no such folder\\clip.r3d", "close", "close"}));  // on the same handle
    file.Reset();
    EXPECT_EQ(TakeEvents(), (Events{"destroy"}));
}

TEST_F(ReadFile, KeepsANameThatCannotBeOpened) {
    auto file = EmptyFile();
    Told().loads_to_fail = 9;
    EXPECT_EQ(file->SetFileName(kNoFile), E_FAIL);
    EXPECT_EQ(file->SetFileName(kNoFile), S_OK);
    WCHAR name[100];
    EXPECT_EQ(file->GetFileName(name, 100), S_OK);
    EXPECT_EQ(WStringView(name), kNoFile);
    EXPECT_EQ(file->Open(0, 0), E_FAIL);
    EXPECT_EQ(file->IsOpen(), S_FALSE);
    Told().loads_to_fail = 0;
    EXPECT_EQ(file->Open(0, 0), S_OK);
    // A later name is measured, and an open that fails closes what was open.
    EXPECT_EQ(file->SetFileName(W("C:\\other")), S_OK);
    EXPECT_EQ(file->Open(0, 0), S_OK);
    Told().loads_to_fail = 9;
    EXPECT_EQ(file->Open(0, 0), E_FAIL);
    EXPECT_EQ(file->IsOpen(), S_FALSE);
    EXPECT_EQ(file->SetFileName(nullptr), E_INVALIDARG);
}

TEST_F(ReadFile, TriesAPathInUtf8AndThenItsShortFormInLatin1) {
    const support::TempFile path("\u00E9\u0416.r3d");
    MakeFile(path.Path(), 1);
    Told().loads_to_fail = 1;
    auto file = EmptyFile();
    EXPECT_EQ(file->SetFileName(path.Path()), S_OK);
    const Events events = TakeEvents();
    ASSERT_EQ(events.size(), 4u);
    EXPECT_EQ(events[1], "load " + platform::Utf8(path.Path()));
    EXPECT_NE(events[2], events[1]);
    // A short form may be all capitals.
    EXPECT_TRUE(events[2].starts_with("load ") && (events[2].ends_with(".r3d") || events[2].ends_with(".R3D")));
    // A path without a short form is not tried again.
    Told().loads_to_fail = 1;
    EXPECT_EQ(file->SetFileName(kNoFile), E_FAIL);
    EXPECT_EQ(TakeEvents().size(), 1u);
}

TEST_F(ReadFile, GivesItsNameOnlyWhole) {
    const auto file = MeasuredFile(W("C:\\a.r3d"));
    WCHAR name[10] = W("untouched");
    for (const int32_t size : {-1, 0, 1, 8}) {
        EXPECT_EQ(file->GetFileName(name, size), E_FAIL) << size;
        EXPECT_EQ(WStringView(name), W("untouched"));
    }
    EXPECT_EQ(file->GetFileName(nullptr, 10), E_FAIL);
    EXPECT_EQ(file->GetFileName(name, 9), S_OK);
    EXPECT_EQ(WStringView(name), W("C:\\a.r3d"));
}

TEST_F(ReadFile, DescribesItsStreams) {
    const auto file = MeasuredFile();
    _ktstreaminfo info[3];
    std::memset(static_cast<void*>(info), 0x55, sizeof info);
    info[0].size = 0;
    info[1].size = 190;  // more than the record: cleared as well
    ASSERT_EQ(file->GetStreamInfo(info, 0, 2), S_OK);
    EXPECT_EQ(info[0].size, 184u);
    EXPECT_EQ(info[0].kind, 2u);
    EXPECT_EQ(info[0].length, 240u);
    EXPECT_EQ(Facts(info[0].frameFormat), (std::vector<double>{0, 24, 0, 0}));
    EXPECT_EQ(Facts(FormatIn<BITMAPINFOHEADER>(info[0])), (std::vector<int64_t>{40, 10, 6, 1, 32, 0, 240}));

    EXPECT_EQ(info[1].size, 190u);
    EXPECT_EQ(info[1].kind, 1u);
    EXPECT_EQ(info[1].length, 480000u);
    EXPECT_EQ(info[1].frameFormat.frameRate, 0.0);
    const auto format = FormatIn<_ktwaveformat>(info[1]);
    EXPECT_EQ(format.size, 32u);
    EXPECT_EQ(format.sampleType, KTSAMPLETYPE_FLOAT32);
    EXPECT_EQ(format.channels, 2);
    EXPECT_EQ(format.samplesPerSecond, 48000u);
    EXPECT_EQ(format.blockAlign, 8);
    EXPECT_EQ(format.averageBytesPerSecond, 384000u);
    uint8_t behind[12];
    std::memcpy(behind, &info[2], sizeof behind);
    for (int i = 0; i < 12; ++i) EXPECT_EQ(behind[i], i < 6 ? 0 : 0x55);  // 190 bytes, and not one more
}

TEST_F(ReadFile, RefusesStreamsThatItDoesNotHave) {
    const auto file = MeasuredFile();
    Told().clip.audio_blocks = 0;
    const auto silent = MeasuredFile(W("C:\\silent.r3d"));
    _ktstreaminfo info[2] = {};
    info[0].size = 7;
    constexpr struct {
        int32_t first, count;
        HRESULT with_sound, without_sound;
    } kRows[] = {
        {0, 3, E_UNEXPECTED, E_UNEXPECTED}, {-1, 1, E_UNEXPECTED, E_UNEXPECTED},         {0, 0, S_OK, S_OK},
        {1, 2, E_UNEXPECTED, E_UNEXPECTED}, {0, -1, E_UNEXPECTED, E_UNEXPECTED},         {1, 0, S_OK, E_UNEXPECTED},
        {2, 0, E_UNEXPECTED, E_UNEXPECTED}, {1, 0x7FFFFFFF, E_UNEXPECTED, E_UNEXPECTED},
    };
    for (const auto& row : kRows) {
        EXPECT_EQ(file->GetStreamInfo(info, row.first, row.count), row.with_sound) << row.first << " " << row.count;
        EXPECT_EQ(silent->GetStreamInfo(info, row.first, row.count), row.without_sound);
    }
    EXPECT_EQ(info[0].size, 7u);
    EXPECT_EQ(file->GetStreamInfo(nullptr, 0, 1), E_INVALIDARG);
    EXPECT_EQ(EmptyFile()->GetStreamInfo(info, 0, 0), E_UNEXPECTED);

    EXPECT_EQ(Got(silent, &IKtReadFile::GetStreamCount), 1);
    EXPECT_EQ(Got(silent, &IKtReadFile::GetItemCount), 2);
    const auto audio = AudioOf(silent.Get());  // the object is there all the same
    EXPECT_EQ(FormatIn<_ktwaveformat>(Got(audio, &IKtReadAudioStream::GetFormat)).channels, 0);

    constexpr struct {
        int32_t stream;
        HRESULT kind;
        uint32_t value;
        HRESULT property;
    } kKinds[] = {
        {0, S_OK, 2, S_OK}, {1, S_OK, 1, S_OK}, {2, E_INVALIDARG, 9, E_INVALIDARG}, {-1, E_UNEXPECTED, 9, S_OK}};
    for (const auto& row : kKinds) {
        uint32_t kind = 9;
        uint32_t second = 9;
        EXPECT_EQ(file->GetStreamKind(row.stream, &kind, &second), row.kind) << row.stream;
        EXPECT_EQ(kind, row.value);
        EXPECT_EQ(second, row.kind == S_OK ? 0u : 9u);
        uint32_t value = 9;
        EXPECT_EQ(file->GetStreamProperty(row.stream, 1, &value), row.property) << row.stream;
        EXPECT_EQ(value, row.property == S_OK ? 1u : 9u);
    }
    uint32_t value = 9;
    EXPECT_EQ(file->GetStreamProperty(0, 2, &value), S_OK);
    EXPECT_EQ(value, 0u);
    EXPECT_EQ(file->GetStreamProperty(0, 3, &value), E_UNEXPECTED);
    EXPECT_EQ(silent->GetStreamKind(1, &value, &value), E_INVALIDARG);
}

TEST_F(ReadFile, HandsOutTheSameStreamsAgainAndAgain) {
    const auto file = MeasuredFile();
    const auto video = VideoOf(file.Get());
    EXPECT_EQ(VideoOf(file.Get()).Get(), video.Get());
    const auto audio = AudioOf(file.Get());
    EXPECT_EQ(AudioOf(file.Get()).Get(), audio.Get());
    for (const int32_t stream : {2, -1}) {
        void* out = this;
        EXPECT_EQ(file->GetStream(&out, 0, stream), E_INVALIDARG);
        EXPECT_EQ(out, nullptr);
    }
    // Before any open there is no clip to prepare the pictures of.
    void* out = this;
    const auto empty = EmptyFile();
    EXPECT_EQ(empty->GetStream(&out, 0, 0), E_UNEXPECTED);
    EXPECT_EQ(out, nullptr);
}

TEST_F(ReadFile, DuplicatesIntoAnObjectOfItsOwn) {
    const auto file = OpenFile();
    ComPtr<IKtReadFile> copy;
    ASSERT_EQ(file->Duplicate(copy.Out()), S_OK);
    EXPECT_EQ(copy->AddRef(), 2u);  // one reference, the caller's
    EXPECT_EQ(copy->Release(), 1u);
    EXPECT_EQ(copy->IsOpen(), S_FALSE);
    EXPECT_EQ(file->IsOpen(), S_OK);
    EXPECT_EQ(Decoder().live_clips, 2);
    WCHAR name[100];
    EXPECT_EQ(copy->GetFileName(name, 100), S_OK);
    EXPECT_EQ(WStringView(name), kNoFile);
    EXPECT_NE(VideoOf(copy.Get()).Get(), VideoOf(file.Get()).Get());

    Told().loads_to_fail = 2;
    auto* garbage = reinterpret_cast<IKtReadFile*>(this);
    EXPECT_EQ(file->Duplicate(&garbage), E_FAIL);
    EXPECT_EQ(garbage, nullptr);
    EXPECT_EQ(Decoder().live_clips, 2);
    EXPECT_EQ(file->Duplicate(nullptr), E_INVALIDARG);
    Told().loads_to_fail = 0;
    const auto empty = EmptyFile();
    ASSERT_EQ(empty->Duplicate(copy.Out()), S_OK);  // nothing to measure
    EXPECT_EQ(copy->GetFileName(name, 100), S_OK);
    EXPECT_EQ(name[0], 0);
}

TEST_F(ReadFile, TellsItsDataRates) {
    const support::InLocale locale(0x0409);
    const support::TempFile path(".r3d");
    MakeFile(path.Path(), 24000123);
    const auto file = MeasuredFile(path.Path());
    constexpr uint32_t kVideo = 2400000;  // 24000123 / 240 frames, cut, at 24
    constexpr uint32_t kAudio = 384000;

    EXPECT_EQ(FileText(file.Get(), 1, S_OK), "RED Raw (R3D)");
    EXPECT_EQ(FileText(file.Get(), 1, S_OK, 4), "RED");
    EXPECT_EQ(FileText(file.Get(), 1, S_OK, 0), "untouched");
    EXPECT_EQ(FileText(file.Get(), 2, S_FALSE), "2784000");
    EXPECT_EQ(FileText(file.Get(), 2, S_FALSE, 4), "278");
    EXPECT_EQ(FileText(file.Get(), 3, S_FALSE), "untouched");

    EXPECT_EQ(StreamText(file.Get(), 0, 1, S_OK), "R3D Video");
    EXPECT_EQ(StreamText(file.Get(), 1, 1, S_OK), "R3D Audio");
    EXPECT_EQ(StreamText(file.Get(), 0, 1, S_OK, 0), "untouched");
    EXPECT_EQ(StreamText(file.Get(), 0, 2, S_OK), "10x6x48");
    EXPECT_EQ(StreamText(file.Get(), 0, 3, S_OK), "2400000");
    EXPECT_EQ(StreamText(file.Get(), 1, 3, S_OK), "384000");
    EXPECT_EQ(StreamText(file.Get(), 1, 3, S_OK, 1), "");
    for (const uint32_t key : {0u, 4u, 0xFFFFFFFFu}) EXPECT_EQ(StreamText(file.Get(), 0, key, S_FALSE), "untouched");
    for (const int32_t stream : {-1, 2}) {
        for (const uint32_t key : {1u, 2u, 3u}) {
            EXPECT_EQ(StreamText(file.Get(), stream, key, S_FALSE), "untouched");
        }
    }

    constexpr uint64_t kUntouched = ~uint64_t{0};
    constexpr uint64_t kHigh = kUntouched << 32;
    const struct {
        int32_t stream;  // -2: of the file
        uint32_t key, size;
        HRESULT result;
        uint64_t value;  // ~0: untouched
    } kRows[] = {
        {0, 1, 3, S_OK, kUntouched},    {-2, 1, 3, S_FALSE, kUntouched}, {-2, 1, 4, S_OK, kHigh | (kVideo + kAudio)},
        {2, 1, 4, S_FALSE, kUntouched}, {-2, 2, 8, S_FALSE, kUntouched}, {-2, 5, 8, S_OK, kHigh | (kVideo + kAudio)},
        {1, 2, 3, S_FALSE, kUntouched}, {0, 2, 4, S_OK, kHigh | kVideo}, {0, 1, 4, S_OK, kHigh | 0x56443352},
        {0, 6, 7, S_FALSE, kUntouched}, {1, 2, 4, S_OK, kHigh | kAudio}, {1, 1, 8, S_OK, kHigh | 0x41443352},
        {0, 3, 8, S_FALSE, kUntouched}, {-1, 2, 4, S_FALSE, kUntouched}, {7, 6, 8, S_OK, 0x4038000000000000},
        {0, 0, 8, S_FALSE, kUntouched},
    };
    for (const auto& row : kRows) {
        uint64_t value = kUntouched;
        const HRESULT result = row.stream == -2 ? file->GetFileValue(&value, row.size, row.key)
                                                : file->GetStreamValue(&value, row.size, row.stream, row.key);
        EXPECT_EQ(result, row.result) << &row - kRows;
        EXPECT_EQ(value, row.value) << &row - kRows;
    }
    EXPECT_EQ(file->GetFileValue(nullptr, 4, 1), S_FALSE);
    EXPECT_EQ(file->GetStreamValue(nullptr, 4, 1, 2), E_INVALIDARG);
    if (!locale.IsSet()) GTEST_SKIP() << locale.Lack();
    EXPECT_EQ(StreamText(file.Get(), 1, 2, S_OK), "48,000 Hz, 24 Bit, Stereo");
    EXPECT_EQ(StreamText(file.Get(), 1, 2, S_OK, 7), "48,000");
}

TEST_F(ReadFile, HasNoDataRateWithoutItsFile) {
    const auto file = MeasuredFile();
    uint32_t value = 9;
    EXPECT_EQ(FileText(file.Get(), 2, S_FALSE), "untouched");
    EXPECT_EQ(StreamText(file.Get(), 0, 3, S_FALSE), "untouched");
    EXPECT_EQ(StreamText(file.Get(), 1, 3, S_OK), "384000");  // does not hang on the file
    EXPECT_EQ(file->GetFileValue(&value, 4, 1), S_FALSE);
    EXPECT_EQ(file->GetStreamValue(&value, 4, 0, 2), E_FAIL);
    EXPECT_EQ(value, 9u);
}

TEST_F(ReadFile, ChannelsHaveNames) {
    constexpr struct {
        uint32_t mask;
        const char* text;
    } kRows[] = {{0, "unsupported channel count"}, {1, "Mono"}, {3, "Stereo"}, {7, "multi channel"}};
    for (const auto& row : kRows) {
        Told().clip.channel_mask = row.mask;
        const std::string text = StreamText(MeasuredFile().Get(), 1, 2, S_OK);
        EXPECT_TRUE(text.ends_with(row.text)) << text;
    }
}

// A clip may tell anything of itself.
TEST_F(ReadFile, StandsWildClips) {
    const support::TempFile path(".r3d");
    MakeFile(path.Path(), 1000);
    constexpr uint64_t kMost = ~uint64_t{0};
    const float kNan = std::numeric_limits<float>::quiet_NaN();
    const struct {
        uint64_t width, height, frames, largest, samples;
        float rate;
        uint32_t sample_rate, mask;
    } kRows[] = {
        {0, 0, 0, 0, 0, 0.0f, 0, 0},
        {kMost, kMost, kMost, kMost, kMost, 3e38f, 0xFFFFFFFF, 0xFFFFFFFF},
        {1, 1, 1, 1, 1, -1.0f, 1, 0xF},
        {1u << 31, 1u << 31, 0, uint64_t{1} << 62, 1, kNan, 1, 1},
    };
    for (const auto& row : kRows) {
        fake_decoder::Clip& clip = Told().clip;
        clip.width = row.width, clip.height = row.height, clip.frames = row.frames, clip.frame_rate = row.rate;
        clip.largest_block = row.largest, clip.samples = row.samples;
        clip.sample_rate = row.sample_rate, clip.channel_mask = row.mask;
        const auto file = OpenFile(path.Path());
        int64_t duration = -1;
        EXPECT_EQ(file->GetDuration(&duration), S_OK);
        EXPECT_GE(duration, 0);
        uint32_t rate = 0;
        EXPECT_EQ(file->GetFileValue(&rate, 4, 1), S_OK);
        _ktstreaminfo info[2] = {};
        EXPECT_EQ(file->GetStreamInfo(info, 0, 2), S_OK);
        const auto video = VideoOf(file.Get());
        EXPECT_EQ(video->GetDuration(&duration), S_OK);
        const auto request = Request(128);
        _ktframeinfo frame_info;
        uint32_t bytes = 7;
        uint8_t pixel[64];
        const auto token = TokenOf(pixel, sizeof pixel);
        const HRESULT read = video->ReadFrame(0, &request, &token, &frame_info, &bytes);
        EXPECT_EQ(SUCCEEDED(read), row.width <= 1) << row.width;
        const auto audio = AudioOf(file.Get());
        EXPECT_EQ(audio->GetDuration(&duration), S_OK);
    }
}

}  // namespace
}  // namespace reader_tests
