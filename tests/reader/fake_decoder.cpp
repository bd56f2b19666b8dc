#include "tests/reader/fake_decoder.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#include "platform/endian.h"
#include "r3dsdk/sdk_interfaces.h"
#include "r3dsdk/sdk_symbols.h"

using namespace clipfio;
using fake_decoder::Script;

namespace {

fake_decoder::State state;

Script& Told() noexcept { return state.script; }

// Takes no memory unless it remembers: a test that fails allocations means the reader's.
void Event(const char* text) {
    if (Told().on_event) Told().on_event(text);
    if (Told().remembers) Told().events.push_back(text);
}

struct ClipObject {
    std::atomic<bool> loaded{false};
    std::atomic<int> decoding{0};
};

ClipObject& Object(uintptr_t clip) noexcept { return *reinterpret_cast<ClipObject*>(clip); }

class Decoding {
  public:
    explicit Decoding(ClipObject& clip) noexcept : clip_(clip) { clip_.decoding.fetch_add(1, kOrder); }
    ~Decoding() { clip_.decoding.fetch_sub(1, kOrder); }

  private:
    // No order is promised, so that a thread sanitizer sees what the caller fails to order.
    static constexpr auto kOrder = std::memory_order_relaxed;
    ClipObject& clip_;
};

void NoteMisuse(bool misuse) noexcept {
    if (misuse) state.misuses.fetch_add(1, std::memory_order_relaxed);
}

void NoteIfDecoding(uintptr_t clip) noexcept { NoteMisuse(Object(clip).decoding.load(std::memory_order_relaxed) != 0); }

uint64_t Divisor(DecodeMode mode) noexcept {
    switch (mode) {
        case DecodeMode::HalfPremium:
        case DecodeMode::HalfGood:
            return 2;
        case DecodeMode::QuarterGood:
            return 4;
        case DecodeMode::EighthGood:
            return 8;
        case DecodeMode::SixteenthGood:
            return 16;
        default:
            return 1;
    }
}

template <class Sample>
void WritePicture(const VideoDecodeJob& job, uint64_t row_samples, uint64_t height, Sample sample) {
    using Value = decltype(sample(uint64_t{}));
    for (uint64_t y = 0; y < height; ++y) {
        auto* row = static_cast<uint8_t*>(job.output) + y * job.rowBytes;
        for (uint64_t x = 0; x < row_samples; ++x) {
            platform::StoreLittle<Value>(row + x * sizeof(Value), sample(y * row_samples + x));
        }
    }
}

}  // namespace

KT_API fake_decoder::State* FakeDecoderState() noexcept { return &state; }

KT_API uint32_t RED_LIB_ID() { return kMainLibraryId; }
KT_API uint32_t RED_LIB_MAJOR_VERSION() { return Told().version[0]; }
KT_API uint32_t RED_LIB_MINOR_VERSION() { return Told().version[1]; }
KT_API uint32_t RED_LIB_PATCH_VERSION() { return Told().version[2]; }
KT_API uint32_t RED_MINIMUM_MAJOR_VERSION() { return 7; }
KT_API uint32_t RED_MINIMUM_MINOR_VERSION() { return 0; }
KT_API uint32_t RED_MINIMUM_PATCH_VERSION() { return 0; }
KT_API uint32_t RED_STATICLIB_MAJOR_VERSION() { return 7; }
KT_API uint32_t RED_STATICLIB_MINOR_VERSION() { return 0; }
KT_API uint32_t RED_STATICLIB_PATCH_VERSION() { return 3; }
KT_API const char* RED_LIB_BUILD_NAME() { return "fake"; }
KT_API const char* RED_STATICLIB_BUILD_NAME() { return "fake"; }
KT_API int32_t RED_LIB_INITIALIZE(uint32_t phase, SdkKeyValues*, const HMODULE*, uint32_t) {
    constexpr const char* kEvents[] = {"initialize 0", "initialize 1", "initialize 2"};
    Event(kEvents[phase]);
    return Told().phase_status[phase];
}
KT_API void RED_LIB_FINALIZE() { Event("finalize"); }

KT_API uintptr_t R3D_AAB() {
    Event("create");
    state.live_clips.fetch_add(1, std::memory_order_relaxed);
    return reinterpret_cast<uintptr_t>(new (std::malloc(sizeof(ClipObject))) ClipObject);
}

KT_API void R3D_AAA(uintptr_t clip) {
    Event("destroy");
    NoteIfDecoding(clip);
    state.live_clips.fetch_sub(1, std::memory_order_relaxed);
    std::free(&Object(clip));
}

KT_API int32_t R3D_AAD(uintptr_t clip) { return Object(clip).loaded.load(std::memory_order_relaxed) ? 0 : 2; }

KT_API int32_t R3D_AAE(uintptr_t clip, const char* path) {
    if (Told().remembers) Event((std::string("load ") + path).c_str());
    NoteIfDecoding(clip);
    const bool fails = Told().loads_to_fail > 0;
    if (fails) --Told().loads_to_fail;
    Object(clip).loaded.store(!fails, std::memory_order_relaxed);
    return fails ? 3 : 0;
}

KT_API void R3D_AAF(uintptr_t clip) {
    Event("close");
    NoteIfDecoding(clip);
    Object(clip).loaded.store(false, std::memory_order_relaxed);
}

KT_API int32_t R3D_AAI(uintptr_t clip, uint64_t frame, VideoDecodeJob* given) {
    const Decoding decoding(Object(clip));
    // The job is the caller's copy for this call: nothing of it may be looked at afterwards.
    const VideoDecodeJob copy = std::exchange(*given, {});
    const VideoDecodeJob* const job = &copy;
    if (Told().remembers) Told().jobs.push_back({frame, *job, *job->settings});
    if (!Object(clip).loaded.load(std::memory_order_relaxed)) return 2;
    if (Told().decode_status != 0) return Told().decode_status;
    const bool wide = job->pixelType == PixelType::Rgb16;
    const uint64_t row_samples = Told().clip.width / Divisor(job->decodeMode) * (wide ? 3 : 4);
    const uint64_t height = Told().clip.height / Divisor(job->decodeMode);
    const bool fits = job->rowBytes >= row_samples * (wide ? 2 : 1) && job->outputBytes >= job->rowBytes * height &&
                      reinterpret_cast<uintptr_t>(job->output) % 16 == 0;
    NoteMisuse(!fits);
    if (!fits || !Told().writes_pictures) return fits ? 0 : 4;
    if (wide) {
        WritePicture(*job, row_samples, height, [&](uint64_t i) { return fake_decoder::Sample16(frame, i); });
    } else {
        WritePicture(*job, row_samples, height, [&](uint64_t i) { return fake_decoder::Sample8(frame, i); });
    }
    return 0;
}

KT_API int32_t R3D_AAK(uintptr_t clip, uint64_t first, uint64_t* count, void* buffer, uint64_t bytes) {
    const Decoding decoding(Object(clip));
    Script& told = Told();
    if (told.remembers) {
        told.audio_calls.push_back({first, *count, bytes, reinterpret_cast<uintptr_t>(buffer)});
    }
    if (!Object(clip).loaded.load(std::memory_order_relaxed)) return 2;
    fake_decoder::AudioAnswer answer;
    if (!told.audio.empty()) {
        answer = told.audio.front();
        told.audio.pop_front();
    }
    if (answer.status != 0) return answer.status;
    if (first >= told.clip.samples) return 5;
    const auto channels = static_cast<uint32_t>(__builtin_popcount(told.clip.channel_mask & 0xF));
    *count = std::min({*count, answer.most, told.clip.samples - first});
    if (bytes < *count * channels * 4) {
        NoteMisuse(true);
        return 4;
    }
    auto* out = static_cast<uint8_t*>(buffer);
    for (uint64_t i = 0; i < *count; ++i) {
        for (uint32_t c = 0; c < channels; ++c, out += 4) platform::StoreBig(out, fake_decoder::Sound(first + i, c));
    }
    return 0;
}

KT_API void R3D_AAO(uintptr_t, DecodeSettingsRecord* settings) { *settings = Told().clip.settings; }
KT_API uint64_t R3D_AAV(uintptr_t) { return Told().clip.width; }
KT_API uint64_t R3D_AAW(uintptr_t) { return Told().clip.height; }
KT_API uint64_t R3D_AAX(uintptr_t) { return Told().clip.frames; }
KT_API float R3D_ABB(uintptr_t) { return Told().clip.frame_rate; }
KT_API uint64_t R3D_AAZ(uintptr_t, uint64_t* largest) {
    *largest = Told().clip.audio_blocks ? Told().clip.largest_block : 0;
    return Told().clip.audio_blocks;
}
KT_API uint64_t R3D_ABA(uintptr_t) { return Told().clip.samples; }
KT_API const char* R3D_ABD(uintptr_t, uint64_t frame) {
    if (frame != 0 && frame + 1 != Told().clip.frames) return "99:99:99:99";
    return frame == 0 ? Told().clip.first_timecode : Told().clip.last_timecode;
}
KT_API uint32_t R3D_ABK(uintptr_t, const char* key) {
    const fake_decoder::Clip& clip = Told().clip;
    if (std::strcmp(key, "samplerate") == 0) return clip.sample_rate;
    if (std::strcmp(key, "sample_size") == 0) return clip.sample_size;
    return std::strcmp(key, "channel_mask") == 0 ? clip.channel_mask : 0;
}

#define WRITTEN_ABOVE(symbol, operation)
#define NEVER_CALLED(symbol) \
    KT_API void symbol() { NoteMisuse(true); }
SDK_CLIP_API_SYMBOLS(WRITTEN_ABOVE, NEVER_CALLED)
SDK_METADATA_API_SYMBOLS(NEVER_CALLED)
SDK_ASYNC_DECODER_API_SYMBOLS(NEVER_CALLED)
SDK_RED_ROCKET_API_SYMBOLS(NEVER_CALLED)
SDK_STREAM_API_SYMBOLS(NEVER_CALLED)
