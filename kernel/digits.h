// The decimal digits of whole numbers, without the runtime and without memory of their own.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "platform/base.h"

namespace clipfio {

// "00" to "99", one behind the other.
inline constexpr auto kDigitPairs = [] {
    std::array<WCHAR, 200> pairs{};
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        pairs[i] = static_cast<WCHAR>(W('0') + (i % 2 == 0 ? i / 2 / 10 : i / 2 % 10));
    }
    return pairs;
}();

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
        start_ = text_ + kCapacity;
        *start_ = 0;
        // Four digits at a time: the steps of a single one would each wait for the one before.
        while (magnitude >= 10000) {
            const auto four = static_cast<uint32_t>(magnitude % 10000);
            magnitude /= 10000;
            PutPair(four % 100);
            PutPair(four / 100);
        }
        auto rest = static_cast<uint32_t>(magnitude);
        if (rest >= 100) {
            PutPair(rest % 100);
            rest /= 100;
        }
        if (rest >= 10) {
            PutPair(rest);
        } else {
            *--start_ = static_cast<WCHAR>(W('0') + rest);
        }
        if (negative) *--start_ = W('-');
    }
    DecimalDigits(const DecimalDigits&) = delete;
    DecimalDigits& operator=(const DecimalDigits&) = delete;

    [[nodiscard]] const WCHAR* Text() const noexcept { return start_; }
    [[nodiscard]] WStringView View() const noexcept {
        return {start_, static_cast<std::size_t>(text_ + kCapacity - start_)};
    }

  private:
    static constexpr std::size_t kCapacity = 20;  // 20 digits, or 19 and a sign

    void PutPair(uint32_t pair) noexcept {
        start_ -= 2;
        std::memcpy(start_, &kDigitPairs[std::size_t{pair} * 2], 2 * sizeof(WCHAR));
    }

    WCHAR text_[kCapacity + 1];
    WCHAR* start_;
};

}  // namespace clipfio
