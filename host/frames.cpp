#include "host/frames.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>

#include "host/failure.h"
#include "host/result_text.h"
#include "platform/process.h"

namespace clipfio::host {
namespace {

// There are no smaller pictures, and the module takes next to nothing for no wish at all.
constexpr double kSmallestScale = 1.0 / 16;

_ktframerequest MakeRequest(const FrameOptions& options) {
    _ktframerequest request{};
    request.bitsPerPixel = options.bits;
    request.quality = options.quality;
    request.scale = std::max(options.scale, kSmallestScale);
    request.gamma = options.gamma;
    return request;
}

_ktmemorytoken TokenOf(std::vector<uint8_t>& memory) {
    _ktmemorytoken token{};
    token.address = reinterpret_cast<std::uintptr_t>(memory.data());
    token.size = static_cast<uint32_t>(memory.size());
    token.type = kKtMemoryPlain;
    token.processId = GetCurrentProcessId();
    return token;
}

_ktframeinfo Measure(IKtReadVideoStream& stream, uint64_t number, const _ktframerequest& request) {
    _ktframeinfo info{};
    Require(stream.GetFrameInfo(number, &request, &info), "the frame's form cannot be had");
    if (info.bitmap.biWidth <= 0 || info.bitmap.biHeight <= 0) {
        throw Failure("nothing is left of the picture at this scale");
    }
    return info;
}

float FloatAt(const uint8_t* pixel, int sample) {
    float value;
    std::memcpy(&value, pixel + 4 * sample, sizeof value);
    return value;
}

}  // namespace

FrameSize MeasureFrame(IKtReadVideoStream& stream, const FrameOptions& options) {
    const _ktframeinfo info = Measure(stream, 0, MakeRequest(options));
    return {static_cast<uint32_t>(info.bitmap.biWidth), static_cast<uint32_t>(info.bitmap.biHeight)};
}

void ReadFrame(IKtReadVideoStream& stream, uint64_t number, const FrameOptions& options, Frame& frame) {
    const _ktframerequest request = MakeRequest(options);
    _ktframeinfo info = Measure(stream, number, request);
    frame.width = static_cast<uint32_t>(info.bitmap.biWidth);
    frame.height = static_cast<uint32_t>(info.bitmap.biHeight);
    frame.bits = options.bits;
    frame.gamma = info.frameFormat.gamma;
    const uint64_t bytes = uint64_t{frame.width} * frame.height * (options.bits / 8);
    if (bytes > INT_MAX) throw Failure("the frame is larger than 2 GiB: ask for a smaller scale");
    frame.pixels.resize(static_cast<std::size_t>(bytes));

    const _ktmemorytoken token = TokenOf(frame.pixels);
    uint32_t written = 0;
    const HRESULT result = stream.ReadFrame(number, &request, &token, &info, &written);
    if (FAILED(result)) {
        throw Failure("frame " + std::to_string(number) + " cannot be decoded (" + ResultText(result) +
                      "): the clip may be damaged or cut short");
    }
    if (written != bytes) throw Failure("frame " + std::to_string(number) + " came incomplete");
}

RgbImage8 ToRgb8(const Frame& frame) {
    RgbImage8 image{frame.width, frame.height, {}};
    image.samples.resize(std::size_t{frame.width} * frame.height * 3);
    uint8_t* to = image.samples.data();
    for (uint32_t y = 0; y < frame.height; ++y) {
        const uint8_t* pixel = frame.Row(y);
        for (uint32_t x = 0; x < frame.width; ++x, pixel += 4) {
            *to++ = pixel[2];
            *to++ = pixel[1];
            *to++ = pixel[0];
        }
    }
    return image;
}

RgbImage16 ToRgb16(const Frame& frame) {
    RgbImage16 image{frame.width, frame.height, {}, std::fabs(frame.gamma - 1.0) < 0.001};
    image.samples.resize(std::size_t{frame.width} * frame.height * 3);
    uint16_t* to = image.samples.data();
    for (uint32_t y = 0; y < frame.height; ++y) {
        const uint8_t* pixel = frame.Row(y);
        for (uint32_t x = 0; x < frame.width; ++x, pixel += 16) {
            for (int sample = 2; sample >= 0; --sample) {
                // A value that is no number is not above 0.
                const float value = FloatAt(pixel, sample);
                *to++ = static_cast<uint16_t>(std::lround((value > 0 ? std::min(value, 1.0f) : 0.0f) * 65535.0f));
            }
        }
    }
    return image;
}

std::vector<float> ToRgbFloat(const Frame& frame) {
    std::vector<float> out;
    out.reserve(std::size_t{frame.width} * frame.height * 3);
    for (std::size_t at = 0; at < frame.pixels.size(); at += 16) {
        for (int sample = 2; sample >= 0; --sample) out.push_back(FloatAt(frame.pixels.data() + at, sample));
    }
    return out;
}

}  // namespace clipfio::host
