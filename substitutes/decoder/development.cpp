#include "substitutes/decoder/development.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "substitutes/decoder/light_steps.h"
#include "substitutes/decoder/look.h"
#include "substitutes/decoder/picture_coding.h"

namespace clipfio::decoder {
namespace {

constexpr size_t kCodes = 65536;
constexpr float kStepPart = 1.0f / static_cast<float>(1 << kStepShift);
constexpr int32_t kStepMask = (1 << kStepShift) - 1;

float SignalAt(const float* signal, int32_t place) noexcept {
    const float* step = signal + (place >> kStepShift);
    return step[0] + (step[1] - step[0]) * (static_cast<float>(place & kStepMask) * kStepPart);
}

uint16_t To16(float signal) noexcept { return static_cast<uint16_t>(signal + 0.5f); }
uint8_t To8(float signal) noexcept { return static_cast<uint8_t>(signal * (1.0f / 257.0f) + 0.5f); }

void StoreBgra(uint8_t* out, uint32_t red, uint32_t green, uint32_t blue) noexcept {
    const uint32_t pixel = blue | (green << 8) | (red << 16) | 0xFF000000u;
    std::memcpy(out, &pixel, sizeof pixel);
}

}  // namespace

// The pixels that are mixed at a time, channel by channel; a stack's worth that stays in the nearest cache.
struct Development::Run {
    static constexpr size_t kPixels = 256;

    alignas(64) float light[3][kPixels]{};
    alignas(64) int32_t place[3][kPixels];

    void Load(const uint16_t* rgb, size_t count, const Tables<float>& tables, const float* otherwise) noexcept {
        const auto table = [&](size_t c) { return tables.values.empty() ? otherwise : tables.Of(c); };
        const float *red = table(0), *green = table(1), *blue = table(2);
        for (size_t i = 0; i < count; ++i, rgb += 3) {
            light[0][i] = red[rgb[0]];
            light[1][i] = green[rgb[1]];
            light[2][i] = blue[rgb[2]];
        }
    }

    // Always the whole run: a fixed length is what the compiler makes into vectors.
    void Mix(const std::array<float, 9>& m) noexcept {
        for (size_t c = 0; c < 3; ++c) {
            const float r = m[c * 3], g = m[c * 3 + 1], b = m[c * 3 + 2];
            for (size_t i = 0; i < kPixels; ++i) {
                place[c][i] = LightPlace(r * light[0][i] + g * light[1][i] + b * light[2][i]);
            }
        }
    }
};

template <class T>
template <class Fill, class Alike>
void Development::Tables<T>::Make(size_t entries, Fill fill, Alike alike) {
    for (size_t c = 0; c < 3; ++c) {
        size_t same = 0;
        while (same < c && !alike(same, c)) ++same;
        if (same < c) {
            start[c] = start[same];
            continue;
        }
        start[c] = values.size();
        values.resize(values.size() + entries);
        fill(c, values.data() + start[c]);
    }
}

Development::Development(const DecodeSettingsRecord& settings, PictureCoding coding, PixelType type)
    : settings_(settings), coding_(coding), type_(type), stored_light_(LinearTable(coding)) {
    if (stored_light_ == nullptr) throw std::bad_alloc();
    const Look look(settings);
    mixes_ = look.Mixing() != Matrix3{};
    MakeSignal(look);
    if (mixes_) {
        MakeMixed(look);
    } else {
        MakeDirect(look);
    }
}

bool Development::IsFor(const DecodeSettingsRecord& settings, PictureCoding coding, PixelType type) const noexcept {
    return coding == coding_ && type == type_ && std::memcmp(&settings, &settings_, sizeof settings) == 0;
}

void Development::MakeLight(const Look& look) {
    const auto fill = [&](size_t c, float* out) {
        for (size_t i = 0; i < kCodes; ++i) {
            out[i] = static_cast<float>(look.ExposedLight(c, static_cast<double>(stored_light_[i])));
        }
    };
    light_.Make(kCodes, fill, [&look](size_t a, size_t b) { return look.ExposesAlike(a, b); });
}

void Development::MakeSignal(const Look& look) {
    const auto fill = [&look](size_t c, float* out) {
        for (size_t i = 0; i <= kLightSteps; ++i) {
            const double light = PlaceLight(static_cast<int32_t>(i << kStepShift));
            out[i] = static_cast<float>(look.Signal(c, light) * 65535.0);
        }
    };
    signal_.Make(kLightSteps + 1, fill, [&look](size_t a, size_t b) { return look.GradesAlike(a, b); });
}

void Development::MakeMixed(const Look& look) {
    Matrix3 mixing = look.Mixing();
    if (look.ExposesByFactor()) {
        mixing = mixing * Diagonal(look.ExposureFactors());
    } else {
        MakeLight(look);
    }
    for (size_t i = 0; i < 9; ++i) matrix_[i] = static_cast<float>(mixing.rows[i / 3][i % 3]);
    if (type_ == PixelType::Rgb16) return;
    const auto fill = [this](size_t c, uint8_t* out) {
        const float* signal = signal_.Of(c);
        for (size_t i = 0; i < kLightSteps; ++i) out[i] = To8(0.5f * (signal[i] + signal[i + 1]));
    };
    signal8_.Make(kLightSteps, fill, [&look](size_t a, size_t b) { return look.GradesAlike(a, b); });
    signal_ = {};
}

void Development::MakeDirect(const Look& look) {
    MakeLight(look);
    const auto alike = [&look](size_t a, size_t b) { return look.ExposesAlike(a, b) && look.GradesAlike(a, b); };
    const auto whole_way = [this](size_t c, size_t code) {
        return SignalAt(signal_.Of(c), LightPlace(light_.Of(c)[code]));
    };
    if (type_ == PixelType::Bgra8) {
        const auto fill = [&](size_t c, uint8_t* out) {
            for (size_t i = 0; i < kCodes; ++i) out[i] = To8(whole_way(c, i));
        };
        direct8_.Make(kCodes, fill, alike);
    } else {
        copies_ = true;
        const auto fill = [&](size_t c, uint16_t* out) {
            for (size_t i = 0; i < kCodes; ++i) {
                out[i] = To16(whole_way(c, i));
                if (out[i] != i) copies_ = false;
            }
        };
        direct_.Make(kCodes, fill, alike);
    }
    light_ = {};
    signal_ = {};
}

void Development::DevelopRow(const uint16_t* rgb, void* out, size_t pixels) const noexcept {
    if (copies_) {
        std::memcpy(out, rgb, pixels * kBytesPerPixel);
    } else if (type_ == PixelType::Bgra8) {
        mixes_ ? Mix8(rgb, static_cast<uint8_t*>(out), pixels) : Direct8(rgb, static_cast<uint8_t*>(out), pixels);
    } else {
        mixes_ ? Mix16(rgb, static_cast<uint16_t*>(out), pixels) : Direct16(rgb, static_cast<uint16_t*>(out), pixels);
    }
}

void Development::Direct8(const uint16_t* rgb, uint8_t* out, size_t pixels) const noexcept {
    const uint8_t *red = direct8_.Of(0), *green = direct8_.Of(1), *blue = direct8_.Of(2);
    for (size_t i = 0; i < pixels; ++i, rgb += 3, out += 4) {
        StoreBgra(out, red[rgb[0]], green[rgb[1]], blue[rgb[2]]);
    }
}

void Development::Direct16(const uint16_t* rgb, uint16_t* out, size_t pixels) const noexcept {
    const uint16_t *red = direct_.Of(0), *green = direct_.Of(1), *blue = direct_.Of(2);
    for (size_t i = 0; i < pixels; ++i, rgb += 3, out += 3) {
        out[0] = red[rgb[0]];
        out[1] = green[rgb[1]];
        out[2] = blue[rgb[2]];
    }
}

void Development::Mix8(const uint16_t* rgb, uint8_t* out, size_t pixels) const noexcept {
    const uint8_t *red = signal8_.Of(0), *green = signal8_.Of(1), *blue = signal8_.Of(2);
    Run run;
    for (size_t done = 0; done < pixels; done += Run::kPixels) {
        const size_t count = std::min(Run::kPixels, pixels - done);
        run.Load(rgb + done * 3, count, light_, stored_light_);
        run.Mix(matrix_);
        uint8_t* to = out + done * 4;
        for (size_t i = 0; i < count; ++i, to += 4) {
            StoreBgra(to, red[run.place[0][i] >> kStepShift], green[run.place[1][i] >> kStepShift],
                      blue[run.place[2][i] >> kStepShift]);
        }
    }
}

void Development::Mix16(const uint16_t* rgb, uint16_t* out, size_t pixels) const noexcept {
    Run run;
    for (size_t done = 0; done < pixels; done += Run::kPixels) {
        const size_t count = std::min(Run::kPixels, pixels - done);
        run.Load(rgb + done * 3, count, light_, stored_light_);
        run.Mix(matrix_);
        for (size_t c = 0; c < 3; ++c) {
            const float* signal = signal_.Of(c);
            uint16_t* to = out + done * 3 + c;
            for (size_t i = 0; i < count; ++i) to[i * 3] = To16(SignalAt(signal, run.place[c][i]));
        }
    }
}

}  // namespace clipfio::decoder
