// Gamma curves: linear light, where 1 is full scale of the stored picture, to the signal that is delivered.
#pragma once

#include <cstdint>

#include "r3dsdk/sdk_records.h"

namespace clipfio::decoder {

// Both go on above 1, and give 0 for what is below 0.
double Rec709FromLinear(double light) noexcept;
double Rec709ToLinear(double coded) noexcept;
double SrgbFromLinear(double light) noexcept;
double SrgbToLinear(double coded) noexcept;

// The curve that the settings name, with what belongs to it. An unknown number is taken for the default curve, 12.
class GammaCurve {
  public:
    explicit GammaCurve(const DecodeSettingsRecord& settings) noexcept;

    // Rises from about 0 at light 0; may pass 1.
    [[nodiscard]] double operator()(double light) const noexcept;

  private:
    struct PrintDensity {
        double black;  // codes of 1023
        double white;
        double gamma;
        [[nodiscard]] double Code(double light) const noexcept;
    };

    uint32_t number_;
    PrintDensity density_;
};

}  // namespace clipfio::decoder
