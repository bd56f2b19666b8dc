#include "audio/sample_data.h"

#include <cstring>

namespace clipfio::audio {
namespace {

void Append(std::vector<uint8_t>& out, KTSAMPLETYPE type, int32_t value) {
    const size_t at = out.size();
    out.resize(at + BytesOf(type));
    WithFormat(type, [&]<class F>(F) {
        if constexpr (!kIsFloat<F>) F::Store(out.data() + at, value);
    });
}

template <class T>
void AppendRaw(std::vector<uint8_t>& out, T value) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(&value);
    out.insert(out.end(), bytes, bytes + sizeof value);
}

// Around every integer limit and tie of the four depths, and of the float format's own borders.
template <class T>
void AppendRemarkableFloats(std::vector<uint8_t>& out) {
    using Limits = std::numeric_limits<T>;
    for (const T value : {T{0}, Limits::quiet_NaN(), Limits::signaling_NaN(), Limits::infinity(), Limits::max(),
                          Limits::min(), Limits::denorm_min(), T{1}, T{2}, T{0.75}}) {
        AppendRaw(out, value);
        AppendRaw(out, static_cast<T>(-value));
    }
    for (const double scale : {128.0, 32768.0, 8388608.0, 2147483648.0}) {
        for (const double code : {0.5, 1.0, 1.5, 2.5, scale / 2 + 0.5, scale - 2.5, scale - 1.5, scale - 1.0,
                                  scale - 0.5, scale, scale + 0.5, scale * 2, scale * 65536}) {
            const auto value = static_cast<T>(code / scale);
            for (const T neighbour : {value, std::nextafter(value, T{0}), std::nextafter(value, T{4})}) {
                AppendRaw(out, neighbour);
                AppendRaw(out, static_cast<T>(-neighbour));
            }
        }
    }
}

void AppendRemarkableWords(std::vector<uint8_t>& out, KTSAMPLETYPE type) {
    for (const int64_t base : {0x0LL, 0x80LL, 0x100LL, 0x8000LL, 0x10000LL, 0x18000LL, 0x7FFFFFLL, 0x800000LL,
                               0x1000000LL, 0x1800000LL, 0x7F800000LL, 0x7FFFFF80LL, 0x7FFFFFFFLL}) {
        for (int64_t offset = -2; offset <= 2; ++offset) {
            Append(out, type, static_cast<int32_t>(base + offset));
            Append(out, type, static_cast<int32_t>(-base + offset));
        }
    }
}

}  // namespace

std::vector<uint8_t> AllCodes(KTSAMPLETYPE type) {
    std::vector<uint8_t> out;
    const uint32_t bits = KtAudio_BitsFromSampleType(type);
    const int32_t limit = 1 << (bits - 1);
    out.resize((size_t{1} << bits) * BytesOf(type));
    WithFormat(type, [&]<class F>(F) {
        if constexpr (!kIsFloat<F>) {
            uint8_t* p = out.data();
            for (int32_t code = -limit; code < limit; ++code, p += F::kBytes) F::Store(p, code);
        }
    });
    return out;
}

std::vector<uint8_t> RemarkableSamples(KTSAMPLETYPE type, size_t count) {
    std::vector<uint8_t> out;
    if (type == KTSAMPLETYPE_FLOAT32) {
        AppendRemarkableFloats<float>(out);
    } else if (type == KTSAMPLETYPE_FLOAT64) {
        AppendRemarkableFloats<double>(out);
    } else if (BytesOf(type) >= 3) {
        AppendRemarkableWords(out, type);
    }
    std::mt19937_64 random(type);
    for (size_t i = 0; out.size() < count * BytesOf(type); ++i) {
        // Half of the floats are random bits, half are sound.
        const uint64_t bits = random();
        if (type == KTSAMPLETYPE_FLOAT32 && i % 2) {
            AppendRaw(out, static_cast<float>(static_cast<int64_t>(bits)) * 1.1e-19f);
        } else if (type == KTSAMPLETYPE_FLOAT64 && i % 2) {
            AppendRaw(out, static_cast<double>(static_cast<int64_t>(bits)) * 1.1e-19);
        } else {
            const auto* bytes = reinterpret_cast<const uint8_t*>(&bits);
            out.insert(out.end(), bytes, bytes + BytesOf(type));
        }
    }
    return out;
}

testing::AssertionResult SameSamples(KTSAMPLETYPE type, const uint8_t* expected, const uint8_t* actual, size_t count,
                                     bool anyNan) {
    const size_t bytes = BytesOf(type);
    if (count == 0 || std::memcmp(expected, actual, count * bytes) == 0) return testing::AssertionSuccess();
    for (size_t i = 0; i < count; ++i) {
        const uint8_t* const e = expected + i * bytes;
        const uint8_t* const a = actual + i * bytes;
        if (std::memcmp(e, a, bytes) == 0) continue;
        if (anyNan && type == KTSAMPLETYPE_FLOAT32 && std::isnan(Float32::Load(e)) && std::isnan(Float32::Load(a))) {
            continue;
        }
        if (anyNan && type == KTSAMPLETYPE_FLOAT64 && std::isnan(Float64::Load(e)) && std::isnan(Float64::Load(a))) {
            continue;
        }
        testing::AssertionResult failure = testing::AssertionFailure();
        failure << "sample " << i << " of type " << type << ": expected "
                << testing::PrintToString(std::vector(e, e + bytes)) << ", got "
                << testing::PrintToString(std::vector(a, a + bytes));
        return failure;
    }
    return testing::AssertionSuccess();
}

}  // namespace clipfio::audio
