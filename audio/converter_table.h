// The table of converters: one row per destination format, one column per source format.
#pragma once

#include "audio/sample_format.h"

namespace clipfio::audio {

// Converts `count` samples (not frames); below 1 it does nothing. Does nothing with a null buffer either.
using Converter = void (*)(void* destination, const void* source, int32_t count, float gain);

struct ConverterTable {
    Converter rows[Formats::kCount][Formats::kCount];

    // Null for types without a format and for pairs without a converter.
    [[nodiscard]] constexpr Converter Find(KTSAMPLETYPE destination, KTSAMPLETYPE source) const noexcept {
        const int row = Formats::IndexOf(destination);
        const int column = Formats::IndexOf(source);
        return row < 0 || column < 0 ? nullptr : rows[row][column];
    }
};

// The two big-endian packed formats take nothing from 24-bit words.
template <class Dst, class Src>
inline constexpr bool kPairExists =
    !(std::is_same_v<Src, Pcm24In32> && (std::is_same_v<Dst, Pcm16Be> || std::is_same_v<Dst, Pcm24Be>));

// A converter to wider samples walks from the last sample to the first, so that it may run in place; so does every
// converter to big-endian 32 bits. The others walk from the first to the last.
template <class Dst, class Src>
inline constexpr bool kWalksBackward = Dst::kBytes > Src::kBytes || std::is_same_v<Dst, Pcm32Be>;

namespace detail {

template <template <class Dst, class Src> class Pair, class Dst, class Src>
constexpr Converter TableEntry() noexcept {
    if constexpr (kPairExists<Dst, Src>) {
        return &Pair<Dst, Src>::Convert;
    } else {
        return nullptr;
    }
}

template <template <class Dst, class Src> class Pair, class Dst, class... Src>
constexpr void FillRow(Converter* row, FormatList<Src...>) noexcept {
    int column = 0;
    ((row[column++] = TableEntry<Pair, Dst, Src>()), ...);
}

template <template <class Dst, class Src> class Pair, class... Dst>
constexpr ConverterTable MakeTable(FormatList<Dst...> formats) noexcept {
    ConverterTable table{};
    int row = 0;
    (FillRow<Pair, Dst>(table.rows[row++], formats), ...);
    return table;
}

}  // namespace detail

// Pair<Dst, Src>::Convert for each pair.
template <template <class Dst, class Src> class Pair>
constexpr ConverterTable MakeConverterTable() noexcept {
    return detail::MakeTable<Pair>(Formats{});
}

}  // namespace clipfio::audio
