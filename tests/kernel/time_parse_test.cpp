// Text as positions through the built module.
#include "kernel/time_parse.h"

#include <gtest/gtest.h>

#include <random>
#include <tuple>

#include "kernel/position.h"
#include "kernel/time_text.h"
#include "platform/text.h"
#include "support/in_locale.h"

namespace {

using namespace support;

constexpr uint32_t kShort = KTPOSTEXT_SHORT;

std::string Name(const WCHAR* text) { return text ? platform::Utf8(text) : "null"; }

TEST(TimeParse, ReadsEachFormat) {
    const InLocale locale(0x0409);
    if (!locale.IsSet()) GTEST_SKIP() << locale.Lack();
    struct Row {
        int32_t format;
        const WCHAR* text;
        int64_t time;
        uint32_t flags = 0;
    };
    const Row kHeld[] = {
        {KTPOSFMT_SAMPLES, W("99999999999999999999"), 2305843009213693952},
        {KTPOSFMT_SECONDS, W("999999999999999999"), 2305843009209999872},
        {KTPOSFMT_SECONDS, W("--999999999999999999"), 4611686018419999744},
        {KTPOSFMT_FRAMES, W("9999999999999999"), 2305843009213333504},
        {KTPOSFMT_MICROS, W("9,223,372,036,854,775,807"), kMost64},
    };
    // Of a time alone the last part is a fraction of a second; of feet, frames.
    const Row kRows[] = {
        {KTPOSFMT_SAMPLES, W("-48000"), -kSecond},    {KTPOSFMT_SAMPLES, W("14,400,000"), 300 * kSecond},
        {KTPOSFMT_TIME, W("-1.5"), -15000000},        {KTPOSFMT_SAMPLES, W("1"), 208},
        {KTPOSFMT_TIME, W("- .5"), -5000000},         {KTPOSFMT_TIME, W("01:01:02.123"), 36621230000},
        {KTPOSFMT_TIME, W("  7 "), 7 * kSecond},      {KTPOSFMT_TIME, W("1:30"), 90 * kSecond, kShort},
        {KTPOSFMT_TIME, W("1:30"), 13000000},         {KTPOSFMT_TIME, W("99999999999:0:0.0"), kMost64},
        {KTPOSFMT_SECONDS, W("-0.25"), -2500000},     {KTPOSFMT_SECONDS, W("1,234.5"), 12345000000},
        {KTPOSFMT_TIME_FRAMES, W("12"), 5000000},     {KTPOSFMT_TIME_FRAMES, W("01:00:00.12"), kHour + 5000000},
        {KTPOSFMT_FRAMES, W("1,200.5"), 500208333},   {KTPOSFMT_TIME_FRAMES, W("12"), 12 * kSecond, kShort},
        {KTPOSFMT_MEASURES, W("2.1.480"), 22500000},  {KTPOSFMT_FRAMES, W("1"), 416667},
        {KTPOSFMT_SMPTE_30, W("1"), 333334},          {KTPOSFMT_MEASURES, W("-2.1.480"), -22500000},
        {KTPOSFMT_SMPTE_25, W("1:00"), kSecond},      {KTPOSFMT_SMPTE_2997, W("01:00:00:00"), 36036000000},
        {KTPOSFMT_NANOS, W("-1,234,567"), -1234567},  {KTPOSFMT_SMPTE_DROP, W("00:01:00;02"), 600600000},
        {KTPOSFMT_MICROS, W("1,235"), 12350},         {KTPOSFMT_SMPTE_DROP, W("00:01:00;00"), 600600000},
        {KTPOSFMT_MEASURES0, W("1.0.480"), 22500000}, {KTPOSFMT_SMPTE_DROP, W("-10000"), -600600000},
        {KTPOSFMT_FEET_16MM, W("1+8"), 2 * kSecond},  {KTPOSFMT_SMPTE_24, W("1:00:00"), 60 * kSecond},
        {KTPOSFMT_FEET_16MM, W("48"), 2 * kSecond},   {KTPOSFMT_BEATS, W("12"), 0},
        {KTPOSFMT_FEET_35MM, W("12.5"), 82083333},    {KTPOSFMT_FEET_35MM, W("1,500+1"), 10000416666},
        {KTPOSFMT_FEET_35MM, W("3'"), 2 * kSecond},   {KTPOSFMT_FEET_35MM, W("3 feet"), 2 * kSecond},
        {KTPOSFMT_FEET_35MM, W("3,"), 2 * kSecond},   {KTPOSFMT_SMPTE_23976, W("01:00:00:00"), 36036000000},
        {KTPOSFMT_CD, W("01:00:02:01"), 36020133333}, {20, W("5"), 0},
        {KTPOSFMT_SHORT_TIME, W("0:05"), 0},          {-1, W("5"), 0},
    };
    const auto check = [](const Row& row) {
        _ktposfmt format = Position(row.format);
        EXPECT_EQ(KtTextToNanoTimeToken2(row.text, &format, 1, 2, 3, row.flags, nullptr), row.time) << Name(row.text);
        format.offset = 77;
        EXPECT_EQ(KtTextToNanoTimeToken2(row.text, &format, 1, 2, 3, row.flags | KTPOSTEXT_RAW, nullptr),
                  row.format == KTPOSFMT_MEASURES ? row.time + (row.time < 0 ? -25000000 : 25000000) : row.time)
            << Name(row.text);
        format.offset = row.time < 0 ? -1000 : 1000;
        const int64_t moved = row.time == kMost64 ? kMost64 : row.time + format.offset;
        EXPECT_EQ(KtTextToNanoTimeToken(row.text, &format, row.flags == KTPOSTEXT_SHORT, nullptr), moved)
            << Name(row.text);
    };
    for (const Row& row : kHeld) check(row);
    for (const Row& row : kRows) check(row);
}

TEST(TimeParse, HoldsToDefaultAndLimits) {
    const InLocale locale(0x0409);
    if (!locale.IsSet()) GTEST_SKIP() << locale.Lack();
    // The default is 700, the limits 100 and 5 seconds.
    constexpr int64_t kMost = 5 * kSecond;
    const std::tuple<int32_t, const WCHAR*, int64_t, int64_t, const WCHAR*> kRows[] = {
        {KTPOSFMT_TIME, W("٠:０.०٥"), 0, 500000, W("")},    {KTPOSFMT_NANOS, W("200"), 0, 200, W("")},
        {KTPOSFMT_NANOS, W("200 x"), 0, 200, W(" x")},      {KTPOSFMT_NANOS, W("20"), 0, 100, W("")},
        {KTPOSFMT_SECONDS, W("1.5s"), 0, 15000000, W("s")}, {KTPOSFMT_SECONDS, W("6"), 0, kMost, W("")},
        {KTPOSFMT_SECONDS, W("soon"), 0, 700, W("soon")},   {KTPOSFMT_NANOS, W("x"), 0, 700, W("x")},
        {KTPOSFMT_NANOS, W("0 x"), 0, 100, W(" x")},        {KTPOSFMT_NANOS, W("0x"), 0, 700, W("x")},
        {KTPOSFMT_FRAMES, W("one"), 0, 700, W("one")},      {KTPOSFMT_NANOS, W("-x"), 50, 700, W("x")},
        {KTPOSFMT_SAMPLES, W("one"), 0, 700, W("one")},     {KTPOSFMT_NANOS, W(""), 0, 700, W("")},
        {KTPOSFMT_TIME, W("1.5"), 0, 15000000, W("")},      {KTPOSFMT_NANOS, W("  "), 0, 700, W("")},
        {KTPOSFMT_TIME, W("now"), 0, 700, W("now")},        {KTPOSFMT_NANOS, W(" - "), 0, 100, W("")},
        {KTPOSFMT_TIME, W("0:0:0:0:1"), 0, 700, W(":1")},   {KTPOSFMT_NANOS, W(""), 50, 750, W("")},
        {KTPOSFMT_TIME, W("0:0:0:0 1"), 0, 100, W(" 1")},   {KTPOSFMT_NANOS, W("200"), 50, 250, W("")},
        {KTPOSFMT_TIME_FRAMES, W("now"), 0, 700, W("now")}, {KTPOSFMT_NANOS, W("0"), 150, 150, W("")},
        {KTPOSFMT_TIME_FRAMES, W("12"), 0, 5000000, W("")}, {KTPOSFMT_NANOS, W("-200"), 0, 100, W("")},
        {KTPOSFMT_MEASURES, W("1.1.0"), 0, 100, W("")},     {KTPOSFMT_NANOS, nullptr, 0, 700, W("")},
        {KTPOSFMT_MEASURES, W("one"), 0, 700, W("one")},    {KTPOSFMT_SMPTE_24, W("0"), 0, 100, W("")},
        {KTPOSFMT_SMPTE_DROP, W("now"), 9, 700, W("now")},  {KTPOSFMT_CD, W("now"), 0, 700, W("now")},
        {KTPOSFMT_SMPTE_24, W("1:00"), 0, kSecond, W("")},  {KTPOSFMT_BEATS, W("5"), 0, 100, W("")},
        {KTPOSFMT_FEET_16MM, W("now"), 0, 700, W("now")},
    };
    for (const auto& [kind, text, offset, time, rest] : kRows) {
        _ktposfmt format = Position(kind);
        format.offset = offset;
        const WCHAR* end = nullptr;
        EXPECT_EQ(KtTextToNanoTimeTokenEx(text, &format, 0, 700, 100, kMost, &end), time) << Name(text);
        EXPECT_EQ(Name(end), Name(rest)) << Name(text);
        EXPECT_EQ(KtTextToNanoTimeToken2(text, &format, 700, 100, kMost, KTPOSTEXT_LIMITS, nullptr), time);
    }
    const _ktposfmt format = Position(KTPOSFMT_NANOS);
    // The minimum comes first.
    EXPECT_EQ(KtTextToNanoTimeTokenEx(W("5"), &format, 0, 0, 20, 10, nullptr), 20);
    EXPECT_EQ(KtTextToNanoTimeTokenEx(W("50"), &format, 0, 0, 20, 10, nullptr), 10);
    EXPECT_EQ(KtTextToNanoTimeToken(W("5"), nullptr, 0, nullptr), 0);
}

TEST(TimeParse, ReadsMilliseconds) {
    constexpr int64_t kMost = 2147483647000;
    const std::tuple<const WCHAR*, int64_t, int64_t, std::size_t> kRows[] = {
        {W("5"), 5000, 5000, 1},
        {W(" 5"), 500, 5000, 2},
        {W(".25"), 250, 25000, 3},
        {W("5."), 5000, 300000, 2},
        {W("1.5"), 1500, 65000, 3},
        {W("1.05"), 1050, 65000, 4},
        {W("1.005"), 1005, 65000, 5},
        {W("1.0059"), 1005, 119000, 6},
        {W("1.123456789012"), 1123, 60000 + kMost, 14},
        {W("2:1.5"), 121500, 7265000, 5},
        {W("1:2:3"), 62300, 3723000, 5},
        {W("1:2:3.4"), 3723400, 3723000, 7},
        {W("1:2:3:4:5"), 3723400, 3723000, 7},
        {W("1h"), 1000, 60000, 2},
        {W(""), 0, 0, 0},
        {W("now"), 0, 0, 0},
        {W("12345678901234567890123456789012"), kMost + 200, 60 * kMost + 2000, 32},
    };
    for (const auto& [text, full, short_form, full_end] : kRows) {
        const WCHAR* end = nullptr;
        EXPECT_EQ(KtTextToTimeToken(text, nullptr, 0, &end), full) << Name(text);
        EXPECT_EQ(static_cast<std::size_t>(end - text), full_end) << Name(text);
        EXPECT_EQ(KtTextToTimeToken(text, nullptr, 1, nullptr), short_form) << Name(text);
    }
    EXPECT_EQ(KtTextToTimeToken(nullptr, nullptr, 0, nullptr), 0);
}

TEST(TimeParse, DividesByNoRateThatIsNotAboveZero) {
    const InLocale locale(0x0409);
    _ktposfmt format = Position(KTPOSFMT_TIME_FRAMES);
    format.frameRate = 0;
    EXPECT_EQ(KtTextToHMSFToken(W("1:2:3"), &format, 0, nullptr), 62 * kSecond);
    EXPECT_EQ(KtTextToFeetAndFramesToken(W("1+2"), &format, 1), 0);
    format.frameRate = 1000;
    EXPECT_EQ(KtTextToFeetAndFramesToken(W("3"), &format, 1), 30000);
    format.sampleRate = 0;
    format.format = KTPOSFMT_SAMPLES;
    EXPECT_EQ(KtTextToNanoTimeToken(W("5"), &format, 0, nullptr), 0);
    EXPECT_EQ(KtTextToHMSFToken(W("5"), nullptr, 0, nullptr), 0);
    EXPECT_EQ(KtTextToFeetAndFramesToken(nullptr, &format, 0), 0);
}

// What is shown is read as a time that is shown alike, no further from the first than the text can tell.
TEST(TimeParse, AgreesWithWhatIsShown) {
    constexpr int64_t kDay = 24 * kHour;
    const struct {
        int32_t format;
        double unit;  // of the text, in seconds
        int64_t most;
        uint32_t flags = 0;
    } kRows[] = {
        {KTPOSFMT_TIME, 0.001, 863999000000},        {KTPOSFMT_SAMPLES, 1 / 48000.0, 1000 * kDay},
        {KTPOSFMT_TIME, 1, 863999000000, kShort},    {KTPOSFMT_TIME_FRAMES, 1 / 24.0, 1000 * kDay},
        {KTPOSFMT_SECONDS, 0.001, 1000 * kDay},      {KTPOSFMT_TIME_FRAMES, 1, 1000 * kDay, kShort},
        {KTPOSFMT_SECONDS, 1, 1000 * kDay, kShort},  {KTPOSFMT_FRAMES, 1 / 24.0, 1000 * kDay, kShort},
        {KTPOSFMT_FRAMES, 0.001 / 24, 1000 * kDay},  {KTPOSFMT_MEASURES, 0.5, 18000000000, kShort},
        {KTPOSFMT_MEASURES, 0.5 / 960, 18000000000}, {KTPOSFMT_SMPTE_30, 1 / 30.0, kDay - kSecond},
        {KTPOSFMT_SMPTE_2997, 1.001 / 30, kDay},     {KTPOSFMT_SMPTE_DROP, 1.001 / 30, kDay - kSecond},
        {KTPOSFMT_MICROS, 1e-6, kMost64 / 2},        {KTPOSFMT_SMPTE_25, 1 / 25.0, kDay - kSecond},
        {KTPOSFMT_FEET_16MM, 1 / 24.0, 1000 * kDay}, {KTPOSFMT_SMPTE_24, 1 / 24.0, kDay - kSecond},
        {KTPOSFMT_FEET_35MM, 1 / 24.0, 1000 * kDay}, {KTPOSFMT_NANOS, 1e-7, kMost64},
        {KTPOSFMT_CD, 1 / 75.0, kDay - kSecond},     {KTPOSFMT_MEASURES0, 0.5 / 960, 18000000000},
        {KTPOSFMT_SMPTE_23976, 1.001 / 24, kDay},
    };
    std::mt19937_64 random(20);
    int in_their_locale = 0;
    for (const LCID lcid : {0x0409u, 0x0407u, 0x040Cu, 0x041Fu}) {
        const InLocale locale(lcid);
        if (!locale.IsSet()) continue;
        ++in_their_locale;
        for (const auto& row : kRows) {
            int shown = 0;
            std::uniform_int_distribution<int64_t> times(-row.most, row.most);
            for (int i = 0; i < 3000 && shown < 5; ++i) {
                _ktposfmt format = Position(row.format);
                format.offset = i % 3 * 1234567;
                const int64_t time = times(random) / 2 + format.offset;
                WCHAR first[128], second[128];
                KtNanoTimeToTextEx(first, &format, time, row.flags);
                const int64_t read = KtTextToNanoTimeToken2(first, &format, 0, 0, 0, row.flags, nullptr);
                KtNanoTimeToTextEx(second, &format, read, row.flags);
                const double away = std::abs(static_cast<double>(read - time)) * 1e-7;
                // A little less than nothing is shown with a sign and read as nothing.
                const bool lost_sign = read == format.offset && first[0] == W('-');
                if (WStringView(first + lost_sign) == WStringView(second) && away <= row.unit * 1.001 + 2e-7) continue;
                ADD_FAILURE() << row.format << " at " << time << ": " << Name(first) << " is read as " << read
                              << " and shown as " << Name(second) << " in " << lcid;
                ++shown;
            }
        }
    }
    if (in_their_locale == 0) GTEST_SKIP() << "needs a user of one of these locales";
}

}  // namespace
