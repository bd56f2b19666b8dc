// Dialogs out of templates.
#include "platform/dialogs.h"

#include <gtest/gtest.h>

#include <cstring>

#include "platform/text.h"
#include "support/dialog_template.h"
#include "support/last_error.h"

namespace {

using support::ErrorOf;
using support::Template;

constexpr uint32_t kStyle = WS_POPUP | DS_SETFONT | DS_ABSALIGN;
constexpr uint32_t kItemStyle = WS_CHILD | WS_VISIBLE;
constexpr uint32_t kNumber = 0xFFFF;

// What the procedures of a dialog and of a control were told.
struct Told {
    int set_font = 0;
    int init = 0;
    LPARAM parameter = 0;
    HWND focus = nullptr;
    bool controls_at_init = false;
    std::string creation_data;
};
Told* g_told = nullptr;
constexpr UINT kAsk = 0x8001;

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_SETFONT) ++g_told->set_font;
    if (message == WM_INITDIALOG) {
        ++g_told->init;
        g_told->parameter = lparam;
        g_told->focus = reinterpret_cast<HWND>(wparam);
        g_told->controls_at_init = GetDlgItem(dialog, 4) != nullptr;
    }
    if (message == kAsk) SetWindowLongPtrW(dialog, DWLP_MSGRESULT, 77);
    return message == kAsk && wparam ? TRUE : FALSE;
}

LRESULT CALLBACK Control(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_CREATE) {
        const void* const data = reinterpret_cast<const CREATESTRUCTW*>(lparam)->lpCreateParams;
        uint16_t size = 0;
        if (data) std::memcpy(&size, data, 2);
        if (size > 0) g_told->creation_data.assign(static_cast<const char*>(data) + 2, 2);
    }
    return DefWindowProcW(window, message, wparam, lparam);
}

class Dialogs : public testing::Test {
  protected:
    void SetUp() override {
        g_told = &told_;
        WNDCLASSEXW of_controls{};
        of_controls.cbSize = sizeof of_controls;
        of_controls.lpfnWndProc = Control;
        of_controls.lpszClassName = W("DialogsControl");
        ASSERT_NE(RegisterClassExW(&of_controls), 0);
    }
    void TearDown() override {
        UnregisterClassW(W("DialogsControl"), nullptr);
        g_told = nullptr;
    }
    Told told_;
};

std::string TextOf(HWND window) {
    WCHAR text[40];
    GetWindowTextW(window, text, 40);
    return platform::Utf8(text);
}

// Four controls: by number and by name, with odd lengths, with a title that is a number, and with data.
Template WithControls(bool extended, uint32_t style, const WCHAR* last_class = W("DialogsControl")) {
    Template made = extended ? support::Extended(style, 101, 53, 4) : support::Plain(style, 101, 53, 4);
    made.Word(0).Word(0).Text(W("Title")).Word(9);
    if (extended) made.Word(400).Word(0x0100);
    made.Text(W("DejaVu Sans"));
    const auto item = [&](uint32_t more, uint32_t x, uint32_t id) -> Template& {
        made.Align();
        if (extended)
            return made.Double(0).Double(0).Double(kItemStyle | more).Word(x).Word(2).Word(33).Word(12).Double(id);
        return made.Double(kItemStyle | more).Double(0).Word(x).Word(2).Word(33).Word(12).Word(id);
    };
    item(0, 1, 1).Word(kNumber).Word(0x82).Text(W("&Label")).Word(0);
    item(WS_TABSTOP, 5, 2).Text(W("edit")).Text(W("odd")).Word(0);
    item(0, 9, 3).Word(kNumber).Word(0x80).Word(kNumber).Word(7).Word(0);
    item(0, 13, 4).Text(last_class).Word(0).Word(extended ? 2 : 4).Word(0x6261);
    return made;
}

// Left, top, width and height.
using Place = std::vector<LONG>;
Place PlaceIn(const RECT& outer, HWND window) {
    RECT place{};
    EXPECT_TRUE(GetWindowRect(window, &place));
    return {place.left - outer.left, place.top - outer.top, place.right - place.left, place.bottom - place.top};
}
Place InPixels(HWND dialog, RECT units) {
    EXPECT_TRUE(MapDialogRect(dialog, &units));
    return {units.left, units.top, units.right, units.bottom};
}

TEST_F(Dialogs, AreMadeOfTheirTemplates) {
    for (const bool extended : {false, true}) {
        told_ = {};
        const Template source = WithControls(extended, kStyle);
        const HWND dialog = CreateDialogIndirectParamW(nullptr, source.Get(), nullptr, Procedure, 5);
        ASSERT_TRUE(dialog) << GetLastError();
        EXPECT_EQ(TextOf(dialog), "Title");
        EXPECT_EQ(TextOf(GetDlgItem(dialog, 1)), "&Label");
        EXPECT_EQ(TextOf(GetDlgItem(dialog, 2)), "odd");
        EXPECT_EQ(told_.creation_data, "ab");
        EXPECT_EQ(told_.set_font, 1);
        EXPECT_EQ(told_.init, 1);
        EXPECT_EQ(told_.parameter, 5);
        EXPECT_EQ(told_.focus, GetDlgItem(dialog, 2));
        EXPECT_TRUE(told_.controls_at_init);
        const LRESULT font = SendMessageW(dialog, WM_GETFONT, 0, 0);
        EXPECT_NE(font, 0);
        RECT outline{};
        EXPECT_TRUE(GetWindowRect(dialog, &outline));
        EXPECT_EQ(InPixels(dialog, {9, 7, 101, 53}), PlaceIn({}, dialog));
        for (int id = 1; id <= 4; ++id) {
            const HWND control = GetDlgItem(dialog, id);
            EXPECT_EQ(GetParent(control), dialog);
            EXPECT_EQ(InPixels(dialog, {4 * id - 3, 2, 33, 12}), PlaceIn(outline, control)) << id;
            EXPECT_EQ(SendMessageW(control, WM_GETFONT, 0, 0), id < 4 ? font : 0) << id;
        }
        EXPECT_EQ(SendMessageW(dialog, kAsk, 1, 0), 77);
        EXPECT_EQ(SendMessageW(dialog, kAsk, 0, 0), 0);
        EXPECT_TRUE(DestroyWindow(dialog));
    }
}

INT_PTR CALLBACK EndAtOnce(HWND dialog, UINT message, WPARAM, LPARAM lparam) {
    EXPECT_TRUE(message != WM_INITDIALOG || EndDialog(dialog, lparam + 1));
    return FALSE;
}

TEST_F(Dialogs, GiveWhatTheyAreEndedWithAndNeedTheClassesOfTheirControls) {
    const Template source = WithControls(true, kStyle), unknown = WithControls(true, kStyle, W("NoSuchClass"));
    EXPECT_EQ(DialogBoxIndirectParamW(nullptr, source.Get(), nullptr, EndAtOnce, 41), 42);
    EXPECT_EQ(DialogBoxIndirectParamW(nullptr, source.Get(), GetDesktopWindow(), EndAtOnce, -1), 0);
    EXPECT_EQ(DialogBoxIndirectParamW(nullptr, unknown.Get(), nullptr, EndAtOnce, 41), -1);
    EXPECT_EQ(DialogBoxParamW(nullptr, W("NoSuchDialog"), nullptr, EndAtOnce, 41), -1);
    EXPECT_FALSE(CreateDialogIndirectParamW(nullptr, unknown.Get(), nullptr, Procedure, 0));
    EXPECT_EQ(told_.init, 0);
    const Template lenient = WithControls(true, kStyle | DS_NOFAILCREATE, W("NoSuchClass"));
    const HWND dialog = CreateDialogIndirectParamW(nullptr, lenient.Get(), nullptr, Procedure, 0);
    ASSERT_TRUE(dialog);
    EXPECT_TRUE(GetDlgItem(dialog, 3));
    EXPECT_FALSE(GetDlgItem(dialog, 4));
    EXPECT_TRUE(DestroyWindow(dialog));
    EXPECT_FALSE(EndDialog(dialog, 0));
    RECT any{};
    EXPECT_FALSE(MapDialogRect(dialog, &any));
    SetLastError(0);
    EXPECT_NE(ErrorOf(CreateDialogParamW(nullptr, W("NoSuchDialog"), nullptr, Procedure, 0)), 0u);
}

}  // namespace
