// The operations of the decoder library that the reader calls, one indirect call each.
//
// Every operation but CreateClip takes the handle of a clip. Nothing is checked and nothing is locked on the way: the
// library bears concurrent decoding of one clip, and its status numbers (0 is good) are passed on as they are. Without
// a library in place an operation does nothing and gives the answer named with it.
#pragma once

#include <cstdint>

#include "r3dsdk/sdk_records.h"

namespace clipfio {

// The library's own word for a clip; 0 means none.
using ClipHandle = uintptr_t;

// The owner of one clip of the library.
struct R3DClip {
    ClipHandle handle = 0;
};

// What an operation with a status gives when there is no library.
inline constexpr int32_t kNoClipLibrary = -1;

// True from a successful SdkInitialize to SdkFinalize.
bool HasClipOperations() noexcept;

// A new handle without a clip. Without a library 0.
ClipHandle CreateClip() noexcept;
// Ends the handle and a clip that is still loaded. A handle of 0 is passed over.
void DestroyClip(ClipHandle clip) noexcept;
// 0 while a clip is loaded. Without a library kNoClipLibrary.
int32_t ClipStatus(ClipHandle clip) noexcept;
// `path` is narrow text as the library takes it. Without a library kNoClipLibrary.
int32_t LoadClip(ClipHandle clip, const char* path) noexcept;
// May be called without a clip loaded; the handle can be loaded again.
void CloseClip(ClipHandle clip) noexcept;

// Blocks until the frame, counted from 0, is in the job's output. The library works on a copy of the job, in which a
// `reserved2` other than 0 is the address of an object and is replaced by that object's second 64-bit word. Without a
// library kNoClipLibrary.
int32_t DecodeFrame(ClipHandle clip, uint64_t frame, const VideoDecodeJob& job) noexcept;
// Writes interleaved 32-bit big-endian signed samples. `count` is in samples per channel: on entry the room of
// `buffer`, which is aligned to 512 bytes, on return what was written. Without a library kNoClipLibrary and, where
// `count` is given, 0 samples.
int32_t DecodeAudio(ClipHandle clip, uint64_t first, uint64_t* count, void* buffer, uint64_t bytes) noexcept;
// Overwrites the record with the settings stored in the clip. Without a library the record stays as it is.
void GetClipSettings(ClipHandle clip, DecodeSettingsRecord* settings) noexcept;

// Pixels, frames, frames per second and samples per channel. Without a library 0.
uint64_t ClipWidth(ClipHandle clip) noexcept;
uint64_t ClipHeight(ClipHandle clip) noexcept;
uint64_t ClipFrameCount(ClipHandle clip) noexcept;
float ClipFrameRate(ClipHandle clip) noexcept;
uint64_t AudioSampleCount(ClipHandle clip) noexcept;

// The number of audio blocks, 0 for a clip without audio, and the largest block in bytes. Without a library 0 for
// both.
uint64_t AudioBlockInfo(ClipHandle clip, uint64_t* largest_bytes) noexcept;
// hours:minutes:seconds:frames, owned by the library, or null. Without a library null.
const char* FrameTimecode(ClipHandle clip, uint64_t frame) noexcept;
// The clip's metadata number of that name. Without a library 0.
uint32_t GetMetadataNumber(ClipHandle clip, const char* key) noexcept;

}  // namespace clipfio
