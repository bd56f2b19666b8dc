#include "platform/window.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/faults.h"
#include "platform/files.h"
#include "platform/text.h"
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
    const HWND desktop = GetDesktopWindow();
    ASSERT_TRUE(IsWindow(desktop));
    EXPECT_FALSE(DestroyWindow(desktop));
    const HWND popup = make(WS_POPUP, 100, 50, desktop);
    const HWND child = make(WS_CHILD | WS_BORDER, 10, 20, popup);
    const HWND inner = make(WS_CHILD, -3, 2, child);
    const HWND owned = make(WS_POPUP, 7, 8, popup);
    struct {
        HWND window;
        LONG left, top;
    } const kRows[] = {{popup, 100, 50}, {child, 110, 70}, {inner, 108, 73}, {owned, 7, 8}};
    for (const auto& row : kRows) {
        RECT place{};
        EXPECT_TRUE(GetWindowRect(row.window, &place));
        EXPECT_EQ(place.left, row.left);
        EXPECT_EQ(place.top, row.top);
        EXPECT_EQ(place.right, row.left + 30);
        EXPECT_EQ(place.bottom, row.top + 40);
    }
    RECT screen{};
    EXPECT_TRUE(GetWindowRect(desktop, &screen));
    EXPECT_TRUE(screen.left == 0 && screen.top == 0 && screen.right > 0 && screen.bottom > 0);
    EXPECT_TRUE(DestroyWindow(popup));
    for (const HWND gone : {popup, owned, HWND{}}) {
        SetLastError(0);
        EXPECT_EQ(ErrorOf(GetWindowRect(gone, &screen)), DWORD{ERROR_INVALID_WINDOW_HANDLE});
    }
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

TEST_F(Windows, AreNoOtherHandles) {
    const HWND window = Make(W("STATIC"));
    SetLastError(0);
    EXPECT_EQ(ErrorOf(CloseHandle(window)), ERROR_INVALID_HANDLE);
    EXPECT_TRUE(IsWindow(window));
    EXPECT_TRUE(DestroyWindow(window));
}

TEST_F(Windows, EditTheirText) {
    const HWND edit = Make(W("EDIT"), nullptr, 0, ES_MULTILINE);
    const auto insert = [edit](WPARAM start, LPARAM end, const WCHAR* text) {
        SendMessageW(edit, EM_SETSEL, start, end);
        SendMessageW(edit, EM_REPLACESEL, 0, reinterpret_cast<LPARAM>(text));
        WCHAR now[40];
        GetWindowTextW(edit, now, 40);
        return platform::Utf8(now);
    };
    EXPECT_EQ(insert(0, 0, W("a ")), "a text");
    EXPECT_EQ(insert(2, 6, W("word")), "a word");
    EXPECT_EQ(insert(0, -1, W("new")), "new");
    EXPECT_EQ(insert(3, 3, W("er")), "newer");
    EXPECT_EQ(insert(1, 3, W("")), "ner");
    EXPECT_EQ(insert(100, 200, W("!")), "ner!");
    SendMessageW(edit, EM_SETSEL, 1, 3);
    DWORD start = 0;
    DWORD end = 0;
    EXPECT_EQ(SendMessageW(edit, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end)), 0x30001);
    EXPECT_EQ(start, 1u);
    EXPECT_EQ(end, 3u);
    WCHAR cut[3];
    EXPECT_EQ(GetWindowTextW(edit, cut, 3), 2);
    EXPECT_EQ(WStringView(cut), W("ne"));
    EXPECT_EQ(GetWindowTextLengthW(edit), 4);
    EXPECT_TRUE(SetWindowTextW(edit, nullptr));
    EXPECT_EQ(GetWindowTextLengthW(edit), 0);
    DestroyWindow(edit);
}

}  // namespace
