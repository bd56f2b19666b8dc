// The built decoder library, loaded and bound as a client does it, and clips to try it on.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/base.h"
#include "r3dsdk/sdk_records.h"
#include "substitutes/decoder/clip_writer.h"
#include "substitutes/decoder/status.h"
#include "support/temp_file.h"

namespace clipfio::decoder::test {

// A function of the library, by its name.
struct Symbol {
    explicit Symbol(const char* name);
    template <class Function>
    operator Function*() const {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(address));
    }
    FARPROC address;
};

// The library's operations. Loaded at the first use, for the life of the process.
struct DecoderLibrary {
    static const DecoderLibrary& Get();

    uintptr_t (*create_clip)() = Symbol("R3D_AAB");
    void (*destroy_clip)(uintptr_t) = Symbol("R3D_AAA");
    uint32_t (*clip_status)(uintptr_t) = Symbol("R3D_AAD");
    uint32_t (*load_clip)(uintptr_t, const char*) = Symbol("R3D_AAE");
    void (*close_clip)(uintptr_t) = Symbol("R3D_AAF");
    uint32_t (*decode_frame)(uintptr_t, uint64_t, const VideoDecodeJob*) = Symbol("R3D_AAI");
    uint32_t (*decode_audio)(uintptr_t, uint64_t, uint64_t*, void*, uint64_t) = Symbol("R3D_AAK");
    void (*get_clip_settings)(uintptr_t, DecodeSettingsRecord*) = Symbol("R3D_AAO");
    uint64_t (*clip_width)(uintptr_t) = Symbol("R3D_AAV");
    uint64_t (*clip_height)(uintptr_t) = Symbol("R3D_AAW");
    uint64_t (*clip_frame_count)(uintptr_t) = Symbol("R3D_AAX");
    float (*clip_frame_rate)(uintptr_t) = Symbol("R3D_ABB");
    uint64_t (*audio_block_info)(uintptr_t, uint64_t*) = Symbol("R3D_AAZ");
    uint64_t (*audio_sample_count)(uintptr_t) = Symbol("R3D_ABA");
    const char* (*frame_timecode)(uintptr_t, uint64_t) = Symbol("R3D_ABD");
    uint32_t (*get_metadata_number)(uintptr_t, const char*) = Symbol("R3D_ABK");
};

inline const DecoderLibrary& Library() { return DecoderLibrary::Get(); }

constexpr uint32_t Number(Status status) { return static_cast<uint32_t>(status); }

// A file in the folder for temporary files; it goes with the object.
class TestFile {
  public:
    explicit TestFile(const std::string& ending = ".r3d") : file_(ending), path_(file_.Path()) {}  // UTF-8

    [[nodiscard]] const WString& Path() const { return path_; }
    [[nodiscard]] std::string Utf8() const;
    [[nodiscard]] std::vector<uint8_t> Bytes() const;
    void Write(const std::vector<uint8_t>& bytes) const;

  private:
    support::TempFile file_;
    WString path_;
};

// Files of this process that wait to become results beside the file.
size_t UnfinishedFiles(const TestFile& file);

// A handle of the library, with a clip or without.
class TestClip {
  public:
    TestClip() : handle_(DecoderLibrary::Get().create_clip()) {}
    explicit TestClip(const TestFile& file) : TestClip() { (void)Load(file.Utf8()); }
    ~TestClip() { DecoderLibrary::Get().destroy_clip(handle_); }
    TestClip(const TestClip&) = delete;
    TestClip& operator=(const TestClip&) = delete;

    [[nodiscard]] uintptr_t Handle() const { return handle_; }
    uint32_t Load(const std::string& path) const { return DecoderLibrary::Get().load_clip(handle_, path.c_str()); }

    // The picture, with its rows packed; empty when the library refuses.
    [[nodiscard]] std::vector<uint16_t> Rgb16(uint64_t frame, DecodeMode mode, const DecodeSettingsRecord& look) const;
    [[nodiscard]] std::vector<uint8_t> Bgra8(uint64_t frame, DecodeMode mode, const DecodeSettingsRecord& look) const;

  private:
    uintptr_t handle_;
};

uint32_t DivisorOf(DecodeMode mode);

// To decode a picture of so many pixels, with its rows packed, into `output`, which has room for just that.
VideoDecodeJob JobOf(void* output, uint64_t width, uint64_t height, PixelType type, const DecodeSettingsRecord& look,
                     DecodeMode mode = DecodeMode::FullPremium);

// The factory default, delivered in Rec. 709 as a reader asks for it: shows footage as it was put in.
DecodeSettingsRecord NeutralLook();

// Noise over the whole range of 16 bits, the same for the same seed.
std::vector<uint16_t> NoisePicture(uint32_t width, uint32_t height, uint32_t seed);

// Writes a clip of these pictures, each of width x height x 3 samples; fails the test when it cannot.
void WriteClip(const TestFile& file, const ClipDescription& description,
               const std::vector<std::vector<uint16_t>>& pictures, const std::vector<int32_t>& sound = {});

}  // namespace clipfio::decoder::test
