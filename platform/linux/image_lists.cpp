// Lists of images of one size.
#include <algorithm>
#include <cstdlib>
#include <vector>

#include "errors.h"
#include "fault_point.h"
#include "handles.h"
#include "image_records.h"

namespace {

using namespace platform;

struct List {
    std::int32_t count;
    std::int32_t width;
    std::int32_t height;
    Pixel pixels[];  // each image: its mask, then its colors

    [[nodiscard]] std::size_t ImageSize() const noexcept { return Count(width) * Count(height); }
    [[nodiscard]] Pixel* Image(std::int32_t index) noexcept { return pixels + 2 * ImageSize() * Count(index); }
};

List* NewList(std::int32_t count, std::int32_t width, std::int32_t height) noexcept {
    const std::size_t pixels = 2 * Count(count) * Count(width) * Count(height);
    auto* const list = static_cast<List*>(FaultHere() ? nullptr : std::malloc(sizeof(List) + pixels * sizeof(Pixel)));
    if (!list) return Fail<List*>(ERROR_NOT_ENOUGH_MEMORY, nullptr);
    list->count = count;
    list->width = width;
    list->height = height;
    return list;
}

Pixel FromColorRef(COLORREF color) noexcept { return (color & 0xFF) << 16 | (color & 0xFF00) | (color >> 16 & 0xFF); }

// What is masked is black, as the images are kept.
List* Cut(const Picture& picture, int width, COLORREF mask) noexcept {
    if (width == 0) width = picture.height;
    if (width > picture.width) return Fail<List*>(ERROR_INVALID_PARAMETER, nullptr);
    List* const list = NewList(picture.width / width, width, picture.height);
    if (!list) return nullptr;
    const Pixel masked = mask == CLR_DEFAULT ? picture.pixels[0] & kWhite : FromColorRef(mask);
    for (std::int32_t index = 0; index < list->count; ++index) {
        Pixel* out = list->Image(index);
        Pixel* color = out + list->ImageSize();
        for (std::int32_t y = 0; y < list->height; ++y) {
            for (std::int32_t x = 0; x < width; ++x) {
                const Pixel pixel = picture.At(index * width + x, y);
                const bool below = mask != CLR_NONE && (pixel & kWhite) == masked;
                *out++ = below ? kWhite : kBlack;
                *color++ = below ? kBlack : pixel;
            }
        }
    }
    return list;
}

List* FromIcon(HICON handle) noexcept {
    const HandleUse use(handle, HandleType::kIcon);
    if (!use) return nullptr;
    const auto& icon = use.Block<Icon>();
    List* const list = NewList(1, icon.width, icon.height);
    if (list) std::copy_n(icon.pixels, 2 * list->ImageSize(), list->Image(0));
    return list;
}

List* Load(HINSTANCE module, const WCHAR* name, int width, COLORREF mask, UINT type, UINT flags) {
    if (type == IMAGE_BITMAP) {
        DibFacts facts{};
        const Picture picture = LoadPicture(module, name, flags, facts);
        return picture.pixels ? Cut(picture, width, mask) : nullptr;
    }
    const HICON icon = LoadOneIcon(module, name, type == IMAGE_ICON, width, 0, flags);
    List* const list = FromIcon(icon);
    if (icon) DestroyIcon(icon);
    return list;
}

}  // namespace

extern "C" HIMAGELIST ImageList_LoadImageW(HINSTANCE module, const WCHAR* name, int width, int, COLORREF mask,
                                           UINT type, UINT flags) noexcept {
    if (!name || type > IMAGE_CURSOR || width < 0 || width > kWidestPicture) {
        return Fail<HIMAGELIST>(ERROR_INVALID_PARAMETER, nullptr);
    }
    return Guarded(HIMAGELIST{}, [&] {
        List* const list = Load(module, name, width, mask, type, flags);
        return static_cast<HIMAGELIST>(NewBlockHandle(HandleType::kImageList, list));
    });
}

extern "C" int ImageList_GetImageCount(HIMAGELIST handle) noexcept {
    const HandleUse use(handle, HandleType::kImageList);
    return use ? use.Block<List>().count : Fail(ERROR_INVALID_HANDLE, 0);
}

extern "C" BOOL ImageList_GetIconSize(HIMAGELIST handle, int* width, int* height) noexcept {
    const HandleUse use(handle, HandleType::kImageList);
    if (!use || !width || !height) return Fail(use ? ERROR_INVALID_PARAMETER : ERROR_INVALID_HANDLE);
    *width = use.Block<List>().width;
    *height = use.Block<List>().height;
    return TRUE;
}

extern "C" HICON ImageList_GetIcon(HIMAGELIST handle, int index, UINT) noexcept {
    const HandleUse use(handle, HandleType::kImageList);
    if (!use) return Fail<HICON>(ERROR_INVALID_HANDLE, nullptr);
    auto& list = use.Block<List>();
    if (index < 0 || index >= list.count) return Fail<HICON>(ERROR_INVALID_PARAMETER, nullptr);
    return Guarded(HICON{}, [&] {
        const auto copy = [&list](const Pixel* from) {
            Picture picture = NewPicture(list.width, list.height);
            if (picture.pixels) std::copy_n(from, list.ImageSize(), picture.pixels.get());
            return picture;
        };
        const Pixel* const image = list.Image(index);
        IconFacts facts{};
        facts.is_icon = true;
        return NewIcon(facts, copy(image + list.ImageSize()), copy(image));
    });
}

extern "C" BOOL ImageList_Destroy(HIMAGELIST handle) noexcept {
    return CloseBlockHandle(handle, HandleType::kImageList);
}
