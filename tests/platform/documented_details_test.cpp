// What the platform's documentation says and not every platform under the module does: nothing but our own layer is
// held to it.
#include <gtest/gtest.h>

#include <clocale>

#include "platform/locale.h"
#include "platform/text.h"
#include "platform/window.h"
#include "support/dialog_template.h"
#include "support/last_error.h"
#include "support/scoped_variable.h"

namespace {

using support::ErrorOf;

std::string Printed(const WCHAR* format, auto... arguments) {
    WCHAR out[100];
    const int length = _snwprintf(out, 100, format, arguments...);
    return platform::Utf8(WStringView(out, static_cast<std::size_t>(length < 0 ? 0 : length)));
}

TEST(DocumentedDetails, PrecisionOfAnIntegerEndsItsZeros) { EXPECT_EQ(Printed(W("%06.3d"), 5), "   005"); }

TEST(DocumentedDetails, HalvesGoToTheEvenDigit) { EXPECT_EQ(Printed(W("%.1f %.1f"), 2.25, 2.35), "2.2 2.4"); }

// Beyond the documentation: nothing that the module prints may hang on what locale its host has set.
TEST(DocumentedDetails, PrintfDoesNotFollowTheLocale) {
    const std::string before = std::setlocale(LC_NUMERIC, nullptr);
    for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "tr_TR.UTF-8"}) std::setlocale(LC_NUMERIC, name);
    EXPECT_EQ(Printed(W("%.2f %g %e"), 1.5, 2.5, 3.5), "1.50 2.5 3.500000e+000");
    std::setlocale(LC_NUMERIC, before.c_str());
}

TEST(DocumentedDetails, NamesOfLocalesAreInTheUsersLanguage) {
    const support::ScopedVariable german(W("KT_LCID"), W("0x0407"));
    WCHAR language[40] = {}, country[40] = {};
    EXPECT_GT(GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SLANGUAGE, language, 40), 0);
    EXPECT_GT(GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SCOUNTRY, country, 40), 0);
    EXPECT_EQ(platform::Utf8(language) + ", " + platform::Utf8(country), "Deutsch (Deutschland), Deutschland");
    EXPECT_EQ(GetUserDefaultUILanguage(), 0x0407);
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

// Where Win32 says no more than that digits count as numbers and case for nothing.
TEST(NameOrder, NumbersOfAnyLengthSignsFirstLettersLast) {
    const WString longer = u"clip100000000000000000000";
    const WString kInOrder[] = {
        u"",    u"_",     u"2",     u"0010", u"clip", u"clip 9", u"clip 10", u"clip-1", u"clip99999999999999999999",
        longer, u"clipa", u"\u00E4"};
    for (size_t i = 0; i < std::size(kInOrder); ++i) {
        for (size_t j = 0; j < std::size(kInOrder); ++j) {
            const int expected = i < j ? -1 : i > j ? 1 : 0;
            EXPECT_EQ(StrCmpLogicalW(kInOrder[i].c_str(), kInOrder[j].c_str()), expected)
                << platform::Utf8(kInOrder[i]) << " and " << platform::Utf8(kInOrder[j]);
        }
    }
    EXPECT_EQ(StrCmpLogicalW(u"a007b", u"A7B"), 0);
    EXPECT_EQ(StrCmpLogicalW(u"\u00C4i", u"\u00E4I"), 0);
}

}  // namespace
