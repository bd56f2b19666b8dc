// The printer, through the built module.
#include "kernel/print.h"

#include <gtest/gtest.h>

#include <limits>
#include <tuple>
#include <vector>

#include "kernel/number_text.h"
#include "kernel/print_tokens.h"
#include "platform/text.h"
#include "support/in_locale.h"

namespace {

using support::InLocale;

constexpr HRESULT kSmall = static_cast<HRESULT>(0x8004E03Cu);
constexpr HRESULT kCut = static_cast<HRESULT>(0x8007007Au);

template <class... Arguments>
std::string Printed(const WCHAR* format, Arguments... arguments) {
    std::vector<WCHAR> text(20000, W('~'));
    const int32_t length = KtPrintF(text.data(), format, arguments...);
    EXPECT_EQ(static_cast<std::size_t>(length), WStringView(text.data()).size());
    return platform::Utf8(text.data());
}

// Of both, which must agree.
std::string PrintedByList(const WCHAR* format, ...) {
    WCHAR text[40], bounded[40];
    std::va_list list, copy;
    va_start(list, format);
    va_copy(copy, list);
    const int32_t length = KtVPrintF(text, format, list);
    uint32_t bounded_length = 0;
    EXPECT_EQ(KtNVPrintF(bounded, 40, &bounded_length, format, copy), S_OK);
    va_end(copy);
    va_end(list);
    EXPECT_EQ(length, static_cast<int32_t>(bounded_length));
    EXPECT_EQ(platform::Utf8(bounded), platform::Utf8(text));
    return platform::Utf8(text);
}

TEST(Print, TakesItsArgumentsAsAList) { EXPECT_EQ(PrintedByList(W("%s %d"), W("take"), 2), "take 2"); }

TEST(Print, ConvertsAsTheRuntimeDoes) {
    const std::tuple<const WCHAR*, int32_t, const char*> kRows[] = {
        {W("%d"), 0, "0"},     {W("%d%%d"), 3, "3%d"},   {W("plain"), 0, "plain"},   {W("%u"), -1, "4294967295"},
        {W("%i"), -1, "-1"},   {W("%I32d"), -7, "-7"},   {W("$$5.00"), 0, "$5.00"},  {W("%I32x"), -1, "ffffffff"},
        {W("%o"), 8, "10"},    {W("100%%"), 0, "100%"},  {W("$-3pd|"), 3, "%-3pd|"}, {W("%6z|"), 1234, "  1234|"},
        {W(""), 0, ""},        {W("abc$"), 0, "abc%"},   {W("%5d|"), 42, "   42|"},  {W("%hd"), 0x12345, "9029"},
        {W("%"), 0, "%"},      {W("a%cb"), 'Z', "aZb"},  {W("%z"), -1234, "-1234"},  {W("%#x"), 0xBEEF, "0xbeef"},
        {W("%ld"), -5, "-5"},  {W("%.4d"), 42, "0042"},  {W("%-5d|"), 42, "42   |"}, {W("%08X"), 0xBEEF, "0000BEEF"},
        {W("%c|"), 0, "|"},    {W("%S %d"), 3, "%S %d"}, {W("%x"), 0xBEEF, "beef"},  {W("%d"), 1234567, "1234567"},
        {W("%kd"), 3, "kd"},   {W("%y%Sd"), 3, "%y%Sd"}, {W("%X"), 0xBEEF, "BEEF"},  {W("$o"), 01234567, "1234567"},
        {W("%nd"), 3, "%nd"},  {W("%3c|"), 'Z', "  Z|"}, {W("$-12l"), 0, "%-12l"},   {W("$x"), 0x12345678, "12345678"},
        {W("%+d"), 42, "+42"}, {W("%%%%$$"), 0, "%%$"},
    };
    for (const auto& [format, argument, text] : kRows) EXPECT_EQ(Printed(format, argument), text) << text;
    EXPECT_EQ(Printed(W("50% by way"), 0), "50% by way");
    EXPECT_EQ(Printed(W("50% of"), 8), "5010f")
        << "a conversion with a blank flag, which an octal number does not heed";
    EXPECT_EQ(Printed(W("%s and %s"), W("one"), W("")), "one and ");
    EXPECT_EQ(Printed(W("%5s|%-4s|%.2s"), W("abc"), W("d"), W("xyz")), "  abc|d   |xy");
    EXPECT_EQ(Printed(W("%s"), static_cast<const WCHAR*>(nullptr)), "(null)");
    EXPECT_EQ(Printed(W("%I64d %Id"), int64_t{-1234567890123}, int64_t{1234567890123}), "-1234567890123 1234567890123");
    EXPECT_EQ(Printed(W("%I64u %I64X"), ~uint64_t{0}, uint64_t{0x123456789ABC}), "18446744073709551615 123456789ABC");
    EXPECT_EQ(Printed(W("%e|$e"), 1.5, 1.5), "1.500000e+000|1.500000e+000");
    EXPECT_EQ(Printed(W("%.1f|%g|%G"), 2.26, 0.5, 1e-10), "2.3|0.5|1E-010");
    EXPECT_EQ(Printed(W("%f"), std::numeric_limits<double>::infinity()), "1.#INF00");
}

// Two ways lead to groups: out of the number, and out of its text.
TEST(Print, GroupsANumberAsItsTextIsGrouped) {
    for (const LCID lcid : {0x0409u, 0x0407u, 0x0439u}) {
        const InLocale locale(lcid);
        for (int64_t power = 1; power <= 10'000'000'000; power *= 10) {
            for (const int64_t wide : {power - 1, power, power + 1, 7 * power + 5, -power, 1 - power, -2 * power - 3}) {
                const auto number = static_cast<int32_t>(wide);
                WCHAR plain[16], grouped[32];
                for (const auto& [text, format] : {std::pair{W("%d"), W("$d")}, {W("%u"), W("$u")}}) {
                    KtPrintF(plain, text, number);
                    KtFormatNumber(plain, grouped, 32);
                    EXPECT_EQ(Printed(format, number), platform::Utf8(grouped)) << number;
                }
            }
        }
    }
}

TEST(Print, WritesNumbersAsTheUsersLocaleDoes) {
    int in_their_locale = 0;
    const std::tuple<LCID, const WCHAR*, int64_t, const char*> kRows[] = {
        {0x0409, W("$i"), -1234567, "-1,234,567"},
        {0x0409, W("$z"), 12345, "12,345"},
        {0x0409, W("$ld Hz"), 48000, "48,000 Hz"},
        {0x0409, W("$+d"), 12345, "+12,345"},
        {0x0409, W("$10d|"), 12345, "     12,345|"},
        {0x0409, W("$.1z"), 12345, "1,234.5"},
        {0x0409, W("$-8d|"), 12345, "12,345   |"},
        {0x0409, W("%.1z"), 12345, "1234.5"},
        {0x0409, W("$I64d"), 1234567890123, "1,234,567,890,123"},
        {0x0409, W("$.2z"), 5, "0.05"},
        {0x0409, W("$.16z"), 5, "0.0000000000000005"},
        {0x0409, W("$.2z"), -5, "-0.05"},
        {0x0409, W("$.0z"), 5, "5"},
        {0x040C, W("$d"), 1234567, "1\u00A0234\u00A0567"},
        {0x0407, W("%.2z"), 123456, "1234,56"},
        {0x0409, W("$,|$:|$*"), 0, ",|:|."},
        {0x0407, W("%,|%:|%*"), 0, ";|:|,"},
        {0x0439, W("$d"), 12345678, "12,345,678"},  // the first group's size for all
        {0x040B, W("$:"), 0, "."},
        {0x0407, W("$(1234567.5)"), 0, "1.234.567,5"},
        {0x0409, W("$*d"), 0, ".d"},
        {0x0409, W("$010d"), 12345, "0000012,345"},  // as the width gave it
        {0x0409, W("%!:$!.%!,"), 0, ":.,"},
        {0x0409, W("$!x|%&,|%!"), 0, "x|,|"},  // what chooses nothing is text
        {0x0409, W("%&:$&."), 0, ".."},
        {0x0409, W("$(1,234)|$(-)|$(1.2.3)"), 0, "1,234|-|1.2.3"},
        {0x0409, W("$(12"), 0, "$(12"},
        {0x0409, W("$(12x)"), 0, "$(12x)"},
        {0x0409, W("$(1-$d)"), 7, "$(1-7)"},
        {0x0409, W("$(1234.5)|$(-5)|$(.5)"), 0, "1,234.5|-5|0.5"},
        {0x0409, W("$(0012)"), 0, "0012"},
    };
    for (const auto& [lcid, format, argument, text] : kRows) {
        const InLocale locale(lcid);
        if (!locale.IsSet()) continue;
        ++in_their_locale;
        EXPECT_EQ(Printed(format, argument), text) << std::hex << lcid;
    }
    const std::tuple<LCID, const WCHAR*, double, const char*> kFloats[] = {
        {0x0409, W("$.2f"), 1234.5, "1,234.50"}, {0x0409, W("$.2f"), -1234.5, "-1,234.50"},
        {0x0409, W("$8.2f"), 1.5, "    1.50"},   {0x0409, W("$f"), 1234567.25, "1,234,567.250000"},
        {0x0409, W("$.0f"), 1234.6, "1,235"},    {0x0407, W("$.2f"), 1234.5, "1.234,50"},
        {0x0407, W("%.2f"), 1234.5, "1234.50"},  {0x0407, W("$e"), 1.5, "1.500000e+000"},
        {0x0407, W("$g"), 1.5, "1,5"},           {0x0409, W("$f"), std::numeric_limits<double>::infinity(), "1.#INF00"},
        {0x0407, W("$g"), 123456.0, "123456"},   {0x0409, W("$g"), -std::numeric_limits<double>::infinity(), "-1.#INF"},
        {0x0407, W("$g"), 1e30, "1e+030"},
    };
    for (const auto& [lcid, format, argument, text] : kFloats) {
        const InLocale locale(lcid);
        if (!locale.IsSet()) continue;
        ++in_their_locale;
        EXPECT_EQ(Printed(format, argument), text) << text;
    }
    if (in_their_locale == 0) GTEST_SKIP() << "needs a user of one of these locales";
}

TEST(Print, PutsTokensInThePlaceOfTheirNames) {
    EXPECT_EQ(KtPrintF_AddToken(W("Print.Test"), W("value %d $(Print.Test)")), 1);
    EXPECT_EQ(Printed(W("<$(print.TEST)>")), "<value %d $(Print.Test)>");
    EXPECT_EQ(KtPrintF_AddToken(W("PRINT.TEST"), W("")), 1);
    EXPECT_EQ(Printed(W("<$(Print.Test)>")), "<>");
    for (const int32_t deleted : {1, 0}) EXPECT_EQ(KtPrintF_DeleteToken(W("print.test")), deleted);
    for (const WCHAR* format : {W("<$(Print.Test)>"), W("$(NoSuchToken)$()%(l"), W("$(NoClose")}) {
        EXPECT_EQ(Printed(format), platform::Utf8(format));
    }
    EXPECT_EQ(KtPrintF_AddToken(nullptr, W("x")), 0);
    EXPECT_EQ(KtPrintF_AddToken(W("x"), nullptr), 0);
    EXPECT_EQ(KtPrintF_DeleteToken(nullptr), 0);
    // Many, in an order of their own, each found again.
    const auto name = [](int i) { return W("t") + platform::Wide(std::to_string(i * 7919 % 100)); };
    for (int i = 0; i < 100; ++i) EXPECT_EQ(KtPrintF_AddToken(name(i).c_str(), name(i).c_str()), 1);
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(Printed((W("$(") + name(i) + W(")")).c_str()), platform::Utf8(name(i)));
        EXPECT_EQ(KtPrintF_DeleteToken(name(i).c_str()), 1);
    }
}

TEST(Print, KeepsToTheLimitsOfItsParts) {
    const InLocale locale(0x0409);
    if (!locale.IsSet()) GTEST_SKIP() << locale.Lack();
    for (const WCHAR* format : {W("%1000000d|"), W("%300d|")})
        EXPECT_EQ(Printed(format, 7), std::string(260, ' ') + "|");
    EXPECT_EQ(Printed(W("$.300z"), 7), "0." + std::string(258, '0'));
    const std::string wide = Printed(W("%1000000s"), W("x"));
    EXPECT_EQ(wide.substr(0, 1022), std::string(1022, ' '));
    EXPECT_LE(wide.size(), 1024u);
    const WString very_long(5000, W('y'));
    EXPECT_EQ(Printed(W("%s"), very_long.c_str()), std::string(1024, 'y'));
    EXPECT_EQ(Printed(W("%f"), 1e300).size(), 260u);
    EXPECT_EQ(Printed(W("$.9f"), 1e300).size(), 260u + 86);
    // A conversion that has no end goes on as text where the limit was; so does a name.
    const std::string stars(10000, '.');
    for (const std::string& format : {"%" + stars + "d", "$(x" + stars + ")", "$(1" + stars + ")"}) {
        EXPECT_EQ(Printed(platform::Wide(format).c_str(), 7), format);
    }
    const WString name(260, W('n'));
    EXPECT_EQ(KtPrintF_AddToken(name.c_str(), W("long")), 1);
    EXPECT_EQ(Printed((W("$(") + name + W(")")).c_str()), "long");
    EXPECT_EQ(KtPrintF_DeleteToken(name.c_str()), 1);
    EXPECT_EQ(KtPrintF(nullptr, W("x")), 0);
    WCHAR text[2] = {W('x'), 0};
    EXPECT_EQ(KtPrintF(text, nullptr), 0);
    EXPECT_EQ(text[0], 0);
}

template <class... Arguments>
void ExpectBounded(uint32_t size, HRESULT result, const char* expected, const WCHAR* format, Arguments... arguments) {
    SCOPED_TRACE(platform::Utf8(format) + " into " + std::to_string(size));
    WCHAR text[40];
    std::fill_n(text, 40, W('~'));
    uint32_t length = 99;
    EXPECT_EQ(static_cast<uint32_t>(KtCchPrintF(text, size, &length, format, arguments...)),
              static_cast<uint32_t>(result));
    EXPECT_EQ(platform::Utf8(text), expected);
    EXPECT_EQ(length, std::string_view(expected).size());
    EXPECT_EQ(text[size], W('~'));
}

TEST(Print, SaysWhatBecameOfEachElementWhenTheRoomIsShort) {
    const InLocale locale(0x0409);
    if (!locale.IsSet()) GTEST_SKIP() << locale.Lack();
    ASSERT_EQ(KtPrintF_AddToken(W("Room"), W("abcdef")), 1);
    const struct {
        uint32_t size;
        HRESULT result;
        const char* text;
        const WCHAR* format;
        int32_t argument = 0;
    } kRows[] = {
        {2, S_OK, "%", W("%%%%")},
        {5, S_OK, "abcd", W("abcdefgh")},
        {4, S_OK, "12 ", W("%d and more"), 12},
        {2, S_OK, "$", W("$$$$")},
        {4, S_OK, "abc", W("$(Room)")},
        {9, S_OK, "$(Rome)", W("$(Rome)")},
        {1, S_OK, "", W("abc")},
        {8, kSmall, "x", W("$(Rome)x")},
        {6, kSmall, "12345", W("$(1234567.5)")},
        {8, kSmall, "", W("$(Rome)")},
        {8, S_OK, "7", W("$(Rome)%d"), 7},
        {5, kSmall, "1234", W("%d"), 1234567},
        {8, kSmall, "", W("$(Ro me")},
        {6, S_OK, "1,234", W("$(1234)")},
        {8, S_OK, "1234567", W("%d"), 1234567},
        {4, kSmall, "", W("$(12")},
        {5, kSmall, "1234", W("$(1234)")},
        {10, S_OK, "1,234,567", W("$d"), 1234567},
        {8, S_OK, "$(12", W("$(12")},
        {1, S_OK, "", W("%d"), 1234567},
        {9, kSmall, "1234567", W("$d"), 1234567},
        {4, S_OK, "   ", W("%5d"), 7},
        {3, S_OK, "ab", W("%x"), 0xABCD},
        {5, kSmall, "1234", W("$u"), 1234567},
        {4, S_OK, "123", W("%.2z"), 12345},
        {2, S_OK, ":", W("%:%:")},
        {5, kCut, "    ", W("%5c"), 'x'},
        {6, kSmall, "1234.", W("$.1z"), 12345},
        {2, S_OK, "%", W("$")},
    };
    for (const auto& row : kRows) ExpectBounded(row.size, row.result, row.text, row.format, row.argument);
    ExpectBounded(7, kSmall, "1234.5", W("$.2f"), 1234.5);
    ExpectBounded(9, S_OK, "1,234.50", W("$.2f"), 1234.5);
    ExpectBounded(4, S_OK, "123", W("%.2f"), 1234.5);
    ExpectBounded(3, S_OK, "1.", W("$e"), 1.5);
    ExpectBounded(5, kCut, "abcd", W("%s"), W("abcdefgh"));
    ExpectBounded(5, S_OK, "abcd", W("%s"), W("abcd"));
    ExpectBounded(5, kCut, "  ab", W("%6s"), W("abcd"));
    ExpectBounded(5, kCut, "(nul", W("%s"), static_cast<const WCHAR*>(nullptr));
    ExpectBounded(5, kCut, "    ", W("%1000000s"), W("x"));
    EXPECT_EQ(KtPrintF_DeleteToken(W("Room")), 1);

    WCHAR text[5];
    uint32_t length = 99;
    EXPECT_EQ(KtCchPrintF(nullptr, 5, &length, W("x")), E_INVALIDARG);
    EXPECT_EQ(length, 0u);
    EXPECT_EQ(KtCchPrintF(text, 0, &length, W("x")), E_INVALIDARG);
    EXPECT_EQ(KtCchPrintF(text, 5, nullptr, nullptr), E_INVALIDARG);
    EXPECT_EQ(text[0], 0);
    EXPECT_EQ(KtCchPrintF(text, 5, nullptr, W("%s"), W("abcd")), S_OK);
    for (const WCHAR* format : {W("%-2s"), W("%s")}) {
        EXPECT_EQ(KtCchPrintF(text, 0xFFFFFFFF, nullptr, format, W("a")), E_INVALIDARG);
    }
    EXPECT_EQ(KtCchPrintF(text, 0xFFFFFFFF, nullptr, W("%c"), 'a'), E_INVALIDARG);
}

}  // namespace
