// A decoder library that does what a test tells it and remembers what it was asked. A test loads the same file as the
// module does and reaches the library's one state through FakeDecoderState.
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "platform/base.h"
#include "r3dsdk/sdk_records.h"

namespace fake_decoder {

using clipfio::DecodeSettingsRecord;
using clipfio::VideoDecodeJob;

// What every clip is like.
struct Clip {
    uint64_t width = 10;
    uint64_t height = 6;
    uint64_t frames = 240;
    float frame_rate = 24.0f;
    uint64_t audio_blocks = 5;
    uint64_t largest_block = 4096;
    uint64_t samples = 480000;  // per channel
    uint32_t sample_rate = 48000;
    uint32_t sample_size = 24;
    uint32_t channel_mask = 0x3;
    const char* first_timecode = "01:00:00:12";
    const char* last_timecode = "01:00:10:11";
    DecodeSettingsRecord settings;
};

// The answer to one call of DecodeAudio.
struct AudioAnswer {
    int32_t status = 0;
    uint64_t most = UINT64_MAX;  // samples of a channel
};

struct Job {
    uint64_t frame;
    VideoDecodeJob job;
    DecodeSettingsRecord settings;
};

struct AudioCall {
    uint64_t first;
    uint64_t count;
    uint64_t bytes;
    uintptr_t buffer;
};

struct Script {
    uint32_t version[3] = {7, 0, 3};
    int32_t phase_status[3] = {};  // of the library's initialisation
    Clip clip;
    int32_t loads_to_fail = 0;  // the next so many
    int32_t decode_status = 0;
    bool writes_pictures = true;
    std::deque<AudioAnswer> audio;  // taken from the front; then every call is answered in full
    bool remembers = true;          // off: several threads may ask at once
    void (*on_event)(const char* event) = nullptr;

    std::vector<std::string> events;
    std::vector<Job> jobs;
    std::vector<AudioCall> audio_calls;
};

struct State {
    Script script;
    std::atomic<int> live_clips{0};
    std::atomic<int> misuses{0};  // a clip loaded, closed or ended while it is decoded; a picture without room
};

// What the library writes: 16-bit and 8-bit samples of a picture by their place, sound by sample and channel.
constexpr uint16_t Sample16(uint64_t frame, uint64_t place) noexcept {
    return static_cast<uint16_t>(place * 40503 + frame * 7919);
}
constexpr uint8_t Sample8(uint64_t frame, uint64_t place) noexcept {
    return static_cast<uint8_t>(place * 167 + frame * 13);
}
constexpr int32_t Sound(uint64_t sample, uint32_t channel) noexcept {
    return static_cast<int32_t>(static_cast<uint32_t>((sample * 2654435761u) ^ (channel * 0x9E3779B9u)));
}

}  // namespace fake_decoder

KT_API fake_decoder::State* FakeDecoderState() noexcept;
