#include "dib.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <vector>

#include "platform/endian.h"

namespace platform {
namespace {

enum Compression : std::uint32_t { kPlain = 0, kRunsOfBytes = 1, kRunsOfHalfBytes = 2, kMasks = 3, kMasksAndAlpha = 6 };

constexpr std::size_t kCoreHeader = 12;
constexpr std::size_t kHeader = 40;
constexpr std::size_t kMasksAt = 40;  // behind or within a header, as its size says
constexpr std::size_t kHeaderWithAlpha = 56;

struct Header {
    std::size_t size = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    bool top_first = false;
    std::uint32_t bits = 0;
    std::uint32_t compression = kPlain;
    std::uint32_t colors = 0;  // in the palette
    std::size_t color_size = 4;
    std::size_t palette_at = 0;
    std::uint32_t masks[4] = {};  // red, green, blue, alpha

    [[nodiscard]] std::size_t RowBytes() const noexcept { return (bits * Count(width) + 31) / 32 * 4; }
    [[nodiscard]] std::size_t RowsAt() const noexcept { return palette_at + colors * color_size; }
    [[nodiscard]] bool InRuns() const noexcept {
        return compression == kRunsOfBytes || compression == kRunsOfHalfBytes;
    }
};

bool ReadSizes(Bytes bytes, Header& header) noexcept {
    if (bytes.size() < kCoreHeader) return false;
    const unsigned char* const at = bytes.data();
    header.size = LoadLittle<std::uint32_t>(at);
    if (header.size > bytes.size()) return false;
    if (header.size == kCoreHeader) {
        header.width = LoadLittle<std::uint16_t>(at + 4);
        header.height = LoadLittle<std::uint16_t>(at + 6);
        header.bits = LoadLittle<std::uint16_t>(at + 10);
        header.color_size = 3;
        return true;
    }
    if (header.size < kHeader) return false;
    header.width = LoadLittle<std::int32_t>(at + 4);
    header.height = LoadLittle<std::int32_t>(at + 8);
    header.bits = LoadLittle<std::uint16_t>(at + 14);
    header.compression = LoadLittle<std::uint32_t>(at + 16);
    header.colors = LoadLittle<std::uint32_t>(at + 32);
    return true;
}

bool ReadMasks(Bytes bytes, Header& header, std::size_t& behind) noexcept {
    const bool given = header.compression == kMasks || header.compression == kMasksAndAlpha;
    if (!given) {
        constexpr std::uint32_t kOf16[] = {0x7C00, 0x03E0, 0x001F, 0};
        constexpr std::uint32_t kOf32[] = {0xFF0000, 0xFF00, 0xFF, 0xFF000000};
        std::ranges::copy(header.bits == 16 ? kOf16 : kOf32, header.masks);
        return true;
    }
    const bool alpha = header.compression == kMasksAndAlpha || header.size >= kHeaderWithAlpha;
    const std::size_t count = alpha ? 4 : 3;
    const std::size_t end = kMasksAt + count * sizeof(std::uint32_t);
    if (end > bytes.size()) return false;
    std::memcpy(header.masks, bytes.data() + kMasksAt, count * sizeof(std::uint32_t));
    behind = std::max(behind, end);
    return true;
}

bool FitsDepth(const Header& header) noexcept {
    switch (header.compression) {
        case kPlain:
            return header.bits == 1 || header.bits == 4 || header.bits == 8 || header.bits == 16 || header.bits == 24 ||
                   header.bits == 32;
        case kRunsOfBytes:
            return header.bits == 8 && !header.top_first;
        case kRunsOfHalfBytes:
            return header.bits == 4 && !header.top_first;
        case kMasks:
        case kMasksAndAlpha:
            return header.bits == 16 || header.bits == 32;
        default:
            return false;
    }
}

bool ReadHeader(Bytes bytes, Header& header) noexcept {
    if (!ReadSizes(bytes, header)) return false;
    if (header.height == INT32_MIN) return false;
    header.top_first = header.height < 0;
    header.height = std::abs(header.height);
    if (header.width < 1 || header.height < 1 || !FitsDepth(header)) return false;
    std::size_t behind = header.size;
    if (!ReadMasks(bytes, header, behind)) return false;
    if (header.bits <= 8) {
        const std::uint32_t all = 1u << header.bits;
        header.colors = header.colors == 0 ? all : std::min(header.colors, all);
    }
    header.palette_at = behind;
    return header.colors <= bytes.size() / header.color_size && header.RowsAt() <= bytes.size();
}

// A part of a pixel, widened to 8 bits by repeating its own upper bits.
unsigned Part(std::uint32_t pixel, std::uint32_t mask) noexcept {
    if (mask == 0) return 0;
    const int low = std::countr_zero(mask);
    const int width = static_cast<int>(std::bit_width(mask)) - low;
    std::uint32_t value = (pixel & mask) >> low;
    if (width >= 8) return value >> (width - 8);
    value <<= 8 - width;
    for (int done = width; done < 8; done *= 2) value |= value >> done;
    return value;
}

Pixel Masked(std::uint32_t pixel, const std::uint32_t (&masks)[4]) noexcept {
    return Part(pixel, masks[3]) << 24 | Part(pixel, masks[0]) << 16 | Part(pixel, masks[1]) << 8 |
           Part(pixel, masks[2]);
}

// Rows of whole bytes, one a pixel, out of runs; what they leave out is color 0. Runs that leave the picture are cut.
class Runs {
  public:
    Runs(const Header& header, Bytes in) : header_(header), in_(in), out_(Count(header.width) * Count(header.height)) {}

    std::vector<unsigned char> Unpack() noexcept {
        while (!ended_ && at_ + 2 <= in_.size()) {
            const unsigned count = in_[at_];
            const unsigned value = in_[at_ + 1];
            at_ += 2;
            if (count != 0) {
                for (unsigned i = 0; i < count; ++i) Put(Nibbles() ? Nibble(value, i) : value);
            } else if (value >= 3) {
                Copy(value);
            } else {
                Order(value);
            }
        }
        return std::move(out_);
    }

  private:
    [[nodiscard]] bool Nibbles() const noexcept { return header_.compression == kRunsOfHalfBytes; }
    static unsigned Nibble(unsigned byte, unsigned index) noexcept { return index % 2 == 0 ? byte >> 4 : byte & 0xF; }

    void Put(unsigned value) noexcept {
        if (x_ < header_.width && y_ < header_.height) {
            out_[Count(y_) * Count(header_.width) + Count(x_)] = static_cast<unsigned char>(value);
        }
        if (x_ < header_.width) ++x_;
    }

    // Pixels as they stand, up to the next word.
    void Copy(unsigned count) noexcept {
        const std::size_t bytes = Nibbles() ? (count + 1) / 2 : count;
        if (bytes > in_.size() - at_) {
            ended_ = true;
            return;
        }
        for (unsigned i = 0; i < count; ++i) {
            Put(Nibbles() ? Nibble(in_[at_ + i / 2], i) : unsigned{in_[at_ + i]});
        }
        at_ = std::min(at_ + (bytes + 1) / 2 * 2, in_.size());
    }

    // The end of a row or of the picture, or a step right and up.
    void Order(unsigned order) noexcept {
        if (order == 0) {
            x_ = 0;
            if (y_ < header_.height) ++y_;
        } else if (order == 1 || at_ + 2 > in_.size()) {
            ended_ = true;
        } else {
            x_ = std::min(x_ + in_[at_], header_.width);
            y_ = std::min(y_ + in_[at_ + 1], header_.height);
            at_ += 2;
        }
    }

    const Header& header_;
    Bytes in_;
    std::vector<unsigned char> out_;
    std::size_t at_ = 0;
    std::int32_t x_ = 0;
    std::int32_t y_ = 0;
    bool ended_ = false;
};

class Colors {
  public:
    Colors(const Header& header, Bytes bytes) noexcept : header_(header) {
        if (header.bits > 8) return;
        for (std::uint32_t i = 0; i < header.colors; ++i) {
            const unsigned char* const color = bytes.data() + header.palette_at + i * header.color_size;
            palette_[i] = Pixel{color[2]} << 16 | Pixel{color[1]} << 8 | color[0];
        }
    }

    [[nodiscard]] Pixel Indexed(unsigned index) const noexcept { return palette_[index]; }

    [[nodiscard]] Pixel At(const unsigned char* row, std::int32_t x) const noexcept {
        switch (header_.bits) {
            case 1:
                return palette_[row[x / 8] >> (7 - x % 8) & 1];
            case 4:
                return palette_[x % 2 == 0 ? row[x / 2] >> 4 : row[x / 2] & 0xF];
            case 8:
                return palette_[row[x]];
            case 16:
                return Masked(LoadLittle<std::uint16_t>(row + 2 * x), header_.masks);
            case 24:
                return Pixel{row[3 * x + 2]} << 16 | Pixel{row[3 * x + 1]} << 8 | row[3 * x];
            default:
                return Masked(LoadLittle<std::uint32_t>(row + 4 * x), header_.masks);
        }
    }

    [[nodiscard]] DibFacts Facts() const noexcept {
        const bool black_and_white = header_.bits == 1 && ((palette_[0] == kBlack && palette_[1] == kWhite) ||
                                                           (palette_[0] == kWhite && palette_[1] == kBlack));
        return {black_and_white, header_.bits <= 8};
    }

  private:
    const Header& header_;
    Pixel palette_[256] = {};
};

// `rows` bytes of the picture; the upper row of the result is row 0.
template <class RowPixel>
Picture Fill(const Header& header, RowPixel pixel) {
    Picture picture = NewPicture(header.width, header.height);
    if (!picture.pixels) return picture;
    for (std::int32_t y = 0; y < header.height; ++y) {
        const std::int32_t row = header.top_first ? y : header.height - 1 - y;
        for (std::int32_t x = 0; x < header.width; ++x) picture.At(x, y) = pixel(row, x);
    }
    return picture;
}

Picture ReadRows(const Header& header, const Colors& colors, Bytes rows) {
    if (header.InRuns()) {
        if (std::int64_t{header.width} * header.height > kMostPixels) return {};
        const std::vector<unsigned char> unpacked = Runs(header, rows).Unpack();
        return Fill(header, [&](std::int32_t y, std::int32_t x) {
            return colors.Indexed(unpacked[Count(y) * Count(header.width) + Count(x)]);
        });
    }
    const std::size_t row_bytes = header.RowBytes();
    if (rows.size() / row_bytes < static_cast<std::size_t>(header.height)) return {};
    return Fill(header,
                [&](std::int32_t y, std::int32_t x) { return colors.At(rows.data() + row_bytes * Count(y), x); });
}

}  // namespace

Picture NewPicture(std::int32_t width, std::int32_t height) {
    Picture picture;
    if (width < 1 || height < 1 || width > kWidestPicture || height > kWidestPicture) return picture;
    if (std::int64_t{width} * height > kMostPixels) return picture;
    picture.width = width;
    picture.height = height;
    picture.pixels.reset(new Pixel[picture.Size()]);
    return picture;
}

Picture Scaled(Picture picture, std::int32_t width, std::int32_t height) {
    if (width == 0) width = picture.width;
    if (height == 0) height = picture.height;
    if (!picture.pixels || (width == picture.width && height == picture.height)) return picture;
    Picture scaled = NewPicture(width, height);
    if (!scaled.pixels) return scaled;
    for (std::int32_t y = 0; y < height; ++y) {
        const auto from_y = static_cast<std::int32_t>(std::int64_t{y} * picture.height / height);
        for (std::int32_t x = 0; x < width; ++x) {
            scaled.At(x, y) = picture.At(static_cast<std::int32_t>(std::int64_t{x} * picture.width / width), from_y);
        }
    }
    return scaled;
}

Picture ReadDib(Bytes bytes, std::size_t rows_at, DibFacts& facts) {
    Header header;
    if (!ReadHeader(bytes, header)) return {};
    if (rows_at == 0) rows_at = header.RowsAt();
    if (rows_at > bytes.size()) return {};
    const Colors colors(header, bytes);
    facts = colors.Facts();
    return ReadRows(header, colors, bytes.subspan(rows_at));
}

bool ReadIconDib(Bytes bytes, Picture& color, Picture& mask, DibFacts& facts) {
    Header header;
    if (!ReadHeader(bytes, header) || header.top_first || header.InRuns()) return false;
    header.height /= 2;
    if (header.height == 0) return false;
    const Colors colors(header, bytes);
    facts = colors.Facts();
    color = ReadRows(header, colors, bytes.subspan(header.RowsAt()));
    if (!color.pixels) return false;
    const std::size_t mask_at = header.RowsAt() + header.RowBytes() * Count(header.height);
    Header mask_header = header;
    mask_header.bits = 1;
    const std::size_t row_bytes = mask_header.RowBytes();
    const Bytes rows = bytes.subspan(mask_at);
    if (rows.size() / row_bytes < static_cast<std::size_t>(header.height)) return false;
    mask = Fill(mask_header, [&](std::int32_t y, std::int32_t x) {
        return (rows[row_bytes * Count(y) + Count(x / 8)] >> (7 - x % 8) & 1) != 0 ? kWhite : kBlack;
    });
    return true;
}

}  // namespace platform
