// Measures, beats and ticks through the built module.
#include "kernel/music_time.h"

#include <gtest/gtest.h>

#include <limits>
#include <tuple>

#include "kernel/position.h"
#include "platform/text.h"
#include "support/in_locale.h"

namespace {

using namespace support;

constexpr int32_t kMost32 = std::numeric_limits<int32_t>::max();
constexpr int64_t kMostU32 = std::numeric_limits<uint32_t>::max();

struct Place {
    int32_t measure, beat, tick;
    friend bool operator==(const Place&, const Place&) = default;
};
std::ostream& operator<<(std::ostream& out, const Place& place) {
    return out << place.measure << "." << place.beat << "." << place.tick;
}

Place PlaceOf(int64_t time, const _ktposfmt& format) {
    Place place{-9, -9, -9};
    KtNanoTimeToMeasures(time, &format, &place.measure, &place.beat, &place.tick);
    return place;
}

TEST(MusicTime, SplitsTimesIntoMeasures) {
    // 120 beats a minute are 5000000 units a beat.
    const std::tuple<int64_t, double, uint16_t, Place> kRows[] = {
        {0, 120, 4, {0, 0, 0}},        {19999999, 120, 4, {1, 0, 0}},  // rounding may have taken that much
        {5000000, 120, 4, {0, 1, 0}},  {22500000, 120, 4, {1, 0, 480}},
        {20000000, 120, 4, {1, 0, 0}}, {-20010000, 120, 4, {-1, 0, -1}},
        {20000000, 120, 3, {1, 1, 0}}, {5000000, std::numeric_limits<double>::quiet_NaN(), 4, {0, 0, 0}},
        {20000000, 60, 4, {0, 2, 0}},  {5000000, std::numeric_limits<double>::infinity(), 4, {kMost32, 0, 0}},
        {5000000, 120, 0, {0, 0, 0}},  {kMost64, 1e9, 1, {kMost32, 0, 0}},
        {5000000, 0, 4, {0, 0, 0}},    {kLeast64, 1e9, 1, {std::numeric_limits<int32_t>::min(), 0, 0}},
    };
    for (const auto& [time, tempo, beats_per_measure, place] : kRows) {
        _ktposfmt format = Position(KTPOSFMT_MEASURES);
        format.tempo = tempo;
        format.beatsPerMeasure = beats_per_measure;
        EXPECT_EQ(PlaceOf(time, format), place) << time << " at " << tempo;
    }
    const _ktposfmt format = Position(KTPOSFMT_MEASURES);
    KtNanoTimeToMeasures(1, &format, nullptr, nullptr, nullptr);
    Place place{1, 2, 3};
    KtNanoTimeToMeasures(1, nullptr, &place.measure, &place.beat, &place.tick);
    EXPECT_EQ(place, (Place{0, 0, 0}));
}

TEST(MusicTime, PrintsTicks) {
    const InLocale locale(0x0409);
    const struct {
        int64_t ticks;
        int32_t base, compact;
        uint32_t divisor;
        const char* text;
        uint16_t beat_value = 4;
        uint16_t beats_per_measure = 4;
        uint32_t ticks_per_beat = 960;
    } kRows[] = {
        {0, 0, 0, 1, "0.0.000"},    {3839, 1, 0, 10, "1.4.095"},     {3840 + 960 + 7, 1, 0, 1, "2.2.007"},
        {0, 1, 0, 1, "1.1.000"},    {-3841, 1, 0, 1, "-2.4.959"},    {3840 + 960 + 7, 0, 1, 1, "1.1"},
        {3839, 1, 0, 0, "1.4.959"}, {500, 1, 0, 1, "1.2.020", 8},    {480, 0, 0, 1, "0.0.000", 4, 4, 0},
        {-1, 0, 0, 1, "-1.3.959"},  {480, 1, 0, 1, "1.1.000", 0},    {kMost64, 0, 1, 1, "2147483647.2"},
        {-1, 1, 0, 1, "-1.4.959"},  {480, 0, 0, 1, "0.0.000", 4, 0}, {kLeast64, 0, 1, 1, "-2147483648.1"},
    };
    for (const auto& row : kRows) {
        _ktposfmt format = Position(KTPOSFMT_MEASURES);
        format.beatValue = row.beat_value;
        format.beatsPerMeasure = row.beats_per_measure;
        format.ticksPerBeat = row.ticks_per_beat;
        WCHAR text[64] = W("?");
        const int32_t length = KtTicksToText(text, &format, row.ticks, row.base, row.compact, row.divisor);
        EXPECT_EQ(platform::Utf8(text), row.text) << row.ticks;
        EXPECT_EQ(static_cast<std::size_t>(length), WStringView(text).size());
    }
    const _ktposfmt format = Position(KTPOSFMT_MEASURES);
    WCHAR text[64];
    // Ticks below 0 go back by whole measures, however many.
    KtMeasuresAndTicksToText(text, &format, 5, -3840 * 2 - 1, 0, 0, 1);
    EXPECT_EQ(platform::Utf8(text), "2.3.959");
    KtMeasuresAndTicksToText(text, &format, -1, 0, 1, 0, 1);
    EXPECT_EQ(platform::Utf8(text), "-1.1.000");
    EXPECT_EQ(KtTicksToText(nullptr, &format, 1, 0, 0, 1), 0);
    EXPECT_EQ(KtMeasuresAndTicksToText(text, nullptr, 1, 1, 0, 0, 1), 0);
}

TEST(MusicTime, ReadsPlacesIntoTimes) {
    constexpr int64_t kBeat = 5000000;
    const struct {
        const WCHAR* text;
        int64_t time;
        std::size_t end;
        uint32_t flags = 0;
        int32_t format = KTPOSFMT_MEASURES;
    } kRows[] = {
        {W("2.3.480"), 32500000, 7},
        {W("2.3.480"), 57500000, 7, 0, KTPOSFMT_MEASURES0},
        {W("1.1.000"), 0, 7},
        {W("2.3.480"), 57500000, 7, KTPOSTEXT_RAW},
        {W("0.0.960"), kBeat, 7},
        {W("3.2"), 45000000, 3, KTPOSTEXT_SHORT},
        {W("480"), kBeat / 2, 3},
        {W("3.2.480"), 45000000, 3, KTPOSTEXT_SHORT},
        {W("3.0"), 2 * kBeat, 3},
        {W("2"), kBeat, 1, KTPOSTEXT_SHORT},
        {W("3."), 2 * kBeat, 2},
        {W("99999999999.1.0"), 42949672920000000, 15},
        {W(""), 0, 0},
        {W("none"), 0, 0},
    };
    for (const auto& row : kRows) {
        const _ktposfmt format = Position(row.format);
        const WCHAR* end = nullptr;
        EXPECT_EQ(KtTextToMusicTimeToken(row.text, &format, row.flags, &end), row.time) << platform::Utf8(row.text);
        EXPECT_EQ(static_cast<std::size_t>(end - row.text), row.end) << platform::Utf8(row.text);
    }
    _ktposfmt format = Position(KTPOSFMT_MEASURES);
    EXPECT_EQ(KtTextToMusicTimeToken(nullptr, &format, 0, nullptr), 0);
    EXPECT_EQ(KtTextToMusicTimeToken(W("2"), nullptr, 0, nullptr), 0);
    format.tempo = 0;
    EXPECT_EQ(KtTextToMusicTimeToken(W("2.1.0"), &format, 0, nullptr), 0);
    format = Position(KTPOSFMT_MEASURES);
    format.ticksPerBeat = 0;
    EXPECT_EQ(KtTextToMusicTimeToken(W("2.1.77"), &format, 0, nullptr), 4 * kBeat);
}

TEST(MusicTime, ReadsPlacesIntoTicks) {
    const struct {
        const WCHAR* text;
        int32_t base;
        uint32_t multiplier;
        Place place;
        int64_t ticks;
    } kRows[] = {
        {W("2.3.480"), 0, 1, {2, 3, 480}, 11040},
        {W("2.3.480"), 1, 1, {1, 2, 480}, 6240},
        {W("2.3.48"), 1, 10, {1, 2, 480}, 6240},
        {W(" -2.3.480"), 1, 1, {-2, 2, 480}, -5280},
        {W("-1.4.959"), 1, 1, {-1, 3, 959}, -1},
        {W("2"), 1, 1, {1, 0, 0}, 3840},
        {W("2."), 0, 1, {2, 0, 0}, 7680},
        {W("0.0.5"), 1, 1, {0, 0, 5}, 5},
        {W("1.2.3.4"), 0, 1, {1, 2, 3}, 6 * 960 + 3},
        {W("-"), 1, 1, {0, 0, 0}, 0},
        {W("x"), 1, 1, {0, 0, 0}, 0},
        {nullptr, 1, 1, {0, 0, 0}, 0},
        {W("0.0.9999999999"), 0, 0xFFFFFFFF, {0, 0, kMost32}, kMostU32 * kMost32},
    };
    const _ktposfmt format = Position(KTPOSFMT_MEASURES);
    for (const auto& row : kRows) {
        Place place{-9, -9, -9};
        EXPECT_EQ(KtTextToMeasuresBeatsTicks(row.text, &format, row.base, row.multiplier, &place.measure, &place.beat,
                                             &place.tick),
                  row.ticks)
            << &row - kRows;
        EXPECT_EQ(place, row.place) << &row - kRows;
        EXPECT_EQ(KtTextToTicks(row.text, &format, row.base, row.multiplier), row.ticks);
    }
    EXPECT_EQ(KtTextToTicks(W("2"), nullptr, 0, 1), 0);
    _ktposfmt huge = format;
    huge.beatsPerMeasure = 0xFFFF;
    huge.ticksPerBeat = 0xFFFFFFFF;
    EXPECT_EQ(KtTextToTicks(W("9999999999"), &huge, 0, 1), kMost64);
    EXPECT_EQ(KtTextToTicks(W("-9999999999"), &huge, 0, 1), kLeast64);

    int32_t beats = -9, ticks = -9;
    EXPECT_EQ(KtTextToBeatsTicks(W("3.40"), &format, 10, &beats, &ticks), 3 * 960 + 400);
    EXPECT_TRUE(beats == 3 && ticks == 400) << beats << ' ' << ticks;
    EXPECT_EQ(KtTextToBeatsTicks(W("3"), &format, 1, nullptr, nullptr), 3 * 960);
    EXPECT_EQ(KtTextToBeatsTicks(nullptr, &format, 1, &beats, &ticks), 0);
    EXPECT_EQ(beats, 0);
}

}  // namespace
