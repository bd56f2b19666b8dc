// Positions as text through the built module.
#include "kernel/time_text.h"

#include <gtest/gtest.h>

#include <limits>
#include <tuple>

#include "kernel/position.h"
#include "platform/text.h"
#include "support/in_locale.h"

namespace {

using namespace support;

std::string Shown(const _ktposfmt& format, int64_t time, uint32_t flags = 0) {
    WCHAR text[1024], sized[1024];
    const int32_t length = KtNanoTimeToTextEx(text, &format, time, flags);
    EXPECT_EQ(static_cast<std::size_t>(length), WStringView(text).size());
    const int32_t sized_length = KtNanoTimeToTextFormatN(sized, 1024, &format, time, nullptr, flags);
    EXPECT_EQ(static_cast<std::size_t>(sized_length), WStringView(sized).size());
    // The two differ where days begin.
    if (format.format != KTPOSFMT_TIME) {
        EXPECT_EQ(WStringView(sized), WStringView(text));
    }
    return platform::Utf8(text);
}

struct Row {
    int32_t format;
    int64_t time;
    const char* full;
    const char* short_form = nullptr;  // where it is another one
};

TEST(TimeText, ShowsEachFormat) {
    const InLocale locale(0x0409);
    if (!locale.IsSet()) GTEST_SKIP() << locale.Lack();
    const Row kRows[] = {
        {KTPOSFMT_SAMPLES, 300 * kSecond, "14,400,000"}, {KTPOSFMT_SAMPLES, 104, "0"},
        {KTPOSFMT_TIME, 0, "00:00:00.000", "00:00:00"},  {KTPOSFMT_SAMPLES, 105, "1"},
        {KTPOSFMT_TIME, 863999000001, "00:23:59:59"},    {KTPOSFMT_TIME, 36621234000, "01:01:02.123", "01:01:02"},
        {KTPOSFMT_TIME, 1764010000000, "02:01:00:01"},   {KTPOSFMT_TIME, 599995000, "00:01:00.000", "00:01:00"},
        {KTPOSFMT_FRAMES, 416666, "1.000", "1"},         {KTPOSFMT_TIME, -kSecond, "-00:00:01.000", "-00:00:01"},
        {KTPOSFMT_MEASURES, 0, "1.1.000", "1.1"},        {KTPOSFMT_TIME, 863999000000, "23:59:59.900", "23:59:59"},
        {KTPOSFMT_MEASURES, 22500000, "2.1.480", "2.1"}, {KTPOSFMT_SECONDS, 12345678901, "1,234.568", "1,234"},
        {KTPOSFMT_SMPTE_30, 36000333334, "01:00:00:01"}, {KTPOSFMT_TIME_FRAMES, 36005000000, "01:00:00.12", "01:00:00"},
        {KTPOSFMT_SMPTE_DROP, 600600001, "00:01:00;02"}, {KTPOSFMT_TIME_FRAMES, 25 * kHour, "25:00:00.00", "25:00:00"},
        {KTPOSFMT_SMPTE_DROP, 600266667, "00:00:59;29"}, {KTPOSFMT_FRAMES, 500208333, "1,200.500", "1,200"},
        {KTPOSFMT_SMPTE_25, kSecond - 3, "00:00:00:24"}, {KTPOSFMT_MEASURES, 40000000000, "2,001.1.000", "2,001.1"},
        {KTPOSFMT_SMPTE_25, kSecond - 1, "00:00:01:00"}, {KTPOSFMT_SMPTE_2997, 36036000000, "01:00:00:00"},
        {KTPOSFMT_SMPTE_24, 25 * kHour, "01:00:00:00"},  {KTPOSFMT_MICROS, 12344, "1,234"},
        {KTPOSFMT_NANOS, -1234567, "-1,234,567"},        {KTPOSFMT_MICROS, 12345, "1,235"},
        {KTPOSFMT_FEET_16MM, kSecond, "0+24"},           {KTPOSFMT_MEASURES0, 22500000, "1.0.480", "1.0"},
        {KTPOSFMT_FEET_16MM, 2 * kSecond, "1+8"},        {KTPOSFMT_BEATS, 6012500000, "1,202.500", "1,202"},
        {KTPOSFMT_FEET_35MM, 10000416666, "1,500+1"},    {KTPOSFMT_FEET_35MM, kSecond, "1+8"},
        {KTPOSFMT_SHORT_TIME, 5 * kSecond, "0:05"},      {KTPOSFMT_CD, 36020133333, "01:00:02:01", "01:00:02"},
        {KTPOSFMT_SHORT_TIME, 599 * kSecond, "9:59"},    {KTPOSFMT_SMPTE_23976, 36036000001, "01:00:00:00"},
        {KTPOSFMT_SHORT_TIME, 900 * kSecond, "15:00"},   {20, 1234567, "1,234,567"},
        {KTPOSFMT_SHORT_TIME, kHour, "1:00:00"},         {-1, 1234567, "1,234,567"},
    };
    for (const Row& row : kRows) {
        const _ktposfmt format = Position(row.format);
        EXPECT_EQ(Shown(format, row.time), row.full) << row.format;
        const char* const short_form = row.short_form ? row.short_form : row.full;
        EXPECT_EQ(Shown(format, row.time, KTPOSTEXT_SHORT), short_form) << row.format;
        WCHAR text[64];
        for (const int32_t is_short : {0, 1}) {
            KtNanoTimeToText(text, &format, row.time, is_short);
            EXPECT_EQ(platform::Utf8(text), is_short ? short_form : row.full);
        }
    }
}

TEST(TimeText, WritesAsTheUserDoes) {
    const InLocale locale(0x0407);
    if (!locale.IsSet()) GTEST_SKIP() << locale.Lack();
    EXPECT_EQ(Shown(Position(KTPOSFMT_SECONDS), 12345678901), "1.234,568");
    EXPECT_EQ(Shown(Position(KTPOSFMT_TIME), kSecond), "00:00:01,000");
    EXPECT_EQ(Shown(Position(KTPOSFMT_FEET_35MM), 1000 * kSecond), "1.500+0");
    EXPECT_EQ(Shown(Position(KTPOSFMT_SMPTE_DROP), 600600001), "00:01:00;02");
}

TEST(TimeText, CountsFromTheOffset) {
    const InLocale locale(0x0409);
    if (!locale.IsSet()) GTEST_SKIP() << locale.Lack();
    const std::tuple<int32_t, int64_t, int64_t, uint32_t, const char*> kRows[] = {
        {KTPOSFMT_MEASURES, 20000000, 20000000, 0, "1.1.000"},
        {KTPOSFMT_MEASURES, 20000000, 20000000, KTPOSTEXT_RAW, "1.0.000"},
        {KTPOSFMT_TIME, 20000000, 0, 0, "-00:00:02.000"},
        {KTPOSFMT_TIME, 20000000, 0, KTPOSTEXT_RAW, "00:00:00.000"},
        {KTPOSFMT_NANOS, kMost64, kLeast64, 0, "-9,223,372,036,854,775,807"},
        {KTPOSFMT_NANOS, kLeast64, kMost64, 0, "9,223,372,036,854,775,807"},
    };
    for (const auto& [kind, offset, time, flags, shown] : kRows) {
        _ktposfmt format = Position(kind);
        format.offset = offset;
        EXPECT_EQ(Shown(format, time, flags), shown);
    }
}

TEST(TimeText, TakesAFormatOfTheCallers) {
    const InLocale locale(0x0409);
    if (!locale.IsSet()) GTEST_SKIP() << locale.Lack();
    const std::tuple<int32_t, const WCHAR*, const char*> kRows[] = {
        {KTPOSFMT_SECONDS, W("$.0f"), "3,600"},    {KTPOSFMT_SMPTE_DROP, W("%u h %02u"), "1 h 00"},
        {KTPOSFMT_TIME, W("%u:%u"), "1:0"},        {KTPOSFMT_SMPTE_24, W("%02u.%02u.%02u.%02u"), "00.59.56.09"},
        {KTPOSFMT_NANOS, W("%I64x"), "861c468c0"}, {KTPOSFMT_SECONDS, W("%.1f s"), "3600.0 s"},
        {99, W("%s"), "36,000,000,192"},           {KTPOSFMT_SHORT_TIME, W("%s"), "1:00:00"},
    };
    for (const auto& [kind, wanted, shown] : kRows) {
        WCHAR text[64];
        _ktposfmt format = Position(kind);
        if (kind == KTPOSFMT_SMPTE_24) format.offset = kSecond * 3 + 6250000;
        KtNanoTimeToTextFormat(text, &format, kHour + 192, wanted, 0);
        EXPECT_EQ(platform::Utf8(text), shown);
    }
}

TEST(TimeText, CutsToTheSize) {
    const InLocale locale(0x0409);
    if (!locale.IsSet()) GTEST_SKIP() << locale.Lack();
    for (const int32_t kind : {KTPOSFMT_TIME, KTPOSFMT_SMPTE_DROP, KTPOSFMT_NANOS, KTPOSFMT_MEASURES}) {
        const _ktposfmt format = Position(kind);
        WCHAR whole[64];
        KtNanoTimeToText(whole, &format, -1234567890, 0);
        for (uint32_t size = 0; size < 24; ++size) {
            WCHAR text[64] = W("~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~");
            const int32_t length = KtNanoTimeToTextN(text, size, &format, -1234567890, 0);
            EXPECT_EQ(text[size], W('~'));
            if (size == 0) {
                EXPECT_EQ(length, 0);
                continue;
            }
            EXPECT_EQ(static_cast<std::size_t>(length), WStringView(text).size());
            EXPECT_LT(WStringView(text).size(), size);
            // Digits lose their groups first where they have to be cut.
            if (kind != KTPOSFMT_NANOS) {
                EXPECT_EQ(WStringView(text), WStringView(whole).substr(0, size - 1)) << kind;
            }
        }
    }
    // Any time at any rate.
    for (int32_t kind = -1; kind <= 20; ++kind) {
        for (const double rate : {0.0, 1e-300, 1e300, std::numeric_limits<double>::quiet_NaN()}) {
            for (const int64_t time : {kLeast64, kMost64}) {
                const _ktposfmt format{kind, rate > 1 ? 48000u : 0u, rate, rate, 7, 0, 0, 0};
                EXPECT_NE(Shown(format, time), "");
                EXPECT_NE(Shown(format, time, KTPOSTEXT_SHORT), "");
            }
        }
    }
    const _ktposfmt format = Position(KTPOSFMT_TIME);
    WCHAR text[64];
    EXPECT_EQ(KtNanoTimeToTextExN(text, 64, &format, 100 * kHour, 0), 13);
    EXPECT_EQ(platform::Utf8(text), "100:00:00.000");  // hours run on
    EXPECT_EQ(KtNanoTimeToText(nullptr, &format, 0, 0), 0);
    EXPECT_EQ(KtNanoTimeToText(text, nullptr, 0, 0), 0);
    EXPECT_EQ(KtNanoTimeToTextN(nullptr, 9, &format, 0, 0), 0);
}

}  // namespace
