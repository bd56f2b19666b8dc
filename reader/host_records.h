// Records that cross the boundary between the host and the module. Little-endian, fixed layouts.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/base.h"
#include "platform/media.h"

// Kinds of stream. Stream 0 of a clip is video and stream 1 is audio, always.
inline constexpr uint32_t kKtStreamAudio = 1;
inline constexpr uint32_t kKtStreamVideo = 2;

struct _ktframeformat {
    uint32_t size;          // 64
    uint32_t reserved1;     // 0xFFFFFFFF
    uint32_t reserved2[2];  // 0
    double frameRate;       // frames per second
    double pixelAspect;     // 1.0
    double gamma;           // of a 128-bit frame; 0.0 for 32 bits
    uint8_t reserved3[24];
};
static_assert(sizeof(_ktframeformat) == 64);
static_assert(offsetof(_ktframeformat, frameRate) == 16);
static_assert(offsetof(_ktframeformat, pixelAspect) == 24);
static_assert(offsetof(_ktframeformat, gamma) == 32);

// Describes one stream. Records of an array lie 184 bytes apart whatever their `size` says.
struct _ktstreaminfo {
    uint32_t size;    // bytes
    uint32_t kind;    // kKtStream*
    uint64_t length;  // frames, or samples per channel
    uint8_t reserved[8];
    _ktframeformat frameFormat;
    uint8_t format[96];  // a BITMAPINFOHEADER, or a _ktwaveformat
};
static_assert(sizeof(_ktstreaminfo) == 184);
static_assert(offsetof(_ktstreaminfo, length) == 8);
static_assert(offsetof(_ktstreaminfo, frameFormat) == 24);
static_assert(offsetof(_ktstreaminfo, format) == 88);

// What the host wants of a frame.
struct _ktframerequest {
    uint32_t reserved1[2];
    uint32_t bitsPerPixel;  // 32: 8-bit B, G, R, A. 128: 32-bit float B, G, R, 0.0
    uint32_t quality;       // 4 and above asks for premium quality at half size
    double scale;           // wanted size as a fraction of the full size
    double reserved2;
    double gamma;  // wanted gamma of a 128-bit frame
};
static_assert(sizeof(_ktframerequest) == 40);
static_assert(offsetof(_ktframerequest, bitsPerPixel) == 8);
static_assert(offsetof(_ktframerequest, quality) == 12);
static_assert(offsetof(_ktframerequest, scale) == 16);
static_assert(offsetof(_ktframerequest, gamma) == 32);

// What a frame turned out to be. Rows lie bottom first.
struct _ktframeinfo {
    uint64_t frame;
    uint64_t reserved1;
    double scale;    // 1.0 divided by the divisor that was chosen
    uint32_t bytes;  // as GetFrameSize gives it
    uint32_t reserved2;
    _ktframeformat frameFormat;
    BITMAPINFOHEADER bitmap;  // biCompression is 0 for 32 bits and "KTDB" for 128
    uint8_t reserved3[80];
};
static_assert(sizeof(_ktframeinfo) == 216);
static_assert(offsetof(_ktframeinfo, scale) == 16);
static_assert(offsetof(_ktframeinfo, bytes) == 24);
static_assert(offsetof(_ktframeinfo, frameFormat) == 32);
static_assert(offsetof(_ktframeinfo, bitmap) == 96);
