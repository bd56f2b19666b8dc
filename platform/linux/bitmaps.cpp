// Bitmaps: their handles, and how they are loaded.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "errors.h"
#include "fault_point.h"
#include "handles.h"
#include "image_records.h"
#include "platform/endian.h"
#include "platform/files.h"
#include "platform/resources.h"
#include "platform/scoped.h"

namespace platform {
namespace {

constexpr std::size_t kFileHeader = 14;
constexpr WORD kFileMark = 0x4D42;       // "BM"
constexpr std::size_t kRowsOffset = 10;  // within the file's header, counted from the file's start
constexpr DWORD kLongestFile = DWORD{kMostPixels} * 4 + (1 << 16);

// The system's colors, of which a palette's grays take on the first three.
struct Gray {
    Pixel pictured;
    Pixel system;
};
constexpr Gray kGrays[] = {
    {0x808080, 0xA0A0A0},  // shadows
    {0xC0C0C0, 0xF0F0F0},  // faces
    {0xDFDFDF, 0xE3E3E3},  // light
};
constexpr Pixel kFace = 0xF0F0F0;
constexpr Pixel kWindow = 0xFFFFFF;

Picture PictureOfFile(const WCHAR* path, DibFacts& facts) {
    const std::vector<unsigned char> file = ReadWhole(path);
    if (file.empty()) return {};
    SetLastError(ERROR_INVALID_DATA);
    if (file.size() < kFileHeader || LoadLittle<WORD>(file.data()) != kFileMark) return {};
    const auto rows_at = std::size_t{LoadLittle<std::uint32_t>(file.data() + kRowsOffset)};
    return ReadDib(Bytes(file).subspan(kFileHeader), rows_at > kFileHeader ? rows_at - kFileHeader : 0, facts);
}

Picture PictureOfResource(HINSTANCE module, const WCHAR* name, DibFacts& facts) {
    const HRSRC found = module ? FindResourceW(module, name, RT_BITMAP) : nullptr;
    if (!found) {
        if (!module) SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
        return {};
    }
    const auto* const bytes = static_cast<const unsigned char*>(LoadResource(module, found));
    SetLastError(ERROR_INVALID_DATA);
    return ReadDib({bytes, SizeofResource(module, found)}, 0, facts);
}

void TakeSystemColors(Picture& picture, UINT flags) noexcept {
    const std::span<Pixel> pixels(picture.pixels.get(), picture.Size());
    const Pixel first = pixels.front();
    const bool grays = (flags & LR_LOADMAP3DCOLORS) != 0;
    if ((flags & LR_LOADTRANSPARENT) != 0) std::ranges::replace(pixels, first, grays ? kFace : kWindow);
    if (!grays) return;
    for (Pixel& pixel : pixels) {
        const auto* const found = std::ranges::find(kGrays, pixel, &Gray::pictured);
        if (found != std::end(kGrays)) pixel = found->system;
    }
}

void TakeTwoColors(Picture& picture) noexcept {
    for (Pixel& pixel : std::span(picture.pixels.get(), picture.Size())) {
        const unsigned light = (pixel >> 16 & 0xFF) * 299 + (pixel >> 8 & 0xFF) * 587 + (pixel & 0xFF) * 114;
        pixel = light >= 128'000 ? kWhite : kBlack;
    }
}

}  // namespace

std::vector<unsigned char> ReadWhole(const WCHAR* path) {
    const ScopedHandle file(CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    if (!file) return {};
    DWORD above = 0;
    const DWORD size = GetFileSize(file.Get(), &above);
    if (size == 0 || size > kLongestFile || above != 0) return Fail(ERROR_INVALID_DATA, std::vector<unsigned char>());
    std::vector<unsigned char> bytes(size);
    DWORD read = 0;
    if (!ReadFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr)) return {};
    bytes.resize(read);
    return bytes;
}

Picture LoadPicture(HINSTANCE module, const WCHAR* name, UINT flags, DibFacts& facts) {
    if (FaultHere()) return Fail(ERROR_NOT_ENOUGH_MEMORY, Picture());
    Picture picture =
        (flags & LR_LOADFROMFILE) != 0 ? PictureOfFile(name, facts) : PictureOfResource(module, name, facts);
    if (!picture.pixels) return picture;
    if (facts.palette) TakeSystemColors(picture, flags);
    if ((flags & LR_MONOCHROME) != 0) TakeTwoColors(picture);
    return picture;
}

HBITMAP NewBitmap(const Picture& picture, bool section) noexcept {
    const std::size_t bytes = picture.Size() * sizeof(Pixel);
    auto* const bitmap = static_cast<Bitmap*>(FaultHere() ? nullptr : std::malloc(sizeof(Bitmap) + bytes));
    if (!bitmap) return Fail<HBITMAP>(ERROR_NOT_ENOUGH_MEMORY, nullptr);
    bitmap->width = picture.width;
    bitmap->height = picture.height;
    bitmap->section = section;
    std::memcpy(bitmap->pixels, picture.pixels.get(), bytes);
    return static_cast<HBITMAP>(NewBlockHandle(HandleType::kBitmap, bitmap));
}

}  // namespace platform

using namespace platform;

extern "C" HBITMAP LoadBitmapW(HINSTANCE module, const WCHAR* name) noexcept {
    return static_cast<HBITMAP>(LoadImageW(module, name, IMAGE_BITMAP, 0, 0, 0));
}

extern "C" HANDLE LoadImageW(HINSTANCE module, const WCHAR* name, UINT type, int width, int height,
                             UINT flags) noexcept {
    if (!name || type > IMAGE_CURSOR || width < 0 || height < 0 || width > kWidestPicture || height > kWidestPicture) {
        return Fail<HANDLE>(ERROR_INVALID_PARAMETER, nullptr);
    }
    if (type != IMAGE_BITMAP) return LoadOneIcon(module, name, type == IMAGE_ICON, width, height, flags);
    return Guarded(HANDLE{}, [&]() -> HANDLE {
        DibFacts facts{};
        const Picture picture = Scaled(LoadPicture(module, name, flags, facts), width, height);
        return picture.pixels ? NewBitmap(picture, (flags & LR_CREATEDIBSECTION) != 0) : nullptr;
    });
}

extern "C" int GetObjectW(HGDIOBJ object, int size, void* out) noexcept {
    const HandleUse use(object, HandleType::kBitmap);
    if (!use) return Fail(ERROR_INVALID_HANDLE, 0);
    constexpr int kSize = sizeof(BITMAP);
    if (!out) return kSize;
    if (size < kSize) return Fail(ERROR_INVALID_PARAMETER, 0);
    auto& bitmap = use.Block<Bitmap>();
    const BITMAP facts{0,
                       bitmap.width,
                       bitmap.height,
                       bitmap.width * static_cast<LONG>(sizeof(Pixel)),
                       1,
                       32,
                       bitmap.section ? bitmap.pixels : nullptr};
    std::memcpy(out, &facts, sizeof facts);
    return kSize;
}

extern "C" int GetDIBits(HDC context, HBITMAP handle, UINT first, UINT count, void* bits, BITMAPINFO* info,
                         UINT usage) noexcept {
    const HandleUse use(handle, HandleType::kBitmap);
    if (!use || !HandleUse(context, HandleType::kDeviceContext)) return Fail(ERROR_INVALID_HANDLE, 0);
    if (!info || info->bmiHeader.biSize < sizeof(BITMAPINFOHEADER) || usage != DIB_RGB_COLORS) {
        return Fail(ERROR_INVALID_PARAMETER, 0);
    }
    const auto& bitmap = use.Block<Bitmap>();
    BITMAPINFOHEADER& header = info->bmiHeader;
    const std::size_t row_bytes = static_cast<std::size_t>(bitmap.width) * sizeof(Pixel);
    const auto height = static_cast<UINT>(bitmap.height);
    if (!bits) {
        header = {sizeof header,
                  bitmap.width,
                  bitmap.height,
                  1,
                  32,
                  BI_RGB,
                  static_cast<DWORD>(row_bytes * height),
                  0,
                  0,
                  0,
                  0};
        return bitmap.height;
    }
    const bool same = header.biWidth == bitmap.width && header.biBitCount == 32 && header.biCompression == BI_RGB;
    if (!same) return Fail(ERROR_INVALID_PARAMETER, 0);
    if (first >= height) return 0;
    const UINT rows = std::min(count, height - first);
    const bool top_first = header.biHeight < 0;
    for (UINT i = 0; i < rows; ++i) {
        const UINT from_below = first + i;
        const Pixel* const row = bitmap.pixels + std::size_t{height - 1 - from_below} * static_cast<UINT>(bitmap.width);
        const UINT to = top_first ? rows - 1 - i : i;
        std::memcpy(static_cast<unsigned char*>(bits) + row_bytes * to, row, row_bytes);
    }
    return static_cast<int>(rows);
}
