#include "substitutes/decoder/gamma_curves.h"

#include <algorithm>
#include <cmath>

namespace clipfio::decoder {
namespace {

// The constants of ITU-R BT.2020, which are those of BT.709 with enough digits for the two pieces to meet.
constexpr double kAlpha = 1.09929682680944;
constexpr double kBeta = 0.018053968510807;

// SMPTE ST 2084, light 1 being 100 candela per square metre of a peak of 10000.
double PerceptualQuantizer(double light) noexcept {
    const double y = std::pow(std::max(light, 0.0) / 100.0, 2610.0 / 16384.0);
    return std::pow((3424.0 / 4096.0 + 2413.0 / 128.0 * y) / (1.0 + 2392.0 / 128.0 * y), 2523.0 / 32.0);
}

// Rec. 709 with the highlights bent over a shoulder and some contrast: the family of the maker's picture curves, in our
// own shape. `contrast` is the share of a smooth S in the result.
double PictureCurve(double light, double shoulder, double contrast) noexcept {
    double x = Rec709FromLinear(light);
    if (x > shoulder) x = 1.0 - (1.0 - shoulder) * std::exp(-(x - shoulder) / (1.0 - shoulder));
    return x + contrast * (x * x * (3.0 - 2.0 * x) - x);
}

}  // namespace

double Rec709FromLinear(double light) noexcept {
    const double x = std::max(light, 0.0);
    return x < kBeta ? 4.5 * x : kAlpha * std::pow(x, 0.45) - (kAlpha - 1.0);
}

double Rec709ToLinear(double coded) noexcept {
    const double x = std::max(coded, 0.0);
    return x < 4.5 * kBeta ? x / 4.5 : std::pow((x + (kAlpha - 1.0)) / kAlpha, 1.0 / 0.45);
}

double SrgbFromLinear(double light) noexcept {
    const double x = std::max(light, 0.0);
    return x <= 0.0031308 ? 12.92 * x : 1.055 * std::pow(x, 1.0 / 2.4) - 0.055;
}

double SrgbToLinear(double coded) noexcept {
    const double x = std::max(coded, 0.0);
    return x <= 0.04045 ? x / 12.92 : std::pow((x + 0.055) / 1.055, 2.4);
}

GammaCurve::GammaCurve(const DecodeSettingsRecord& settings) noexcept
    : number_(settings.imageGammaCurve), density_{95.0, 685.0, 0.6} {
    if (number_ == 5) density_.white = 985.0;
    if (number_ != 6) return;
    density_.black = static_cast<double>(std::min<uint64_t>(settings.pdLogBlackPoint, 1022));
    density_.white = static_cast<double>(std::clamp<uint64_t>(settings.pdLogWhitePoint, 1, 1023));
    density_.white = std::max(density_.white, density_.black + 1.0);
    density_.gamma = std::isnan(settings.pdLogGamma) ? 0.6 : std::clamp<double>(settings.pdLogGamma, 0.1, 4.0);
}

// Film's printing density: 0.002 a code.
double GammaCurve::PrintDensity::Code(double light) const noexcept {
    const double floor = std::pow(10.0, (black - white) * 0.002 / gamma);
    return white + std::log10(std::max(light, 0.0) * (1.0 - floor) + floor) * gamma / 0.002;
}

double GammaCurve::operator()(double light) const noexcept {
    switch (number_) {
        case 0:
            return light;
        case 1:
            return Rec709FromLinear(light);
        case 2:
            return PictureCurve(light, 0.90, 0.10);  // REDspace
        case 3:
            return std::log2(1.0 + 255.0 * std::max(light, 0.0)) / 8.0;  // REDlog
        case 4:                                                          // PDlog 685
        case 5:                                                          // PDlog 985
        case 6:                                                          // custom PDlog
        case 9:
            return density_.Code(light) / 1023.0;  // REDlogFilm
        case 7:
            return PictureCurve(light, 0.85, 0.20);  // REDgamma
        case 8:
            return SrgbFromLinear(light);  // sRGB
        case 10:
            return PictureCurve(light, 0.80, 0.25);  // REDgamma2
        case 11:
            return PictureCurve(light, 0.75, 0.30);  // REDgamma3
        case 14:
            return PerceptualQuantizer(light);  // HDR-2084
        case 15:
            return std::pow(std::max(light, 0.0), 1.0 / 2.4);  // BT.1886
        case 16:
            return 0.184904 * std::log10(std::max(light, 0.0) * 347.189667 + 1.0);  // Log 3G12
        case 18:
            return 0.224282 * std::log10((std::max(light, 0.0) + 0.01) * 155.975327 + 1.0);  // Log 3G10
        default:
            return PictureCurve(light, 0.70, 0.30);  // REDgamma4
    }
}

}  // namespace clipfio::decoder
