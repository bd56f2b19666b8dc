#include "platform/window.h"

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "platform/faults.h"
#include "platform/files.h"
#include "support/last_error.h"

namespace {

using support::ErrorOf;

HWND Make(const WCHAR* name, HWND parent = nullptr, int id = 0, DWORD style = 0) {
    return CreateWindowExW(0, name, W("text"), style | (parent ? WS_CHILD : 0), 0, 0, 10, 10, parent,
                           reinterpret_cast<HMENU>(static_cast<LONG_PTR>(id)), nullptr, nullptr);
}

std::vector<UINT>* g_messages = nullptr;
UINT g_refused = 0;
bool g_takes_parent = false;

LRESULT CALLBACK Record(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    const bool life =
        message == WM_NCCREATE || message == WM_CREATE || message == WM_DESTROY || message == WM_NCDESTROY;
    if (life && g_messages) g_messages->push_back(message);
    if (message == WM_DESTROY && g_takes_parent) DestroyWindow(GetParent(window));
    if (message == g_refused) return message == WM_CREATE ? -1 : 0;
    return DefWindowProcW(window, message, wparam, lparam);
}

class Windows : public testing::Test {
  protected:
    void SetUp() override {
        const HWND probe = Make(W("STATIC"));
        if (!probe) GTEST_SKIP() << "no windows can be made here: error " << GetLastError();
        DestroyWindow(probe);
        recording_.cbSize = sizeof recording_;
        recording_.lpfnWndProc = Record;
        recording_.lpszClassName = W("WindowsRecording");
        ASSERT_NE(RegisterClassExW(&recording_), 0);
        g_messages = &messages_;
    }
    void TearDown() override {
        g_messages = nullptr;
        UnregisterClassW(W("WINDOWSRECORDING"), nullptr);
    }

    WNDCLASSEXW recording_{};
    std::vector<UINT> messages_;
};

TEST_F(Windows, LiveAndDieWithTheirParents) {
    const HWND parent = Make(W("STATIC"));
    const HWND first = Make(W("WindowsRecording"), parent, 1);
    const HWND second = Make(W("static"), parent, 2);
    const HWND inner = Make(W("WindowsRecording"), first, 3);
    EXPECT_EQ(messages_, (std::vector<UINT>{WM_NCCREATE, WM_CREATE, WM_NCCREATE, WM_CREATE}));
    EXPECT_FALSE(CloseHandle(first));
    EXPECT_EQ(GetParent(inner), first);
    EXPECT_EQ(GetDlgItem(parent, 1), first);
    EXPECT_EQ(GetDlgItem(parent, 2), second);
    EXPECT_EQ(GetDlgItem(parent, 3), nullptr);
    EXPECT_EQ(SetWindowLongPtrW(first, GWLP_USERDATA, 5), 0);
    EXPECT_EQ(GetWindowLongPtrW(first, GWLP_USERDATA), 5);
    EXPECT_EQ(SetWindowLongPtrW(first, GWLP_ID, 9), 1);
    EXPECT_EQ(GetDlgItem(parent, 9), first);
    EXPECT_TRUE(DestroyWindow(second));
    EXPECT_EQ(GetDlgItem(parent, 2), nullptr);
    messages_.clear();
    EXPECT_TRUE(DestroyWindow(parent));
    EXPECT_EQ(messages_, (std::vector<UINT>{WM_DESTROY, WM_DESTROY, WM_NCDESTROY, WM_NCDESTROY}));
    for (const HWND gone : {parent, first, second, inner, HWND{}}) {
        WCHAR text[5] = {W('~'), 0};
        EXPECT_FALSE(IsWindow(gone));
        EXPECT_FALSE(SetWindowTextW(gone, W("x")));
        EXPECT_EQ(GetWindowTextW(gone, text, 5), 0);
        EXPECT_EQ(SendMessageW(gone, WM_GETTEXTLENGTH, 0, 0), 0);
        EXPECT_EQ(GetWindowLongPtrW(gone, GWLP_USERDATA), 0);
        EXPECT_EQ(GetDlgItem(gone, 1), nullptr);
        SetLastError(0);
        EXPECT_NE(ErrorOf(DestroyWindow(gone)), 0u);
    }
}

TEST_F(Windows, MayTakeTheirParentsAlong) {
    g_takes_parent = true;
    for (const bool child_first : {false, true}) {
        const HWND parent = Make(W("STATIC"));
        const HWND child = Make(W("WindowsRecording"), parent, 1);
        const HWND sibling = Make(W("STATIC"), parent, 2);
        EXPECT_TRUE(DestroyWindow(child_first ? child : parent));
        EXPECT_FALSE(IsWindow(parent) || IsWindow(child) || IsWindow(sibling)) << child_first;
    }
    g_takes_parent = false;
}

TEST_F(Windows, LieInTheirParents) {
    const auto make = [](DWORD style, int x, int y, HWND parent) {
        return CreateWindowExW(0, W("STATIC"), W(""), style, x, y, 30, 40, parent, nullptr, nullptr, nullptr);
    };
    const HWND popup = make(WS_POPUP, 100, 50, GetDesktopWindow());
    const HWND child = make(WS_CHILD | WS_BORDER, 10, 20, popup);
    const HWND owned = make(WS_POPUP, 7, 8, popup);
    const std::tuple<HWND, LONG, LONG> kRows[] = {
        {popup, 100, 50}, {child, 110, 70}, {make(WS_CHILD, -3, 2, child), 108, 73}, {owned, 7, 8}};
    for (const auto& [window, left, top] : kRows) {
        RECT at{};
        EXPECT_TRUE(GetWindowRect(window, &at));
        EXPECT_TRUE(at.left == left && at.top == top && at.right == left + 30 && at.bottom == top + 40) << left;
    }
    EXPECT_TRUE(DestroyWindow(popup));
    EXPECT_FALSE(IsWindow(owned) || DestroyWindow(GetDesktopWindow()));
}

TEST_F(Windows, MayBeRefused) {
    for (const UINT message : {WM_NCCREATE, WM_CREATE}) {
        g_refused = message;
        EXPECT_EQ(Make(W("WindowsRecording")), nullptr);
    }
    g_refused = 0;
    EXPECT_NE(ErrorOf(Make(W("NoSuchClass"))), 0u);
    EXPECT_EQ(ErrorOf(RegisterClassExW(&recording_)), DWORD{ERROR_CLASS_ALREADY_EXISTS});
    EXPECT_FALSE(UnregisterClassW(W("NoSuchClass"), nullptr));
    EXPECT_EQ(Make(W("STATIC"), nullptr, 0, WS_CHILD), nullptr);
    platform::faults::FailAfter(0);
    const HWND made = Make(W("STATIC"));
    EXPECT_EQ(made == nullptr, platform::faults::Hit());
    platform::faults::Clear();
    if (made) DestroyWindow(made);
}

}  // namespace
