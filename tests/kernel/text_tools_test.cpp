// Small texts: names, codes, colours, levels, sizes and stereo pairs, through the built module.
#include "kernel/text_tools.h"

#include <gtest/gtest.h>

#include <tuple>

#include "kernel/byte_size_text.h"
#include "kernel/colorref_text.h"
#include "kernel/compose_text.h"
#include "kernel/disk_space.h"
#include "kernel/level_text.h"
#include "kernel/stereo_names.h"
#include "support/in_locale.h"

namespace {

using platform::Utf8;
using support::InLocale;

TEST(TextTools, ReplaceAndTrim) {
    WCHAR replaced[] = W("a/b/c");
    EXPECT_EQ(KtStringReplaceChars(replaced, W('/'), W('-')), 5);
    EXPECT_EQ(WStringView(replaced), W("a-b-c"));
    EXPECT_EQ(KtStringReplaceCharsW(replaced, 0, W('x')), 5);
    EXPECT_EQ(KtStringReplaceChars(replaced, W('b'), 0), 2);
    EXPECT_EQ(KtStringReplaceChars(nullptr, W('b'), 0), 0);

    const std::pair<const WCHAR*, const char*> rows[] = {
        {W(""), ""},         {W("  "), ""}, {W("\t a b\r\n"), "a b"}, {W("abc"), "abc"}, {W("\u3000x\u00A0"), "x"},
        {W(" \u2028y"), "y"}};
    for (const auto& [text, trimmed] : rows) {
        WCHAR copy[20] = {};
        WStringView(text).copy(copy, 19);
        const int32_t length = KtStripWhiteSpace(copy);
        EXPECT_EQ(static_cast<std::size_t>(length), WStringView(copy).size());
        EXPECT_EQ(Utf8(copy), trimmed);
        WCHAR name[20] = {W('~'), 0};
        EXPECT_EQ(KtPrepareName(text, name, 20), *trimmed ? name : nullptr);
        EXPECT_EQ(Utf8(name), trimmed);
    }
    WCHAR name[3];
    EXPECT_EQ(KtPrepareName(W("  abc"), name, 3), name);
    EXPECT_EQ(WStringView(name), W("ab"));
    EXPECT_EQ(KtPrepareName(nullptr, name, 3), nullptr);
    EXPECT_EQ(KtStripWhiteSpace(nullptr), 0);
}

TEST(TextTools, MenuNames) {
    WCHAR out[300];
    EXPECT_EQ(KtFixNameForMenu(out, W("A & B&"), 300), 8);
    EXPECT_EQ(WStringView(out), W("A && B&&"));
    EXPECT_EQ(KtFixNameForMenu(out, W("&&&"), 4), 3);
    EXPECT_EQ(KtFixNameForMenu(out, WString(1000, W('&')).c_str(), 300), 259);
    EXPECT_EQ(KtFixNameForMenu(out, nullptr, 300), 0);
    EXPECT_EQ(KtFixNameForMenu(nullptr, W("a"), 0), 0);
}

TEST(TextTools, Codes) {
    WCHAR text[40];
    EXPECT_EQ(KtFourCCToString(0x20666D74, text), 0);
    EXPECT_EQ(WStringView(text), W("tmf "));
    EXPECT_EQ(KtFourCCToString(0x7F1F417E, text), 0);
    EXPECT_EQ(WStringView(text), W("~A.."));

    const GUID guid{0x00ABCDEF, 0x12, 0x3456, {0xA1, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0xF8}};
    const WCHAR* const form = W("00abcdef-0012-3456-a102-0304050607f8");
    EXPECT_EQ(KtGuidToString(&guid, text, 40), 0);
    EXPECT_EQ(WStringView(text), form);
    EXPECT_EQ(KtGuidToString(&guid, text, 5), 0);
    EXPECT_EQ(WStringView(text), W("00ab"));
    GUID read{};
    for (const WCHAR* good :
         {form, W(" 00ABCDEF-12-3456-A102-0304050607F8}"), W("abcdef- 12-3456-a102-0304050607f8")}) {
        read = {};
        EXPECT_EQ(KtGuidFromString(good, &read), 0);
        EXPECT_TRUE(read == guid) << Utf8(good);
    }
    for (const WCHAR* bad : {W(""), W("{00abcdef-0012-3456-a102-0304050607f8}"), W("00abcdef-0012-3456-a102-030405"),
                             W("00abcdef0012-3456-a102-0304050607f8"), W("x")}) {
        EXPECT_EQ(KtGuidFromString(bad, &read), E_FAIL);
        EXPECT_TRUE(read == guid) << Utf8(bad);
    }
    EXPECT_EQ(KtGuidFromString(nullptr, &read), E_FAIL);
}

TEST(ColorText, IsReadInEachForm) {
    const InLocale locale(0x0409);
    constexpr uint32_t kBad = kKtUnreadableColor;
    const std::tuple<const WCHAR*, uint32_t, int> rows[] = {
        {W("RGB"), kBad, 3}, {W("#ff0010"), 0x1000FF, 7}, {W("RGB(255, 0, 16)"), 0x1000FF, 15},
        {W("16"), 16, 2},    {W("RGB(1,2)"), kBad, 8},    {W("  rGb ( 255 x, 0 , 16 ) "), 0x1000FF, 23},
        {W("0xFF"), 255, 4}, {W("RGB(1,2,3"), kBad, 9},   {W("RGB(300,0,0)"), kBad, 7},
        {W("#"), kBad, 1},   {W("RGB(1,,3)"), kBad, 6},   {W("0XfFfF00 "), 0xFFFF00, 8},
        {W("#0"), 0, 2},     {W("RGB 1,2,3"), kBad, 4},   {W("4294967295"), kBad, 10},
        {W("abc"), 0, 0},    {W("#1000000"), kBad, 8},    {W("#10000000000000000"), kBad, 18},
        {W(""), 0, 0},
    };
    for (const auto& [text, color, stopped] : rows) {
        SCOPED_TRACE(Utf8(text));
        const WCHAR* end = nullptr;
        EXPECT_EQ(KtTextToColorrefToken(text, &end), color);
        EXPECT_EQ(end - text, stopped);
        EXPECT_EQ(KtTextToColorrefTokenEx(text, 5, nullptr), color);
        EXPECT_EQ(KtTextToColorref(text), color);
    }
    EXPECT_EQ(KtTextToColorref(nullptr), 0u);
}

TEST(ColorText, IsWrittenInEachForm) {
    const std::tuple<uint32_t, int32_t, const char*> rows[] = {
        {0, 0, "RGB(0,0,0)"}, {0x1000FF, 1, "#ff0010"}, {0x2000000, 0, "0x02000000"}, {0x1000FF, 0, "RGB(255,0,16)"},
        {0, 1, "#000000"},    {0, 2, "0x00000000"},     {0x1000FF, 2, "0x001000ff"},  {0xFFFFFFFF, 1, "0xffffffff"},
    };
    for (const auto& [color, mode, wanted] : rows) {
        const std::string expected = wanted;
        WCHAR text[20];
        uint32_t length = 0;
        EXPECT_EQ(KtColorrefToText(text, 20, color, mode), static_cast<int32_t>(expected.size()));
        EXPECT_EQ(Utf8(text), expected);
        EXPECT_EQ(KtColorrefToTextEx(text, 20, &length, color, mode), S_OK);
        EXPECT_EQ(length, expected.size());
        EXPECT_EQ(KtTextToColorref(text), color == 0xFFFFFFFF ? kKtUnreadableColor : color) << expected;
    }
    WCHAR text[20];
    uint32_t length = 0;
    constexpr auto kSmall = static_cast<HRESULT>(0x8004E03Cu);
    EXPECT_EQ(KtColorrefToTextEx(text, 10, &length, 0, 2), kSmall);
    EXPECT_EQ(length, 9u);
    EXPECT_EQ(KtColorrefToTextEx(text, 11, nullptr, 0, 2), S_OK);
    EXPECT_EQ(KtColorrefToTextEx(text, 6, nullptr, 0x1000FF, 0), kSmall);
    EXPECT_EQ(KtColorrefToText(text, 5, 0x1000FF, 1), 4);
    EXPECT_EQ(KtColorrefToText(text, 0, 0x1000FF, 1), 0);
    EXPECT_EQ(KtColorrefToText(nullptr, 5, 0x1000FF, 1), 0);
}

TEST(LevelText, HasDecimalsAFloorAndALabel) {
    const InLocale locale(0x0409);
    if (!locale.IsSet()) GTEST_SKIP() << locale.Lack();
    EXPECT_EQ(Utf8(KtGetLabeledStringFixed(-600, 1, -600, W(" dB"))), "-Inf.");
    EXPECT_EQ(Utf8(KtGetLabeledStringFixed(1234567, 1, 0, W(" dB"))), "123,456.7 dB");
    EXPECT_EQ(Utf8(KtGetLabeledStringFixed(5, 100, 0, nullptr)), "0.000000005");
    EXPECT_EQ(Utf8(KtGetdBStringFixed(-123, 2, -600, 1)), "-1.23 dB");
    EXPECT_EQ(Utf8(KtGetdBStringFixed(-123, 2, -600, 0)), "-1.23");
    EXPECT_EQ(Utf8(KtGetdBStringFloat(-6.26F, 1, -96, 1)), "-6.3 dB");
    EXPECT_EQ(Utf8(KtGetdBStringFloat(-96, 1, -96, 1)), "-Inf.");
    EXPECT_EQ(Utf8(KtGetLabeledStringFloat(-1234.9F, 0, 0, W(" x"))), "-1,234 x");
    EXPECT_EQ(Utf8(KtGetLabeledStringFloat(1e30F, -1, 0, nullptr)), "2,147,483,647");
    EXPECT_EQ(Utf8(KtGetLabeledStringFixed(1, 0, 0, WString(100, W('y')).c_str())), "1" + std::string(22, 'y'));
}

TEST(ByteSizes, HaveThreeDigitsThatCount) {
    const InLocale locale(0x0409);
    if (!locale.IsSet()) GTEST_SKIP() << locale.Lack();
    const std::pair<int64_t, const char*> rows[] = {
        {-5, "0 B"},        {999 * 1024 - 1, "998 KB"},     {0, "0 B"},         {999 * 1024, "0.97 MB"},
        {998, "998 B"},     {int64_t{5} << 30, "5.00 GB"},  {999, "0.97 KB"},   {int64_t{20} << 40, "20.0 TB"},
        {1536, "1.50 KB"},  {int64_t{3} << 50, "3.00 PB"},  {12900, "12.5 KB"}, {int64_t{2} << 60, "2.00 EB"},
        {150000, "146 KB"}, {0x7000000000000000, "> 9 YB"},
    };
    for (const auto& [size, expected] : rows) {
        WCHAR text[40];
        EXPECT_EQ(KtFormatFileSize(size, text, 40, 0), std::string_view(expected).size());
        EXPECT_EQ(Utf8(text), expected);
    }
    WCHAR text[40];
    EXPECT_EQ(KtFormatFileSize(12, text, 40, 1), 8u);
    EXPECT_EQ(WStringView(text), W("12 bytes"));
    EXPECT_EQ(KtFormatFileSize(12, text, 3, 1), 0u);
    EXPECT_EQ(text[0], 0);
}

TEST(ByteSizes, HaveTheLocalesDecimalMark) {
    const InLocale locale(0x0407);
    if (!locale.IsSet()) GTEST_SKIP() << locale.Lack();
    WCHAR text[40];
    EXPECT_EQ(KtFormatFileSize(1536, text, 40, 0), 7u);
    EXPECT_EQ(WStringView(text), W("1,50 KB"));
}

TEST(ByteSizes, HaveTwoDecimals) {
    const InLocale locale(0x0409);
    if (!locale.IsSet()) GTEST_SKIP() << locale.Lack();
    const std::tuple<int64_t, const char*, const char*, const char*> rows[] = {
        {-5, "-5", "-5 bytes", "-5"},
        {1023, "1023", "1023 bytes", "1023"},
        {1536, "1.50KB", "1.50 KB", "1.50 KB"},
        {1'023'999, "1,000.00KB", "1,000.00 KB", "1,000.00 KB"},
        {1'024'000, "1.00MB", "1.00 MB", "1.00 MB"},
        {2'560'000'000, "2.50GB", "2.50 GB", "2.50 GB"},
    };
    for (const auto& [size, close, words, spaced] : rows) {
        WCHAR text[64];
        EXPECT_EQ(KtGetByteSizeText(size, text), static_cast<int32_t>(std::string_view(close).size()));
        EXPECT_EQ(Utf8(text), close);
        KtGetByteSizeText2(size, text);
        EXPECT_EQ(Utf8(text), words);
        KtGetByteSizeTextWithSpace(size, text);
        EXPECT_EQ(Utf8(text), spaced);
    }
}

TEST(DiskSpace, IsCountedInUnitsAndNeedsARoot) {
    const InLocale locale(0x0409);  // and so in English
    if (!locale.IsSet()) GTEST_SKIP() << locale.Lack();
    const WCHAR* const kHere = W("C:\\");
    const uint32_t all = KtGetDiskTotalSpace(kHere, 1 << 20);
    EXPECT_LT(KtGetDiskFreeSpace(kHere, 1 << 20), all);
    EXPECT_NEAR(KtGetDiskTotalSpace(W("C:\\no\\such\\file"), 1 << 21), all / 2, 1);
    EXPECT_EQ(KtGetDiskTotalSpace(kHere, 0), 0xFFFFFFFF);  // more bytes than the count can hold
    for (const WCHAR* path : {static_cast<const WCHAR*>(nullptr), W(""), W("file")}) {
        EXPECT_EQ(KtGetDiskFreeSpace(path, 1), 0u);
    }

    const auto format = [](const WCHAR* path) {
        WCHAR text[64] = W("~");
        KtFormatDiskFreeSpace(path, text);
        return Utf8(text);
    };
    for (const WCHAR* path : {static_cast<const WCHAR*>(nullptr), W("")}) EXPECT_EQ(format(path), "-- Megabytes");
    const std::string shown = format(kHere);
    EXPECT_TRUE(shown.ends_with("Megabytes") || shown.ends_with("Gigabytes")) << shown;
    EXPECT_NE(shown.front(), '-');
}

TEST(ComposedText, HasNumberedPlaces) {
    const std::pair<const WCHAR*, const char*> rows[] = {
        {W("end%"), ""}, {W("%1 KB"), "one KB"}, {W("%2%1%2"), "twoonetwo"}, {W("a%n b\nc"), "a\r\n b\r\nc"},
        {W(""), ""},     {W("ab%0cd"), "ab"},    {W("100%%%1"), "100%one"},
    };
    for (const auto& [format, expected] : rows) {
        WCHAR text[40] = {W('~'), 0};
        EXPECT_EQ(KtComposeStr(text, 40, format, W("one"), W("two")), std::string_view(expected).size());
        EXPECT_EQ(Utf8(text), expected);
    }
    WCHAR text[7];
    EXPECT_EQ(KtComposeStr(text, 6, W("%1 KB"), W("one")), 0u);
    EXPECT_EQ(text[0], 0);
    EXPECT_EQ(KtComposeStr(text, 7, W("%1 KB"), W("one")), 6u);
    EXPECT_EQ(KtComposeStr(text, 7, nullptr), 0u);
    EXPECT_EQ(KtComposeStr(nullptr, 7, W("x")), 0u);
}

TEST(StereoNames, AreMadeOfThePairsName) {
    const InLocale locale(0x0409);  // and so in English
    if (!locale.IsSet()) GTEST_SKIP() << locale.Lack();
    // Null: the name tells its side.
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"Line 1/2", "Line 1", "Line 2"},
        {"Out 3-4 Main", "Out 3 Main", "Out 4 Main"},
        {"S/PDIF 1/2", "S/PDIF 1", "S/PDIF 2"},
        {"1/2/3", "1", "2"},
        {"Bus 7 Out 8 9", "Bus 7 9", "Bus 8 9"},
        {"Bus 5 Out 8-9", "Bus 5 Out 8", "Bus 5 Out 9"},
        {"Mic A/B Out", "Mic A Out", "Mic B Out"},
        {"Front Left/Front Right", "Front Left", "Front Right"},
        {"s/pdif L/R", "s/pdif L", "s/pdif R"},
        {"A/B S/PDIF", "A/B S/PDIF - Left", "A/B S/PDIF - Right"},
        {"S/PDIF", "S/PDIF - Left", "S/PDIF - Right"},
        {"", " - Left", " - Right"},
        {"Left Out", nullptr, nullptr},
        {"outRIGHT", nullptr, nullptr},
        {"18446744073709551615 18446744073709551616", "18446744073709551615 18446744073709551616 - Left",
         "18446744073709551615 18446744073709551616 - Right"},
    };
    for (const auto& [pair, first, second] : rows) {
        SCOPED_TRACE(pair);
        WCHAR left[100] = {W('~'), 0}, right[100] = {W('~'), 0};
        EXPECT_EQ(KtChannelizeStereoName(platform::Wide(pair).c_str(), left, 100, right, 100), first ? 1 : 0);
        EXPECT_EQ(Utf8(left), first ? first : "~");
        EXPECT_EQ(Utf8(right), second ? second : "~");
    }
    WCHAR cut[4];
    EXPECT_EQ(KtChannelizeStereoName(W("Line 1/2"), nullptr, 0, cut, 4), 1);
    EXPECT_EQ(WStringView(cut), W("Lin"));
    EXPECT_EQ(KtChannelizeStereoName(WString(1000, W('x')).c_str(), cut, 4, nullptr, 0), 1);
    EXPECT_EQ(KtChannelizeStereoName(nullptr, cut, 4, nullptr, 0), 0);
}

}  // namespace
