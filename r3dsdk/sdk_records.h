// Records that the decoder library reads and writes. They are the library's own layouts: little-endian, fixed.
#pragma once

#include <cstddef>
#include <cstdint>

namespace clipfio {

// Five points of a tone curve, x then y, over 0..1.
struct UserCurvePoints {
    float xy[10] = {0.0f, 0.0f, 0.25f, 0.25f, 0.5f, 0.5f, 0.75f, 0.75f, 1.0f, 1.0f};
};

// Lift, gamma and gain of one colour channel.
struct LiftGammaGain {
    float lift = 0.0f;
    float gamma = 1.0f;
    float gain = 1.0f;
};

// The look with which a frame is developed. A default-constructed record is the factory default. The fields named
// `unlisted*` belong to the library: they go to it as the initialisation, or the clip, left them.
struct DecodeSettingsRecord {
    uint32_t version = 2;
    uint32_t size = 384;  // bytes
    uint32_t colorVersion = 3;
    float colorTemperature = 5600.0f;
    float tint = 0.0f;
    float exposureCompensation = 0.0f;
    float gainRed = 1.0f;
    float gainGreen = 1.0f;
    float gainBlue = 1.0f;
    float saturation = 1.0f;
    float contrast = 0.0f;
    float brightness = 0.0f;
    float drx = 0.0f;
    uint32_t reserved1 = 0;
    uint64_t imageIso = 320;
    uint32_t imageGammaCurve = 12;
    uint32_t imageColorSpace = 11;
    uint64_t pdLogBlackPoint = 95;
    uint64_t pdLogWhitePoint = 685;
    float pdLogGamma = 0.6f;
    UserCurvePoints userCurve;
    uint8_t deb = 0;
    uint8_t reserved2[3] = {};
    uint32_t imageDetail = 2;
    uint32_t imageOlpfCompensation = 0;
    uint32_t imageDenoise = 0;
    float shadow = 0.0f;
    float flut = 0.0f;
    UserCurvePoints userCurveRed;
    UserCurvePoints userCurveGreen;
    UserCurvePoints userCurveBlue;
    LiftGammaGain lggRed;
    LiftGammaGain lggGreen;
    LiftGammaGain lggBlue;
    uint32_t unlisted1 = 1;
    float unlisted2 = 0.0f;
    float unlisted3 = 1.0f;
    float unlisted4[9] = {1, 0, 1, 1, 0, 1, 1, 0, 1};
    uint32_t unlisted5[3] = {};
    uint32_t unlisted6 = 1;
    uint32_t unlisted7 = 2;
    uint32_t unlisted8 = 10000;
};
static_assert(sizeof(DecodeSettingsRecord) == 384);
static_assert(offsetof(DecodeSettingsRecord, colorVersion) == 8);
static_assert(offsetof(DecodeSettingsRecord, drx) == 48);
static_assert(offsetof(DecodeSettingsRecord, imageIso) == 56);
static_assert(offsetof(DecodeSettingsRecord, imageGammaCurve) == 64);
static_assert(offsetof(DecodeSettingsRecord, imageColorSpace) == 68);
static_assert(offsetof(DecodeSettingsRecord, pdLogBlackPoint) == 72);
static_assert(offsetof(DecodeSettingsRecord, pdLogGamma) == 88);
static_assert(offsetof(DecodeSettingsRecord, userCurve) == 92);
static_assert(offsetof(DecodeSettingsRecord, deb) == 132);
static_assert(offsetof(DecodeSettingsRecord, imageDetail) == 136);
static_assert(offsetof(DecodeSettingsRecord, shadow) == 148);
static_assert(offsetof(DecodeSettingsRecord, flut) == 152);
static_assert(offsetof(DecodeSettingsRecord, userCurveRed) == 156);
static_assert(offsetof(DecodeSettingsRecord, userCurveGreen) == 196);
static_assert(offsetof(DecodeSettingsRecord, userCurveBlue) == 236);
static_assert(offsetof(DecodeSettingsRecord, lggRed) == 276);
static_assert(offsetof(DecodeSettingsRecord, lggGreen) == 288);
static_assert(offsetof(DecodeSettingsRecord, lggBlue) == 300);
static_assert(offsetof(DecodeSettingsRecord, unlisted1) == 312);
static_assert(offsetof(DecodeSettingsRecord, unlisted4) == 324);
static_assert(offsetof(DecodeSettingsRecord, unlisted6) == 372);
static_assert(offsetof(DecodeSettingsRecord, unlisted8) == 380);

// A code of four characters as it stands in memory.
constexpr uint32_t FourCharacterCode(const char (&text)[5]) noexcept {
    uint32_t code = 0;
    for (int i = 3; i >= 0; --i) code = (code << 8) | static_cast<unsigned char>(text[i]);
    return code;
}

// Size and quality of a decoded picture.
enum class DecodeMode : uint32_t {
    FullPremium = FourCharacterCode("PRFD"),
    HalfPremium = FourCharacterCode("PRHD"),
    HalfGood = FourCharacterCode("GRHD"),
    QuarterGood = FourCharacterCode("GRQD"),
    EighthGood = FourCharacterCode("GRED"),
    SixteenthGood = FourCharacterCode("GRSD"),
};

// Sample layout of a decoded picture; rows top first.
enum class PixelType : uint32_t {
    Bgra8 = 0x42524138,  // 8 bits: blue, green, red, alpha
    Rgb16 = 0x52423649,  // 16 bits unsigned: red, green, blue
};

// One picture to decode. The library must not keep its address.
struct VideoDecodeJob {
    uint32_t version = 1;
    uint32_t size = 64;  // bytes
    DecodeMode decodeMode{};
    PixelType pixelType{};
    void* output = nullptr;    // 16-byte aligned
    uint64_t rowBytes = 0;     // distance between rows
    uint64_t outputBytes = 0;  // size of `output`
    const DecodeSettingsRecord* settings = nullptr;
    uint64_t reserved1 = 0;
    uint64_t reserved2 = 0;
};
static_assert(sizeof(VideoDecodeJob) == 64);
static_assert(offsetof(VideoDecodeJob, decodeMode) == 8);
static_assert(offsetof(VideoDecodeJob, pixelType) == 12);
static_assert(offsetof(VideoDecodeJob, output) == 16);
static_assert(offsetof(VideoDecodeJob, rowBytes) == 24);
static_assert(offsetof(VideoDecodeJob, outputBytes) == 32);
static_assert(offsetof(VideoDecodeJob, settings) == 40);

}  // namespace clipfio
