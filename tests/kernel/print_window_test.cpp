// Printing into windows, through the built module.
#include "kernel/print_window.h"

#include <gtest/gtest.h>

#include <utility>

#include "kernel/print_tokens.h"
#include "kernel/runtime/lifecycle.h"
#include "platform/faults.h"
#include "platform/text.h"
#include "support/in_locale.h"

namespace {

constexpr int kLabel = 7;
constexpr int kEdit = 8;

class PrintWindow : public testing::Test {
  protected:
    void SetUp() override {
        dialog_ = CreateWindowExW(0, W("STATIC"), W("dialog"), WS_OVERLAPPED, 0, 0, 200, 200, nullptr, nullptr, nullptr,
                                  nullptr);
        if (!dialog_) GTEST_SKIP() << "no windows can be made here: error " << GetLastError();
        label_ = Child(W("STATIC"), 0, kLabel);
        edit_ = Child(W("EDIT"), ES_MULTILINE | ES_AUTOVSCROLL, kEdit);
    }
    void TearDown() override {
        if (dialog_) DestroyWindow(dialog_);
    }
    HWND Child(const WCHAR* name, DWORD style, int id) {
        return CreateWindowExW(0, name, W(""), style | WS_CHILD, 0, 0, 100, 20, dialog_,
                               reinterpret_cast<HMENU>(static_cast<LONG_PTR>(id)), nullptr, nullptr);
    }
    static std::string Text(HWND window) {
        WCHAR text[10000];
        GetWindowTextW(window, text, 10000);
        return platform::Utf8(text);
    }

    const support::InLocale locale_{0x0409};
    HWND dialog_ = nullptr;
    HWND label_ = nullptr;
    HWND edit_ = nullptr;
};

TEST_F(PrintWindow, SetsTexts) {
    EXPECT_EQ(KtSetWindowTextF(dialog_, W("%d of %s"), 7, W("ten")), 8);
    EXPECT_EQ(Text(dialog_), "7 of ten");
    EXPECT_EQ(KtSetWindowTextF(dialog_, W("plain")), 5);
    EXPECT_EQ(Text(dialog_), "plain");
    EXPECT_EQ(KtSetWindowTextNoF(dialog_, W("100% $d")), 7);
    EXPECT_EQ(Text(dialog_), "100% $d");
    EXPECT_EQ(KtSetDlgItemTextF(dialog_, kLabel, W("<%x>"), 255), 4);
    EXPECT_EQ(Text(label_), "<ff>");
    EXPECT_EQ(KtSetDlgItemTextNoF(dialog_, kLabel, W("%x")), 2);
    EXPECT_EQ(Text(label_), "%x");
    EXPECT_EQ(KtSetDlgItemTextNoF(dialog_, kLabel, nullptr), 6);
    EXPECT_EQ(Text(label_), "(null)");
    EXPECT_EQ(KtSetDlgItemTextF(dialog_, kLabel, nullptr), 0);
    EXPECT_EQ(KtSetDlgItemTextF(dialog_, 99, W("x")), 0);
    EXPECT_EQ(KtSetDlgItemTextNoFlashF(dialog_, kLabel, nullptr), 0);
    EXPECT_EQ(KtSetWindowTextF(nullptr, W("x")), 0);
    EXPECT_EQ(KtSetWindowTextF(dialog_, nullptr), 0);
    EXPECT_EQ(Text(label_), "(null)");
    // What is printed is cut; what is not printed is not.
    const WString long_text(3000, W('y'));
    EXPECT_EQ(KtSetDlgItemTextF(dialog_, kLabel, (W("$$") + long_text).c_str()), 2047);
    EXPECT_EQ(KtSetDlgItemTextNoF(dialog_, kLabel, long_text.c_str()), 1024);
    EXPECT_EQ(KtSetDlgItemTextF(dialog_, kLabel, long_text.c_str()), 3000);
    EXPECT_EQ(Text(label_).size(), 3000u);
}

TEST_F(PrintWindow, TakesItsFormatFromTheLanguage) {
    HKTLANG language = nullptr;
    ASSERT_EQ(KtLang_Open(&language, KtKernel_GetAppKernel(), 0, 0), S_OK);
    EXPECT_EQ(KtSetWindowTextId(language, dialog_, 1112), 3);
    EXPECT_EQ(Text(dialog_), "R3D");
    const int32_t length = KtSetDlgItemTextId(language, dialog_, kLabel, 1108, 48000, 24, W("Stereo"));
    KtLang_Close(language);
    if (!locale_.IsSet()) GTEST_SKIP() << locale_.Lack();
    EXPECT_EQ(static_cast<std::size_t>(length), Text(label_).size());
    EXPECT_EQ(Text(label_), "48,000 Hz, 24 Bit, Stereo");
}

int g_texts_set = 0;

LRESULT CALLBACK CountTexts(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == WM_SETTEXT) ++g_texts_set;
    return DefWindowProcW(window, message, wparam, lparam);
}

TEST_F(PrintWindow, LeavesAControlAloneThatHasTheText) {
    WNDCLASSEXW counting{};
    counting.cbSize = sizeof counting;
    counting.lpfnWndProc = CountTexts;
    counting.lpszClassName = W("PrintWindowCounting");
    ASSERT_NE(RegisterClassExW(&counting), 0);
    const HWND control = Child(W("printwindowcounting"), 0, 20);
    ASSERT_TRUE(control);
    g_texts_set = 0;
    for (int i = 0; i < 2; ++i) EXPECT_EQ(KtSetDlgItemTextNoFlashF(dialog_, 20, W("%d"), 5), 1);
    EXPECT_EQ(KtSetDlgItemTextNoFlashNoF(dialog_, 20, W("5")), 1);
    EXPECT_EQ(g_texts_set, 1);
    EXPECT_EQ(KtSetDlgItemTextNoFlashNoF(dialog_, 20, W("6")), 1);
    EXPECT_EQ(g_texts_set, 2);
    // Longer texts are not compared.
    const WString longest(8191, W('x'));
    for (const auto& [text, sets] : {std::pair{longest, 1}, {longest + W("x"), 2}}) {
        g_texts_set = 0;
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(KtSetDlgItemTextNoFlashF(dialog_, 20, text.c_str()), static_cast<int32_t>(text.size()));
        }
        EXPECT_EQ(g_texts_set, sets);
    }
    EXPECT_TRUE(DestroyWindow(control));
    EXPECT_TRUE(UnregisterClassW(counting.lpszClassName, nullptr));
}

TEST_F(PrintWindow, AppendsLines) {
    EXPECT_EQ(KtMEditPrintF(edit_, W("%s"), W("one")), 3u);
    EXPECT_EQ(KtMEditPrintF(edit_, W("~~%d"), 2), 1u);
    EXPECT_EQ(KtMEditPrintF(edit_, W("~!")), 1u);
    EXPECT_EQ(Text(edit_), "one\r\n2!");
    // Where the user put the caret.
    SendMessageW(edit_, EM_SETSEL, 0, 2);
    EXPECT_EQ(KtMEditPrintF(edit_, W("")), 0u);
    EXPECT_EQ(Text(edit_), "on\r\ne\r\n2!");
    EXPECT_EQ(KtMEditPrintF(edit_, nullptr), 0u);
    EXPECT_EQ(Text(edit_), "");
    EXPECT_EQ(KtMEditPrintF(edit_, WString(5000, W('x')).c_str()), 2047u);
    EXPECT_EQ(KtMEditPrintF(nullptr, W("x")), 1u);
}

// Only the native platform fails on demand.
TEST_F(PrintWindow, SaysWhenATextCannotBeSet) {
    platform::faults::FailAfter(0);
    const int32_t length = KtSetWindowTextF(dialog_, W("text"));
    const bool failed = platform::faults::Hit();
    platform::faults::Clear();
    EXPECT_EQ(length, failed ? 0 : 4);
    EXPECT_EQ(Text(dialog_), failed ? "dialog" : "text");
    DestroyWindow(std::exchange(dialog_, nullptr));
    EXPECT_EQ(KtSetWindowTextF(label_, W("text")), 0);
}

}  // namespace
