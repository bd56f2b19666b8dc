#include "r3dsdk/clip_operations.h"

#include "r3dsdk/sdk_symbol_table.h"

namespace clipfio {
namespace {

// The function at `place`, or null without a library in place.
template <class Function>
Function* Operation(SdkClipPlace place) noexcept {
    const SdkTableSet* const tables = ActiveSdkTables();
    if (!tables) return nullptr;
    return reinterpret_cast<Function*>(tables->ClipApi().Function(static_cast<size_t>(place)));
}

// Operations of a handle alone.
template <class Result>
Result Ask(SdkClipPlace place, ClipHandle clip, Result without_library) noexcept {
    const auto operation = Operation<Result(ClipHandle)>(place);
    return operation ? operation(clip) : without_library;
}

void Tell(SdkClipPlace place, ClipHandle clip) noexcept {
    if (const auto operation = Operation<void(ClipHandle)>(place)) operation(clip);
}

}  // namespace

bool HasClipOperations() noexcept { return Operation<void()>(SdkClipPlace::CreateClip) != nullptr; }

ClipHandle CreateClip() noexcept {
    const auto operation = Operation<ClipHandle()>(SdkClipPlace::CreateClip);
    return operation ? operation() : 0;
}

void DestroyClip(ClipHandle clip) noexcept {
    if (clip) Tell(SdkClipPlace::DestroyClip, clip);
}

int32_t ClipStatus(ClipHandle clip) noexcept { return Ask(SdkClipPlace::ClipStatus, clip, kNoClipLibrary); }

int32_t LoadClip(ClipHandle clip, const char* path) noexcept {
    const auto operation = Operation<int32_t(ClipHandle, const char*)>(SdkClipPlace::LoadClip);
    return operation ? operation(clip, path) : kNoClipLibrary;
}

void CloseClip(ClipHandle clip) noexcept { Tell(SdkClipPlace::CloseClip, clip); }

int32_t DecodeFrame(ClipHandle clip, uint64_t frame, const VideoDecodeJob& job) noexcept {
    const auto operation = Operation<int32_t(ClipHandle, uint64_t, VideoDecodeJob*)>(SdkClipPlace::DecodeFrame);
    if (!operation) return kNoClipLibrary;
    VideoDecodeJob copy = job;
    if (copy.reserved2) copy.reserved2 = reinterpret_cast<const uint64_t*>(copy.reserved2)[1];
    return operation(clip, frame, &copy);
}

int32_t DecodeAudio(ClipHandle clip, uint64_t first, uint64_t* count, void* buffer, uint64_t bytes) noexcept {
    const auto operation =
        Operation<int32_t(ClipHandle, uint64_t, uint64_t*, void*, uint64_t)>(SdkClipPlace::DecodeAudio);
    if (operation) return operation(clip, first, count, buffer, bytes);
    if (count) *count = 0;
    return kNoClipLibrary;
}

void GetClipSettings(ClipHandle clip, DecodeSettingsRecord* settings) noexcept {
    const auto operation = Operation<void(ClipHandle, DecodeSettingsRecord*)>(SdkClipPlace::GetClipSettings);
    if (operation) operation(clip, settings);
}

uint64_t ClipWidth(ClipHandle clip) noexcept { return Ask<uint64_t>(SdkClipPlace::ClipWidth, clip, 0); }

uint64_t ClipHeight(ClipHandle clip) noexcept { return Ask<uint64_t>(SdkClipPlace::ClipHeight, clip, 0); }

uint64_t ClipFrameCount(ClipHandle clip) noexcept { return Ask<uint64_t>(SdkClipPlace::ClipFrameCount, clip, 0); }

float ClipFrameRate(ClipHandle clip) noexcept { return Ask<float>(SdkClipPlace::ClipFrameRate, clip, 0); }

uint64_t AudioSampleCount(ClipHandle clip) noexcept { return Ask<uint64_t>(SdkClipPlace::AudioSampleCount, clip, 0); }

uint64_t AudioBlockInfo(ClipHandle clip, uint64_t* largest_bytes) noexcept {
    const auto operation = Operation<uint64_t(ClipHandle, uint64_t*)>(SdkClipPlace::AudioBlockInfo);
    if (operation) return operation(clip, largest_bytes);
    if (largest_bytes) *largest_bytes = 0;
    return 0;
}

const char* FrameTimecode(ClipHandle clip, uint64_t frame) noexcept {
    const auto operation = Operation<const char*(ClipHandle, uint64_t)>(SdkClipPlace::FrameTimecode);
    return operation ? operation(clip, frame) : nullptr;
}

uint32_t GetMetadataNumber(ClipHandle clip, const char* key) noexcept {
    const auto operation = Operation<uint32_t(ClipHandle, const char*)>(SdkClipPlace::GetMetadataNumber);
    return operation ? operation(clip, key) : 0;
}

}  // namespace clipfio
