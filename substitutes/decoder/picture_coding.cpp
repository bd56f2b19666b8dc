#include "substitutes/decoder/picture_coding.h"

#include <memory>
#include <mutex>
#include <new>

#include "substitutes/decoder/gamma_curves.h"

namespace clipfio::decoder {
namespace {

struct CodingTable {
    std::mutex lock;
    std::unique_ptr<float[]> values;

    const float* Get(PictureCoding coding) noexcept {
        const std::lock_guard hold(lock);
        if (!values) {
            std::unique_ptr<float[]> made(new (std::nothrow) float[65536]);
            for (uint32_t code = 0; made && code < 65536; ++code) {
                made[code] = static_cast<float>(LinearFromCoded(coding, code / 65535.0));
            }
            values = std::move(made);
        }
        return values.get();
    }
};

}  // namespace

double LinearFromCoded(PictureCoding coding, double coded) noexcept {
    switch (coding) {
        case PictureCoding::Linear:
            return coded;
        case PictureCoding::Rec709:
            return Rec709ToLinear(coded);
        case PictureCoding::Srgb:
            return SrgbToLinear(coded);
    }
    return coded;
}

const float* LinearTable(PictureCoding coding) noexcept {
    static CodingTable linear;
    static CodingTable rec709;
    static CodingTable srgb;
    switch (coding) {
        case PictureCoding::Linear:
            return linear.Get(coding);
        case PictureCoding::Rec709:
            return rec709.Get(coding);
        case PictureCoding::Srgb:
            return srgb.Get(coding);
    }
    return nullptr;
}

}  // namespace clipfio::decoder
