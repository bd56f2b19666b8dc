// The decimal digits of whole numbers, without the runtime and without memory of their own.
#pragma once

#include <array>
#include <bit>
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

// How many digits a number has, at least 1.
constexpr std::size_t CountDigits(uint64_t value) noexcept {
    constexpr auto kPowers = [] {
        std::array<uint64_t, 20> powers{1};
        for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 10;
        return powers;
    }();
    // 1233 / 4096 is a little more than the logarithm of 2.
    const auto estimate = static_cast<std::size_t>(std::bit_width(value | 1) * 1233 >> 12);
    return estimate + (value >= kPowers[estimate] ? 1 : 0);
}

// Writes the digits so that they end in front of `end`.
inline void WriteDigits(WCHAR* end, uint64_t value) noexcept {
    const auto put_pair = [&end](uint32_t pair) {
        end -= 2;
        std::memcpy(end, &kDigitPairs[std::size_t{pair} * 2], 2 * sizeof(WCHAR));
    };
    // Four digits at a time: the steps of a single one would each wait for the one before.
    while (value >= 10000) {
        const auto four = static_cast<uint32_t>(value % 10000);
        value /= 10000;
        put_pair(four % 100);
        put_pair(four / 100);
    }
    auto rest = static_cast<uint32_t>(value);
    if (rest >= 100) {
        put_pair(rest % 100);
        rest /= 100;
    }
    if (rest >= 10) {
        put_pair(rest);
    } else {
        *--end = static_cast<WCHAR>(W('0') + rest);
    }
}

// The smallest number has no positive twin but among the unsigned ones.
template <class Integer>
constexpr uint64_t Magnitude(Integer value) noexcept {
    const auto bits = static_cast<uint64_t>(value);
    return value < 0 ? 0 - bits : bits;
}

class DecimalDigits {
  public:
    template <class Integer>
    explicit DecimalDigits(Integer value) noexcept {
        static_assert(std::is_integral_v<Integer>);
        const uint64_t magnitude = Magnitude(value);
        WCHAR* const end = text_ + kCapacity;
        *end = 0;
        WriteDigits(end, magnitude);
        start_ = end - CountDigits(magnitude);
        if (value < 0) *--start_ = W('-');
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
    WCHAR* start_;
};

}  // namespace clipfio
