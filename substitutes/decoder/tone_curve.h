// A tone curve through five points that a user sets.
#pragma once

#include <array>
#include <cstddef>

#include "r3dsdk/sdk_records.h"

namespace clipfio::decoder {

// A cubic through the points that never turns back between two of them, so that rising points give a rising curve. Flat
// before the first and after the last point; above 1 it goes on as it ends there. Points may come in any order; those
// nearer than 0.001 to the one on their left are left out, and coordinates are taken into 0..1.
class ToneCurve {
  public:
    explicit ToneCurve(const UserCurvePoints& points) noexcept;

    [[nodiscard]] bool IsStraight() const noexcept { return straight_; }  // leaves every value as it is
    [[nodiscard]] double operator()(double x) const noexcept;

    friend bool operator==(const ToneCurve&, const ToneCurve&) = default;

  private:
    void SetSlopes() noexcept;

    std::array<double, 5> x_{};
    std::array<double, 5> y_{};
    std::array<double, 5> slope_{};
    size_t count_ = 0;
    bool straight_ = true;
};

}  // namespace clipfio::decoder
