// What the platform's documentation says and not every platform under the module does: nothing but our own layer is
// held to it.
#include <gtest/gtest.h>

#include <clocale>

#include "platform/com.h"
#include "platform/locale.h"
#include "platform/process.h"
#include "platform/text.h"
#include "platform/window.h"
#include "support/child_roles.h"
#include "support/dialog_template.h"
#include "support/last_error.h"
#include "support/scoped_variable.h"
#include "support/temp_file.h"

namespace {

using support::ErrorOf;

TEST(DocumentedDetails, Utf8TakesNoFlagsAndNoSubstitute) {
    constexpr DWORD kInvalidFlags = 1004;
    constexpr DWORD kNoBestFit = 0x400;
    char bytes[4] = {};
    WCHAR wide[4] = {};
    BOOL substituted = FALSE;
    EXPECT_EQ(ErrorOf(MultiByteToWideChar(CP_UTF8, MB_PRECOMPOSED, "a", 1, wide, 4)), kInvalidFlags);
    EXPECT_EQ(ErrorOf(WideCharToMultiByte(CP_UTF8, kNoBestFit, W("a"), 1, bytes, 4, nullptr, nullptr)), kInvalidFlags);
    EXPECT_EQ(ErrorOf(WideCharToMultiByte(CP_UTF8, 0, W("a"), 1, bytes, 4, nullptr, &substituted)),
              ERROR_INVALID_PARAMETER);
}

std::string Printed(const WCHAR* format, auto... arguments) {
    WCHAR out[100];
    const int length = _snwprintf(out, 100, format, arguments...);
    return platform::Utf8(WStringView(out, static_cast<std::size_t>(length < 0 ? 0 : length)));
}

TEST(DocumentedDetails, PrecisionOfAnIntegerEndsItsZeros) { EXPECT_EQ(Printed(W("%06.3d"), 5), "   005"); }

// Beyond the documentation: nothing that the module prints may hang on what locale its host has set.
TEST(DocumentedDetails, PrintfDoesNotFollowTheLocale) {
    const std::string before = std::setlocale(LC_NUMERIC, nullptr);
    for (const char* name : {"de_DE.UTF-8", "de_DE", "fr_FR.UTF-8", "tr_TR.UTF-8"}) {
        if (std::setlocale(LC_NUMERIC, name)) break;
    }
    EXPECT_EQ(Printed(W("%.2f %g %e"), 1.5, 2.5, 3.5), "1.50 2.5 3.500000e+000");
    std::setlocale(LC_NUMERIC, before.c_str());
}

TEST(DocumentedDetails, NumbersFollowTheLocaleWithoutARecord) {
    for (const auto& [lcid, expected] : {std::pair<LCID, const char*>{0x0409, "-1,234,567.13"},
                                         {0x0407, "-1.234.567,13"},
                                         {0x0439, "-12,34,567.13"}}) {
        WCHAR text[40];
        ASSERT_GT(GetNumberFormatW(lcid, 0, W("-1234567.125"), nullptr, text, 40), 0);
        EXPECT_EQ(platform::Utf8(text), expected);
    }
    WCHAR text[40];
    ASSERT_GT(GetNumberFormatW(0x0409, 0, W("999.995"), nullptr, text, 40), 0);
    EXPECT_EQ(platform::Utf8(text), "1,000.00");
    WCHAR point[] = W(".");
    const NUMBERFMTW unknown_order{0, 1, 3, point, point, 5};
    EXPECT_EQ(GetNumberFormatW(0x0409, 0, W("5"), &unknown_order, text, 40), 0);
}

TEST(DocumentedDetails, NamesOfLocalesAreInTheUsersLanguage) {
    const support::ScopedVariable german(W("KT_LCID"), W("0x0407"));
    WCHAR name[40] = {};
    EXPECT_GT(GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SLANGUAGE, name, 40), 0);
    EXPECT_EQ(platform::Utf8(name), "Deutsch (Deutschland)");
}

TEST(DocumentedDetails, ErrorsOfWindows) {
    EXPECT_FALSE(DestroyWindow(nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_WINDOW_HANDLE});
    EXPECT_EQ(CreateWindowExW(0, W("NoSuchClass"), W(""), 0, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_CANNOT_FIND_WND_CLASS});
    RECT screen{};
    EXPECT_EQ(ErrorOf(DestroyWindow(GetDesktopWindow())), ERROR_ACCESS_DENIED);
    EXPECT_TRUE(GetWindowRect(GetDesktopWindow(), &screen));
    EXPECT_TRUE(screen.right == 1024 && screen.bottom == 768);
}

// Beyond the documentation: without input nobody could end it.
TEST(DocumentedDetails, ADialogThatNobodyCanAnswerDoesNotWait) {
    const std::string source = support::Plain(WS_POPUP, 10, 10).Word(0).Word(0).Word(0).Bytes();
    const auto* const dialog = reinterpret_cast<const DLGTEMPLATE*>(source.data());
    constexpr DWORD kNotImplemented = 120;
    EXPECT_EQ(DialogBoxIndirectParamW(nullptr, dialog, nullptr, nullptr, 0), -1);
    EXPECT_EQ(GetLastError(), kNotImplemented);
    const HWND gone = CreateDialogIndirectParamW(nullptr, dialog, nullptr, nullptr, 0);
    EXPECT_TRUE(DestroyWindow(gone));
    EXPECT_EQ(DialogBoxIndirectParamW(nullptr, dialog, gone, nullptr, 0), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_WINDOW_HANDLE});
}

TEST(DocumentedDetails, AProcessEndsOnce) {
    support::ChildProcess child("wait_for_ever");
    EXPECT_EQ(child.ReadLine(), "ready");
    EXPECT_TRUE(TerminateProcess(child.Process(), 123));
    EXPECT_EQ(child.Wait(), 123u);
    EXPECT_EQ(ErrorOf(TerminateProcess(child.Process(), 5)), ERROR_ACCESS_DENIED);
    EXPECT_EQ(child.Wait(), 123u);
}

TEST(DocumentedDetails, StreamsKeepToTheirMode) {
    const support::TempFile name;
    IStream* writer = nullptr;
    ASSERT_EQ(SHCreateStreamOnFileW(name.Path(), STGM_CREATE | STGM_WRITE, &writer), S_OK);
    IStream* reader = nullptr;
    ASSERT_EQ(SHCreateStreamOnFileW(name.Path(), STGM_READ, &reader), S_OK);
    char c = 0;
    ULONG count = 9;
    EXPECT_EQ(writer->Read(&c, 1, &count), STG_E_ACCESSDENIED);
    EXPECT_EQ(reader->SetSize({}), STG_E_ACCESSDENIED);
    LARGE_INTEGER back;
    back.QuadPart = -3;
    EXPECT_EQ(reader->Seek(back, STREAM_SEEK_CUR, nullptr), STG_E_INVALIDFUNCTION);
    EXPECT_EQ(reader->Seek({}, 3, nullptr), STG_E_INVALIDFUNCTION);
    reader->Release();
    writer->Release();
}

}  // namespace
