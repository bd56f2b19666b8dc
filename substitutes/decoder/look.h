// What the settings do to a picture, in the order in which they do it. docs/clip-form.md has the formulas.
//
// Light comes first, channel by channel, then the colours are mixed, then the picture is graded on its Rec. 709 signal
// and coded for delivery, channel by channel again. Every setting is taken into its limits, and what is not a number
// counts as the default, so that no record does harm.
#pragma once

#include <array>
#include <cstddef>

#include "r3dsdk/sdk_records.h"
#include "substitutes/decoder/gamma_curves.h"
#include "substitutes/decoder/matrix3.h"
#include "substitutes/decoder/tone_curve.h"

namespace clipfio::decoder {

class Look {
  public:
    explicit Look(const DecodeSettingsRecord& settings) noexcept;

    // The light of a stored sample, 0..1, after exposure, white balance, gains and what bends shadows and highlights.
    [[nodiscard]] double ExposedLight(size_t channel, double light) const noexcept;
    // Whether ExposedLight is no more than a factor for each channel, and that factor.
    [[nodiscard]] bool ExposesByFactor() const noexcept;
    [[nodiscard]] const Vector3& ExposureFactors() const noexcept { return exposure_; }
    // Saturation and colour space. The identity when neither changes anything.
    [[nodiscard]] const Matrix3& Mixing() const noexcept { return mixing_; }
    // Mixed light, 0 and more, to the signal that is delivered, 0..1.
    [[nodiscard]] double Signal(size_t channel, double light) const noexcept;

    // Whether the operations of two channels are the same, so that one table serves both.
    [[nodiscard]] bool ExposesAlike(size_t a, size_t b) const noexcept { return exposure_[a] == exposure_[b]; }
    [[nodiscard]] bool GradesAlike(size_t a, size_t b) const noexcept { return grade_[a] == grade_[b]; }

  private:
    struct Grade {
        Grade(const LiftGammaGain& settings, const UserCurvePoints& points) noexcept;
        [[nodiscard]] double operator()(double x) const noexcept;
        friend bool operator==(const Grade&, const Grade&) = default;

        double lift;
        double exponent;  // 1 / gamma
        double gain;
        ToneCurve curve;
    };

    [[nodiscard]] double Contrast(double x) const noexcept;

    Vector3 exposure_{};
    double flut_;  // a factor in the shadows
    double drx_;
    double shadow_;
    bool enhanced_blacks_;
    Matrix3 mixing_;
    double contrast_;
    double brightness_;  // an exponent
    ToneCurve luma_;
    std::array<Grade, 3> grade_;
    GammaCurve delivery_;
    bool delivers_rec709_;
};

}  // namespace clipfio::decoder
