// Dialogs out of a base module and its satellite.
#include "kernel/dialog_size.h"
#include "kernel/lang_resources.h"
#include "lang_fixture.h"
#include "platform/locale.h"
#include "platform/resources.h"

namespace {

const WCHAR* const kInBoth = MAKEINTRESOURCEW(30);
const WCHAR* const kInBase = MAKEINTRESOURCEW(31);
const WCHAR* const kNone = MAKEINTRESOURCEW(999);

// Ends at once, with a number and the first letter of the dialog's title.
INT_PTR CALLBACK End(HWND dialog, UINT message, WPARAM, LPARAM lparam) {
    if (message != WM_INITDIALOG) return FALSE;
    WCHAR title[20] = {};
    GetWindowTextW(dialog, title, 20);
    EndDialog(dialog, lparam + title[0]);
    return TRUE;
}

class LangDialogs : public WithBaseModule {
  protected:
    // The title of what is made; empty for nothing.
    static std::string Take(HWND dialog) {
        WCHAR title[20] = {};
        GetWindowTextW(dialog, title, 20);
        EXPECT_EQ(DestroyWindow(dialog) != FALSE, dialog != nullptr);
        return platform::Utf8(title);
    }
    std::string Made(const WCHAR* name) { return Take(KtCreateDialogParam(handle_, name, nullptr, nullptr, 0)); }
    const DLGTEMPLATE* Template(const WCHAR* name) {
        return static_cast<const DLGTEMPLATE*>(
            LockResource(KtLoadResource(handle_, KtFindResource(handle_, name, RT_DIALOG))));
    }
};

TEST_F(LangDialogs, AreTheSatellitesBeforeTheBases) {
    const struct {
        LCID lcid;
        const char* both;
        WCHAR first;
    } kRows[] = {{0, "base", 'b'}, {0x0411, "衛星", 0x885B}, {0x0407, "base", 'b'}, {0x0409, "base", 'b'}};
    for (const auto& row : kRows) {
        if (row.lcid) KtLang_UpdateKernelLCID(handle_, row.lcid, 0);
        EXPECT_EQ(Made(kInBoth), row.both) << std::hex << row.lcid;
        EXPECT_EQ(Made(kInBase), "only here");
        EXPECT_EQ(Made(kNone), "");
        EXPECT_EQ(Take(KtCreateDialogIndirectParam(handle_, Template(kInBoth), nullptr, nullptr, 0)), row.both);
        EXPECT_EQ(KtDialogBoxParam(handle_, kInBoth, nullptr, End, 1000), 1000 + row.first);
        EXPECT_EQ(KtDialogBoxParam(handle_, kInBase, nullptr, End, 1000), 1000 + 'o');
        EXPECT_EQ(KtDialogBoxParam(handle_, kNone, nullptr, End, 1000), -1);
        EXPECT_EQ(KtDialogBoxIndirectParam(handle_, Template(kInBoth), nullptr, End, 7), 7 + row.first);
    }
    EXPECT_EQ(KtCreateDialogParam(nullptr, kInBoth, nullptr, nullptr, 0), nullptr);
    EXPECT_EQ(KtCreateDialogIndirectParam(handle_, nullptr, nullptr, nullptr, 0), nullptr);
    EXPECT_EQ(KtDialogBoxParam(nullptr, kInBoth, nullptr, End, 0), -1);
    EXPECT_EQ(KtDialogBoxIndirectParam(handle_, nullptr, nullptr, End, 0), -1);
}

// An English user's dialogs are measured by their templates, all others as they are when they are made: with a frame.
TEST_F(LangDialogs, HaveTheSizeTheyWillHave) {
    const bool by_template = (GetUserDefaultUILanguage() & 0x3FF) == 9;
    for (const LCID lcid : {0x0409u, 0x0411u}) {
        ASSERT_EQ(KtLang_UpdateKernelLCID(handle_, lcid, 0), 1);
        SIZE inner{};
        ASSERT_EQ(KtGetDialogSizeIndirect(handle_, Template(kInBoth), &inner), 1);
        EXPECT_GT(inner.cx, inner.cy);
        RECT outline{0, 0, inner.cx, inner.cy};
        if (!by_template) AdjustWindowRectEx(&outline, WS_POPUP | WS_CAPTION, FALSE, 0);
        SIZE size{};
        EXPECT_EQ(KtGetDialogSize(handle_, kInBoth, &size), 1);
        EXPECT_EQ(size.cx, outline.right - outline.left) << std::hex << lcid;
        EXPECT_EQ(size.cy, outline.bottom - outline.top) << std::hex << lcid;
    }
    SIZE size{1, 1};
    EXPECT_EQ(KtGetDialogSize(handle_, kNone, &size), 0);
    EXPECT_EQ(size.cx, 0);
}

}  // namespace
