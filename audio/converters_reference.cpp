#include <cstring>

#include "audio/converters.h"
#include "audio/sample_rule.h"

namespace clipfio::audio {
namespace {

template <class Dst, class Src, class PerSample>
void Walk(uint8_t* dst, const uint8_t* src, int32_t count, PerSample perSample) noexcept {
    if constexpr (kWalksBackward<Dst, Src>) {
        for (int64_t i = count; i-- > 0;) perSample(dst + i * Dst::kBytes, src + i * Src::kBytes);
    } else {
        for (int64_t i = 0; i < count; ++i) perSample(dst + i * Dst::kBytes, src + i * Src::kBytes);
    }
}

template <class Dst, class Src>
struct ReferencePair {
    static void Convert(void* destination, const void* source, int32_t count, float gain) noexcept {
        if (count < 1 || !destination || !source) return;
        auto* const dst = static_cast<uint8_t*>(destination);
        const auto* const src = static_cast<const uint8_t*>(source);
        if (gain != 1.0f) {
            Walk<Dst, Src>(dst, src, count,
                           [gain](uint8_t* d, const uint8_t* s) noexcept { ConvertSample<Dst, Src>(d, s, gain); });
        } else if constexpr (std::is_same_v<Dst, Src>) {
            if (dst != src) std::memcpy(dst, src, static_cast<size_t>(count) * Dst::kBytes);
        } else {
            Walk<Dst, Src>(dst, src, count,
                           [](uint8_t* d, const uint8_t* s) noexcept { ConvertSample<Dst, Src>(d, s); });
        }
    }
};

}  // namespace

constinit const ConverterTable kReferenceConverters = MakeConverterTable<ReferencePair>();

}  // namespace clipfio::audio
