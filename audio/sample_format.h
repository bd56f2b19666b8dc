// The eleven sample formats as traits: one small struct each, from which all converters and channel operations are
// generated. A sample may stand at any address.
//
// Integer formats have a depth in bits, and values from -2^(depth-1) to 2^(depth-1) - 1. Load gives the value as it
// stands; Store takes a value inside that range.
#pragma once

#include <type_traits>

#include "audio/sample_type.h"
#include "platform/endian.h"

namespace clipfio::audio {

template <KTSAMPLETYPE kSampleType, int kSampleBytes, int kBits>
struct IntegerFormat {
    static constexpr KTSAMPLETYPE kType = kSampleType;
    static constexpr int kBytes = kSampleBytes;
    static constexpr int kDepth = kBits;
};

template <KTSAMPLETYPE kSampleType, class T>
struct FloatFormat {
    static constexpr KTSAMPLETYPE kType = kSampleType;
    static constexpr int kBytes = sizeof(T);
    static T Load(const uint8_t* p) noexcept { return platform::LoadLittle<T>(p); }
    static void Store(uint8_t* p, T value) noexcept { platform::StoreLittle(p, value); }
};

struct Pcm8 : IntegerFormat<KTSAMPLETYPE_PCM8, 1, 8> {
    static int32_t Load(const uint8_t* p) noexcept { return static_cast<int8_t>(*p ^ 0x80); }
    static void Store(uint8_t* p, int32_t y) noexcept { *p = static_cast<uint8_t>(y ^ 0x80); }
};

struct Pcm8S : IntegerFormat<KTSAMPLETYPE_PCM8S, 1, 8> {
    static int32_t Load(const uint8_t* p) noexcept { return static_cast<int8_t>(*p); }
    static void Store(uint8_t* p, int32_t y) noexcept { *p = static_cast<uint8_t>(y); }
};

struct Pcm16 : IntegerFormat<KTSAMPLETYPE_PCM16, 2, 16> {
    static int32_t Load(const uint8_t* p) noexcept { return platform::LoadLittle<int16_t>(p); }
    static void Store(uint8_t* p, int32_t y) noexcept { platform::StoreLittle(p, static_cast<int16_t>(y)); }
};

struct Pcm16Be : IntegerFormat<KTSAMPLETYPE_PCM16BE, 2, 16> {
    static int32_t Load(const uint8_t* p) noexcept { return platform::LoadBig<int16_t>(p); }
    static void Store(uint8_t* p, int32_t y) noexcept { platform::StoreBig(p, static_cast<int16_t>(y)); }
};

struct Pcm24 : IntegerFormat<KTSAMPLETYPE_PCM24, 3, 24> {
    static int32_t Load(const uint8_t* p) noexcept { return p[0] | p[1] << 8 | static_cast<int8_t>(p[2]) * 0x10000; }
    static void Store(uint8_t* p, int32_t y) noexcept {
        p[0] = static_cast<uint8_t>(y);
        p[1] = static_cast<uint8_t>(y >> 8);
        p[2] = static_cast<uint8_t>(y >> 16);
    }
};

struct Pcm24Be : IntegerFormat<KTSAMPLETYPE_PCM24BE, 3, 24> {
    static int32_t Load(const uint8_t* p) noexcept { return p[2] | p[1] << 8 | static_cast<int8_t>(p[0]) * 0x10000; }
    static void Store(uint8_t* p, int32_t y) noexcept {
        p[0] = static_cast<uint8_t>(y >> 16);
        p[1] = static_cast<uint8_t>(y >> 8);
        p[2] = static_cast<uint8_t>(y);
    }
};

// The word is read as it stands, even outside 24 bits.
struct Pcm24In32 : IntegerFormat<KTSAMPLETYPE_PCM24IN32, 4, 24> {
    static int32_t Load(const uint8_t* p) noexcept { return platform::LoadLittle<int32_t>(p); }
    static void Store(uint8_t* p, int32_t y) noexcept { platform::StoreLittle(p, y); }
};

struct Pcm32 : IntegerFormat<KTSAMPLETYPE_PCM32, 4, 32> {
    static int32_t Load(const uint8_t* p) noexcept { return platform::LoadLittle<int32_t>(p); }
    static void Store(uint8_t* p, int32_t y) noexcept { platform::StoreLittle(p, y); }
};

struct Pcm32Be : IntegerFormat<KTSAMPLETYPE_PCM32BE, 4, 32> {
    static int32_t Load(const uint8_t* p) noexcept { return platform::LoadBig<int32_t>(p); }
    static void Store(uint8_t* p, int32_t y) noexcept { platform::StoreBig(p, y); }
};

struct Float32 : FloatFormat<KTSAMPLETYPE_FLOAT32, float> {};
struct Float64 : FloatFormat<KTSAMPLETYPE_FLOAT64, double> {};

template <class F>
inline constexpr bool kIsFloat = std::is_same_v<F, Float32> || std::is_same_v<F, Float64>;

template <class... F>
struct FormatList {
    static constexpr int kCount = sizeof...(F);
    // Position of a type in the list, -1 when no format has it.
    static constexpr int IndexOf(KTSAMPLETYPE type) noexcept {
        int index = 0;
        int found = -1;
        ((F::kType == type ? found = index : 0, ++index), ...);
        return found;
    }
};

using Formats = FormatList<Pcm8, Pcm16, Pcm24, Pcm32, Float32, Float64, Pcm24In32, Pcm8S, Pcm16Be, Pcm24Be, Pcm32Be>;

// Calls `action` with a value of the format that has the type; false when there is none. All formats, or only those
// with types up to 33: 8 to 32 bits little-endian and the floats.
template <class Action, class... F>
bool WithFormat(FormatList<F...>, KTSAMPLETYPE type, Action&& action) {
    return ((F::kType == type && (action(F{}), true)) || ...);
}
template <class Action>
bool WithFormat(KTSAMPLETYPE type, Action&& action) {
    return WithFormat(Formats{}, type, action);
}
template <class Action>
bool WithBasicFormat(KTSAMPLETYPE type, Action&& action) {
    return WithFormat(FormatList<Pcm8, Pcm16, Pcm24, Pcm32, Float32, Float64>{}, type, action);
}

}  // namespace clipfio::audio
