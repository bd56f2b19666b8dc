#include "substitutes/decoder_library.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>

#include "platform/files.h"
#include "platform/modules.h"
#include "platform/process.h"
#include "platform/result_file.h"
#include "platform/text.h"
#include "substitutes/decoder/file_access.h"

namespace clipfio::decoder::test {
namespace {

template <class Function>
void Bind(HMODULE module, const char* symbol, Function*& function) {
    const FARPROC address = GetProcAddress(module, symbol);
    if (address == nullptr) ADD_FAILURE() << symbol << " is missing";
    function = reinterpret_cast<Function*>(reinterpret_cast<void*>(address));
}

// By its whole path: another library of that file name may have been loaded from elsewhere.
WString LibraryPath() { return platform::Wide(CLIPFIO_SUBSTITUTE_DECODER "/REDR3D-x64.dll"); }

DecoderLibrary LoadTheLibrary() {
    DecoderLibrary l;
    l.module = LoadLibraryW(LibraryPath().c_str());
    if (l.module == nullptr) {
        ADD_FAILURE() << "the decoder library is not there: error " << GetLastError();
        std::abort();
    }
    Bind(l.module, "R3D_AAB", l.create_clip);
    Bind(l.module, "R3D_AAA", l.destroy_clip);
    Bind(l.module, "R3D_AAD", l.clip_status);
    Bind(l.module, "R3D_AAE", l.load_clip);
    Bind(l.module, "R3D_AAF", l.close_clip);
    Bind(l.module, "R3D_AAI", l.decode_frame);
    Bind(l.module, "R3D_AAK", l.decode_audio);
    Bind(l.module, "R3D_AAO", l.get_clip_settings);
    Bind(l.module, "R3D_AAV", l.clip_width);
    Bind(l.module, "R3D_AAW", l.clip_height);
    Bind(l.module, "R3D_AAX", l.clip_frame_count);
    Bind(l.module, "R3D_ABB", l.clip_frame_rate);
    Bind(l.module, "R3D_AAZ", l.audio_block_info);
    Bind(l.module, "R3D_ABA", l.audio_sample_count);
    Bind(l.module, "R3D_ABD", l.frame_timecode);
    Bind(l.module, "R3D_ABK", l.get_metadata_number);
    return l;
}

template <class Sample>
std::vector<Sample> Decode(uintptr_t clip, uint64_t frame, DecodeMode mode, const DecodeSettingsRecord& look,
                           PixelType type, uint64_t samples_per_pixel) {
    const DecoderLibrary& library = DecoderLibrary::Get();
    const uint64_t width = library.clip_width(clip) / DivisorOf(mode),
                   height = library.clip_height(clip) / DivisorOf(mode);
    std::vector<Sample> out(width * height * samples_per_pixel);
    const VideoDecodeJob job = JobOf(out.data(), width, height, type, look, mode);
    if (library.decode_frame(clip, frame, &job) != Number(Status::Good)) out.clear();
    return out;
}

}  // namespace

const DecoderLibrary& DecoderLibrary::Get() {
    static const DecoderLibrary library = LoadTheLibrary();
    return library;
}

std::string TestFile::Utf8() const { return platform::Utf8(path_); }

std::vector<uint8_t> TestFile::Bytes() const {
    InputFile file;
    if (!file.Open(path_)) return {};
    std::vector<uint8_t> bytes(file.Size());
    bytes.resize(file.ReadAt(0, bytes.data(), bytes.size()));
    return bytes;
}

void TestFile::Write(const std::vector<uint8_t>& bytes) const {
    // A file system may wait for the disk when a file is cut to nothing and written anew.
    DeleteFileW(path_.c_str());
    OutputFile file;
    ASSERT_TRUE(file.Create(path_) && file.Write(bytes.data(), bytes.size()) && file.Close());
}

std::vector<uint16_t> TestClip::Rgb16(uint64_t frame, DecodeMode mode, const DecodeSettingsRecord& look) const {
    return Decode<uint16_t>(handle_, frame, mode, look, PixelType::Rgb16, 3);
}

std::vector<uint8_t> TestClip::Bgra8(uint64_t frame, DecodeMode mode, const DecodeSettingsRecord& look) const {
    return Decode<uint8_t>(handle_, frame, mode, look, PixelType::Bgra8, 4);
}

size_t UnfinishedFiles(const TestFile& file) {
    const std::string start = ".clipfio-" + std::to_string(GetCurrentProcessId()) + "-";
    const std::filesystem::path folder = platform::NativePath(file.Utf8()).parent_path();
    const auto is_one = [&](const auto& entry) { return entry.path().filename().string().starts_with(start); };
    return static_cast<size_t>(std::count_if(std::filesystem::directory_iterator(folder), {}, is_one));
}

uint32_t DivisorOf(DecodeMode mode) {
    constexpr std::pair<DecodeMode, uint32_t> kSmaller[] = {
        {DecodeMode::HalfPremium, 2}, {DecodeMode::HalfGood, 2},       {DecodeMode::QuarterGood, 4},
        {DecodeMode::EighthGood, 8},  {DecodeMode::SixteenthGood, 16},
    };
    for (const auto& [of, divisor] : kSmaller) {
        if (of == mode) return divisor;
    }
    return 1;
}

VideoDecodeJob JobOf(void* output, uint64_t width, uint64_t height, PixelType type, const DecodeSettingsRecord& look,
                     DecodeMode mode) {
    VideoDecodeJob job;
    job.decodeMode = mode;
    job.pixelType = type;
    job.output = output;
    job.rowBytes = width * (type == PixelType::Rgb16 ? 6 : 4);
    job.outputBytes = job.rowBytes * height;
    job.settings = &look;
    return job;
}

DecodeSettingsRecord NeutralLook() {
    DecodeSettingsRecord look;
    look.imageColorSpace = 1;
    look.imageGammaCurve = 1;
    return look;
}

std::vector<uint16_t> NoisePicture(uint32_t width, uint32_t height, uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<uint16_t> picture(size_t{width} * height * 3);
    for (uint16_t& sample : picture) sample = static_cast<uint16_t>(random());
    return picture;
}

void WriteClip(const TestFile& file, const ClipDescription& description,
               const std::vector<std::vector<uint16_t>>& pictures, const std::vector<int32_t>& sound) {
    ClipWriter writer;
    ASSERT_TRUE(writer.Open(file.Path(), description)) << writer.Error();
    for (const auto& picture : pictures) {
        ASSERT_EQ(picture.size(), size_t{description.width} * description.height * 3);
        ASSERT_TRUE(writer.AddFrame(picture.data())) << writer.Error();
    }
    if (!sound.empty()) {
        const size_t samples = sound.size() / ChannelCount(description.channel_mask);
        ASSERT_TRUE(writer.AddAudio(sound.data(), samples)) << writer.Error();
    }
    ASSERT_TRUE(writer.Finish()) << writer.Error();
}

}  // namespace clipfio::decoder::test
