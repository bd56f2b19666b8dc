// Icons and cursors: groups of pictures of one thing in several sizes, of which one is chosen and made.
#include <cairo.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "errors.h"
#include "fault_point.h"
#include "handles.h"
#include "image_records.h"
#include "platform/endian.h"
#include "platform/resources.h"

namespace platform {
namespace {

constexpr int kDefaultSide = 32;
constexpr std::size_t kDirectoryHeader = 6;  // 0, the kind, how many there are
constexpr std::size_t kCountAt = 4;
constexpr WORD kIcons = 1;
constexpr WORD kCursors = 2;
constexpr std::size_t kHotSpot = 4;  // bytes before a cursor's picture
constexpr std::int32_t kWidestIcon = 1024;

constexpr std::uintptr_t kFirstOfSystem = 32512;
constexpr std::uintptr_t kLastOfSystem = 32767;

// One picture of a directory.
struct Entry {
    int width = 0;
    int height = 0;
    unsigned bits = 0;
    std::uint32_t bytes = 0;
    std::uint32_t where = 0;     // its number among the resources, or its offset in a file
    std::uint32_t hot_spot = 0;  // in a file
};

// Those of a group in the resources, where rows have 14 bytes, or those of a file, where they have 16.
class Directory {
  public:
    Directory(Bytes bytes, bool icons, bool file) noexcept
        : bytes_(bytes), icons_(icons), file_(file), row_size_(file ? 16 : 14) {
        if (bytes.size() < kDirectoryHeader || LoadLittle<WORD>(bytes.data() + 2) != (icons ? kIcons : kCursors))
            return;
        const std::size_t all = (bytes.size() - kDirectoryHeader) / row_size_;
        count_ = std::min<std::size_t>(all, LoadLittle<WORD>(bytes.data() + kCountAt));
    }

    // The nearest in size, and of those the deepest. False without any.
    bool Choose(int width, int height, Entry& best) const noexcept {
        const auto distance = [&](const Entry& entry) {
            // The height of a cursor counts its mask too in some directories and not in others.
            return std::abs(entry.width - width) + (icons_ ? std::abs(entry.height - height) : 0);
        };
        for (std::size_t i = 0; i < count_; ++i) {
            const Entry entry = Read(i);
            const bool better = i == 0 || distance(entry) < distance(best) ||
                                (distance(entry) == distance(best) && entry.bits > best.bits);
            if (better) best = entry;
        }
        return count_ > 0;
    }

  private:
    [[nodiscard]] Entry Read(std::size_t index) const noexcept {
        const unsigned char* const row = bytes_.data() + kDirectoryHeader + index * row_size_;
        Entry entry;
        if (file_ || icons_) {
            entry.width = row[0] ? row[0] : 256;
            entry.height = row[1] ? row[1] : 256;
        } else {
            entry.width = LoadLittle<WORD>(row);
            entry.height = LoadLittle<WORD>(row + 2);
        }
        if (file_ && !icons_) {
            entry.hot_spot = LoadLittle<std::uint32_t>(row + 4);
        } else {
            entry.bits = LoadLittle<WORD>(row + 6);
        }
        entry.bytes = LoadLittle<std::uint32_t>(row + 8);
        entry.where = file_ ? LoadLittle<std::uint32_t>(row + 12) : LoadLittle<WORD>(row + 12);
        return entry;
    }

    Bytes bytes_;
    bool icons_;
    bool file_;
    std::size_t row_size_;
    std::size_t count_ = 0;
};

constexpr unsigned char kPngMark[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr std::size_t kPngSizes = 16;  // where the sides stand

bool IsPng(Bytes bytes) noexcept {
    return bytes.size() >= kPngSizes + 8 && std::equal(std::begin(kPngMark), std::end(kPngMark), bytes.begin());
}

// What covers nothing at all lets through what is below; the rest of the transparency stays in the colors.
Picture MaskOf(const Picture& color) {
    Picture mask = NewPicture(color.width, color.height);
    for (std::size_t i = 0; i < mask.Size(); ++i) mask.pixels[i] = color.pixels[i] >> 24 == 0 ? kWhite : kBlack;
    return mask;
}

struct Surface {
    explicit Surface(cairo_surface_t* made) noexcept : surface(made) {}
    ~Surface() { cairo_surface_destroy(surface); }
    Surface(const Surface&) = delete;
    Surface& operator=(const Surface&) = delete;
    cairo_surface_t* surface;
};

// Colors are premultiplied by their coverage there.
Pixel Unmultiplied(Pixel pixel) noexcept {
    const unsigned alpha = pixel >> 24;
    if (alpha == 0 || alpha == 255) return alpha == 0 ? 0 : pixel;
    Pixel result = pixel & 0xFF000000;
    for (const unsigned shift : {0u, 8u, 16u}) {
        const unsigned part = ((pixel >> shift & 0xFF) * 255 + alpha / 2) / alpha;
        result |= std::min(part, 255u) << shift;
    }
    return result;
}

bool ReadPng(Bytes bytes, Picture& color, Picture& mask) {
    const auto width = LoadBig<std::uint32_t>(bytes.data() + kPngSizes);
    const auto height = LoadBig<std::uint32_t>(bytes.data() + kPngSizes + 4);
    if (width > kWidestIcon || height > kWidestIcon) return false;
    const auto read = [](void* closure, unsigned char* out, unsigned count) noexcept {
        Bytes& left = *static_cast<Bytes*>(closure);
        if (count > left.size()) return CAIRO_STATUS_READ_ERROR;
        std::memcpy(out, left.data(), count);
        left = left.subspan(count);
        return CAIRO_STATUS_SUCCESS;
    };
    const Surface made(cairo_image_surface_create_from_png_stream(read, &bytes));
    if (cairo_surface_status(made.surface) != CAIRO_STATUS_SUCCESS) return false;
    const auto format = cairo_image_surface_get_format(made.surface);
    if (format != CAIRO_FORMAT_ARGB32 && format != CAIRO_FORMAT_RGB24) return false;
    const Pixel opaque = format == CAIRO_FORMAT_RGB24 ? 0xFF000000 : 0;
    color = NewPicture(cairo_image_surface_get_width(made.surface), cairo_image_surface_get_height(made.surface));
    const unsigned char* const rows = cairo_image_surface_get_data(made.surface);
    const auto stride = static_cast<std::size_t>(cairo_image_surface_get_stride(made.surface));
    for (std::int32_t y = 0; y < color.height; ++y) {
        for (std::int32_t x = 0; x < color.width; ++x) {
            const auto at = rows + stride * static_cast<std::size_t>(y) + 4 * static_cast<std::size_t>(x);
            color.At(x, y) = Unmultiplied(LoadLittle<Pixel>(at) | opaque);
        }
    }
    mask = MaskOf(color);
    return true;
}

// `facts` without its depth.
HICON MakeIcon(Bytes bytes, IconFacts facts, int width, int height) noexcept {
    if (FaultHere()) return Fail<HICON>(ERROR_NOT_ENOUGH_MEMORY, nullptr);
    return Guarded(HICON{}, [&] {
        Picture color;
        Picture mask;
        DibFacts dib{};
        const bool read = IsPng(bytes) ? ReadPng(bytes, color, mask) : ReadIconDib(bytes, color, mask, dib);
        if (!read) return Fail<HICON>(ERROR_INVALID_DATA, nullptr);
        facts.two_colors = dib.two_colors;
        // The hot spot keeps its place in the picture.
        if (width > 0) facts.hot_x = static_cast<std::uint32_t>(facts.hot_x * Count(width) / Count(color.width));
        if (height > 0) facts.hot_y = static_cast<std::uint32_t>(facts.hot_y * Count(height) / Count(color.height));
        return NewIcon(facts, Scaled(std::move(color), width, height), Scaled(std::move(mask), width, height));
    });
}

IconFacts Facts(bool icon, std::uint32_t hot_spot) noexcept {
    return {hot_spot & 0xFFFF, hot_spot >> 16, icon, false, false};
}

HICON MakeFromResource(Bytes bytes, bool icon, int width, int height) noexcept {
    std::uint32_t hot_spot = 0;
    if (!icon) {
        if (bytes.size() < kHotSpot) return Fail<HICON>(ERROR_INVALID_DATA, nullptr);
        hot_spot = LoadLittle<std::uint32_t>(bytes.data());
        bytes = bytes.subspan(kHotSpot);
    }
    return MakeIcon(bytes, Facts(icon, hot_spot), width, height);
}

// The sizes that a caller means: those to choose by, and those of the result, 0 for the picture's own.
struct Sizes {
    Sizes(int wanted_width, int wanted_height, UINT flags) noexcept : width(wanted_width), height(wanted_height) {
        const bool standard = (flags & LR_DEFAULTSIZE) != 0;
        if (standard && width == 0) width = kDefaultSide;
        if (standard && height == 0) height = kDefaultSide;
    }
    [[nodiscard]] int NearWidth() const noexcept { return width == 0 ? kDefaultSide : width; }
    [[nodiscard]] int NearHeight() const noexcept { return height == 0 ? kDefaultSide : height; }
    int width;
    int height;
};

HICON LoadFromFile(const WCHAR* path, bool icon, const Sizes& sizes) noexcept {
    return Guarded(HICON{}, [&]() -> HICON {
        const std::vector<unsigned char> file = ReadWhole(path);
        if (file.empty()) return nullptr;
        Entry entry;
        const bool chosen = Directory(file, icon, true).Choose(sizes.NearWidth(), sizes.NearHeight(), entry);
        if (!chosen || entry.where > file.size() || entry.bytes > file.size() - entry.where) {
            return Fail<HICON>(ERROR_INVALID_DATA, nullptr);
        }
        return MakeIcon(Bytes(file).subspan(entry.where, entry.bytes), Facts(icon, entry.hot_spot), sizes.width,
                        sizes.height);
    });
}

Bytes ResourceBytes(HINSTANCE module, const WCHAR* name, const WCHAR* type, HRSRC& found) noexcept {
    found = FindResourceW(module, name, type);
    if (!found) return {};
    return {static_cast<const unsigned char*>(LoadResource(module, found)), SizeofResource(module, found)};
}

HICON LoadFromModule(HINSTANCE module, HRSRC group, Bytes directory, bool icon, const Sizes& sizes) noexcept {
    Entry entry;
    if (!group || !Directory(directory, icon, false).Choose(sizes.NearWidth(), sizes.NearHeight(), entry)) {
        return Fail<HICON>(ERROR_INVALID_DATA, nullptr);
    }
    HRSRC found = nullptr;
    const Bytes bytes = ResourceBytes(module, MAKEINTRESOURCEW(entry.where), icon ? RT_ICON : RT_CURSOR, found);
    return found ? MakeFromResource(bytes, icon, sizes.width, sizes.height) : nullptr;
}

// An arrow that points to the upper left: white with a black edge.
HICON MakeArrow(bool icon, int width, int height) noexcept {
    return Guarded(HICON{}, [&] {
        Picture color = NewPicture(kDefaultSide, kDefaultSide);
        Picture mask = NewPicture(kDefaultSide, kDefaultSide);
        if (!color.pixels || !mask.pixels) return Fail<HICON>(ERROR_NOT_ENOUGH_MEMORY, nullptr);
        for (std::int32_t y = 0; y < color.height; ++y) {
            for (std::int32_t x = 0; x < color.width; ++x) {
                const bool inside = x <= y && x + y < kDefaultSide;
                const bool edge = x == 0 || x == y || x + y == kDefaultSide - 1;
                color.At(x, y) = inside && !edge ? 0xFF000000 | kWhite : inside ? 0xFF000000 : kBlack;
                mask.At(x, y) = inside ? kBlack : kWhite;
            }
        }
        return NewIcon(Facts(icon, 0), Scaled(std::move(color), width, height), Scaled(std::move(mask), width, height));
    });
}

bool IsOfSystem(const WCHAR* name) noexcept {
    const auto number = reinterpret_cast<std::uintptr_t>(name);
    return number >= kFirstOfSystem && number <= kLastOfSystem;
}

bool Matches(const SharedIcon& known, HMODULE module, const void* source, const Sizes& sizes, bool icon) noexcept {
    if (!known.icon || known.module != module || known.source != source || known.width != sizes.width ||
        known.height != sizes.height) {
        return false;
    }
    const HandleUse use(known.icon, HandleType::kIcon);
    return use && use.Block<Icon>().facts.is_icon == icon;
}

// The one that is shared already, or else what `make` makes, which is then shared.
template <class Make>
HICON Share(HMODULE module, const void* source, const Sizes& sizes, bool icon, Make make) noexcept {
    const PthreadLock lock(Shared().icon_lock);
    std::span<SharedIcon> all(Shared().shared_icons);
    const auto known =
        std::ranges::find_if(all, [&](const SharedIcon& each) { return Matches(each, module, source, sizes, icon); });
    if (known != all.end()) return known->icon;
    const auto place = std::ranges::find(all, nullptr, &SharedIcon::icon);
    if (place == all.end()) return Fail<HICON>(ERROR_NOT_ENOUGH_MEMORY, nullptr);
    const HICON made = make();
    const HandleUse use(made, HandleType::kIcon);
    if (!use) return nullptr;
    use.Block<Icon>().facts.shared = true;
    *place = {module, source, sizes.width, sizes.height, made};
    return made;
}

}  // namespace

HICON NewIcon(const IconFacts& facts, const Picture& color, const Picture& mask) noexcept {
    if (!color.pixels || !mask.pixels) return Fail<HICON>(ERROR_INVALID_PARAMETER, nullptr);
    const std::size_t size = color.Size();
    auto* const icon = static_cast<Icon*>(FaultHere() ? nullptr : std::malloc(sizeof(Icon) + 2 * size * sizeof(Pixel)));
    if (!icon) return Fail<HICON>(ERROR_NOT_ENOUGH_MEMORY, nullptr);
    icon->facts = facts;
    icon->width = color.width;
    icon->height = color.height;
    if (facts.is_icon) {
        icon->facts.hot_x = static_cast<std::uint32_t>(color.width / 2);
        icon->facts.hot_y = static_cast<std::uint32_t>(color.height / 2);
    }
    std::copy_n(mask.pixels.get(), size, icon->pixels);
    std::copy_n(color.pixels.get(), size, icon->pixels + size);
    return static_cast<HICON>(NewBlockHandle(HandleType::kIcon, icon));
}

HICON LoadOneIcon(HINSTANCE module, const WCHAR* name, bool icon, int width, int height, UINT flags) noexcept {
    const Sizes sizes(width, height, flags);
    if ((flags & LR_LOADFROMFILE) != 0) return LoadFromFile(name, icon, sizes);
    if (!module) {
        if (!IsOfSystem(name)) return Fail<HICON>(ERROR_RESOURCE_NAME_NOT_FOUND, nullptr);
        return Share(nullptr, name, sizes, icon, [&] { return MakeArrow(icon, sizes.width, sizes.height); });
    }
    HRSRC group = nullptr;
    const Bytes directory = ResourceBytes(module, name, icon ? RT_GROUP_ICON : RT_GROUP_CURSOR, group);
    if (!group) return nullptr;
    const auto make = [&] { return LoadFromModule(module, group, directory, icon, sizes); };
    return (flags & LR_SHARED) != 0 ? Share(module, group, sizes, icon, make) : make();
}

void DropSharedIcons(HMODULE module) noexcept {
    const PthreadLock lock(Shared().icon_lock);
    for (SharedIcon& known : Shared().shared_icons) {
        if (!known.icon || known.module != module) continue;
        CloseObjectHandle(known.icon);
        known = {};
    }
}

}  // namespace platform

using namespace platform;

extern "C" HICON LoadIconW(HINSTANCE module, const WCHAR* name) noexcept {
    return static_cast<HICON>(LoadImageW(module, name, IMAGE_ICON, 0, 0, LR_SHARED | LR_DEFAULTSIZE));
}

extern "C" HCURSOR LoadCursorW(HINSTANCE module, const WCHAR* name) noexcept {
    return static_cast<HCURSOR>(LoadImageW(module, name, IMAGE_CURSOR, 0, 0, LR_SHARED | LR_DEFAULTSIZE));
}

extern "C" int LookupIconIdFromDirectoryEx(BYTE* directory, BOOL icon, int width, int height, UINT) noexcept {
    if (!directory) return Fail(ERROR_INVALID_PARAMETER, 0);
    // How long it is nobody says, but its own count.
    const std::size_t bytes = kDirectoryHeader + std::size_t{14} * LoadLittle<WORD>(directory + kCountAt);
    const Sizes sizes(width, height, 0);
    Entry entry;
    const bool chosen =
        Directory({directory, bytes}, icon != FALSE, false).Choose(sizes.NearWidth(), sizes.NearHeight(), entry);
    return chosen ? static_cast<int>(entry.where) : 0;
}

extern "C" HICON CreateIconFromResourceEx(BYTE* bytes, DWORD size, BOOL icon, DWORD version, int width, int height,
                                          UINT flags) noexcept {
    constexpr DWORD kVersion = 0x00030000;
    if (!bytes || version != kVersion) return Fail<HICON>(ERROR_INVALID_PARAMETER, nullptr);
    if (width < 0 || height < 0 || width > kWidestPicture || height > kWidestPicture) {
        return Fail<HICON>(ERROR_INVALID_PARAMETER, nullptr);
    }
    const Sizes sizes(width, height, flags);
    return MakeFromResource({bytes, size}, icon != FALSE, sizes.width, sizes.height);
}

extern "C" BOOL GetIconInfo(HICON handle, ICONINFO* info) noexcept {
    const HandleUse use(handle, HandleType::kIcon);
    if (!use) return Fail(ERROR_INVALID_HANDLE);
    if (!info) return Fail(ERROR_INVALID_PARAMETER);
    const auto& icon = use.Block<Icon>();
    return Guarded(FALSE, [&] {
        const auto copy = [&icon](const Pixel* from, std::int32_t height) {
            Picture picture = NewPicture(icon.width, height);
            if (picture.pixels) std::copy_n(from, picture.Size(), picture.pixels.get());
            return picture.pixels ? NewBitmap(picture, false) : Fail<HBITMAP>(ERROR_NOT_ENOUGH_MEMORY, nullptr);
        };
        const std::size_t size = static_cast<std::size_t>(icon.width) * static_cast<std::size_t>(icon.height);
        const HBITMAP mask = copy(icon.pixels, icon.facts.two_colors ? 2 * icon.height : icon.height);
        if (!mask) return FALSE;
        const HBITMAP color = icon.facts.two_colors ? nullptr : copy(icon.pixels + size, icon.height);
        if (!color && !icon.facts.two_colors) {
            DeleteObject(mask);
            return FALSE;
        }
        *info = {icon.facts.is_icon ? TRUE : FALSE, icon.facts.hot_x, icon.facts.hot_y, mask, color};
        return TRUE;
    });
}

extern "C" BOOL DestroyIcon(HICON handle) noexcept {
    {
        const HandleUse use(handle, HandleType::kIcon);
        if (!use) return Fail(ERROR_INVALID_HANDLE);
        if (use.Block<Icon>().facts.shared) return TRUE;
    }
    return CloseBlockHandle(handle, HandleType::kIcon);
}

extern "C" BOOL DestroyCursor(HCURSOR cursor) noexcept { return DestroyIcon(cursor); }
