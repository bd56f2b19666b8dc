#include "reader/frame_delivery.h"

#include <immintrin.h>

#include <bit>
#include <cstring>
#include <initializer_list>

#include "platform/endian.h"

// Pictures are larger than the cache: they are written past it, which takes half the time of writing through it. Each
// instruction set stands in a namespace of its own and leaves nothing inline behind that other code could pick up.
namespace clipfio {
namespace {

constexpr uint32_t kScaleBits = 0x37800080;  // 1/65535 as a 32-bit float
constexpr float kScale = std::bit_cast<float>(kScaleBits);
constexpr uint64_t kSamples = 3;      // in a decoded pixel
constexpr uint64_t kPixelBytes = 16;  // of a delivered pixel
constexpr uintptr_t kLineBytes = 64;  // of the cache
// Below this a picture is likely to be read again out of the cache at once.
constexpr uint64_t kPastCacheBytes = 1 << 20;

// Row `y` of the host's picture, counted from the top.
uint8_t* HostRow(void* host, uint64_t y, uint64_t height, uint64_t row_bytes) {
    return static_cast<uint8_t*>(host) + (height - 1 - y) * row_bytes;
}

const uint8_t* DecodedRow(const void* decoded, uint64_t y, uint64_t row_bytes) {
    return static_cast<const uint8_t*>(decoded) + y * row_bytes;
}

bool IsAligned(const void* p, uintptr_t to) { return reinterpret_cast<uintptr_t>(p) % to == 0; }

namespace plain {

void Bgra8(const void* decoded, void* host, uint64_t width, uint64_t height) {
    const uint64_t row_bytes = width * 4;
    for (uint64_t y = 0; y < height; ++y) {
        std::memcpy(HostRow(host, y, height, row_bytes), DecodedRow(decoded, y, row_bytes), row_bytes);
    }
}

void Pixels(const uint8_t* in, uint8_t* out, uint64_t count) {
    for (uint64_t x = 0; x < count; ++x, in += kSamples * 2, out += kPixelBytes) {
        for (uint64_t sample = 0; sample < kSamples; ++sample) {
            const auto value = platform::LoadLittle<uint16_t>(in + 2 * (kSamples - 1 - sample));
            platform::StoreLittle(out + 4 * sample, static_cast<float>(value) * kScale);
        }
        platform::StoreLittle(out + 4 * kSamples, 0.0f);
    }
}

void Rgb16ToFloats(const void* decoded, void* host, uint64_t width, uint64_t height) {
    for (uint64_t y = 0; y < height; ++y) {
        Pixels(DecodedRow(decoded, y, width * kSamples * 2), HostRow(host, y, height, width * kPixelBytes), width);
    }
}

}  // namespace plain

// A level gives three pieces: a copy of one row past the cache, and the conversion of one row into memory that is
// aligned for streaming or not. The walk over the rows is the same for all.
template <class Level>
void Bgra8(const void* decoded, void* host, uint64_t width, uint64_t height) {
    const uint64_t row_bytes = width * 4;
    if (row_bytes * height < kPastCacheBytes) return plain::Bgra8(decoded, host, width, height);
    for (uint64_t y = 0; y < height; ++y) {
        Level::CopyRow(DecodedRow(decoded, y, row_bytes), HostRow(host, y, height, row_bytes), row_bytes);
    }
    _mm_sfence();
}

template <class Level>
void Rgb16ToFloats(const void* decoded, void* host, uint64_t width, uint64_t height) {
    const bool past_cache = width * kPixelBytes * height >= kPastCacheBytes && IsAligned(host, kPixelBytes);
    for (uint64_t y = 0; y < height; ++y) {
        const uint8_t* in = DecodedRow(decoded, y, width * kSamples * 2);
        uint8_t* out = HostRow(host, y, height, width * kPixelBytes);
        uint64_t left = width;
        if (past_cache) {
            // Rows begin at a multiple of a pixel, and whole lines go out fastest.
            while (left && !IsAligned(out, kLineBytes)) {
                plain::Pixels(in, out, 1);
                in += kSamples * 2, out += kPixelBytes, --left;
            }
        }
        const uint64_t done = past_cache ? Level::StreamPixels(in, out, left) : Level::Pixels(in, out, left);
        plain::Pixels(in + done * kSamples * 2, out + done * kPixelBytes, left - done);
    }
    _mm_sfence();
}

// The bytes in front of the first line of the cache, at most `bytes`.
uint64_t Head(const void* p, uint64_t bytes) {
    const uintptr_t past = reinterpret_cast<uintptr_t>(p) % kLineBytes;
    const uint64_t head = past ? kLineBytes - past : 0;
    return head < bytes ? head : bytes;
}

// Picks the samples of pixel `first` and following out of 16 bytes: each to the low half of a 32-bit lane, B, G, R, 0.
#define PIXEL_LANES(first)                                                                                            \
    6 * (first) + 4, 6 * (first) + 5, -1, -1, 6 * (first) + 2, 6 * (first) + 3, -1, -1, 6 * (first), 6 * (first) + 1, \
        -1, -1, -1, -1, -1, -1

struct Ssse3 {
    static void CopyRow(const uint8_t* in, uint8_t* out, uint64_t bytes) {
        const uint64_t head = Head(out, bytes);
        std::memcpy(out, in, head);
        uint64_t i = head;
        for (; i + 64 <= bytes; i += 64) {
            const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + i));
            const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + i + 16));
            const __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + i + 32));
            const __m128i d = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + i + 48));
            _mm_stream_si128(reinterpret_cast<__m128i*>(out + i), a);
            _mm_stream_si128(reinterpret_cast<__m128i*>(out + i + 16), b);
            _mm_stream_si128(reinterpret_cast<__m128i*>(out + i + 32), c);
            _mm_stream_si128(reinterpret_cast<__m128i*>(out + i + 48), d);
        }
        std::memcpy(out + i, in + i, bytes - i);
    }

    // Two pixels at a time, of which 16 bytes are read: the last three of a row are left to the caller.
    template <bool kStream>
    __attribute__((target("ssse3"))) static uint64_t Convert(const uint8_t* in, uint8_t* out, uint64_t count) {
        const __m128i first = _mm_setr_epi8(PIXEL_LANES(0));
        const __m128i second = _mm_setr_epi8(PIXEL_LANES(1));
        const __m128 scale = _mm_set1_ps(kScale);
        uint64_t x = 0;
        for (; x + 3 <= count; x += 2) {
            const __m128i pair = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + x * 6));
            const __m128 a = _mm_mul_ps(_mm_cvtepi32_ps(_mm_shuffle_epi8(pair, first)), scale);
            const __m128 b = _mm_mul_ps(_mm_cvtepi32_ps(_mm_shuffle_epi8(pair, second)), scale);
            auto* to = reinterpret_cast<float*>(out + x * kPixelBytes);
            if constexpr (kStream) {
                _mm_stream_ps(to, a);
                _mm_stream_ps(to + 4, b);
            } else {
                _mm_storeu_ps(to, a);
                _mm_storeu_ps(to + 4, b);
            }
        }
        return x;
    }
    static uint64_t Pixels(const uint8_t* in, uint8_t* out, uint64_t count) { return Convert<false>(in, out, count); }
    static uint64_t StreamPixels(const uint8_t* in, uint8_t* out, uint64_t count) {
        return Convert<true>(in, out, count);
    }
};

struct Avx2 {
    __attribute__((target("avx2"))) static void CopyRow(const uint8_t* in, uint8_t* out, uint64_t bytes) {
        const uint64_t head = Head(out, bytes);
        std::memcpy(out, in, head);
        uint64_t i = head;
        for (; i + 128 <= bytes; i += 128) {
            const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in + i));
            const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in + i + 32));
            const __m256i c = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in + i + 64));
            const __m256i d = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in + i + 96));
            _mm256_stream_si256(reinterpret_cast<__m256i*>(out + i), a);
            _mm256_stream_si256(reinterpret_cast<__m256i*>(out + i + 32), b);
            _mm256_stream_si256(reinterpret_cast<__m256i*>(out + i + 64), c);
            _mm256_stream_si256(reinterpret_cast<__m256i*>(out + i + 96), d);
        }
        std::memcpy(out + i, in + i, bytes - i);
    }

    template <bool kStream>
    __attribute__((target("avx2"))) static uint64_t Convert(const uint8_t* in, uint8_t* out, uint64_t count) {
        const __m256i lanes = _mm256_setr_epi8(PIXEL_LANES(0), PIXEL_LANES(1));
        const __m256 scale = _mm256_set1_ps(kScale);
        uint64_t x = 0;
        for (; x + 5 <= count; x += 4) {
            const auto convert = [&](uint64_t pixel) __attribute__((target("avx2"), always_inline)) {
                const __m128i pair = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + pixel * 6));
                const __m256i both = _mm256_broadcastsi128_si256(pair);
                const __m256 floats = _mm256_mul_ps(_mm256_cvtepi32_ps(_mm256_shuffle_epi8(both, lanes)), scale);
                auto* to = reinterpret_cast<float*>(out + pixel * kPixelBytes);
                if constexpr (kStream) {
                    _mm256_stream_ps(to, floats);
                } else {
                    _mm256_storeu_ps(to, floats);
                }
            };
            convert(x);
            convert(x + 2);
        }
        return x;
    }
    static uint64_t Pixels(const uint8_t* in, uint8_t* out, uint64_t count) { return Convert<false>(in, out, count); }
    static uint64_t StreamPixels(const uint8_t* in, uint8_t* out, uint64_t count) {
        return Convert<true>(in, out, count);
    }
};

#pragma GCC diagnostic push
// The compiler's own header makes "undefined" vectors by an initialisation with themselves.
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
struct Avx512 {
    // Four pixels at a time, a whole line of the cache, for which 32 bytes are read.
    template <bool kStream>
    __attribute__((target("avx512f,avx512bw"))) static uint64_t Convert(const uint8_t* in, uint8_t* out,
                                                                        uint64_t count) {
        // The 16 bytes that hold a pixel pair go to each of the pair's two quarters.
        const __m512i words = _mm512_setr_epi32(0, 1, 2, 3, 0, 1, 2, 3, 3, 4, 5, 6, 3, 4, 5, 6);
        const __m512i lanes = _mm512_broadcast_i64x4(_mm256_setr_epi8(PIXEL_LANES(0), PIXEL_LANES(1)));
        const __m512 scale = _mm512_set1_ps(kScale);
        uint64_t x = 0;
        for (; x + 6 <= count; x += 4) {
            const __m256i four = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in + x * 6));
            const __m512i pairs = _mm512_permutexvar_epi32(words, _mm512_castsi256_si512(four));
            const __m512 floats = _mm512_mul_ps(_mm512_cvtepi32_ps(_mm512_shuffle_epi8(pairs, lanes)), scale);
            auto* to = reinterpret_cast<float*>(out + x * kPixelBytes);
            if constexpr (kStream) {
                _mm512_stream_ps(to, floats);
            } else {
                _mm512_storeu_ps(to, floats);
            }
        }
        return x;
    }
    static uint64_t Pixels(const uint8_t* in, uint8_t* out, uint64_t count) { return Convert<false>(in, out, count); }
    static uint64_t StreamPixels(const uint8_t* in, uint8_t* out, uint64_t count) {
        return Convert<true>(in, out, count);
    }
};
#pragma GCC diagnostic pop

constexpr FrameDelivery kDeliveries[] = {
    {plain::Bgra8, plain::Rgb16ToFloats},
    {Bgra8<Ssse3>, Rgb16ToFloats<Ssse3>},
    {Bgra8<Avx2>, Rgb16ToFloats<Avx2>},
    {Bgra8<Avx2>, Rgb16ToFloats<Avx512>},  // wider vectors do not copy faster
};

bool CanRun(DeliveryLevel level) noexcept {
    __builtin_cpu_init();
    switch (level) {
        case DeliveryLevel::Plain:
            return true;
        case DeliveryLevel::Ssse3:
            return __builtin_cpu_supports("ssse3");
        case DeliveryLevel::Avx2:
            return __builtin_cpu_supports("avx2");
        case DeliveryLevel::Avx512:
            return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("avx512f") &&
                   __builtin_cpu_supports("avx512bw");
    }
    return false;
}

}  // namespace

const FrameDelivery* FrameDeliveryAt(DeliveryLevel level) noexcept {
    return CanRun(level) ? &kDeliveries[static_cast<std::size_t>(level)] : nullptr;
}

const FrameDelivery& BestFrameDelivery() noexcept {
    static const FrameDelivery& best = []() -> const FrameDelivery& {
        for (const auto level : {DeliveryLevel::Avx512, DeliveryLevel::Avx2, DeliveryLevel::Ssse3}) {
            if (const FrameDelivery* delivery = FrameDeliveryAt(level)) return *delivery;
        }
        return kDeliveries[0];
    }();
    return best;
}

}  // namespace clipfio
