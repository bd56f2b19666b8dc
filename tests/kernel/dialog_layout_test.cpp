// Sizes of dialogs, read out of their templates, and the fonts of their controls.
#include "kernel/dialog_size.h"

#include <gtest/gtest.h>

#include <limits>
#include <tuple>

#include "kernel/dialog_font.h"
#include "kernel/ui_fonts.h"
#include "platform/text.h"
#include "support/dialog_template.h"

namespace {

constexpr WCHAR kNoFace[] = W("");

using support::Extended;
using support::Plain;
using support::Template;

class DialogSize : public testing::Test {
  protected:
    void SetUp() override {
        static constexpr clipfio::UiFonts kFonts{nullptr, [](int number, SIZE& units) noexcept {
                                                     units = {6, 13};
                                                     return number == clipfio::kStandardUiFont;
                                                 }};
        clipfio::SetUiFonts(&kFonts);
    }
    void TearDown() override { clipfio::SetUiFonts(nullptr); }
};

// What the font of a template is laid out in; the standard font's units where it cannot be measured.
SIZE UnitsOf(int32_t points, int32_t weight, int32_t italic) {
    SIZE units{};
    return points && KtGetDialogUnitsForFont(nullptr, W("Sans"), points, weight, italic, 1, &units) ? units
                                                                                                    : SIZE{6, 13};
}

TEST_F(DialogSize, IsThatOfTheTemplateInTheUnitsOfTheFont) {
    struct {
        const char* name;
        Template dialog;
        int width, height;  // in the template
        int32_t points = 0, weight = 400, italic = 0;
    } const kRows[] = {
        {"plain", Plain(0x80000000, 100, 80), 100, 80},
        {"a style of nothing", Plain(0, 101, 81), 101, 81},
        {"negative", Plain(0, 0xFFFC, 0xFFF8), -4, -8},
        {"with a font", Plain(0x40, 4, 8).Word(0).Word(0).Text(W("title")).Word(9).Text(W("Sans")), 4, 8, 9},
        {"with numbers", Plain(0x40, 4, 8).Word(0xFFFF).Word(7).Word(0xFFFF).Word(9).Word(0).Word(8).Text(W("Sans")), 4,
         8, 8},
        {"with names", Plain(0x40, 4, 8).Text(W("menu")).Text(W("class")).Word(0).Word(9).Text(W("Sans")), 4, 8, 9},
        {"no face", Plain(0x40, 4, 8).Word(0).Word(0).Word(0).Word(9).Text(kNoFace), 4, 8},
        {"extended", Extended(0, 8, 16), 8, 16},
        {"extended font", Extended(0x48, 8, 16).Word(0).Word(0).Word(0).Word(14).Word(700).Word(0x0101).Text(W("Sans")),
         8, 16, 14, 700, 1},
    };
    for (const auto& row : kRows) {
        const std::string& bytes = row.dialog.Bytes();
        const SIZE units = UnitsOf(row.points, row.weight, row.italic);
        SIZE size{};
        EXPECT_TRUE(clipfio::DialogSizeOfTemplate(bytes.data(), bytes.size(), size)) << row.name;
        EXPECT_EQ(size.cx, MulDiv(row.width, units.cx, 4)) << row.name;
        EXPECT_EQ(size.cy, MulDiv(row.height, units.cy, 8)) << row.name;
        SIZE again{};
        EXPECT_EQ(KtGetDialogSizeIndirect(nullptr, reinterpret_cast<const DLGTEMPLATE*>(bytes.data()), &again), 1);
        EXPECT_EQ(again.cx, size.cx) << row.name;
        // Cut anywhere it is either refused, when the size itself is gone, or measured without its font.
        for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
            const std::string part = bytes.substr(0, cut);
            const bool has_size = cut >= (part.size() > 3 && part[2] == '\xFF' ? 26u : 18u);
            EXPECT_EQ(clipfio::DialogSizeOfTemplate(part.data(), part.size(), size), has_size) << row.name << cut;
        }
    }
    SIZE size{1, 1};
    for (SIZE* const out : {&size, static_cast<SIZE*>(nullptr)}) {
        EXPECT_EQ(KtGetDialogSizeIndirect(nullptr, nullptr, out), 0);
        EXPECT_EQ(KtGetDialogSize(nullptr, W("x"), out), 0);
    }
    EXPECT_EQ(size.cx, 0);
    clipfio::SetUiFonts(nullptr);
    const std::string plain = Plain(0, 4, 8).Bytes();
    EXPECT_FALSE(clipfio::DialogSizeOfTemplate(plain.data(), plain.size(), size));
}

// The letters of a bold or larger font take more room, and a size of the wrong sign is one of the whole cell.
TEST_F(DialogSize, HasUnitsThatGrowWithTheFont) {
    const auto units = [](int32_t points, int32_t weight) {
        SIZE found{};
        EXPECT_EQ(KtGetDialogUnitsForFont(nullptr, W("DejaVu Sans"), points, weight, 0, 1, &found), 1) << points;
        return found;
    };
    // 24 points are 32 pixels at 96 dots per inch: a letter is about half as wide, a line somewhat higher.
    const SIZE large = units(24, 400);
    EXPECT_NEAR(static_cast<double>(large.cx), 19, 7);
    EXPECT_NEAR(static_cast<double>(large.cy), 40, 8);
    EXPECT_NEAR(static_cast<double>(units(8, 400).cx) * 3, static_cast<double>(large.cx), 3);
    EXPECT_NEAR(static_cast<double>(units(-24, 400).cy), 32, 2);
    EXPECT_GT(units(24, 700).cx, large.cx);
}

HWND Make(HWND parent, const WCHAR* name) {
    return CreateWindowExW(0, name, W(""), parent ? WS_CHILD : WS_OVERLAPPED, 0, 0, 100, 20, parent, nullptr, nullptr,
                           nullptr);
}
HFONT MakeFont() { return CreateFontW(-12, 0, 0, 0, 400, 0, 0, 0, 1, 0, 0, 0, 0, W("Sans")); }
HFONT FontOf(HWND window) { return reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0)); }

TEST(DialogFont, GoesToEveryControlWhereTheCodePageAsksForIt) {
    const HWND dialog = Make(nullptr, W("STATIC"));
    if (!dialog) GTEST_SKIP() << "no windows can be made here: error " << GetLastError();
    const HWND controls[] = {Make(dialog, W("STATIC")), Make(dialog, W("EDIT")), Make(dialog, W("STATIC"))};
    static HFONT kit_font = nullptr;
    kit_font = MakeFont();
    const HFONT own = MakeFont();
    ASSERT_TRUE(kit_font && own);
    static constexpr clipfio::UiFonts kFonts{
        [](int number) noexcept { return number == clipfio::kDialogUiFont ? kit_font : nullptr; }, nullptr};
    const std::tuple<const char*, HFONT, uint32_t, bool, int32_t, HFONT> kRows[] = {
        {"western", own, 1252, true, 0, nullptr},       {"given", own, 932, true, 1, own},
        {"the kit's", nullptr, 932, true, 1, kit_font}, {"western again", own, 1252, true, 0, kit_font},
        {"no kit", nullptr, 936, false, 1, nullptr},
    };
    for (const auto& [name, font, code_page, has_kit, result, given] : kRows) {
        clipfio::SetUiFonts(has_kit ? &kFonts : nullptr);
        EXPECT_EQ(clipfio::InitDialogFont(dialog, font, code_page), result) << name;
        for (const HWND control : controls) EXPECT_EQ(FontOf(control), given) << name;
    }
    clipfio::SetUiFonts(nullptr);
    DestroyWindow(dialog);
    EXPECT_EQ(clipfio::InitDialogFont(dialog, own, 932), 0);
    EXPECT_EQ(clipfio::InitDialogFont(nullptr, own, 932), 0);
    EXPECT_EQ(KtDlgInitFont(nullptr, own), 0);
    EXPECT_TRUE(DeleteObject(own));
    EXPECT_TRUE(DeleteObject(kit_font));
}

TEST(MulDivision, RoundsToTheNearest) {
    constexpr int kMost = std::numeric_limits<int>::max();
    const std::tuple<int, int, int, int> kRows[] = {{7, 3, 4, 5},      {-7, 3, 4, -5},
                                                    {7, 1, 2, 4},      {-7, 1, 2, -4},
                                                    {1, 1, 0, -1},     {kMost, kMost, kMost, kMost},
                                                    {kMost, 2, 1, -1}, {kMost, -2, 1, -1},
                                                    {9, 96, -72, -12}, {kMost, kMost, -kMost, -kMost}};
    for (const auto& [a, b, c, result] : kRows) EXPECT_EQ(MulDiv(a, b, c), result) << a << ' ' << b << ' ' << c;
}

}  // namespace
