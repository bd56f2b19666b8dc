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
#include "support/whole_file.h"

namespace clipfio::decoder::test {
namespace {

template <class Sample>
std::vector<Sample> Decode(uintptr_t clip, uint64_t frame, DecodeMode mode, const DecodeSettingsRecord& look,
                           PixelType type, uint64_t samples_per_pixel) {
    const uint64_t width = Library().clip_width(clip) / DivisorOf(mode);
    const uint64_t height = Library().clip_height(clip) / DivisorOf(mode);
    std::vector<Sample> out(width * height * samples_per_pixel);
    const VideoDecodeJob job = JobOf(out.data(), width, height, type, look, mode);
    if (Library().decode_frame(clip, frame, &job) != Number(Status::Good)) out.clear();
    return out;
}

}  // namespace

Symbol::Symbol(const char* name) {
    // By its whole path: another library of that file name may have been loaded from elsewhere.
    static const HMODULE library = LoadLibraryW(platform::Wide(CLIPFIO_SUBSTITUTE_DECODER "/REDR3D-x64.dll").c_str());
    address = library ? GetProcAddress(library, name) : nullptr;
    if (!address) ADD_FAILURE() << name << " is not there: error " << GetLastError();
}

const DecoderLibrary& DecoderLibrary::Get() {
    static const DecoderLibrary library;
    return library;
}

std::string TestFile::Utf8() const { return platform::Utf8(path_); }

std::vector<uint8_t> TestFile::Bytes() const {
    const std::string bytes = support::ReadWhole(path_.c_str());
    return {bytes.begin(), bytes.end()};
}

void TestFile::Write(const std::vector<uint8_t>& bytes) const {
    // A file system may wait for the disk when a file is cut to nothing and written anew.
    DeleteFileW(path_.c_str());
    support::WriteWhole(path_.c_str(), {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
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
    picture[0] = 0, picture[1] = 65535;
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
