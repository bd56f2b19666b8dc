// What stands behind the handles of bitmaps and icons.
#pragma once

#include <vector>

#include "dib.h"
#include "platform/images.h"

namespace platform {

// Plain data, since one copy of the layer may make it and another free it.
struct Bitmap {
    std::int32_t width;
    std::int32_t height;
    bool section;
    Pixel pixels[];  // the top row first
};

struct IconFacts {
    std::uint32_t hot_x;
    std::uint32_t hot_y;
    bool is_icon;
    bool two_colors;
    bool shared;
};

struct Icon {
    IconFacts facts;
    std::int32_t width;
    std::int32_t height;
    Pixel pixels[];  // the mask, then the colors
};

// Both give null with the last error set.
HBITMAP NewBitmap(const Picture& picture, bool section) noexcept;
// An icon's hot spot is its middle, whatever the facts say.
HICON NewIcon(const IconFacts& facts, const Picture& color, const Picture& mask) noexcept;

// Throws std::bad_alloc; empty with the last error set. `facts` says what the picture was made of.
Picture LoadPicture(HINSTANCE module, const WCHAR* name, UINT flags, DibFacts& facts);
HICON LoadOneIcon(HINSTANCE module, const WCHAR* name, bool icon, int width, int height, UINT flags) noexcept;

// The bytes of a whole file; empty with the last error set. Throws std::bad_alloc.
std::vector<unsigned char> ReadWhole(const WCHAR* path);

// Lets go of what is shared out of a module's resources.
void DropSharedIcons(HMODULE module) noexcept;

}  // namespace platform
