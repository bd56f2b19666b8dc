// Bitmaps, icons, cursors, lists of images and tables of keys out of a base module and its satellite.
#include "kernel/lang_resources.h"
#include "lang_fixture.h"
#include "support/pictures.h"

namespace {

using support::Show;
using support::Shown;
using support::ShownIcon;
using support::Take;

constexpr uint32_t kRed = 0xFF0000, kGreen = 0x00FF00, kBlue = 0x0000FF, kWhite = 0xFFFFFF, kBlack = 0;

using LangPictures = WithBaseModule;

const WCHAR* const kBitmap = MAKEINTRESOURCEW(50);
const WCHAR* const kIcon = MAKEINTRESOURCEW(51);
const WCHAR* const kCursor = MAKEINTRESOURCEW(52);
const WCHAR* const kKeys = MAKEINTRESOURCEW(53);
const WCHAR* const kNone = MAKEINTRESOURCEW(999);

TEST_F(LangPictures, BitmapsAreTheBaseModules) {
    EXPECT_EQ(Take(KtLoadBitmap(handle_, kBitmap)), (Shown{2, 2, {kRed, kWhite, kBlue, kGreen}}));
    EXPECT_EQ(KtLoadBitmap(handle_, kNone), nullptr);
    EXPECT_EQ(KtLoadBitmap(nullptr, kBitmap), nullptr);

    const auto load = [this](int width, int height, UINT flags) {
        return static_cast<HBITMAP>(KtLoadImage(handle_, kBitmap, IMAGE_BITMAP, width, height, flags));
    };
    const auto wide = Take(load(4, 2, 0));
    ASSERT_EQ(wide.pixels.size(), 8u);
    EXPECT_EQ(wide.pixels[0], kRed);  // what lies between two pixels may be mixed
    EXPECT_EQ(wide.pixels[3], kWhite);
    EXPECT_EQ(wide.pixels[7], kGreen);
    const HBITMAP section = load(0, 0, LR_CREATEDIBSECTION);
    BITMAP facts{};
    EXPECT_EQ(GetObjectW(section, sizeof facts, &facts), static_cast<int>(sizeof facts));
    EXPECT_NE(facts.bmBits, nullptr);
    EXPECT_EQ(Take(section), (Shown{2, 2, {kRed, kWhite, kBlue, kGreen}}));
    EXPECT_EQ(KtLoadImage(handle_, kBitmap, 9, 0, 0, 0), nullptr);
}

TEST_F(LangPictures, IconsAreTheNearestInSize) {
    const HICON icon = KtLoadIcon(handle_, kIcon);
    EXPECT_EQ(KtLoadIcon(handle_, kIcon), icon);  // shared
    const ShownIcon usual = Show(icon);
    EXPECT_TRUE(usual.icon);
    ASSERT_EQ(usual.color.width, 32);
    EXPECT_EQ(usual.color.pixels[0], kRed);
    EXPECT_EQ(usual.mask.pixels[0], kBlack);
    EXPECT_EQ(usual.mask.pixels[31 * 32], kWhite);
    EXPECT_EQ(KtLoadIcon(handle_, kNone), nullptr);
    EXPECT_EQ(KtLoadIcon(nullptr, kIcon), nullptr);
    EXPECT_NE(KtLoadIcon(nullptr, IDI_APPLICATION), nullptr);

    for (const auto& [side, color] : {std::pair{2, kBlue}, {4, kRed}, {48, kRed}}) {
        const auto own = static_cast<HICON>(KtLoadImage(handle_, kIcon, IMAGE_ICON, side, side, 0));
        const ShownIcon shown = Show(own);
        EXPECT_TRUE(shown.color.width == side && shown.color.height == side) << side;
        EXPECT_EQ(shown.color.pixels.at(0), color) << side;
        EXPECT_TRUE(DestroyIcon(own));
    }
}

TEST_F(LangPictures, CursorsKeepTheirHotSpots) {
    const auto own = static_cast<HCURSOR>(KtLoadImage(handle_, kCursor, IMAGE_CURSOR, 8, 8, 0));
    const ShownIcon shown = Show(own);
    EXPECT_FALSE(shown.icon);
    EXPECT_TRUE(shown.hot_x == 3 && shown.hot_y == 5);
    // Black and white: one bitmap, the mask above the picture.
    EXPECT_TRUE(shown.color.pixels.empty());
    ASSERT_EQ(shown.mask.height, 16);
    for (std::size_t y = 0; y < 16; ++y) {
        EXPECT_EQ(shown.mask.pixels[8 * y + 7], y == 0 || y == 15 ? kWhite : kBlack) << y;
    }
    EXPECT_TRUE(DestroyCursor(own));

    EXPECT_EQ(KtLoadCursor(handle_, kCursor), KtLoadCursor(handle_, kCursor));
    EXPECT_EQ(KtLoadCursor(handle_, kIcon), nullptr);
    // Without a handle: the system's, or those of the kernel's module, which has none.
    EXPECT_NE(KtLoadCursor(nullptr, IDC_ARROW), nullptr);
    EXPECT_EQ(KtLoadCursor(nullptr, kCursor), nullptr);
}

TEST_F(LangPictures, KeysAreTheSatellitesBeforeTheBases) {
    const auto first = [this](const WCHAR* name, int& count) {
        ACCEL entry{};
        const HACCEL table = KtLoadAccelerators(handle_, name);
        count = CopyAcceleratorTableW(table, nullptr, 0);
        EXPECT_EQ(CopyAcceleratorTableW(table, &entry, 1), count);
        EXPECT_EQ(DestroyAcceleratorTable(table) != FALSE, table != nullptr);
        return entry;
    };
    int count = 0;
    EXPECT_EQ(first(kKeys, count).cmd, 101);
    EXPECT_EQ(count, 1);  // of two
    EXPECT_EQ(first(kNone, count).cmd, 0);
    EXPECT_EQ(count, 0);
    ASSERT_EQ(KtLang_UpdateKernelLCID(handle_, 0x0411, 0), 1);
    const ACCEL entry = first(kKeys, count);
    EXPECT_TRUE(entry.cmd == 201 && entry.key == 116 && (entry.fVirt & 0x7F) == (1 | 4 | 8));
    EXPECT_EQ(KtLoadAccelerators(nullptr, kKeys), nullptr);
}

TEST_F(LangPictures, ListsCutABitmapUp) {
    const auto load = [this](const WCHAR* name, int width, COLORREF mask, UINT type) {
        return KtImageList_LoadImage(handle_, name, width, 0, mask, type, LR_CREATEDIBSECTION);
    };
    const HIMAGELIST list = load(kBitmap, 1, 0x0000FF, IMAGE_BITMAP);  // red lets through
    EXPECT_EQ(ImageList_GetImageCount(list), 2);
    int width = 0, height = 0;
    EXPECT_TRUE(ImageList_GetIconSize(list, &width, &height) && width == 1 && height == 2);
    const HICON left = ImageList_GetIcon(list, 0, ILD_TRANSPARENT);
    const HICON right = ImageList_GetIcon(list, 1, ILD_TRANSPARENT);
    EXPECT_EQ(Show(left).mask, (Shown{1, 2, {kWhite, kBlack}}));
    EXPECT_EQ(Show(left).color.pixels.back(), kBlue);
    EXPECT_EQ(Show(right).mask, (Shown{1, 2, {kBlack, kBlack}}));
    EXPECT_EQ(Show(right).color, (Shown{1, 2, {kWhite, kGreen}}));
    EXPECT_EQ(ImageList_GetIcon(list, 2, ILD_TRANSPARENT), nullptr);
    EXPECT_TRUE(DestroyIcon(left) && DestroyIcon(right));
    EXPECT_TRUE(ImageList_Destroy(list));
    EXPECT_EQ(load(kNone, 1, CLR_NONE, IMAGE_BITMAP), nullptr);
    EXPECT_EQ(KtImageList_LoadImage(nullptr, kBitmap, 1, 0, CLR_NONE, IMAGE_BITMAP, 0), nullptr);
}

}  // namespace
