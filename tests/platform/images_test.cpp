// Pictures in all the forms that files and resources have them in.
#include "platform/images.h"

#include <gtest/gtest.h>

#include <string>

#include "support/picture_files.h"
#include "support/pictures.h"

namespace {

using support::CoreHeader;
using support::Doubles;
using support::File;
using support::InfoHeader;
using support::kPalette;
using support::Little;
using support::LoadBitmapFile;
using support::LoadFile;
using support::Show;
using support::Shown;
using support::ShownIcon;
using support::Take;

constexpr uint32_t kRed = 0xFF0000, kGreen = 0x00FF00, kBlue = 0x0000FF, kWhite = 0xFFFFFF, kBlack = 0;

TEST(Images, AreReadInEveryDepth) {
    using namespace std::string_literals;
    const std::string two = Doubles({kRed, kGreen});
    const std::vector<uint32_t> colors = {kRed, kGreen, kBlue, kWhite};
    struct Row {
        const char* name;
        std::string file;
        std::vector<uint32_t> pixels;  // two rows of two
    };
    const Row kRows[] = {
        {"1", File(InfoHeader(2, 2, 1) + two, "\x80\0\0\0\x40\0\0\0"s), {kRed, kGreen, kGreen, kRed}},
        {"4", File(InfoHeader(2, 2, 4, 0, 5) + kPalette, "\x34\0\0\0\x12\0\0\0"s), colors},
        {"8", File(InfoHeader(2, 2, 8, 0, 5) + kPalette, "\3\4\0\0\1\2\0\0"s), colors},
        {"8 past the palette",
         File(InfoHeader(2, 2, 8, 0, 2) + two, "\7\1\0\0\0\1\0\0"s),
         {kRed, kGreen, kBlack, kGreen}},
        {"16",
         File(InfoHeader(2, 2, 16), Little(0x7FFF'001F, 4) + Little(0x03E0'7C00, 4)),
         {kRed, kGreen, kBlue, kWhite}},
        {"24", File(InfoHeader(2, 2, 24), "\xFF\0\0\xFF\xFF\xFF\0\0\0\0\xFF\0\xFF\0\0\0"s), colors},
        {"24, old", File(CoreHeader(2, 2, 24), "\xFF\0\0\xFF\xFF\xFF\0\0\0\0\xFF\0\xFF\0\0\0"s), colors},
        {"1, old",
         File(CoreHeader(2, 2, 1) + "\0\0\xFF\0\xFF\0"s, "\x80\0\0\0\x40\0\0\0"s),
         {kRed, kGreen, kGreen, kRed}},
        {"32", File(InfoHeader(2, 2, 32), Doubles({kBlue, kWhite, kRed, kGreen})), colors},
        {"16 by masks",
         File(InfoHeader(2, 2, 16, 3) + Doubles({0xF800, 0x07E0, 0x001F}), Doubles({0xFFFF'001F, 0x07E0'F800})),
         colors},
        {"32 by masks",
         File(InfoHeader(2, 2, 32, 3) + Doubles({0xFF, 0xFF00, 0xFF0000}), Doubles({kRed, kWhite, kBlue, kGreen})),
         colors},
    };
    for (const Row& row : kRows) EXPECT_EQ(LoadBitmapFile(row.file).pixels, row.pixels) << row.name;
    // A part of 5 bits repeats its upper ones.
    EXPECT_EQ(LoadBitmapFile(File(InfoHeader(1, 1, 16), Little(0x4000, 4))).pixels.front(), 0x840000u);
}

TEST(Images, TakeOnTheSystemsColors) {
    const std::string grays = Doubles({0xFFFFFF, 0x808080, 0xC0C0C0, kRed});
    const std::string file = File(InfoHeader(4, 1, 8, 0, 4) + grays, std::string("\0\1\2\3", 4));
    const auto with = [&](UINT flags) { return LoadBitmapFile(file, flags).pixels; };
    EXPECT_EQ(with(0), (std::vector<uint32_t>{0xFFFFFF, 0x808080, 0xC0C0C0, kRed}));
    EXPECT_EQ(with(LR_MONOCHROME).front(), kWhite);
    const auto mapped = with(LR_LOADMAP3DCOLORS);
    ASSERT_EQ(mapped.size(), 4u);
    EXPECT_EQ(mapped[0], kWhite);
    EXPECT_NE(mapped[2], 0xC0C0C0u);
    EXPECT_EQ(mapped[3], kRed);
}

TEST(Images, DamagedOnesAreRefused) {
    const std::string rows(64, '\0');
    const std::string kFiles[] = {
        "",
        "BM",
        "PM" + File(InfoHeader(2, 2, 24), rows).substr(2),
        File("", ""),
        File(Doubles({400}), rows),
        File(InfoHeader(2, INT32_MIN, 24), rows),
        File(InfoHeader(INT32_MAX, INT32_MAX, 32), rows),
        File(InfoHeader(30000, 30000, 8, 1), rows),  // runs promise anything
    };
    for (const std::string& file : kFiles) {
        EXPECT_EQ(LoadBitmapFile(file), Shown{}) << testing::PrintToString(file.substr(0, 60));
        EXPECT_EQ(LoadFile(file, IMAGE_ICON), nullptr);
        EXPECT_EQ(LoadFile(file, IMAGE_CURSOR), nullptr);
    }
    EXPECT_EQ(LoadImageW(nullptr, W("no such file"), IMAGE_BITMAP, 0, 0, LR_LOADFROMFILE), nullptr);
    EXPECT_FALSE(DestroyIcon(nullptr));
    EXPECT_FALSE(DeleteObject(nullptr));
    ICONINFO info{};
    EXPECT_FALSE(GetIconInfo(nullptr, &info));
}

// Two by two, of one color, whose lower left pixel lets through.
std::string IconBytes(uint32_t color) {
    return InfoHeader(2, 4, 32) + Doubles({color, color, color, color}) + Doubles({0x80, 0});
}
std::string DirectoryRow(int side, uint32_t at_6, std::size_t size, std::size_t at) {
    return Little(static_cast<uint32_t>(side), 1) + Little(static_cast<uint32_t>(side), 1) + Little(0, 2) +
           Little(1, 2) + Little(at_6, 2) + Little(size, 4) + Little(at, 4);
}

TEST(Images, IconFilesGiveTheNearestInSizeAndDepth) {
    const std::string red = IconBytes(0xFF000000 | kRed), green = IconBytes(0xFF000000 | kGreen);
    const std::size_t first = 6 + 3 * 16, second = first + red.size();
    const std::string file = Doubles({0x00010000}) + Little(3, 2) + DirectoryRow(2, 32, red.size(), first) +
                             DirectoryRow(48, 4, red.size(), first) + DirectoryRow(48, 32, green.size(), second) + red +
                             green;
    const auto load = [&](int side) {
        const auto icon = static_cast<HICON>(LoadFile(file, IMAGE_ICON, side));
        const ShownIcon shown = Show(icon);
        EXPECT_TRUE(DestroyIcon(icon));
        return shown;
    };
    const ShownIcon small = load(2);
    EXPECT_EQ(small.color.pixels.front(), kRed);
    EXPECT_EQ(small.mask, (Shown{2, 2, {kBlack, kBlack, kWhite, kBlack}}));
    EXPECT_EQ(small.hot_x, 1u);
    const ShownIcon large = load(48);
    EXPECT_EQ(large.color.width, 48);
}

TEST(Images, IconsComeOutOfBytes) {
    std::string bytes = IconBytes(0xFF000000 | kBlue);
    auto* at = reinterpret_cast<BYTE*>(bytes.data());
    const auto size = static_cast<DWORD>(bytes.size());
    const HICON icon = CreateIconFromResourceEx(at, size, TRUE, 0x30000, 0, 0, 0);
    EXPECT_EQ(Show(icon).color.width, 2);
    EXPECT_EQ(Show(icon).color.pixels.front(), kBlue);
    EXPECT_TRUE(DestroyIcon(icon));
    EXPECT_EQ(CreateIconFromResourceEx(at, 20, TRUE, 0x30000, 0, 0, 0), nullptr);
    std::string cursor = Little(1, 2) + Little(0, 2) + bytes;
    const HCURSOR made = CreateIconFromResourceEx(reinterpret_cast<BYTE*>(cursor.data()),
                                                  static_cast<DWORD>(cursor.size()), FALSE, 0x30000, 0, 0, 0);
    EXPECT_EQ(Show(made).hot_x, 1u);
    EXPECT_EQ(Show(made).hot_y, 0u);
    EXPECT_TRUE(DestroyCursor(made));

    // A red PNG of one pixel, half covered.
    static constexpr BYTE kPng[] = {0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A, 0x00, 0x00, 0x00, 0x0D, 0x49, 0x48,
                                    0x44, 0x52, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0x01, 0x08, 0x06, 0x00, 0x00,
                                    0x00, 0x1F, 0x15, 0xC4, 0x89, 0x00, 0x00, 0x00, 0x0D, 0x49, 0x44, 0x41, 0x54, 0x78,
                                    0x9C, 0x63, 0xF8, 0xCF, 0xC0, 0xD0, 0x00, 0x00, 0x04, 0x81, 0x01, 0x80, 0x2C, 0x55,
                                    0xCE, 0xB0, 0x00, 0x00, 0x00, 0x00, 0x49, 0x45, 0x4E, 0x44, 0xAE, 0x42, 0x60, 0x82};
    std::vector<BYTE> png(std::begin(kPng), std::end(kPng));
    const HICON from_png = CreateIconFromResourceEx(png.data(), sizeof kPng, TRUE, 0x30000, 0, 0, 0);
    EXPECT_EQ(Show(from_png).color, (Shown{1, 1, {kRed}}));
    EXPECT_TRUE(DestroyIcon(from_png));
    png[18] = 0x7F;  // 2 million pixels wide
    EXPECT_EQ(CreateIconFromResourceEx(png.data(), sizeof kPng, TRUE, 0x30000, 0, 0, 0), nullptr);
}

TEST(Images, DirectoriesAreSearchedBySize) {
    const auto row = [](uint32_t side, uint32_t bits, uint32_t id) {
        return Little(side, 1) + Little(side, 1) + Little(0, 2) + Little(1, 2) + Little(bits, 2) + Little(64, 4) +
               Little(id, 2);
    };
    std::string icons = Doubles({0x00010000}) + Little(3, 2) + row(16, 32, 7) + row(32, 4, 8) + row(32, 32, 9);
    auto* at = reinterpret_cast<BYTE*>(icons.data());
    struct {
        int side, id;
    } const kRows[] = {{16, 7}, {20, 7}, {32, 9}, {0, 9}, {200, 9}};
    for (const auto& each : kRows) EXPECT_EQ(LookupIconIdFromDirectoryEx(at, TRUE, each.side, each.side, 0), each.id);
    icons[4] = 0;
    EXPECT_EQ(LookupIconIdFromDirectoryEx(at, TRUE, 16, 16, 0), 0);
}

TEST(Images, SharedOnesStay) {
    const HCURSOR arrow = LoadCursorW(nullptr, IDC_ARROW);
    EXPECT_EQ(LoadCursorW(nullptr, IDC_ARROW), arrow);
    DestroyCursor(arrow);
    EXPECT_GT(Show(arrow).mask.width, 0);
    EXPECT_EQ(LoadCursorW(nullptr, MAKEINTRESOURCEW(77)), nullptr);
}

}  // namespace
