// The language context over the built module's own resources.
#include "kernel/lang.h"
#include "kernel/lang_resources.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <thread>
#include <utility>
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
    const std::pair<uint32_t, const char*> kRows[] = {{1108, "$ld Hz$, $d Bit$, %s"},
                                                      {112, "Linear"},
                                                      {131, "RED color"},
                                                      {1125, "Low"},
                                                      {0, ""},
                                                      {111, ""},
                                                      {1104, ""},
                                                      {0xFFFF, ""},
                                                      {0x10458, ""},
                                                      {0xFFFFFFFF, ""}};
    for (const auto& [id, text] : kRows) EXPECT_EQ(Text(id), text) << id;
    const WCHAR* const first = KtGetString(handle_, 1112);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([this] {
            for (uint32_t id = 1200; id-- > 100;) EXPECT_NE(KtGetString(handle_, id), nullptr);
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(KtGetString(handle_, 1112), first);
    EXPECT_EQ(WStringView(first), W("R3D"));
    EXPECT_EQ(WStringView(KtGetString(nullptr, 1112)), W(""));
}

// For a user of English it is that of the template, else that of the window with its frame.
TEST_F(Language, TellsTheSizeOfTheDialog) {
    const WCHAR* const classes[] = {W("KtKrn_Trackbar_Class"), W("CURVE_CONTROL_LUMA_CLASS"),
                                    W("CURVE_CONTROL_RED_CLASS"), W("CURVE_CONTROL_GREEN_CLASS"),
                                    W("CURVE_CONTROL_BLUE_CLASS")};
    WNDCLASSEXW of_controls{};
    of_controls.cbSize = sizeof of_controls;
    of_controls.style = CS_GLOBALCLASS;
    of_controls.lpfnWndProc = DefWindowProcW;
    for (const WCHAR* const name : classes) {
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
    for (const auto& [size, expected] : {std::pair{20u, "RED Raw (R3D)"}, {4u, "RED"}}) {
        EXPECT_EQ(KtLoadString(handle_, 1113, text, size), static_cast<int32_t>(std::strlen(expected)));
        EXPECT_EQ(platform::Utf8(text), expected);
    }
    for (const HKTLANG lang : {handle_, static_cast<HKTLANG>(nullptr)}) {
        text[0] = W('x');
        EXPECT_EQ(KtLoadString(lang, lang ? 9999u : 1113u, text, 20), 0);
        EXPECT_EQ(text[0], 0);
    }
    EXPECT_EQ(KtLoadString(handle_, 1113, text, 0), 0);
    EXPECT_EQ(KtLoadString(handle_, 1113, nullptr, 20), 0);
}

TEST_F(Language, ChangesForTheHandleAndTheKernel) {
    EXPECT_EQ(KtLang_GetLCID(handle_), 0u);
    for (const LCID lcid : {1041u, 0x0809u, 0xFFFFFFFFu, 0u}) {
        EXPECT_EQ(KtLang_UpdateKernelLCID(handle_, lcid, 0), 1);
        EXPECT_EQ(KtLang_GetLCID(handle_), lcid ? lcid : 1033u);
        EXPECT_EQ(Text(1112), "R3D");  // the base module serves where a language has nothing
    }
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
