#include "substitutes/decoder/colour.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace clipfio::decoder {
namespace {

struct Chromaticity {
    double x;
    double y;

    friend bool operator==(const Chromaticity&, const Chromaticity&) = default;
};

constexpr Chromaticity kD50{0.3457, 0.3585};
constexpr Chromaticity kD65{0.3127, 0.3290};
constexpr Chromaticity kTheatre{0.314, 0.351};

struct ColourSpace {
    uint32_t number;
    Chromaticity red;
    Chromaticity green;
    Chromaticity blue;
    Chromaticity white;
};

constexpr ColourSpace kRec709{1, {0.640, 0.330}, {0.300, 0.600}, {0.150, 0.060}, kD65};

// The public spaces have their published primaries. Those that are the maker's own secret stand for spaces of ours,
// each somewhat wider than Rec. 709 and than the one before it.
constexpr ColourSpace kSpaces[] = {
    {11, {0.672, 0.325}, {0.232, 0.700}, {0.146, 0.055}, kD65},                     // REDcolor4, the default
    {0, kRec709.red, kRec709.green, kRec709.blue, kD65},                            // camera RGB: as stored
    kRec709,                                                                        // Rec. 709
    {2, {0.660, 0.330}, {0.260, 0.655}, {0.150, 0.060}, kD65},                      // REDspace
    {3, {0.648, 0.330}, {0.285, 0.630}, {0.150, 0.060}, kD65},                      // REDcolor
    {4, kRec709.red, kRec709.green, kRec709.blue, kD65},                            // sRGB
    {5, {0.640, 0.330}, {0.210, 0.710}, {0.150, 0.060}, kD65},                      // Adobe 1998
    {6, {0.656, 0.330}, {0.270, 0.650}, {0.150, 0.060}, kD65},                      // REDcolor2
    {8, {0.664, 0.328}, {0.250, 0.675}, {0.148, 0.058}, kD65},                      // REDcolor3
    {9, {0.680, 0.320}, {0.220, 0.715}, {0.144, 0.052}, kD65},                      // DRAGONcolor
    {12, {0.688, 0.312}, {0.205, 0.735}, {0.142, 0.050}, kD65},                     // DRAGONcolor2
    {13, {0.708, 0.292}, {0.170, 0.797}, {0.131, 0.046}, kD65},                     // Rec. 2020
    {15, {0.780308, 0.304253}, {0.121595, 1.493994}, {0.095612, -0.084589}, kD65},  // REDWideGamutRGB
    {16, {0.680, 0.320}, {0.265, 0.690}, {0.150, 0.060}, kTheatre},                 // DCI-P3
    {17, {0.734699, 0.265301}, {0.159597, 0.840403}, {0.036598, 0.000105}, kD50},   // ProPhoto RGB
};

constexpr Vector3 Tristimulus(Chromaticity c) noexcept { return {c.x / c.y, 1.0, (1.0 - c.x - c.y) / c.y}; }

Matrix3 ToTristimulus(const ColourSpace& space) noexcept {
    const Vector3 r = Tristimulus(space.red), g = Tristimulus(space.green), b = Tristimulus(space.blue);
    const Matrix3 primaries{{{{r[0], g[0], b[0]}, {r[1], g[1], b[1]}, {r[2], g[2], b[2]}}}};
    return primaries * Diagonal(Inverse(primaries) * Tristimulus(space.white));
}

// Bradford's.
Matrix3 WhiteAdaptation(Chromaticity from, Chromaticity to) noexcept {
    constexpr Matrix3 kCone{{{{0.8951, 0.2664, -0.1614}, {-0.7502, 1.7135, 0.0367}, {0.0389, -0.0685, 1.0296}}}};
    const Vector3 a = kCone * Tristimulus(from), b = kCone * Tristimulus(to);
    return Inverse(kCone) * Diagonal({b[0] / a[0], b[1] / a[1], b[2] / a[2]}) * kCone;
}

// A black body's light after Krystek's rational fit in the 1960 diagram, moved off its line by the tint.
Vector3 WhiteOf(double kelvin, double tint) noexcept {
    const double t = kelvin;
    const double u =
        (0.860117757 + 1.54118254e-4 * t + 1.28641212e-7 * t * t) / (1.0 + 8.42420235e-4 * t + 7.08145163e-7 * t * t);
    const double v =
        (0.317398726 + 4.22806245e-5 * t + 4.20481691e-8 * t * t) / (1.0 - 2.89741816e-5 * t + 1.61456053e-7 * t * t) +
        tint / 3000.0;
    const double scale = 2.0 * u - 8.0 * v + 4.0;
    return Inverse(ToTristimulus(kRec709)) * Tristimulus({3.0 * u / scale, 2.0 * v / scale});
}

}  // namespace

Vector3 WhiteBalanceGains(double kelvin, double tint) noexcept {
    if (kelvin == 5600.0 && tint == 0.0) return {1, 1, 1};
    const Vector3 reference = WhiteOf(5600.0, 0.0), white = WhiteOf(kelvin, tint);
    Vector3 gains{};
    double luminance = 0;
    for (size_t c = 0; c < 3; ++c) {
        // Very warm light holds less than no blue in these primaries.
        gains[c] = reference[c] / std::max(white[c], 0.02);
        luminance += kLuminance[c] * gains[c];
    }
    for (double& gain : gains) gain /= luminance;
    return gains;
}

Matrix3 SaturationMatrix(double saturation) noexcept {
    Matrix3 out = Diagonal({saturation, saturation, saturation});
    if (saturation == 1.0) return out;
    for (Vector3& row : out.rows) {
        for (size_t c = 0; c < 3; ++c) row[c] += (1.0 - saturation) * kLuminance[c];
    }
    return out;
}

Matrix3 ColourSpaceMatrix(uint32_t number) noexcept {
    const auto found =
        std::find_if(std::begin(kSpaces), std::end(kSpaces), [=](const ColourSpace& s) { return s.number == number; });
    const ColourSpace& space = found == std::end(kSpaces) ? kSpaces[0] : *found;
    if (space.red == kRec709.red && space.green == kRec709.green && space.blue == kRec709.blue) return {};
    return Inverse(ToTristimulus(space)) * WhiteAdaptation(kRec709.white, space.white) * ToTristimulus(kRec709);
}

}  // namespace clipfio::decoder
