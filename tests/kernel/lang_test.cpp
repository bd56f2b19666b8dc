// The language context over the built module's own resources.
#include "kernel/lang.h"
#include "kernel/lang_resources.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>
#include <vector>

#include "kernel/dialog_size.h"
#include "kernel/files.h"
#include "kernel/runtime/lifecycle.h"
#include "platform/locale.h"
#include "platform/resources.h"
#include "platform/text.h"

namespace {

class Language : public testing::Test {
  protected:
    void SetUp() override { ASSERT_EQ(KtLang_Open(&handle_, KtKernel_GetAppKernel(), 0, 100), S_OK); }
    void TearDown() override {
        EXPECT_EQ(KtLang_UpdateKernelLCID(handle_, 1033, 0), 1);
        EXPECT_EQ(KtLang_Close(handle_), S_OK);
    }
    std::string Text(uint32_t id) const { return platform::Utf8(KtGetString(handle_, id)); }

    HKTLANG handle_ = nullptr;
};

TEST_F(Language, GivesTextsThatStay) {
    EXPECT_EQ(Text(1112), "R3D");
    EXPECT_EQ(Text(1108), "$ld Hz$, $d Bit$, %s");
    EXPECT_EQ(Text(112), "Linear");
    EXPECT_EQ(Text(131), "RED color");
    for (const uint32_t missing : {0u, 111u, 1104u, 1109u + 16, 0xFFFFu, 0x10458u, 0xFFFFFFFFu}) {
        const WCHAR* const text = KtGetString(handle_, missing);
        ASSERT_NE(text, nullptr);
        EXPECT_EQ(Text(missing), missing == 1125 ? "Low" : "") << missing;
    }
    const WCHAR* const first = KtGetString(handle_, 1112);
    for (uint32_t id = 100; id < 1200; ++id) static_cast<void>(KtGetString(handle_, id));
    EXPECT_EQ(KtGetString(handle_, 1112), first);
    EXPECT_EQ(WStringView(first), W("R3D"));
    EXPECT_EQ(WStringView(KtGetString(nullptr, 1112)), W(""));
}

// For a user of English it is that of the template, else that of the window with its frame.
TEST_F(Language, TellsTheSizeOfTheDialog) {
    const WCHAR* const classes[] = {W("KtKrn_Trackbar_Class"), W("CURVE_CONTROL_LUMA_CLASS"),
                                    W("CURVE_CONTROL_RED_CLASS"), W("CURVE_CONTROL_GREEN_CLASS"),
                                    W("CURVE_CONTROL_BLUE_CLASS")};
    for (const WCHAR* const name : classes) {
        WNDCLASSEXW of_controls{};
        of_controls.cbSize = sizeof of_controls;
        of_controls.style = CS_GLOBALCLASS;
        of_controls.lpfnWndProc = DefWindowProcW;
        of_controls.lpszClassName = name;
        RegisterClassExW(&of_controls);  // some may be there
    }
    constexpr WORD kDialog = 111;
    const void* const source =
        LockResource(KtLoadResourceCustom(handle_, MAKEINTRESOURCEW(kDialog), RT_DIALOG, nullptr));
    SIZE inner{};
    ASSERT_EQ(KtGetDialogSizeIndirect(handle_, static_cast<const DLGTEMPLATE*>(source), &inner), 1);
    EXPECT_GT(inner.cx, 597);
    SIZE size{};
    ASSERT_EQ(KtGetDialogSize(handle_, MAKEINTRESOURCEW(kDialog), &size), 1) << GetLastError();
    RECT outline{0, 0, inner.cx, inner.cy};
    if ((GetUserDefaultUILanguage() & 0x3FF) != 9) {
        AdjustWindowRectEx(&outline, WS_POPUP | WS_CAPTION, FALSE, WS_EX_DLGMODALFRAME);
        EXPECT_GT(size.cy, inner.cy);
    }
    EXPECT_EQ(size.cx, outline.right - outline.left);
    EXPECT_EQ(size.cy, outline.bottom - outline.top);
    for (const WCHAR* const name : classes) UnregisterClassW(name, nullptr);
}

TEST_F(Language, CopiesTextsCutToTheSize) {
    WCHAR text[20];
    EXPECT_EQ(KtLoadString(handle_, 1113, text, 20), 13);
    EXPECT_EQ(WStringView(text), W("RED Raw (R3D)"));
    EXPECT_EQ(KtLoadString(handle_, 1113, text, 4), 3);
    EXPECT_EQ(WStringView(text), W("RED"));
    EXPECT_EQ(KtLoadString(handle_, 9999, text, 20), 0);
    EXPECT_EQ(text[0], 0);
    text[0] = W('x');
    EXPECT_EQ(KtLoadString(nullptr, 1113, text, 20), 0);
    EXPECT_EQ(text[0], 0);
    EXPECT_EQ(KtLoadString(handle_, 1113, text, 0), 0);
    EXPECT_EQ(KtLoadString(handle_, 1113, nullptr, 20), 0);
}

TEST_F(Language, ChangesForTheHandleAndTheKernel) {
    EXPECT_EQ(KtLang_GetLCID(handle_), 0u);
    EXPECT_EQ(Text(1112), "R3D");
    for (const LCID lcid : {1041u, 1033u, 0x0809u, 0xFFFFFFFFu}) {
        EXPECT_EQ(KtLang_UpdateKernelLCID(handle_, lcid, 0), 1);
        EXPECT_EQ(KtLang_GetLCID(handle_), lcid);
        EXPECT_EQ(Text(1112), "R3D");  // the base module serves where a language has nothing
    }
    EXPECT_EQ(KtLang_UpdateKernelLCID(handle_, 0, 0), 1);
    EXPECT_EQ(KtLang_GetLCID(handle_), 1033u);
    EXPECT_EQ(KtLang_UpdateKernelLCID(nullptr, 1041, 0), 0);
    EXPECT_EQ(KtLang_GetLCID(nullptr), 0u);
}

TEST_F(Language, OpensOnlyWhereNothingIsOpen) {
    const HKTLANG before = handle_;
    EXPECT_EQ(KtLang_Open(&handle_, nullptr, 0, 0), 0x0004E001);
    EXPECT_EQ(handle_, before);
    EXPECT_EQ(KtLang_Open(nullptr, nullptr, 0, 0), E_POINTER);
    HKTLANG other = nullptr;
    ASSERT_EQ(KtLang_Open(&other, nullptr, 1041, 0), S_OK);
    EXPECT_EQ(KtLang_GetLCID(other), 1041u);
    EXPECT_EQ(KtLang_Close(other), S_OK);
    EXPECT_EQ(KtLang_Close(nullptr), S_OK);
}

TEST_F(Language, FindsResources) {
    uint32_t size = 9;
    EXPECT_EQ(KtLoadResourceCustom(handle_, MAKEINTRESOURCEW(9999), RT_BITMAP, &size), nullptr);
    EXPECT_EQ(size, 0u);
    const HGLOBAL block = KtLoadResourceCustom(handle_, MAKEINTRESOURCEW(1112 / 16 + 1), RT_STRING, &size);
    ASSERT_NE(block, nullptr);
    EXPECT_GT(size, 32u);  // sixteen lengths at the least
    EXPECT_NE(LockResource(block), nullptr);
    EXPECT_NE(KtLoadResourceCustom(handle_, MAKEINTRESOURCEW(1112 / 16 + 1), RT_STRING, nullptr), nullptr);
    EXPECT_EQ(KtLoadResourceCustom(nullptr, MAKEINTRESOURCEW(1112 / 16 + 1), RT_STRING, &size), nullptr);
}

TEST_F(Language, ServesManyThreads) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([this] {
            for (uint32_t id = 1200; id-- > 100;) EXPECT_NE(KtGetString(handle_, id), nullptr);
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(Text(1112), "R3D");
}

TEST(TemporaryText, ComesRoundTheRing) {
    HKTLANG lang = nullptr;
    ASSERT_EQ(KtLang_Open(&lang, KtKernel_GetAppKernel(), 0, 1), S_OK);  // the least ring, of 2048
    WCHAR* const first = KtGetTempStringBuffer(lang, 1024);
    ASSERT_NE(first, nullptr);
    std::fill_n(first, 1025, W('x'));
    EXPECT_EQ(KtGetTempStringBuffer(lang, 7), first);  // 1026 is past 2048 less the headroom
    WCHAR* const next = KtGetTempStringBuffer(lang, 0);
    EXPECT_EQ(next, first + 8);  // 7 and 2, made even
    EXPECT_EQ(*next, 0);
    EXPECT_EQ(KtGetTempStringBuffer(lang, 1012), first + 10);
    WCHAR* const last = KtGetTempStringBuffer(lang, 1024);
    EXPECT_EQ(last, first + 1024);  // the last place where a text may begin
    std::fill_n(last, 1025, W('x'));
    EXPECT_EQ(KtGetTempStringBuffer(lang, 1), first);
    EXPECT_EQ(KtGetTempStringBuffer(lang, 1025), nullptr);
    EXPECT_EQ(KtGetTempStringBuffer(nullptr, 1), nullptr);
    KtLang_Close(lang);
}

TEST(ModuleFileName, IsCutAndTerminated) {
    WCHAR name[400];
    const int32_t length = KtGetModuleFileName(KtKernel_GetAppKernel(), name, 400);
    ASSERT_GT(length, 8);
    EXPECT_EQ(WStringView(name).size(), static_cast<std::size_t>(length));
    EXPECT_NE(WStringView(name).find(W("clipfio")), WStringView::npos);
    WCHAR cut[8];
    EXPECT_EQ(KtGetModuleFileName(KtKernel_GetAppKernel(), cut, 8), 7);
    EXPECT_EQ(WStringView(cut), WStringView(name).substr(0, 7));
    EXPECT_EQ(KtGetModuleFileName(KtKernel_GetAppKernel(), cut, 0), 0);
    EXPECT_EQ(KtGetModuleFileName(KtKernel_GetAppKernel(), nullptr, 8), 0);
    EXPECT_EQ(KtGetModuleFileName(reinterpret_cast<HMODULE>(uintptr_t{0x1234}), cut, 8), 0);
    EXPECT_EQ(cut[0], 0);
}

}  // namespace
