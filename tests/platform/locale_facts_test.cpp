#include <gtest/gtest.h>

#include <tuple>
#include <utility>

#include "platform/locale.h"
#include "platform/text.h"
#include "support/scoped_variable.h"

namespace {

// The user's locale natively. On Windows it cannot be set for a test, and the locale is named by its number.
class Asked : public support::ScopedVariable {
  public:
    explicit Asked(LCID lcid)
        : ScopedVariable(W("KT_LCID"), platform::Wide(std::to_string(lcid)).c_str()),
          lcid_(GetUserDefaultLCID() == lcid ? LCID{LOCALE_USER_DEFAULT} : lcid) {}
    [[nodiscard]] std::string Fact(DWORD type) const {
        WCHAR text[100];
        const int size = GetLocaleInfoW(lcid_, type, text, 100);
        EXPECT_EQ(GetLocaleInfoW(lcid_, type, nullptr, 0), size);
        return size > 0 ? platform::Utf8({text, static_cast<std::size_t>(size) - 1}) : "(none)";
    }

  private:
    LCID lcid_;
};

TEST(Locale, TellsItsFacts) {
    const struct {
        LCID lcid;
        const char *number, *letters, *language, *country_number, *country, *decimal, *thousands, *grouping, *list,
            *measure;
    } rows[] = {
        {0x0409, "0409", "ENU", "English", "1", "United States", ".", ",", "3;0", ",", "1"},
        {0x0407, "0407", "DEU", "German", "49", "Germany", ",", ".", "3;0", ";", "0"},
        {0x040C, "040c", "FRA", "French", "33", "France", ",", "\u00A0", "3;0", ";", "0"},
        {0x0411, "0411", "JPN", "Japanese", "81", "Japan", ".", ",", "3;0", ",", "0"},
        {0x0416, "0416", "PTB", "Portuguese", "55", "Brazil", ",", ".", "3;0", ";", "0"},
        {0x0439, "0439", "HIN", "Hindi", "91", "India", ".", ",", "3;2;0", ",", "0"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.number);
        const Asked locale(row.lcid);
        const std::pair<DWORD, const char*> kFacts[] = {
            {LOCALE_STIME, ":"},         {LOCALE_ILANGUAGE, row.number},    {LOCALE_STHOUSAND, row.thousands},
            {LOCALE_ILZERO, "1"},        {LOCALE_SDECIMAL, row.decimal},    {LOCALE_SENGLANGUAGE, row.language},
            {LOCALE_IDIGITS, "2"},       {LOCALE_IMEASURE, row.measure},    {LOCALE_SABBREVLANGNAME, row.letters},
            {LOCALE_SLIST, row.list},    {LOCALE_SGROUPING, row.grouping},  {LOCALE_ICOUNTRY, row.country_number},
            {LOCALE_SNEGATIVESIGN, "-"}, {LOCALE_SENGCOUNTRY, row.country},
        };
        for (const auto& [fact, expected] : kFacts) EXPECT_EQ(locale.Fact(fact), expected) << fact;
    }
}

TEST(Locale, TellsSingleFactsAsWin32Does) {
    const std::tuple<LCID, DWORD, const char*> rows[] = {
        {0x0401, LOCALE_STHOUSAND, ","},      {0x0016, LOCALE_SENGCOUNTRY, "Brazil"},
        {0x0401, LOCALE_SDECIMAL, "."},       {0x0804, LOCALE_SENGLANGUAGE, "Chinese (Simplified)"},
        {0x0401, LOCALE_SNEGATIVESIGN, "-"},  {0x0C0A, LOCALE_SABBREVLANGNAME, "ESN"},
        {0x041D, LOCALE_SNEGATIVESIGN, "-"},  {0x040A, LOCALE_SABBREVLANGNAME, "ESP"},
        {0x100C, LOCALE_STHOUSAND, "\u00A0"}, {0x0C04, LOCALE_SABBREVLANGNAME, "ZHH"},
        {0x0807, LOCALE_SLIST, ";"},          {0x0412, LOCALE_SENGCOUNTRY, "Korea"},
        {0x040B, LOCALE_STIME, "."},          {LOCALE_INVARIANT, LOCALE_SGROUPING, "3;0"},
        {0x0009, LOCALE_ILANGUAGE, "0409"},   {LOCALE_INVARIANT, LOCALE_SABBREVLANGNAME, "IVL"},
        {0x0809, LOCALE_IMEASURE, "0"},       {LOCALE_INVARIANT, LOCALE_SENGCOUNTRY, "Invariant Country"},
    };
    for (const auto& [lcid, type, text] : rows) {
        EXPECT_EQ(Asked(lcid).Fact(type), text) << std::hex << lcid << ' ' << type;
    }
    WCHAR text[3] = {};
    EXPECT_EQ(GetLocaleInfoW(0x0407, LOCALE_SENGLANGUAGE, text, 3), 0);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    for (const auto& [lcid, type] : {std::pair<LCID, DWORD>{0x3FF, LOCALE_SLIST}, {0x0409, 0x7777}}) {
        SetLastError(0);
        EXPECT_EQ(GetLocaleInfoW(lcid, type, text, 3), 0);
        EXPECT_NE(GetLastError(), 0u);
    }
}

std::string Formatted(const WCHAR* value, NUMBERFMTW format, int size = 100) {
    WCHAR text[100] = {};
    const int written = GetNumberFormatW(0x0409, 0, value, &format, text, size);
    return written > 0 ? platform::Utf8({text, static_cast<std::size_t>(written) - 1}) : "error";
}

TEST(NumberFormat, FollowsItsRecord) {
    WCHAR point[] = W("<>");
    WCHAR group[] = W("'");
    const std::tuple<const WCHAR*, UINT, UINT, UINT, UINT, const char*> rows[] = {
        {W("0.5"), 2, 0, 3, 1, "<>50"},           {W("1234567.125"), 2, 1, 3, 1, "1'234'567<>13"},
        {W(".5"), 2, 1, 3, 1, "0<>50"},           {W("1234567.125"), 0, 1, 3, 1, "1'234'567"},
        {W("5."), 2, 1, 3, 1, "5<>00"},           {W("-0005"), 0, 1, 3, 1, "-5"},
        {W("-1234.5"), 2, 1, 3, 1, "-1'234<>50"}, {W(".5"), 0, 1, 3, 1, "1"},
        {W("0.995"), 2, 1, 3, 1, "1<>00"},        {W("12345678901.5"), 1, 1, 0, 1, "12345678901<>5"},
        {W("12345"), 0, 1, 1, 1, "1'2'3'4'5"},    {W("12345678901"), 0, 1, 32, 1, "12'34'56'78'901"},
        {W("1.2.3"), 0, 1, 3, 1, "error"},        {W("12345678901"), 0, 1, 30, 1, "12345678'901"},
        {W("+5"), 0, 1, 3, 1, "error"},           {W("12345678901"), 0, 1, 9, 1, "12'345678901"},
        {W("-0.001"), 2, 1, 3, 1, "-0<>00"},      {W("1e5"), 0, 1, 3, 1, "error"},
        {W("99.995"), 2, 1, 3, 1, "100<>00"},     {W("0.25"), 12, 1, 3, 1, "0<>250000000000"},
    };
    for (const auto& [value, decimals, leading_zero, grouping, negative, text] : rows) {
        const NUMBERFMTW format{decimals, leading_zero, grouping, point, group, negative};
        EXPECT_EQ(Formatted(value, format), text) << platform::Utf8(value);
    }
    const NUMBERFMTW format{0, 1, 3, point, group, 1};
    EXPECT_EQ(Formatted(W("1234567"), format, 10), "1'234'567");
    EXPECT_EQ(Formatted(W("1234567"), format, 9), "error");
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    EXPECT_EQ(GetNumberFormatW(0x0409, 0, W("1234567"), &format, nullptr, 0), 10);
}

}  // namespace
