// Pictures in all the forms that files and resources have them in.
#include "platform/images.h"

#include <gtest/gtest.h>

#include <string>

#include "support/fail_each.h"
#include "support/pictures.h"
#include "support/temp_file.h"
#include "support/whole_file.h"

namespace {

using support::Show;
using support::Shown;
using support::ShownIcon;
using support::Take;

constexpr uint32_t kRed = 0xFF0000, kGreen = 0x00FF00, kBlue = 0x0000FF, kWhite = 0xFFFFFF, kBlack = 0;

std::string Little(uint64_t value, int bytes) {
    std::string out;
    for (int i = 0; i < bytes; ++i) out += static_cast<char>(value >> 8 * i & 0xFF);
    return out;
}
std::string Doubles(std::initializer_list<uint32_t> values) {
    std::string out;
    for (const uint32_t value : values) out += Little(value, 4);
    return out;
}
std::string InfoHeader(int32_t width, int32_t height, uint32_t bits, uint32_t compression = 0, uint32_t colors = 0) {
    return Doubles({40, static_cast<uint32_t>(width), static_cast<uint32_t>(height)}) + Little(1, 2) + Little(bits, 2) +
           Doubles({compression, 0, 0, 0, colors, 0});
}
std::string CoreHeader(uint32_t width, uint32_t height, uint32_t bits) {
    return Little(12, 4) + Little(width, 2) + Little(height, 2) + Little(1, 2) + Little(bits, 2);
}
std::string File(const std::string& header, const std::string& rows) {
    const auto rows_at = 14 + header.size();
    return "BM" + Little(rows_at + rows.size(), 4) + Little(0, 4) + Little(rows_at, 4) + header + rows;
}
const std::string kPalette = Doubles({kBlack, kRed, kGreen, kBlue, kWhite});

HANDLE LoadFile(const std::string& bytes, UINT type, int side = 0, UINT flags = 0) {
    const support::TempFile file(type == IMAGE_BITMAP ? ".bmp" : type == IMAGE_ICON ? ".ico" : ".cur");
    support::WriteWhole(file.Path(), bytes);
    return LoadImageW(nullptr, file.Path(), type, side, side, LR_LOADFROMFILE | flags);
}
Shown LoadBitmapFile(const std::string& bytes, UINT flags = 0) {
    const auto bitmap = static_cast<HBITMAP>(LoadFile(bytes, IMAGE_BITMAP, 0, flags));
    return bitmap ? Take(bitmap) : Shown{};
}

TEST(Images, AreReadInEveryDepth) {
    using namespace std::string_literals;
    const std::string two = Doubles({kRed, kGreen}), masks_16 = Doubles({0xF800, 0x07E0, 0x001F}),
                      masks_32 = Doubles({0xFF, 0xFF00, 0xFF0000});
    const std::vector<uint32_t> colors = {kRed, kGreen, kBlue, kWhite}, crossed = {kRed, kGreen, kGreen, kRed};
    struct {
        const char* name;
        std::string file;
        std::vector<uint32_t> pixels;  // two rows of two
    } const kRows[] = {
        {"1", File(InfoHeader(2, 2, 1) + two, "\x80\0\0\0\x40\0\0\0"s), crossed},
        {"4", File(InfoHeader(2, 2, 4, 0, 5) + kPalette, "\x34\0\0\0\x12\0\0\0"s), colors},
        {"8", File(InfoHeader(2, 2, 8, 0, 5) + kPalette, "\3\4\0\0\1\2\0\0"s), colors},
        {"8 past it", File(InfoHeader(2, 2, 8, 0, 2) + two, "\7\1\0\0\0\1\0\0"s), {kRed, kGreen, kBlack, kGreen}},
        {"16", File(InfoHeader(2, 2, 16), Doubles({0x7FFF'001F, 0x03E0'7C00})), colors},
        {"24", File(InfoHeader(2, 2, 24), "\xFF\0\0\xFF\xFF\xFF\0\0\0\0\xFF\0\xFF\0\0\0"s), colors},
        {"24, top first", File(InfoHeader(2, -2, 24), "\0\0\xFF\0\xFF\0\0\0\xFF\0\0\xFF\xFF\xFF\0\0"s), colors},
        {"24, old", File(CoreHeader(2, 2, 24), "\xFF\0\0\xFF\xFF\xFF\0\0\0\0\xFF\0\xFF\0\0\0"s), colors},
        {"1, old", File(CoreHeader(2, 2, 1) + "\0\0\xFF\0\xFF\0"s, "\x80\0\0\0\x40\0\0\0"s), crossed},
        {"32", File(InfoHeader(2, 2, 32), Doubles({kBlue, kWhite, kRed, kGreen})), colors},
        {"16 by masks", File(InfoHeader(2, 2, 16, 3) + masks_16, Doubles({0xFFFF'001F, 0x07E0'F800})), colors},
        {"32 by masks", File(InfoHeader(2, 2, 32, 3) + masks_32, Doubles({kRed, kWhite, kBlue, kGreen})), colors},
        {"runs of 8", File(InfoHeader(2, 2, 8, 1, 5) + kPalette, "\1\3\1\4\0\0\1\1\1\2\0\1"s), colors},
        {"runs of 8, as they are", File(InfoHeader(4, 1, 8, 1, 5) + kPalette, "\0\3\1\2\3\0\1\4\0\1"s), colors},
        {"a step",
         File(InfoHeader(2, 2, 8, 1, 5) + kPalette, "\2\4\0\2\0\0\0\0\2\1\0\1"s),
         {kRed, kRed, kWhite, kWhite}},
        {"runs of 4", File(InfoHeader(2, 2, 4, 2, 5) + kPalette, "\2\x34\0\0\2\x12\0\1"s), colors},
    };
    for (const auto& row : kRows) EXPECT_EQ(LoadBitmapFile(row.file).pixels, row.pixels) << row.name;
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
        File(InfoHeader(0, 2, 24), rows),
        File(InfoHeader(2, INT32_MIN, 24), rows),
        File(InfoHeader(-2, 2, 24), rows),
        File(InfoHeader(100, 100, 24), rows),  // more rows than there are
        File(InfoHeader(INT32_MAX, INT32_MAX, 32), rows),
        File(InfoHeader(30000, 30000, 8, 1), rows),  // runs promise anything
        File(InfoHeader(2, 2, 7), rows),
    };
    for (const std::string& file : kFiles) {
        EXPECT_EQ(LoadBitmapFile(file), Shown{}) << testing::PrintToString(file.substr(0, 60));
        EXPECT_EQ(LoadFile(file, IMAGE_ICON), nullptr);
        EXPECT_EQ(LoadFile(file, IMAGE_CURSOR), nullptr);
    }
    EXPECT_EQ(LoadImageW(nullptr, W("no such file"), IMAGE_BITMAP, 0, 0, LR_LOADFROMFILE), nullptr);
    ICONINFO info{};
    EXPECT_FALSE(DestroyIcon(nullptr) || DeleteObject(nullptr) || GetIconInfo(nullptr, &info));
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
    const std::pair<int, uint32_t> kRows[] = {{2, kRed}, {20, kRed}, {30, kGreen}, {48, kGreen}, {200, kGreen}};
    for (const auto& [side, color] : kRows) {
        const auto icon = static_cast<HICON>(LoadFile(file, IMAGE_ICON, side));
        const ShownIcon shown = Show(icon);
        EXPECT_TRUE(DestroyIcon(icon));
        EXPECT_EQ(shown.color.width, side);
        ASSERT_FALSE(shown.color.pixels.empty());
        EXPECT_EQ(shown.color.pixels.front(), color) << side;
        const Shown half_through{2, 2, {kBlack, kBlack, kWhite, kBlack}};
        EXPECT_TRUE(side != 2 || (shown.mask == half_through && shown.hot_x == 1));
    }
}

TEST(Images, IconsComeOutOfBytes) {
    const auto create = [](std::string bytes, BOOL icon = TRUE) {
        return CreateIconFromResourceEx(reinterpret_cast<BYTE*>(bytes.data()), static_cast<DWORD>(bytes.size()), icon,
                                        0x30000, 0, 0, 0);
    };
    const std::string bytes = IconBytes(0xFF000000 | kBlue);
    EXPECT_EQ(create(bytes.substr(0, 20)), nullptr);
    const HCURSOR made = create(Little(1, 4) + bytes, FALSE);
    EXPECT_EQ(Show(made).hot_x, 1u);
    EXPECT_EQ(Show(made).hot_y, 0u);
    EXPECT_TRUE(DestroyCursor(made));

    // A red PNG of one pixel, half covered.
    using namespace std::string_literals;
    std::string png =
        "\x89PNG\r\n\x1A\n\0\0\0\x0DIHDR\0\0\0\1\0\0\0\1\x08\6\0\0\0\x1F\x15\xC4\x89\0\0\0\x0D"
        "IDAT\x78\x9C\x63\xF8\xCF\xC0\xD0\0\0\4\x81\1\x80\x2C\x55\xCE\xB0\0\0\0\0IEND\xAE\x42\x60\x82"s;
    const HICON from_png = create(png);
    EXPECT_EQ(Show(from_png).color, (Shown{1, 1, {kRed}}));
    EXPECT_EQ(Show(from_png).mask, (Shown{1, 1, {kBlack}}));
    EXPECT_TRUE(DestroyIcon(from_png));
    png[18] = 0x7F;  // 2 million pixels wide
    EXPECT_EQ(create(png), nullptr);
}

#ifndef _WIN32

TEST(Images, AreMadeWholeOrNotAtAll) {
    const support::TempFile file(".bmp");
    support::WriteWhole(file.Path(), File(InfoHeader(2, 1, 32), Doubles({kRed, kBlue})));
    support::FailEach<support::FailingCall>(
        [&] {
            const HIMAGELIST list =
                ImageList_LoadImageW(nullptr, file.Path(), 1, 0, CLR_NONE, IMAGE_BITMAP, LR_LOADFROMFILE);
            const HICON icon = ImageList_GetIcon(list, 1, 0);
            ICONINFO info{};
            const bool known = GetIconInfo(icon, &info) != FALSE;
            const HBITMAP bitmaps[] = {info.hbmMask, info.hbmColor};
            for (const HBITMAP each : bitmaps) DeleteObject(each);
            if (icon) DestroyIcon(icon);
            if (list) ImageList_Destroy(list);
            return known;
        },
        [](bool known, bool failed) { EXPECT_NE(known, failed); });
}

#endif

}  // namespace
