// Whole and broken clips through the module and the substitute decoder, in processes of their own: each process has
// attached its decoder before its first line runs.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <iostream>
#include <optional>
#include <sstream>

#include "platform/text.h"
#include "reader/plugin_exports.h"
#include "substitutes/decoder/clip_writer.h"
#include "support/child_roles.h"
#include "support/open_files.h"
#include "support/scoped_variable.h"
#include "support/temp_file.h"
#include "support/whole_file.h"
#include "tests/reader/reader_scene.h"

namespace reader_tests {
namespace {

constexpr uint32_t kWidth = 37;
constexpr uint32_t kHeight = 21;
constexpr uint64_t kFrames = 3;
constexpr int32_t kSamples = 4000;

uint64_t HashOf(const void* data, std::size_t bytes) {
    uint64_t hash = 14695981039346656037u;
    for (std::size_t i = 0; i < bytes; ++i) hash = (hash ^ static_cast<const uint8_t*>(data)[i]) * 1099511628211u;
    return hash;
}

uint16_t StoredSample(uint64_t frame, std::size_t place) {
    return static_cast<uint16_t>((place + 17) * 40503 + frame * 9973);
}
int32_t StoredSound(std::size_t place) { return static_cast<int32_t>(static_cast<uint32_t>(place) * 2654435761u); }

void WriteClip(const WCHAR* path) {
    const clipfio::decoder::ClipDescription description{.width = kWidth,
                                                        .height = kHeight,
                                                        .start_frame = 24 * 3600 + 12,  // 01:00:00:12
                                                        .sample_rate = 48000,
                                                        .channel_mask = 0x3};
    clipfio::decoder::ClipWriter writer;
    ASSERT_TRUE(writer.Open(path, description)) << writer.Error();
    std::vector<uint16_t> picture(kWidth * kHeight * 3);
    for (uint64_t frame = 0; frame < kFrames; ++frame) {
        for (std::size_t i = 0; i < picture.size(); ++i) picture[i] = StoredSample(frame, i);
        ASSERT_TRUE(writer.AddFrame(picture.data())) << writer.Error();
    }
    std::vector<int32_t> sound(kSamples * 2);
    for (std::size_t i = 0; i < sound.size(); ++i) sound[i] = StoredSound(i);
    ASSERT_TRUE(writer.AddAudio(sound.data(), kSamples)) << writer.Error();
    ASSERT_TRUE(writer.Finish()) << writer.Error();
}

// What a host hears of one clip, as a line.
std::string Report(IKtReadFileClass* file_class, const WCHAR* path) {
    std::ostringstream line;
    line << std::hex;
    const auto result = [&](HRESULT hr) { line << ' ' << static_cast<uint32_t>(hr); };
    result(file_class->CheckFile(path));
    ComPtr<IKtReadFile> file;
    const HRESULT opened = file_class->CreateNamed(file.Out(), 0, 0, path, 1);
    result(opened);
    if (FAILED(opened)) return line.str();
    ComPtr<IKtReadVideoStream> video;
    ComPtr<IKtReadAudioStream> audio;
    ComPtr<IKtReadMeta> meta;
    result(file->GetStream(video.OutVoid(), 0, 0));
    result(file->GetStream(audio.OutVoid(), 0, 1));
    result(file->GetMeta(meta.OutVoid()));
    if (!video || !audio || !meta) return line.str();
    uint64_t length = 0;
    result(video->GetLength(&length));
    line << ' ' << length;
    result(audio->GetLength(&length));
    line << ' ' << length;
    WCHAR text[100] = {};
    for (const uint32_t key : {0x444F4354u, 0x4F444354u}) {
        result(meta->GetValue(key, text, 100));
        line << ' ' << platform::Utf8(text);
    }
    std::vector<uint8_t> memory(kWidth * kHeight * 16);
    for (uint64_t frame = 0; frame <= kFrames; ++frame) {
        for (const uint32_t bits : {32u, 128u}) {
            for (const double scale : {1.0, 0.25}) {
                const auto token = TokenOf(memory.data(), memory.size());
                const auto request = Request(bits, scale);
                _ktframeinfo info;
                uint32_t bytes = 0;
                const HRESULT read = video->ReadFrame(frame, &request, &token, &info, &bytes);
                result(read);
                if (read == S_OK) line << ' ' << HashOf(memory.data(), bytes);
            }
        }
    }
    std::vector<float> samples(kSamples * 2);
    const auto token = TokenOf(samples.data(), samples.size() * 4);
    int32_t read = -1;
    result(audio->ReadSamples(0, &token, kSamples, &read));
    line << ' ' << read << ' ' << HashOf(samples.data(), static_cast<std::size_t>(read) * 8);
    result(audio->ReadSamples(kSamples - 10, &token, 100, &read));
    line << ' ' << read;
    return line.str();
}

// A host over the substitute decoder.
class Reader {
  public:
    Reader() {
        const support::ScopedVariable folder(W("R3DSDKPATH"), platform::Wide(CLIPFIO_SUBSTITUTE_DECODER).c_str());
        process_.emplace("report_clips");
    }
    std::string Report(const WCHAR* path) {
        process_->WriteLine(platform::Utf8(path));
        return process_->ReadLine();
    }
    DWORD End() { return process_->Wait(); }

  private:
    std::optional<support::ChildProcess> process_;
};

// The whole clip's first frames and sound as they were put in: the factory look shows footage as it is.
TEST(EndToEnd, WholeClipComesBackAsItWasWritten) {
    const support::TempFile clip(".r3d");
    ASSERT_NO_FATAL_FAILURE(WriteClip(clip.Path()));
    Reader reader;
    std::istringstream line(reader.Report(clip.Path()));
    line >> std::hex;
    const auto expect = [&](uint64_t expected, const char* what) {
        uint64_t value = ~expected;
        line >> value;
        EXPECT_EQ(value, expected) << what;
    };
    for (const char* what : {"check", "open", "video", "audio", "meta", "video length"}) expect(0, what);
    expect(kFrames, "frames");
    expect(0, "audio length");
    expect(kSamples, "samples");
    expect(0, "first timecode");
    expect(0x36005000000, "first timecode");  // decimal digits, read as they stand
    expect(0, "last timecode");
    expect(0x36005833333, "last timecode");
    for (uint64_t frame = 0; frame < kFrames; ++frame) {
        expect(0, "32 bits");
        std::vector<uint8_t> bytes(kWidth * kHeight * 4);
        std::vector<float> floats(kWidth * kHeight * 4);
        for (std::size_t y = 0; y < kHeight; ++y) {
            for (std::size_t x = 0; x < kWidth; ++x) {
                const std::size_t to = ((kHeight - 1 - y) * kWidth + x) * 4;
                for (std::size_t c = 0; c < 3; ++c) {
                    const uint16_t sample = StoredSample(frame, (y * kWidth + x) * 3 + 2 - c);
                    bytes[to + c] = static_cast<uint8_t>((sample + 128) / 257);
                    floats[to + c] = static_cast<float>(sample) * std::bit_cast<float>(0x37800080u);
                }
                bytes[to + 3] = 255;
            }
        }
        expect(HashOf(bytes.data(), bytes.size()), "32 bits");
        uint64_t quarter = 0;
        expect(0, "32 bits, quarter");
        line >> quarter;
        expect(0, "128 bits");
        expect(HashOf(floats.data(), floats.size() * 4), "128 bits");
        expect(0, "128 bits, quarter");
        line >> quarter;
    }
    for (int i = 0; i < 4; ++i) expect(static_cast<uint32_t>(E_FAIL), "a frame behind the last");
    expect(0, "sound");
    expect(kSamples, "sound");
    std::vector<float> sound(kSamples * 2);
    for (std::size_t i = 0; i < sound.size(); ++i) sound[i] = static_cast<float>(StoredSound(i)) / 2147483648.0f;
    expect(HashOf(sound.data(), sound.size() * 4), "sound");
    EXPECT_TRUE(line.good());
    EXPECT_EQ(reader.End(), 0u);
}

TEST(EndToEnd, BrokenClipsGiveAnErrorOrThePartThatIsWhole) {
    const support::TempFile clip(".r3d");
    ASSERT_NO_FATAL_FAILURE(WriteClip(clip.Path()));
    const std::string whole = support::ReadWhole(clip.Path());
    const auto write = [&](const std::string& bytes) { support::WriteWhole(clip.Path(), bytes); };
    Reader reader;
    const std::string good = reader.Report(clip.Path());
    const std::string refused = " 80004005";

    for (const WCHAR* const path : {W("/no such folder/clip.r3d"), W("/"), W("/dev/null")}) {
        EXPECT_EQ(reader.Report(path), refused + refused) << platform::Utf8(path);
    }
    for (const std::size_t size : {std::size_t{0}, std::size_t{7}, std::size_t{8}, std::size_t{511}}) {
        write(whole.substr(0, size));
        EXPECT_EQ(reader.Report(clip.Path()), (size < 8 ? refused : " 0") + refused) << size;
    }
    // Either the clip is refused or everything is answered for, each thing in its own way.
    const auto fields = [](const std::string& report) { return std::count(report.begin(), report.end(), ' '); };
    const auto is_answer = [&](const std::string& report) {
        return report == " 0" + refused || report == refused + refused || fields(report) >= fields(good) - 16;
    };
    for (std::size_t size = 512; size < whole.size(); size += 1009) {
        write(whole.substr(0, size));
        EXPECT_TRUE(is_answer(reader.Report(clip.Path()))) << size;
    }
    for (std::size_t at = 0; at < 512; at += 5) {
        std::string flipped = whole;
        flipped[at] = static_cast<char>(flipped[at] ^ 1 << at % 8);
        write(flipped);
        const std::string report = reader.Report(clip.Path());
        EXPECT_TRUE(is_answer(report)) << at;
        EXPECT_NE(report, good) << at;
    }
    write(whole);
    EXPECT_EQ(reader.Report(clip.Path()), good);  // nothing stays of what was broken
    EXPECT_EQ(reader.End(), 0u);
}

}  // namespace
}  // namespace reader_tests

using namespace reader_tests;

// Tells a report for each path; the exit code tells whether files were left open.
CHILD_ROLE(report_clips) {
    ComPtr<IClassFactory> factory;
    ComPtr<IKtReadFileClass> file_class;
    if (FAILED(DllGetClassObject(CLSID_KtReadFileClass, IID_IClassFactory, factory.OutVoid()))) return 2;
    if (FAILED(factory->CreateInstance(nullptr, IID_IKtReadFileClass, file_class.OutVoid()))) return 3;
    std::ptrdiff_t open_files = -1;
    for (std::string path; std::getline(std::cin, path);) {
        std::cout << Report(file_class.Get(), platform::Wide(path).c_str()) << std::endl;
        if (open_files < 0) open_files = support::OpenFiles();
    }
    return support::OpenFiles() == open_files ? 0 : 4;
}
