// Fonts of the controls of a dialog.
#include "kernel/dialog_font.h"

#include <gtest/gtest.h>

#include "kernel/ui_fonts.h"
#include "platform/text.h"

namespace {

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
    struct {
        const char* name;
        HFONT font;
        uint32_t code_page;
        bool has_kit;
        int32_t result;
        HFONT given;
    } const kRows[] = {
        {"western", own, 1252, true, 0, nullptr},       {"given", own, 932, true, 1, own},
        {"the kit's", nullptr, 932, true, 1, kit_font}, {"western again", own, 1252, true, 0, kit_font},
        {"no kit", nullptr, 936, false, 1, nullptr},
    };
    for (const auto& row : kRows) {
        clipfio::SetUiFonts(row.has_kit ? &kFonts : nullptr);
        EXPECT_EQ(clipfio::InitDialogFont(dialog, row.font, row.code_page), row.result) << row.name;
        for (const HWND control : controls) EXPECT_EQ(FontOf(control), row.given) << row.name;
    }
    clipfio::SetUiFonts(nullptr);
    DestroyWindow(dialog);
    EXPECT_EQ(clipfio::InitDialogFont(dialog, own, 932), 0);
    EXPECT_EQ(clipfio::InitDialogFont(nullptr, own, 932), 0);
    EXPECT_EQ(KtDlgInitFont(nullptr, own), 0);
    EXPECT_TRUE(DeleteObject(own));
    EXPECT_TRUE(DeleteObject(kit_font));
}

}  // namespace
