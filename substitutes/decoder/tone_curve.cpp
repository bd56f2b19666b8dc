#include "substitutes/decoder/tone_curve.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace clipfio::decoder {
namespace {

constexpr double kNearest = 0.001;

double Limited(float value, double otherwise) noexcept {
    return std::isnan(value) ? otherwise : std::clamp(static_cast<double>(value), 0.0, 1.0);
}

}  // namespace

ToneCurve::ToneCurve(const UserCurvePoints& points) noexcept {
    std::array<std::pair<double, double>, 5> sorted;
    for (size_t i = 0; i < sorted.size(); ++i) {
        const double place = static_cast<double>(i) * 0.25;
        sorted[i] = {Limited(points.xy[2 * i], place), Limited(points.xy[2 * i + 1], place)};
        if (sorted[i].first != sorted[i].second) straight_ = false;
    }
    std::sort(sorted.begin(), sorted.end());
    for (const auto& [x, y] : sorted) {
        if (count_ != 0 && x - x_[count_ - 1] < kNearest) continue;
        x_[count_] = x;
        y_[count_++] = y;
    }
    if (x_[0] != 0.0 || x_[count_ - 1] != 1.0) straight_ = false;
    SetSlopes();
}

// Slopes after Fritsch and Butland: a weighted harmonic mean of the chords on both sides, 0 where they differ in sign.
void ToneCurve::SetSlopes() noexcept {
    if (count_ < 2) return;
    std::array<double, 4> width{};
    std::array<double, 4> chord{};
    const size_t pieces = count_ - 1;
    for (size_t i = 0; i < pieces; ++i) {
        width[i] = x_[i + 1] - x_[i];
        chord[i] = (y_[i + 1] - y_[i]) / width[i];
    }
    slope_[0] = chord[0];
    slope_[pieces] = chord[pieces - 1];
    for (size_t i = 1; i < pieces; ++i) {
        if (chord[i - 1] * chord[i] <= 0.0) continue;
        const double left = 2.0 * width[i] + width[i - 1], right = width[i] + 2.0 * width[i - 1];
        slope_[i] = (left + right) / (left / chord[i - 1] + right / chord[i]);
    }
}

double ToneCurve::operator()(double x) const noexcept {
    if (straight_) return x;
    const size_t last = count_ - 1;
    if (x <= x_[0]) return y_[0];
    if (x >= x_[last]) return y_[last] + (x_[last] >= 1.0 ? (x - 1.0) * std::max(slope_[last], 0.0) : 0.0);
    size_t i = 0;
    while (x > x_[i + 1]) ++i;
    const double width = x_[i + 1] - x_[i];
    const double t = (x - x_[i]) / width;
    const double s = 1.0 - t;
    return s * s * ((1.0 + 2.0 * t) * y_[i] + t * width * slope_[i]) +
           t * t * ((1.0 + 2.0 * s) * y_[i + 1] - s * width * slope_[i + 1]);
}

}  // namespace clipfio::decoder
