// Timecode through the built module.
#include "kernel/smpte.h"

#include <gtest/gtest.h>

#include <limits>
#include <tuple>

#include "kernel/clock_time.h"

namespace {

constexpr uint32_t kMost32 = std::numeric_limits<uint32_t>::max();
constexpr int64_t kMost64 = std::numeric_limits<int64_t>::max();
constexpr int64_t kLeast64 = std::numeric_limits<int64_t>::min();

constexpr struct {
    uint32_t format, fps;
    double rate;
    uint32_t day;
} kFormats[] = {
    {1, 30, 30.0, 2592000}, {2, 30, 30000.0 / 1001, 2589408}, {3, 25, 25.0, 2160000},
    {4, 24, 24.0, 2073600}, {5, 30, 30000.0 / 1001, 2592000}, {6, 24, 24000.0 / 1001, 2073600},
};

std::string Text(const _smpteval& label) {
    char text[64];
    std::snprintf(text, sizeof text, "%02u:%02u:%02u:%02u", label.hours, label.minutes, label.seconds, label.frames);
    return text;
}

_smpteval LabelOf(uint32_t format, uint32_t count) {
    _smpteval label{format, 99, 99, 99, 99};
    KTSMPTE_FrameCountToSMPTE(&label, count);
    return label;
}

bool Same(const _smpteval& a, const _smpteval& b) { return a.format == b.format && KTSMPTE_SMPTECompare(&a, &b) == 0; }

TEST(Smpte, EveryFrameOfADayGoesToALabelAndBack) {
    for (const auto& row : kFormats) {
        int shown = 0;
        _smpteval counted{row.format, 0, 0, 0, 0};
        for (uint32_t n = 0; n < row.day && shown < 10; ++n) {
            const _smpteval label = LabelOf(row.format, n);
            const int64_t time = KTSMPTE_SMPTEToNanos(&label);
            _smpteval of_time{row.format, 0, 0, 0, 0};
            KTSMPTE_NanoToSMPTE(time, &of_time);
            _smpteval next = label;
            KTSMPTE_IncrementByFrame(&next);
            _smpteval back = next;
            KTSMPTE_DeccrementByFrame(&back, 0);
            const bool good = Same(label, counted) && KTSMPTE_SMPTEToFrameCount(&label) == n && Same(of_time, label) &&
                              Same(back, label) && label.frames < row.fps && label.seconds < 60 && label.minutes < 60 &&
                              std::abs(static_cast<double>(time) - n / row.rate * 1e7) < 1.5;
            if (!good) {
                ADD_FAILURE() << "format " << row.format << " frame " << n << " is " << Text(label);
                ++shown;
            }
            counted = next;
        }
        EXPECT_EQ(Text(counted), "00:00:00:00") << row.format;
        EXPECT_EQ(Text(LabelOf(row.format, row.day)), "00:00:00:00") << row.format;
        EXPECT_EQ(Text(LabelOf(row.format, row.day * 3 + 1)), "00:00:00:01") << row.format;
    }
}

TEST(Smpte, DropFrameLeavesTwoNumbersOutEachMinuteButEveryTenth) {
    uint32_t count = 0;  // of frames before the minute
    for (uint32_t minute = 0; minute < 24 * 60; ++minute) {
        const bool is_tenth = minute % 10 == 0;
        const _smpteval first{2, minute / 60, minute % 60, 0, is_tenth ? 0u : 2u};
        ASSERT_EQ(Text(LabelOf(2, count)), Text(first)) << count;
        for (const uint32_t frames : {0u, 1u, 2u}) {
            const _smpteval label{2, minute / 60, minute % 60, 0, frames};
            ASSERT_EQ(KTSMPTE_SMPTEToFrameCount(&label), is_tenth ? count + frames : count) << Text(label);
        }
        count += is_tenth ? 1800 : 1798;
        const _smpteval last{2, minute / 60, minute % 60, 59, 29};
        ASSERT_EQ(Text(LabelOf(2, count - 1)), Text(last)) << count - 1;
    }
    EXPECT_EQ(count, 2589408u);
}

TEST(Smpte, ReadsText) {
    const struct {
        uint32_t format;
        const WCHAR* text;
        const char* label;
        WCHAR rest = 0;
    } kRows[] = {
        {1, W("12"), "00:00:00:12"},       {1, W("123456"), "00:12:35:26"},
        {1, W("1:"), "00:00:01:00"},       {1, W("1:234"), "00:01:03:04"},  // 1, 2, 34
        {1, W("1:2:3:"), "01:02:03:00"},   {1, W("01:02:03;04"), "01:02:03:04"},
        {1, W("1::"), "00:01:00:00"},      {1, W("  7 8 "), "00:00:07:08"},
        {1, W(""), "00:00:00:00"},         {6, W("0:0:0:47"), "00:00:01:23"},
        {1, W("12345"), "00:01:24:15"},    {2, W("00:01:00;00"), "00:01:00:00"},
        {1, W("1:2:3:4 "), "01:02:03:04"}, {1, W("99:99:99:99"), "04:40:42:09"},
        {1, W("7.\t"), "00:00:07:00"},     {0, W("99:59:59:99"), "03:59:59:99"},
        {1, W("x1y2"), "00:00:01:02"},     {77, W("1:02:03:99"), "01:02:03:99"},
        {3, W("30"), "00:00:01:05"},       {1, W("1:2:3:4:5"), "01:02:03:04", W(' ')},
        {4, W("24"), "00:00:01:00"},       {1, W("1:2:3:4:"), "01:02:03:04", W(' ')},
        {1, W("   "), "00:00:00:00"},      {1, W("123456789"), "01:23:47:07", W(' ')},
        {1, nullptr, "00:00:00:00"},       {1, W("none"), "00:00:00:00", W(' ')},
    };
    for (const auto& row : kRows) {
        _smpteval label{row.format, 99, 99, 99, 99};
        const WCHAR rest = KTSMPTE_TextToSMPTE(row.text, &label);
        EXPECT_EQ(Text(label), row.label) << &row - kRows;
        EXPECT_EQ(rest, row.rest) << row.label;
        EXPECT_EQ(label.format, row.format);
    }
}

TEST(Smpte, AddsAndSubtractsRoundTheDay) {
    const std::tuple<uint32_t, const WCHAR*, const WCHAR*, const char*, const char*> kRows[] = {
        {1, W("01:00:00:00"), W("00:00:00:01"), "01:00:00:01", "00:59:59:29"},
        {1, W("00:00:00:00"), W("00:00:00:01"), "00:00:00:01", "23:59:59:29"},
        {1, W("12:00:00:00"), W("12:00:00:00"), "00:00:00:00", "00:00:00:00"},
        {2, W("00:00:59;29"), W("00:00:00;01"), "00:01:00:02", "00:00:59:28"},
        {2, W("00:00:00;00"), W("00:00:00;01"), "00:00:00:01", "23:59:59:29"},
        {2, W("00:10:00;00"), W("00:00:00;01"), "00:10:00:01", "00:09:59:29"},
        {3, W("23:59:59:24"), W("00:00:00:02"), "00:00:00:01", "23:59:59:22"},
        {4, W("00:00:01:00"), W("00:00:02:00"), "00:00:03:00", "23:59:59:00"},
        {6, W("23:00:00:00"), W("02:00:00:00"), "01:00:00:00", "21:00:00:00"},
    };
    for (const auto& [format, left, right, total, rest] : kRows) {
        _smpteval a{format, 0, 0, 0, 0}, b = a;
        KTSMPTE_TextToSMPTE(left, &a);
        KTSMPTE_TextToSMPTE(right, &b);
        _smpteval sum = a, difference = a;
        KTSMPTE_AddSMPTE(&sum, &b);
        KTSMPTE_SubtractSMPTE(&difference, &b);
        EXPECT_EQ(Text(sum), total);
        EXPECT_EQ(Text(difference), rest);
    }
    _smpteval many{1, kMost32, kMost32, kMost32, kMost32};
    const _smpteval one{1, 0, 0, 0, 1};
    KTSMPTE_AddSMPTE(&many, &one);
    EXPECT_LT(many.hours, 24u);
    // Of other formats there is no day to go round and no count; their frames are the 30th parts of a second.
    for (const uint32_t format : {0u, 7u, kMost32}) {
        _smpteval a{format, 1, 2, 3, 4};
        EXPECT_EQ(KTSMPTE_SMPTEToFrameCount(&a), 0u);
        EXPECT_EQ(KTSMPTE_SMPTEToNanos(&a), 0);
        KTSMPTE_AddSMPTE(&a, &one);
        KTSMPTE_SubtractSMPTE(&a, &one);
        EXPECT_EQ(Text(a), "01:02:03:04");
        EXPECT_EQ(Text(LabelOf(format, 1800)), "00:01:00:02");
        KTSMPTE_NanoToSMPTE(600000000, &a);
        EXPECT_EQ(Text(a), "00:01:00:02");
    }
}

TEST(Smpte, ComparesLabelsWhateverTheirFormats) {
    const _smpteval rows[] = {{1, 0, 0, 0, 0},   {2, 0, 0, 0, 1},  {3, 0, 0, 1, 0},
                              {4, 0, 1, 0, 0},   {5, 0, 1, 0, 29}, {6, 1, 0, 0, 0},
                              {0, 1, 59, 59, 0}, {1, 23, 0, 0, 0}, {1, kMost32, 0, 0, 0}};
    for (const _smpteval& a : rows) {
        for (const _smpteval& b : rows) {
            EXPECT_EQ(KTSMPTE_SMPTECompare(&a, &b), (&a > &b) - (&a < &b)) << Text(a) << " " << Text(b);
        }
    }
    const _smpteval other_format{6, 0, 0, 0, 0};
    EXPECT_EQ(KTSMPTE_SMPTECompare(&rows[0], &other_format), 0);
}

TEST(Smpte, StepsFromLabelsThatDoNotExist) {
    const std::tuple<_smpteval, const char*, const char*> kRows[] = {
        {{2, 0, 1, 0, 0}, "00:01:00:01", "00:00:59:29"},
        {{2, 0, 1, 0, 1}, "00:01:00:02", "00:00:59:29"},
        {{1, 0, 0, 0, 200}, "00:00:01:00", "00:00:00:199"},
        {{3, 31, 59, 59, 24}, "00:00:00:00", "31:59:59:23"},
        {{3, 32 + 5, 59, 59, 24}, "06:00:00:00", "37:59:59:23"},  // five bits of the hours count
        {{0, 0, 0, 0, 29}, "00:00:01:00", "00:00:00:28"},
        {{9, 0, 0, 59, 29}, "00:01:00:00", "00:00:59:28"},
        {{1, kMost32, kMost32, kMost32, kMost32},
         "4294967295:4294967295:4294967295:00",
         "4294967295:4294967295:4294967295:4294967294"},
    };
    for (const auto& [label, after, before] : kRows) {
        _smpteval next = label, previous = label;
        KTSMPTE_IncrementByFrame(&next);
        KTSMPTE_DeccrementByFrame(&previous, 7);
        EXPECT_EQ(Text(next), after);
        EXPECT_EQ(Text(previous), before);
    }
}

TEST(Smpte, TimesBeyondTheDayGoRoundIt) {
    const std::tuple<int64_t, uint32_t, const char*> kRows[] = {
        {-10, 1, "23:59:59:29"},           {-1, 1, "00:00:00:00"},  // rounding may have taken that much
        {-10000000, 1, "23:59:59:00"},     {864000000000LL * 10 + 400000, 3, "00:00:00:01"},
        {-864000000000, 3, "00:00:00:00"}, {864000000000LL * 100 - 400000, 3, "23:59:59:24"},
    };
    for (const auto& [time, format, expected] : kRows) {
        _smpteval label{format, 0, 0, 0, 0};
        KTSMPTE_NanoToSMPTE(time, &label);
        EXPECT_EQ(Text(label), expected);
    }
    for (uint32_t format = 0; format < 8; ++format) {
        for (const int64_t time : {kMost64, kLeast64}) {
            _smpteval label{format, 0, 0, 0, 0};
            KTSMPTE_NanoToSMPTE(time, &label);
            EXPECT_LT(label.hours, 24u);
        }
        const _smpteval many{format, kMost32, kMost32, kMost32, kMost32};
        EXPECT_GE(KTSMPTE_SMPTEToNanos(&many), 0);
    }
}

TEST(Smpte, CountsPlainNumbersAtAnyRate) {
    const double kNoNumber = std::numeric_limits<double>::quiet_NaN();
    const double kInfinite = std::numeric_limits<double>::infinity();
    const std::tuple<double, _smpteval, int64_t> kRows[] = {
        {24, {2, 0, 1, 0, 0}, 600000000},       {24, {0, 1, 0, 0, 12}, 36005000000}, {24, {0, 0, 0, 0, 1}, 416667},
        {48, {0, 0, 0, 0, 47}, 9791667},        {0, {0, 0, 0, 1, 5}, 10000000},      {-24, {0, 0, 0, 1, 5}, 10000000},
        {kNoNumber, {0, 0, 0, 1, 5}, 10000000}, {kInfinite, {0, 0, 0, 1, 5}, 0},  // not a number times anything
        {1e-300, {0, 0, 0, 0, 5}, kMost64},
    };
    for (const auto& [rate, value, time] : kRows) EXPECT_EQ(KTSMPTE_SmpteLikeToNanos(rate, &value), time) << rate;
}

TEST(Smpte, DoesNothingWithNull) {
    _smpteval label{1, 1, 2, 3, 4};
    KTSMPTE_FrameCountToSMPTE(nullptr, 1);
    KTSMPTE_NanoToSMPTE(1, nullptr);
    KTSMPTE_AddSMPTE(&label, nullptr);
    KTSMPTE_SubtractSMPTE(nullptr, &label);
    KTSMPTE_IncrementByFrame(nullptr);
    KTSMPTE_DeccrementByFrame(nullptr, 0);
    KtNanoTimeToHMSF(1, nullptr, 24, 0);
    EXPECT_EQ(KTSMPTE_SMPTEToFrameCount(nullptr), 0u);
    EXPECT_EQ(KTSMPTE_SMPTEToNanos(nullptr), 0);
    EXPECT_EQ(KTSMPTE_SmpteLikeToNanos(24, nullptr), 0);
    EXPECT_EQ(KTSMPTE_TextToSMPTE(W("1"), nullptr), 0);
    EXPECT_EQ(KTSMPTE_SMPTECompare(nullptr, &label), 0);
    EXPECT_EQ(KtHMSFToNanoTime(nullptr, 24), 0);
    EXPECT_EQ(Text(label), "01:02:03:04");
}

TEST(ClockTime, SplitsATimeAndPutsItTogether) {
    const std::tuple<int64_t, double, int32_t, const char*, int64_t> kRows[] = {
        {599800000, 25, 0, "00:01:00:00", 600000000}, {0, 24, 0, "00:00:00:00", 0},
        {599799999, 25, 0, "00:00:59:24", 599600000}, {36005000000, 24, 0, "01:00:00:12", 36005000000},
        {9995000, 1000, 0, "00:00:01:00", 10000000},  {864010000000, 24, 0, "00:00:01:00", 10000000},
        {9994999, 1000, 0, "00:00:00:999", 9990000},  {864010000000, 24, 1, "24:00:01:00", 864010000000},
        {-10000000, 24, 0, "00:00:00:00", 0},         {15000000, 0.001, 0, "00:00:01:00", 10000000},
        {15000000, 0, 0, "00:00:01:00", 10000000},    {15000000, 29.97, 0, "00:00:01:15", 15005005},
        {15000000, -24, 0, "00:00:01:00", 10000000},
    };
    for (const auto& [time, rate, keep_days, shown, back] : kRows) {
        _smpteval clock{0, 9, 9, 9, 9};
        KtNanoTimeToHMSF(time, &clock, rate, keep_days);
        EXPECT_EQ(Text(clock), shown) << time;
        EXPECT_EQ(KtHMSFToNanoTime(&clock, rate), back) << shown;
    }
    _smpteval timecode{2, 0, 0, 0, 0};
    KtNanoTimeToHMSF(600600001, &timecode, 99, 1);
    EXPECT_EQ(Text(timecode), "00:01:00:02");
    EXPECT_EQ(KtHMSFToNanoTime(&timecode, 99), 600600000);
    for (const double rate : {24.0, 25.0, 30.0, 48.0, 50.0, 60.0, 75.0, 1000.0}) {
        for (uint32_t n = 0; n < 7200 * rate; n += 1 + n / 10000) {
            const auto time = static_cast<int64_t>(n / rate * 1e7 + 0.5);
            _smpteval clock{};
            KtNanoTimeToHMSF(time, &clock, rate, 0);
            ASSERT_EQ(((clock.hours * 60 + clock.minutes) * 60 + clock.seconds) * rate + clock.frames, n) << rate;
            ASSERT_EQ(KtHMSFToNanoTime(&clock, rate), time) << rate << " " << n;
        }
    }
    for (const int64_t time : {kMost64, kLeast64}) {
        for (const double rate : {1e300, 1e-300, 24.0, std::numeric_limits<double>::quiet_NaN()}) {
            _smpteval clock{0, 9, 9, 9, 9};
            KtNanoTimeToHMSF(time, &clock, rate, 1);
            EXPECT_LT(clock.minutes, 60u);
            EXPECT_GE(KtHMSFToNanoTime(&clock, rate), 0);
        }
    }
}

}  // namespace
