// The printer, through the built module.
#include "kernel/print.h"

#include <gtest/gtest.h>

#include <limits>

#include "platform/locale.h"
#include "platform/text.h"
#include "support/scoped_variable.h"

namespace {

template <class... Arguments>
std::string Printed(const WCHAR* format, Arguments... arguments) {
    WCHAR text[600];
    const int32_t length = KtPrintF(text, format, arguments...);
    EXPECT_EQ(static_cast<std::size_t>(length), WStringView(text).size());
    return platform::Utf8(text);
}

// On Windows the user's locale is what it is: these need the one that is asked for.
class InLocale : public support::ScopedVariable {
  public:
    explicit InLocale(LCID lcid)
        : ScopedVariable(W("KT_LCID"), platform::Wide(std::to_string(lcid)).c_str()), lcid_(lcid) {}
    [[nodiscard]] bool IsSet() const { return GetUserDefaultLCID() == lcid_; }

  private:
    LCID lcid_;
};

TEST(Print, ConvertsAsTheRuntimeDoes) {
    struct Row {
        const WCHAR* format;
        int32_t argument;
        const char* text;
    };
    const Row kRows[] = {
        {W("%d"), 1234567, "1234567"},
        {W("%d"), std::numeric_limits<int32_t>::min(), "-2147483648"},
        {W("%i"), -1, "-1"},
        {W("%u"), -1, "4294967295"},
        {W("%ld"), -5, "-5"},
        {W("%hd"), 0x12345, "9029"},
        {W("%I32d"), -7, "-7"},
        {W("%x"), 0xBEEF, "beef"},
        {W("%X"), 0xBEEF, "BEEF"},
        {W("$x"), 0x12345678, "12345678"},  // never grouped
        {W("%08X"), 0xBEEF, "0000BEEF"},
        {W("%5d|"), 42, "   42|"},
        {W("%-5d|"), 42, "42   |"},
        {W("%+d"), 42, "+42"},
        {W("%.4d"), 42, "0042"},
        {W("a%cb"), 'Z', "aZb"},
        {W("%3c|"), 'Z', "  Z|"},
        {W("100%%"), 0, "100%"},
        {W("$$5.00"), 0, "$5.00"},
        {W(""), 0, ""},
        {W("plain"), 0, "plain"},
        {W("abc$"), 0, "abc%"},
        {W("%"), 0, "%"},
        {W("50% by way"), 0, "50% by way"},
        {W("%%%%$$"), 0, "%%$"},
        {W("%d%%d"), 3, "3%d"},
    };
    for (const Row& row : kRows) EXPECT_EQ(Printed(row.format, row.argument), row.text) << row.text;
    EXPECT_EQ(Printed(W("%s and %s"), W("one"), W("")), "one and ");
    EXPECT_EQ(Printed(W("%5s|%-4s|%.2s"), W("abc"), W("d"), W("xyz")), "  abc|d   |xy");
    EXPECT_EQ(Printed(W("%I64d"), int64_t{-1234567890123}), "-1234567890123");
    EXPECT_EQ(Printed(W("%I64u"), std::numeric_limits<uint64_t>::max()), "18446744073709551615");
    EXPECT_EQ(Printed(W("%I64X"), uint64_t{0x123456789ABC}), "123456789ABC");
    EXPECT_EQ(Printed(W("%dx%dx%d"), 1920, 1080, 48), "1920x1080x48");
    const WString long_text(500, W('y'));
    EXPECT_EQ(Printed(W("%s"), long_text.c_str()), std::string(500, 'y'));
}

TEST(Print, GroupsAsTheUsersLocaleDoes) {
    struct Row {
        LCID lcid;
        const WCHAR* format;
        int64_t argument;
        const char* text;
    };
    const Row kRows[] = {
        {0x0409, W("$d"), 1234567, "1,234,567"},
        {0x0409, W("$d"), -1234567, "-1,234,567"},
        {0x0409, W("$d"), 123, "123"},
        {0x0409, W("$d"), -123, "-123"},
        {0x0409, W("$d"), 0, "0"},
        {0x0409, W("$u Hz"), 44100, "44,100 Hz"},
        {0x0409, W("$ld Hz"), 48000, "48,000 Hz"},
        {0x0409, W("$10d|"), 12345, "     12,345|"},
        {0x0409, W("$010d"), 12345, "0000012,345"},  // padding stays as the width gave it
        {0x0409, W("$I64d"), 1234567890123, "1,234,567,890,123"},
        {0x0407, W("$d"), 1234567, "1.234.567"},
        {0x040C, W("$d"), 1234567, "1\u00A0234\u00A0567"},
        {0x0439, W("$d"), 12345678, "12,345,678"},  // the first group's size for all
        {0x0409, W("$,|$:|$*"), 0, ",|:|."},
        {0x0407, W("%,|%:|%*"), 0, ";|:|,"},
        {0x040B, W("$:"), 0, "."},
    };
    for (const Row& row : kRows) {
        const InLocale locale(row.lcid);
        if (!locale.IsSet()) continue;
        EXPECT_EQ(Printed(row.format, row.argument), row.text) << std::hex << row.lcid;
    }
}

TEST(Print, KeepsToTheSize) {
    const InLocale locale(0x0409);
    struct Row {
        const WCHAR* format;
        uint32_t size;
        int32_t argument;
        HRESULT result;
        const char* text;
    };
    constexpr HRESULT kSmall = static_cast<HRESULT>(0x8004E03Cu);
    const Row kRows[] = {
        {W("abcdefgh"), 5, 0, S_OK, "abcd"},       {W("%d"), 5, 1234567, kSmall, "1234"},
        {W("%d"), 8, 1234567, S_OK, "1234567"},    {W("%d"), 1, 1234567, S_OK, ""},
        {W("$d"), 10, 1234567, S_OK, "1,234,567"}, {W("$d"), 9, 1234567, kSmall, "1234567"},
        {W("$d"), 5, 1234567, kSmall, "1234"},     {W("%5d"), 4, 7, S_OK, "   "},
        {W("%x"), 3, 0xABCD, S_OK, "ab"},          {W("%%%%"), 2, 0, S_OK, "%"},
        {W("%d and more"), 4, 12, S_OK, "12 "},    {W("%:%:"), 2, 0, S_OK, ":"},
    };
    for (const Row& row : kRows) {
        WCHAR text[20];
        std::fill_n(text, 20, W('~'));
        uint32_t length = 99;
        EXPECT_EQ(KtCchPrintF(text, row.size, &length, row.format, row.argument), row.result) << row.text;
        EXPECT_EQ(platform::Utf8(text), row.text);
        EXPECT_EQ(length, std::string_view(row.text).size());
        EXPECT_EQ(text[row.size], W('~'));
    }
    WCHAR text[5];
    EXPECT_EQ(KtCchPrintF(text, 5, nullptr, W("%s"), W("abcdefgh")), static_cast<HRESULT>(0x8007007Au));
    EXPECT_EQ(WStringView(text), W("abcd"));
    uint32_t length = 99;
    EXPECT_EQ(KtCchPrintF(nullptr, 5, &length, W("x")), E_INVALIDARG);
    EXPECT_EQ(length, 0u);
    EXPECT_EQ(KtCchPrintF(text, 0, &length, W("x")), E_INVALIDARG);
}

}  // namespace
