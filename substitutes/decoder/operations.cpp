// The operations that a client calls, under the library's own symbols.
//
// Nothing is thrown, and no handle, path or record can do harm: a handle without a clip gives NoClip, 0 or null.
// Everything but the text of FrameTimecode may be called from any thread, for one handle as for many.
#include <algorithm>
#include <cstring>
#include <exception>

#include "platform/base.h"
#include "substitutes/decoder/clip_registry.h"
#include "substitutes/decoder/timecode.h"

using clipfio::DecodeSettingsRecord;
using clipfio::VideoDecodeJob;
using clipfio::decoder::ClipHeader;
using clipfio::decoder::Clips;
using clipfio::decoder::ClipSlot;
using clipfio::decoder::LoadedClip;
using clipfio::decoder::Status;

namespace {

template <class Step>
uint32_t WithStatus(Step step) noexcept {
    try {
        return static_cast<uint32_t>(step());
    } catch (const std::exception&) {
        return static_cast<uint32_t>(Status::OutOfMemory);
    }
}

std::shared_ptr<LoadedClip> FindClip(uintptr_t handle) noexcept {
    const std::shared_ptr<ClipSlot> slot = Clips().Find(handle);
    return slot ? slot->Clip() : nullptr;
}

// `question` of the clip's header, or `none` without a clip.
template <class Result, class Question>
Result Ask(uintptr_t handle, Result none, Question question) noexcept {
    const std::shared_ptr<LoadedClip> clip = FindClip(handle);
    return clip ? question(clip->File().Header()) : none;
}

Status ReadSound(uintptr_t handle, uint64_t first, uint64_t wanted, void* buffer, uint64_t bytes, uint64_t& given) {
    if (buffer == nullptr) return Status::BadArguments;
    const std::shared_ptr<LoadedClip> clip = FindClip(handle);
    if (!clip) return Status::NoClip;
    const uint64_t there = clip->File().SamplesFrom(first);
    if (there == 0) return Status::EndOfSound;
    const uint64_t room = bytes / (uint64_t{clip->File().Channels()} * sizeof(int32_t));
    const uint64_t samples = std::min({wanted, room, there});
    if (samples == 0) return wanted == 0 ? Status::Good : Status::BadArguments;
    given = clip->File().ReadSamples(first, samples, buffer);
    return given != 0 ? Status::Good : Status::ReadFailed;
}

}  // namespace

// CreateClip: 0 when there is no memory.
KT_API uintptr_t R3D_AAB() {
    try {
        return Clips().Create();
    } catch (const std::exception&) {
        return 0;
    }
}

// DestroyClip: a clip that is still loaded goes as well.
KT_API void R3D_AAA(uintptr_t clip) { Clips().Destroy(clip); }

// ClipStatus: what the last load said, and NoClip before the first and after a close.
KT_API uint32_t R3D_AAD(uintptr_t clip) {
    const std::shared_ptr<ClipSlot> slot = Clips().Find(clip);
    return static_cast<uint32_t>(slot ? slot->LastStatus() : Status::NoClip);
}

// LoadClip: UTF-8 or ISO 8859-1. A clip that was loaded goes first, also when the new one does not open.
KT_API uint32_t R3D_AAE(uintptr_t clip, const char* path) {
    return WithStatus([&] {
        const std::shared_ptr<ClipSlot> slot = Clips().Find(clip);
        return slot ? slot->Load(path) : Status::NoClip;
    });
}

// CloseClip
KT_API void R3D_AAF(uintptr_t clip) {
    if (const std::shared_ptr<ClipSlot> slot = Clips().Find(clip)) slot->Close();
}

// DecodeFrame: nothing is written on failure, unless it is ReadFailed.
KT_API uint32_t R3D_AAI(uintptr_t clip, uint64_t frame, const VideoDecodeJob* job) {
    return WithStatus([&] {
        if (job == nullptr) return Status::BadArguments;
        const std::shared_ptr<LoadedClip> loaded = FindClip(clip);
        return loaded ? loaded->Decode(frame, *job) : Status::NoClip;
    });
}

// DecodeAudio: a read that passes the end gives what there is; one that starts there fails. The count is 0 on failure.
KT_API uint32_t R3D_AAK(uintptr_t clip, uint64_t first, uint64_t* count, void* buffer, uint64_t bytes) {
    if (count == nullptr) return static_cast<uint32_t>(Status::BadArguments);
    const uint64_t wanted = *count;
    *count = 0;
    return WithStatus([&] { return ReadSound(clip, first, wanted, buffer, bytes, *count); });
}

// GetClipSettings: without a clip, the factory default.
KT_API void R3D_AAO(uintptr_t clip, DecodeSettingsRecord* settings) {
    if (settings == nullptr) return;
    *settings = Ask(clip, DecodeSettingsRecord{}, [](const ClipHeader& h) { return h.settings; });
}

// ClipWidth
KT_API uint64_t R3D_AAV(uintptr_t clip) {
    return Ask(clip, uint64_t{0}, [](const ClipHeader& h) { return uint64_t{h.width}; });
}

// ClipHeight
KT_API uint64_t R3D_AAW(uintptr_t clip) {
    return Ask(clip, uint64_t{0}, [](const ClipHeader& h) { return uint64_t{h.height}; });
}

// ClipFrameCount
KT_API uint64_t R3D_AAX(uintptr_t clip) {
    return Ask(clip, uint64_t{0}, [](const ClipHeader& h) { return h.frameCount; });
}

// ClipFrameRate
KT_API float R3D_ABB(uintptr_t clip) {
    return Ask(clip, 0.0f, [](const ClipHeader& h) {
        return static_cast<float>(static_cast<double>(h.rateNumerator) / h.rateDenominator);
    });
}

// AudioBlockInfo: the size is that of the samples as DecodeAudio gives them. Samples without channels are no sound.
KT_API uint64_t R3D_AAZ(uintptr_t clip, uint64_t* largest_bytes) {
    uint64_t bytes = 0;
    const uint64_t blocks = Ask(clip, uint64_t{0}, [&bytes](const ClipHeader& h) {
        const uint32_t channels = clipfio::decoder::ChannelCount(h.channelMask);
        if (h.sampleCount == 0 || channels == 0) return uint64_t{0};
        const uint64_t samples = std::min<uint64_t>(h.blockSamples, h.sampleCount);
        bytes = samples * channels * sizeof(int32_t);
        return (h.sampleCount - 1) / h.blockSamples + 1;
    });
    if (largest_bytes != nullptr) *largest_bytes = bytes;
    return blocks;
}

// AudioSampleCount
KT_API uint64_t R3D_ABA(uintptr_t clip) {
    return Ask(clip, uint64_t{0}, [](const ClipHeader& h) { return h.sampleCount; });
}

// FrameTimecode: null for a frame that is not there. The text stays until this thread asks for the next.
KT_API const char* R3D_ABD(uintptr_t clip, uint64_t frame) {
    static thread_local char text[clipfio::decoder::kTimecodeChars];
    const auto format = [frame](const ClipHeader& h) -> const char* {
        if (frame >= h.frameCount) return nullptr;
        const bool drop = (h.flags & clipfio::decoder::kDropFrameFlag) != 0;
        const uint32_t fps = clipfio::decoder::NominalFps(h.rateNumerator, h.rateDenominator);
        clipfio::decoder::FormatTimecode(h.startFrame + frame, {fps, drop}, text);
        return text;
    };
    return Ask(clip, static_cast<const char*>(nullptr), format);
}

// GetMetadataNumber: 0 for any other key.
KT_API uint32_t R3D_ABK(uintptr_t clip, const char* key) {
    if (key == nullptr) return 0;
    return Ask(clip, uint32_t{0}, [key](const ClipHeader& h) {
        if (std::strcmp(key, "samplerate") == 0) return h.sampleRate;
        if (std::strcmp(key, "sample_size") == 0) return h.sampleSize;
        if (std::strcmp(key, "channel_mask") == 0) return h.channelMask;
        return uint32_t{0};
    });
}
