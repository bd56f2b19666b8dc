// The bytes of picture files, and what the platform makes of them.
#pragma once

#include <initializer_list>
#include <string>

#include "support/pictures.h"
#include "support/temp_file.h"
#include "support/whole_file.h"

namespace support {

inline std::string Little(uint64_t value, int bytes) {
    std::string out;
    for (int i = 0; i < bytes; ++i) out += static_cast<char>(value >> 8 * i & 0xFF);
    return out;
}
inline std::string Doubles(std::initializer_list<uint32_t> values) {
    std::string out;
    for (const uint32_t value : values) out += Little(value, 4);
    return out;
}
inline std::string InfoHeader(int32_t width, int32_t height, uint32_t bits, uint32_t compression = 0,
                              uint32_t colors = 0) {
    return Doubles({40, static_cast<uint32_t>(width), static_cast<uint32_t>(height)}) + Little(1, 2) + Little(bits, 2) +
           Doubles({compression, 0, 0, 0, colors, 0});
}
inline std::string CoreHeader(uint32_t width, uint32_t height, uint32_t bits) {
    return Little(12, 4) + Little(width, 2) + Little(height, 2) + Little(1, 2) + Little(bits, 2);
}
inline std::string File(const std::string& header, const std::string& rows) {
    const auto rows_at = 14 + header.size();
    return "BM" + Little(rows_at + rows.size(), 4) + Little(0, 4) + Little(rows_at, 4) + header + rows;
}
// Black, red, green, blue, white.
inline const std::string kPalette = Doubles({0, 0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF});

inline HANDLE LoadFile(const std::string& bytes, UINT type, int side = 0, UINT flags = 0) {
    const TempFile file(type == IMAGE_BITMAP ? ".bmp" : type == IMAGE_ICON ? ".ico" : ".cur");
    WriteWhole(file.Path(), bytes);
    return LoadImageW(nullptr, file.Path(), type, side, side, LR_LOADFROMFILE | flags);
}
inline Shown LoadBitmapFile(const std::string& bytes, UINT flags = 0) {
    const auto bitmap = static_cast<HBITMAP>(LoadFile(bytes, IMAGE_BITMAP, 0, flags));
    return bitmap ? Take(bitmap) : Shown{};
}

}  // namespace support
