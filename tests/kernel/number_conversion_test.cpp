// Numbers to text and back, through the built module.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <tuple>

#include "kernel/number_text.h"
#include "kernel/number_to_text.h"
#include "kernel/text_to_number.h"
#include "support/in_locale.h"

namespace {

using support::InLocale;

constexpr auto kLeast32 = std::numeric_limits<int32_t>::min();
constexpr auto kMost32 = std::numeric_limits<int32_t>::max();
constexpr auto kLeast64 = std::numeric_limits<int64_t>::min();
constexpr auto kMost64 = std::numeric_limits<int64_t>::max();
constexpr auto kMostU64 = std::numeric_limits<uint64_t>::max();

template <class Call>
std::string Text(Call call) {
    WCHAR text[64] = {W('~'), 0};
    const int32_t length = call(text);
    EXPECT_EQ(static_cast<std::size_t>(length), WStringView(text).size());
    return platform::Utf8(text);
}

TEST(NumberToText, WritesEveryType) {
    const InLocale locale(0x0409);
    const auto expect = [](auto print, auto value, const char* plain, const char* grouped, bool with_groups) {
        EXPECT_EQ(Text([&](WCHAR* out) { return print(value, out, with_groups); }), with_groups ? grouped : plain);
    };
    for (const bool grouped : {false, true}) {
        if (grouped && !locale.IsSet()) GTEST_SKIP() << locale.Lack();
        expect(KtDWordToText, 4294967295u, "4294967295", "4,294,967,295", grouped);
        expect(KtDWordLongToText, kMostU64, "18446744073709551615", "18,446,744,073,709,551,615", grouped);
        expect(KtLongToText, kLeast32, "-2147483648", "-2,147,483,648", grouped);
        expect(KtLongLongToText, kLeast64, "-9223372036854775808", "-9,223,372,036,854,775,808", grouped);
        expect(KtLongToText, 0, "0", "0", grouped);
        expect(KtDWordLongToText, 0u, "0", "0", grouped);
    }
}

TEST(NumberToText, KeepsToTheSize) {
    const InLocale locale(0x0409);
    const std::tuple<int32_t, int32_t, int32_t, const char*> rows[] = {
        {0, 0, 0, "~"},       {1, 0, 0, "~"},       {2, 0, 0, "1"},         {7, 0, 0, "123456"},
        {8, 0, 7, "1234567"}, {9, 1, 0, "1234567"}, {10, 1, 9, "1,234,567"}};
    for (const auto& [size, grouped, result, expected] : rows) {
        if (grouped && !locale.IsSet()) GTEST_SKIP() << locale.Lack();
        const auto check = [&](auto call, auto value) {
            WCHAR text[20] = {W('~'), 0};
            EXPECT_EQ(call(value, text, size, grouped), result) << size;
            EXPECT_EQ(platform::Utf8(text), expected);
        };
        check(KtDWordToTextN, 1234567u);
        check(KtLongToTextN, 1234567);
        check(KtLongLongToTextN, int64_t{1234567});
        WCHAR text[20] = {W('~'), 0};
        const int32_t length = KtDWordLongToTextN(1234567, text, size, grouped);
        EXPECT_EQ(static_cast<std::size_t>(length), size > 0 ? WStringView(text).size() : 0);
    }
}

TEST(NumberToText, RoundsDoubles) {
    // Half a step is that of a step in single precision.
    const std::tuple<double, int32_t, const char*> rows[] = {
        {-0.004, 2, "0.00"}, {-0.006, 2, "-0.01"},
        {-0.005, 2, "0.00"}, {123456.789, 1, "123456.8"},
        {1.999, 2, "2.00"},  {0.0499999994, 1, "0.1"},
        {0.5, 0, "1"},       {0.000000001, 9, "0.000000001"},
        {0.4, 0, "0"},       {1.5, 20, "1.500000000"},
        {-1.5, 0, "-2"},     {1e30, 2, "18446744073709551615.00"},
        {1.05, 2, "1.05"},   {-1e30, 0, "-18446744073709551615"},
        {1.5, -3, "2"},      {std::nan(""), 1, "0.0"},
        {0.05, 1, "0.1"},    {-std::numeric_limits<double>::infinity(), 0, "-18446744073709551615"},
        {0.95, 1, "1.0"},
    };
    for (const auto& [value, decimals, text] : rows) {
        EXPECT_EQ(Text([&](WCHAR* out) { return KtDoubleToText(out, value, decimals, 0); }), text) << value;
    }
    EXPECT_EQ(Text([](WCHAR* out) { return KtDoubleToTextN(out, 5, 12.345, 3, 0); }), "12.3");
    WCHAR untouched = W('~');
    EXPECT_EQ(KtDoubleToTextN(&untouched, 0, 1, 0, 0), 0);
    EXPECT_EQ(untouched, W('~'));
    const InLocale locale(0x0407);
    if (!locale.IsSet()) GTEST_SKIP() << locale.Lack();
    EXPECT_EQ(Text([](WCHAR* out) { return KtDoubleToText(out, -1234567.128, 2, 1); }), "-1.234.567,13");
    EXPECT_EQ(Text([](WCHAR* out) { return KtDoubleToText(out, 0, 1, 1); }), "0,0");
    EXPECT_EQ(Text([](WCHAR* out) { return KtDoubleToTextN(out, 6, 1234.5, 1, 1); }), "1234.");
}

TEST(NumberText, FormatsWhatTheRuntimePrinted) {
    for (int32_t size = 0; size < 12; ++size) {
        WCHAR text[12] = {W('~')};
        EXPECT_EQ(KtFormatNumber(W(" 1234567 "), text, size), 0);
        EXPECT_EQ(text[0], size > 0 ? 0 : W('~'));
    }
    EXPECT_EQ(KtFormatNumber(nullptr, nullptr, 5), 0);
    const InLocale locale(0x0407);
    if (!locale.IsSet()) GTEST_SKIP() << locale.Lack();
    // Last with one decimal, else with those that the source has.
    const std::tuple<const WCHAR*, const char*, const char*, const char*, const char*> rows[] = {
        {W("1234567.25"), "1.234.567", "1234567,25", "1.234.567,25", "1.234.567,3"},
        {W("-1234.5"), "-1.235", "-1234,5", "-1.234,5", "-1.234,5"},
        {W("  012345"), "  012.345", "  012345", "  012.345", "  012.345,0"},
        {W("0.50  "), "1  ", "0,50  ", "0,50  ", "0,5  "},
        {W("000"), "000", "000", "000", "000"},
        {W(""), "", "", "", ""},
        {W("abc"), "abc", "abc", "abc", "abc"},
        {W("1.#INF"), "", "", "", ""},
        {W("-"), "", "", "", ""},
    };
    for (const auto& [source, whole, decimal, grouped, one] : rows) {
        SCOPED_TRACE(platform::Utf8(source));
        EXPECT_EQ(Text([&](WCHAR* out) { return KtFormatNumber(source, out, 64); }), whole);
        EXPECT_EQ(Text([&](WCHAR* out) { return KtFormatDecimalNumber(source, out, 64); }), decimal);
        EXPECT_EQ(Text([&](WCHAR* out) { return KtFormatGroupDecimalNumber(source, out, 64, -1); }), grouped);
        EXPECT_EQ(Text([&](WCHAR* out) { return KtFormatGroupDecimalNumber(source, out, 64, 1); }), one);
    }
}

TEST(TextToNumber, ReadsFromTheFront) {
    const InLocale locale(0x0409);
    if (!locale.IsSet()) GTEST_SKIP() << locale.Lack();
    const std::tuple<const WCHAR*, uint32_t, uint64_t, int32_t, int64_t, double, int> rows[] = {
        {W(""), 0, 0, 0, 0, 0, 0},
        {W("  42 x"), 42, 42, 42, 42, 42, 4},
        {W("1,234,567"), 1234567, 1234567, 1234567, 1234567, 1234567, 9},
        {W("-7"), 0, 0, -7, -7, -7, 2},
        {W("--7"), 0, 0, 0, 0, 0, 1},
        {W("1.75"), 1, 1, 1, 1, 1.75, 4},
        {W("1.2.3"), 1, 1, 1, 1, 1.2, 5},
        {W(".5"), 0, 0, 0, 0, 0.5, 2},
        {W("12e3"), 12, 12, 12, 12, 12, 2},
        {W("abc"), 0, 0, 0, 0, 0, 0},
        {W("１２3x"), 123, 123, 123, 123, 123, 3},
        {W("4294967297"), 1, 4294967297, kMost32, 4294967297, 4294967297.0, 10},
        {W("-4294967297"), 0, 0, kLeast32, -4294967297, -4294967297.0, 11},
        {W("18446744073709551617"), 1, 1, kMost32, kMost64, 18446744073709551617.0, 20},
        {W("-99999999999999999999"), 0, 0, kLeast32, kLeast64, -99999999999999999999.0, 21},
    };
    for (const auto& [text, u32, u64, i32, i64, number, stopped] : rows) {
        SCOPED_TRACE(platform::Utf8(text));
        const WCHAR* end = nullptr;
        const auto check = [&](auto value, auto expected) {
            EXPECT_EQ(value, expected);
            EXPECT_EQ(end - text, stopped);
        };
        check(KtTextToDWordToken(text, &end), u32);
        check(KtTextToDWordLongToken(text, &end), u64);
        check(KtTextToLongToken(text, &end), i32);
        check(KtTextToLongLongToken(text, &end), i64);
        check(KtTextToDoubleToken(text, &end, 1), number);
        check(KtTextToDoubleToken(text, &end, 0), number);
    }
    // Digits beyond the 63rd are passed over.
    const WString zeros = WString(62, W('0')) + W("123");
    const WCHAR* end = nullptr;
    EXPECT_EQ(KtTextToDWordToken(zeros.c_str(), &end), 1u);
    EXPECT_EQ(end, zeros.c_str() + zeros.size());
    EXPECT_EQ(KtTextToLongToken(nullptr, &end), 0);
    EXPECT_EQ(end, nullptr);
}

TEST(TextToNumber, FollowsTheLocale) {
    const InLocale locale(0x040C);
    if (!locale.IsSet()) GTEST_SKIP() << locale.Lack();
    const WCHAR* const text = W("-1\u00A0234,5");
    const WCHAR* end = nullptr;
    EXPECT_EQ(KtTextToLongToken(text, &end), -1234);
    EXPECT_EQ(*end, 0);
    EXPECT_EQ(KtTextToDoubleToken(text, &end, 1), -1234.5);
    EXPECT_EQ(KtTextToDoubleToken(text, &end, 0), -1.0);
    EXPECT_EQ(end - text, 2);
    EXPECT_EQ(KtTextToDoubleToken(W("1,234.5"), nullptr, 0), 1234.5);
}

TEST(TextToNumber, ReadsHexadecimal) {
    const std::tuple<const WCHAR*, uint32_t, uint64_t, int> rows[] = {
        {W("0X1f"), 31, 31, 4}, {W("g"), 0, 0, 0},  {W(" \tAbC,"), 0xABC, 0xABC, 5},
        {W("0x"), 0, 0, 2},     {W("-1"), 0, 0, 0}, {W("123456789a"), 0x3456789A, 0x123456789A, 10},
        {W("0x0x1"), 0, 0, 3}};
    for (const auto& [text, u32, u64, stopped] : rows) {
        const WCHAR* end = nullptr;
        EXPECT_EQ(KtHexToDWordToken(text, &end), u32);
        EXPECT_EQ(end - text, stopped);
        EXPECT_EQ(KtHexToDWordLongToken(text, &end), u64);
        EXPECT_EQ(end - text, stopped);
    }
}

TEST(TextToNumber, HoldsValuesAtTheirLimits) {
    const InLocale locale(0x0409);
    // With a default of 7.
    const std::tuple<const WCHAR*, int32_t, int32_t, int32_t, int> rows[] = {
        {W("abc"), 0, 100, 7, 0},  {W(""), 5, 100, 5, 0},    {W("0 x"), 0, 100, 0, 1},
        {W("0x"), 0, 100, 7, 1},   {W("50"), 0, 100, 50, 2}, {W("500"), 0, 100, 100, 3},
        {W("abc"), 10, 20, 10, 0}, {W("1"), 20, 10, 20, 1},  {W("  "), 0, 100, 0, 2}};
    for (const auto& [text, least, most, expected, stopped] : rows) {
        SCOPED_TRACE(platform::Utf8(text));
        const WCHAR* end = nullptr;
        const auto check = [&](auto value) {
            EXPECT_EQ(value, static_cast<decltype(value)>(expected));
            EXPECT_EQ(end - text, stopped);
        };
        check(KtTextToDWordTokenEx(text, 7, static_cast<uint32_t>(least), static_cast<uint32_t>(most), &end));
        check(KtTextToDWordLongTokenEx(text, 7, static_cast<uint32_t>(least), static_cast<uint32_t>(most), &end));
        check(KtTextToLongTokenEx(text, 7, least, most, &end));
        check(KtTextToLongLongTokenEx(text, 7, least, most, &end));
        check(KtTextToDoubleTokenEx(text, 7, least, most, &end, 1));
    }
    EXPECT_EQ(KtTextToLongTokenEx(W("-5"), 7, -3, 3, nullptr), -3);
    EXPECT_EQ(KtHexToDWordTokenEx(W("xyz"), 7, 0, 100, nullptr), 7u);
    EXPECT_EQ(KtHexToDWordTokenEx(W("0xFFFF"), 7, 0, 100, nullptr), 100u);
    EXPECT_EQ(KtHexToDWordLongTokenEx(W("ffffffffff"), 7, 0, kMostU64, nullptr), 0xFFFFFFFFFFu);
    EXPECT_EQ(KtTextToDWordTokenEx(nullptr, 7, 5, 100, nullptr), 5u);
}

}  // namespace
