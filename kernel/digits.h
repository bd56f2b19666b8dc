// The decimal digits of whole numbers, without the runtime and without memory of their own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "platform/base.h"

namespace clipfio {

class DecimalDigits {
  public:
    template <class Integer>
    explicit DecimalDigits(Integer value) noexcept {
        static_assert(std::is_integral_v<Integer> && sizeof(Integer) >= sizeof(int32_t));
        using Unsigned = std::make_unsigned_t<Integer>;
        const bool negative = value < 0;
        // The smallest number has no positive twin but among the unsigned ones.
        auto magnitude = static_cast<Unsigned>(value);
        if (negative) magnitude = Unsigned{0} - magnitude;
        WCHAR* at = text_ + kCapacity;
        *at = 0;
        do {
            *--at = static_cast<WCHAR>(W('0') + magnitude % 10);
            magnitude /= 10;
        } while (magnitude != 0);
        if (negative) *--at = W('-');
        start_ = at;
    }
    DecimalDigits(const DecimalDigits&) = delete;
    DecimalDigits& operator=(const DecimalDigits&) = delete;

    [[nodiscard]] const WCHAR* Text() const noexcept { return start_; }
    [[nodiscard]] WStringView View() const noexcept {
        return {start_, static_cast<std::size_t>(text_ + kCapacity - start_)};
    }

  private:
    static constexpr std::size_t kCapacity = 20;  // 20 digits, or 19 and a sign

    WCHAR text_[kCapacity + 1];
    const WCHAR* start_;
};

}  // namespace clipfio
