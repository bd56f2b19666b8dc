// Values in a stated byte order, in memory of any alignment.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace platform {

static_assert(std::endian::native == std::endian::little, "both targets are little-endian");

constexpr std::uint16_t SwapBytes(std::uint16_t v) noexcept { return __builtin_bswap16(v); }
constexpr std::uint32_t SwapBytes(std::uint32_t v) noexcept { return __builtin_bswap32(v); }
constexpr std::uint64_t SwapBytes(std::uint64_t v) noexcept { return __builtin_bswap64(v); }

namespace detail {
template <std::size_t Size>
using Unsigned = std::conditional_t<
    Size == 1, std::uint8_t,
    std::conditional_t<Size == 2, std::uint16_t, std::conditional_t<Size == 4, std::uint32_t, std::uint64_t>>>;
}

// T is an integer or floating-point type of 1, 2, 4 or 8 bytes.
template <class T>
T LoadLittle(const void* from) noexcept {
    T value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

template <class T>
void StoreLittle(void* to, T value) noexcept {
    std::memcpy(to, &value, sizeof value);
}

template <class T>
T LoadBig(const void* from) noexcept {
    if constexpr (sizeof(T) == 1) {
        return LoadLittle<T>(from);
    } else {
        return std::bit_cast<T>(SwapBytes(LoadLittle<detail::Unsigned<sizeof(T)>>(from)));
    }
}

template <class T>
void StoreBig(void* to, T value) noexcept {
    if constexpr (sizeof(T) == 1) {
        StoreLittle(to, value);
    } else {
        StoreLittle(to, SwapBytes(std::bit_cast<detail::Unsigned<sizeof(T)>>(value)));
    }
}

}  // namespace platform
