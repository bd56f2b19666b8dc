#include "substitutes/decoder/look.h"

#include <algorithm>
#include <cmath>

#include "substitutes/decoder/colour.h"

namespace clipfio::decoder {
namespace {

// Light and signal are kept below this, which no sensible setting reaches, so that they stay finite.
constexpr double kMost = 1.0e6;

double Limited(float value, double least, double most, double otherwise) noexcept {
    return std::isnan(value) ? otherwise : std::clamp(static_cast<double>(value), least, most);
}

double IsoFactor(uint64_t iso) noexcept { return static_cast<double>(std::clamp<uint64_t>(iso, 1, 1000000)) / 320.0; }

// Brightens or darkens by `k` near black and leaves 0 and 1 in place; a straight line above 1.
double Bend(double x, double k) noexcept { return x <= 1.0 ? x * k / (1.0 + x * (k - 1.0)) : 1.0 + (x - 1.0) / k; }

// Exposure of the darkest quarter, in stops, less and less towards its upper end.
double LiftShadows(double x, double stops) noexcept {
    if (x >= 0.25) return x;
    const double share = 1.0 - 4.0 * x;
    return x * std::exp2(stops * share * share);
}

// Brings what lies above the knee under 1.
double HoldHighlights(double x, double amount) noexcept {
    const double room = 0.5 * amount, knee = 1.0 - room;
    if (room <= 0.0) return x;
    return x <= knee ? x : knee + room * (1.0 - std::exp(-(x - knee) / room));
}

double DeepenBlacks(double x) noexcept {
    constexpr double kToe = 0.004;
    return x * x * (1.0 + kToe) / (x + kToe);
}

}  // namespace

Look::Grade::Grade(const LiftGammaGain& settings, const UserCurvePoints& points) noexcept
    : lift(Limited(settings.lift, -1.0, 1.0, 0.0)),
      exponent(1.0 / Limited(settings.gamma, 0.01, 4.0, 1.0)),
      gain(Limited(settings.gain, 0.0, 2.0, 1.0)),
      curve(points) {}

double Look::Grade::operator()(double x) const noexcept {
    x = std::max(gain * (x + lift * std::max(1.0 - x, 0.0)), 0.0);
    return exponent == 1.0 ? x : std::min(std::pow(x, exponent), kMost);
}

Look::Look(const DecodeSettingsRecord& s) noexcept
    : flut_(std::exp2(Limited(s.flut, -8.0, 8.0, 0.0))),
      drx_(Limited(s.drx, 0.0, 1.0, 0.0)),
      shadow_(Limited(s.shadow, -2.0, 2.0, 0.0)),
      enhanced_blacks_(s.deb != 0),
      mixing_(ColourSpaceMatrix(s.imageColorSpace) * SaturationMatrix(Limited(s.saturation, 0.0, 4.0, 1.0))),
      contrast_(Limited(s.contrast, -1.0, 1.0, 0.0)),
      brightness_(std::exp2(-Limited(s.brightness, -10.0, 10.0, 0.0) / 5.0)),
      luma_(s.userCurve),
      grade_{Grade(s.lggRed, s.userCurveRed), Grade(s.lggGreen, s.userCurveGreen), Grade(s.lggBlue, s.userCurveBlue)},
      delivery_(s),
      delivers_rec709_(s.imageGammaCurve == 1) {
    const double exposure = std::exp2(Limited(s.exposureCompensation, -7.0, 7.0, 0.0)) * IsoFactor(s.imageIso);
    const Vector3 balance =
        WhiteBalanceGains(Limited(s.colorTemperature, 1700.0, 100000.0, 5600.0), Limited(s.tint, -100.0, 100.0, 0.0));
    const float gains[] = {s.gainRed, s.gainGreen, s.gainBlue};
    for (size_t c = 0; c < 3; ++c) exposure_[c] = exposure * balance[c] * Limited(gains[c], 0.0, 10.0, 1.0);
}

double Look::ExposedLight(size_t channel, double light) const noexcept {
    double x = light * exposure_[channel];
    if (flut_ != 1.0) x = Bend(x, flut_);
    if (enhanced_blacks_) x = DeepenBlacks(x);
    if (shadow_ != 0.0) x = LiftShadows(x, shadow_);
    return std::min(HoldHighlights(x, drx_), kMost);
}

bool Look::ExposesByFactor() const noexcept {
    return flut_ == 1.0 && drx_ == 0.0 && shadow_ == 0.0 && !enhanced_blacks_;
}

// Between the signal and a smooth S, which keeps 0, 0.5 and 1.
double Look::Contrast(double x) const noexcept {
    if (x > 1.0) return 1.0 + (x - 1.0) * (1.0 - contrast_);
    return x + contrast_ * (x * x * (3.0 - 2.0 * x) - x);
}

double Look::Signal(size_t channel, double light) const noexcept {
    double x = Contrast(Rec709FromLinear(light));
    if (brightness_ != 1.0) x = std::pow(x, brightness_);
    const Grade& grade = grade_[channel];
    x = grade.curve(luma_(grade(x)));
    if (!delivers_rec709_) x = delivery_(Rec709ToLinear(x));
    return std::clamp(x, 0.0, 1.0);
}

}  // namespace clipfio::decoder
