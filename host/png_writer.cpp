#include "host/png_writer.h"

#include <array>
#include <climits>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "host/failure.h"
#include "host/output_file.h"

// The library's zlib stream; its own PNG writer knows no 16-bit samples. The result is freed with free().
extern "C" unsigned char* stbi_zlib_compress(unsigned char* data, int data_len, int* out_len, int quality);

namespace clipfio::host {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr int kSmallestEffort = 5;
constexpr std::uint8_t kColourRgb = 2;

struct Header {
    std::uint32_t width;
    std::uint32_t height;
    std::uint8_t bits;
    bool linear;

    [[nodiscard]] std::size_t PixelBytes() const { return bits / 8u * 3u; }
    [[nodiscard]] std::size_t RowBytes() const { return width * PixelBytes(); }
};

void PutBig(Bytes& out, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) out.push_back(static_cast<std::uint8_t>(value >> shift));
}

constexpr std::array<std::uint32_t, 256> MakeCrcTable() {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t n = 0; n < 256; ++n) {
        std::uint32_t c = n;
        for (int bit = 0; bit < 8; ++bit) c = (c & 1) != 0 ? 0xEDB88320u ^ (c >> 1) : c >> 1;
        table[n] = c;
    }
    return table;
}
constexpr auto kCrcTable = MakeCrcTable();

std::uint32_t Crc(std::span<const std::uint8_t> bytes) {
    std::uint32_t c = 0xFFFFFFFF;
    for (const std::uint8_t byte : bytes) c = kCrcTable[(c ^ byte) & 0xFF] ^ (c >> 8);
    return ~c;
}

void WriteChunk(OutputFile& file, const char* type, std::span<const std::uint8_t> data) {
    Bytes chunk;
    chunk.reserve(data.size() + 12);
    PutBig(chunk, static_cast<std::uint32_t>(data.size()));
    chunk.insert(chunk.end(), type, type + 4);
    chunk.insert(chunk.end(), data.begin(), data.end());
    PutBig(chunk, Crc(std::span(chunk).subspan(4)));
    file.Write(chunk.data(), chunk.size());
}

int Paeth(int left, int up, int corner) {
    const int guess = left + up - corner;
    const int to_left = std::abs(guess - left);
    const int to_up = std::abs(guess - up);
    const int to_corner = std::abs(guess - corner);
    if (to_left <= to_up && to_left <= to_corner) return left;
    return to_up <= to_corner ? up : corner;
}

// Every row with the Paeth filter, the best single choice for pictures; `above` of the first row is all zero.
Bytes FilterRows(const Header& header, const Bytes& samples) {
    const std::size_t row_bytes = header.RowBytes();
    const std::size_t pixel = header.PixelBytes();
    Bytes out((row_bytes + 1) * header.height);
    const Bytes zero(row_bytes);
    const std::uint8_t* above = zero.data();
    std::uint8_t* to = out.data();
    for (std::uint32_t y = 0; y < header.height; ++y) {
        const std::uint8_t* row = samples.data() + y * row_bytes;
        *to++ = 4;
        for (std::size_t x = 0; x < row_bytes; ++x) {
            const int left = x >= pixel ? row[x - pixel] : 0;
            const int corner = x >= pixel ? above[x - pixel] : 0;
            *to++ = static_cast<std::uint8_t>(row[x] - Paeth(left, above[x], corner));
        }
        above = row;
    }
    return out;
}

// What the compressor takes, which counts bytes in an int: a filtered row has a byte more.
bool FitsFile(std::uint64_t row_bytes, std::uint64_t height) { return height <= INT_MAX / 2 / (row_bytes + 1); }

void WriteImage(const std::string& path, const Header& header, const Bytes& samples) {
    if (header.width == 0 || header.height == 0) throw Failure("cannot write " + path + ": the picture is empty");
    if (!FitsFile(header.RowBytes(), header.height)) {
        throw Failure("cannot write " + path + ": the picture is too large for a PNG");
    }
    Bytes filtered = FilterRows(header, samples);
    int packed_bytes = 0;
    const std::unique_ptr<std::uint8_t, decltype(&std::free)> packed(
        stbi_zlib_compress(filtered.data(), static_cast<int>(filtered.size()), &packed_bytes, kSmallestEffort),
        &std::free);
    if (!packed) throw std::bad_alloc();

    OutputFile file(path);
    constexpr std::uint8_t kSignature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    file.Write(kSignature, sizeof kSignature);
    Bytes ihdr;
    PutBig(ihdr, header.width);
    PutBig(ihdr, header.height);
    for (const std::uint8_t byte : {header.bits, kColourRgb, std::uint8_t{0}, std::uint8_t{0}, std::uint8_t{0}}) {
        ihdr.push_back(byte);
    }
    WriteChunk(file, "IHDR", ihdr);
    if (header.linear) {
        Bytes gamma;
        PutBig(gamma, 100000);
        WriteChunk(file, "gAMA", gamma);
    }
    WriteChunk(file, "IDAT", {packed.get(), static_cast<std::size_t>(packed_bytes)});
    WriteChunk(file, "IEND", {});
    file.Commit();
}

}  // namespace

bool FitsPng8(std::uint64_t width, std::uint64_t height) { return FitsFile(width * 3, height); }

void WritePng(const std::string& path, const RgbImage8& image) {
    WriteImage(path, {image.width, image.height, 8, false}, image.samples);
}

void WritePng(const std::string& path, const RgbImage16& image) {
    Bytes bytes;
    bytes.reserve(image.samples.size() * 2);
    for (const std::uint16_t sample : image.samples) {
        bytes.push_back(static_cast<std::uint8_t>(sample >> 8));
        bytes.push_back(static_cast<std::uint8_t>(sample));
    }
    WriteImage(path, {image.width, image.height, 16, image.linear}, bytes);
}

}  // namespace clipfio::host
