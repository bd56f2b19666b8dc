// The fast tables against the slow formulas, and the formulas against published numbers.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "substitutes/decoder/colour.h"
#include "substitutes/decoder/gamma_curves.h"
#include "substitutes/decoder/light_steps.h"
#include "substitutes/decoder/look.h"
#include "substitutes/decoder/picture_coding.h"
#include "substitutes/decoder/tone_curve.h"
#include "substitutes/decoder_library.h"

namespace clipfio::decoder::test {
namespace {

using R = DecodeSettingsRecord;

Vector3 Develop(const Look& look, PictureCoding coding, const uint16_t* rgb) {
    Vector3 light{};
    for (size_t c = 0; c < 3; ++c) light[c] = look.ExposedLight(c, LinearFromCoded(coding, rgb[c] / 65535.0));
    light = look.Mixing() * light;
    for (size_t c = 0; c < 3; ++c) light[c] = look.Signal(c, light[c]);
    return light;
}

// Settings that a user might well have; every third record leaves the colours unmixed, so that both ways are taken.
R RandomLook(std::mt19937& random, int number) {
    const auto pick = [&random](float least, float most) {
        return std::uniform_real_distribution<float>(least, most)(random);
    };
    R look;
    const bool mixes = number % 3 != 0;
    if (random() % 2 != 0) look.colorTemperature = pick(2500, 9000);
    if (random() % 2 != 0) look.tint = pick(-30, 30);
    if (random() % 2 != 0) look.exposureCompensation = pick(-2, 2);
    if (random() % 2 != 0) look.gainRed = pick(0.5f, 2);
    if (random() % 3 == 0) look.drx = pick(0, 1);
    if (random() % 3 == 0) look.shadow = pick(-2, 2);
    if (random() % 3 == 0) look.flut = pick(-2, 2);
    if (random() % 3 == 0) look.deb = 1;
    if (mixes) look.saturation = pick(0, 2);
    if (random() % 2 != 0) look.contrast = pick(-1, 1);
    if (random() % 2 != 0) look.brightness = pick(-3, 3);
    for (LiftGammaGain* grade : {&look.lggRed, &look.lggGreen, &look.lggBlue}) {
        if (random() % 2 != 0) *grade = {pick(-0.1f, 0.1f), pick(0.6f, 1.6f), pick(0.7f, 1.4f)};
    }
    for (UserCurvePoints* curve : {&look.userCurve, &look.userCurveRed, &look.userCurveBlue}) {
        if (random() % 3 == 0) curve->xy[5] = pick(0.35f, 0.65f);
    }
    // Not 14, whose black is steeper than the steps of the tables: there only 8 bits are exact.
    constexpr uint32_t kCurves[] = {0, 1, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 15, 16, 18};
    constexpr uint32_t kSpaces[] = {0, 1, 2, 3, 4, 5, 6, 8, 9, 11, 12, 13, 15, 16, 17};
    look.imageGammaCurve = kCurves[random() % std::size(kCurves)];
    look.imageColorSpace = mixes ? kSpaces[random() % std::size(kSpaces)] : 1;
    return look;
}

TEST(LookReference, FastPicturesAreTheSlowOnes) {
    constexpr uint32_t kWidth = 300, kHeight = 3;  // longer than a run of the fast loops, and no multiple of it
    std::mt19937 random(1);
    for (const PictureCoding coding : {PictureCoding::Linear, PictureCoding::Rec709, PictureCoding::Srgb}) {
        const std::vector<uint16_t> picture = NoisePicture(kWidth, kHeight, 3);
        const TestFile file;
        WriteClip(file, {.width = kWidth, .height = kHeight, .coding = coding}, {picture});
        const TestClip clip(file);
        for (int number = 0; number < 24; ++number) {
            const R settings = RandomLook(random, number);
            const Look look(settings);
            const std::vector<uint16_t> fine = clip.Rgb16(0, DecodeMode::FullPremium, settings);
            const std::vector<uint8_t> coarse = clip.Bgra8(0, DecodeMode::FullPremium, settings);
            ASSERT_EQ(fine.size(), picture.size());
            ASSERT_EQ(coarse.size(), picture.size() / 3 * 4);
            double worst = 0, worst_coarse = 0;
            size_t off = 0;  // by more than rounding
            for (size_t pixel = 0; pixel < picture.size() / 3; ++pixel) {
                const Vector3 wanted = Develop(look, coding, picture.data() + pixel * 3);
                for (size_t c = 0; c < 3; ++c) {
                    const double error = std::fabs(fine[pixel * 3 + c] - wanted[c] * 65535.0);
                    worst = std::max(worst, error);
                    if (error > 0.6) ++off;
                    worst_coarse = std::max(worst_coarse, std::fabs(coarse[pixel * 4 + 2 - c] - wanted[c] * 255.0));
                }
            }
            // Only where a curve bends inside a step of the tables, as it does where lift cuts off the black.
            EXPECT_LE(off, picture.size() / 200) << "coding " << static_cast<uint32_t>(coding) << ", record " << number;
            EXPECT_LE(worst, 32.0) << "coding " << static_cast<uint32_t>(coding) << ", record " << number;
            EXPECT_LE(worst_coarse, 1.0) << "coding " << static_cast<uint32_t>(coding) << ", record " << number;
        }
    }
}

TEST(LookReference, PlacesOnTheScaleOfLightGoBothWays) {
    for (const float light : {0.0f, 1e-6f, 0.001f, 0.18f, 1.0f, 17.3f, 255.0f}) {
        EXPECT_NEAR(PlaceLight(LightPlace(light)), light, 1e-9 + light * 1e-6);
    }
    for (const float black : {-0.0f, -1e-9f, -1.0f, -1e30f}) EXPECT_EQ(LightPlace(black), 0) << black;
    for (const float white : {256.0f, 1e6f, 1e30f})
        EXPECT_EQ(LightPlace(white) >> kStepShift, kLightSteps - 1) << white;
}

TEST(LookReference, GammaCurvesMeetTheirPublishedPoints) {
    constexpr struct {
        uint32_t curve;
        double light, signal;
    } kPoints[] = {
        {0, 0.5, 0.5},           {1, 0.018, 0.081},        {1, 0.5, 0.705436},      {1, 1.0, 1.0},
        {8, 0.002, 0.02584},     {8, 0.5, 0.735357},       {15, 0.5, 0.749154},     {14, 1.0, 0.508078},  // 100 candela
        {14, 10.0, 0.751827},    {14, 100.0, 1.0},         {16, 0.0, 0.0},          {16, 0.18, 1.0 / 3.0},
        {18, 0.0, 0.091551},     {18, 0.18, 1.0 / 3.0},    {4, 0.0, 95.0 / 1023.0}, {4, 1.0, 685.0 / 1023.0},
        {5, 0.0, 95.0 / 1023.0}, {5, 1.0, 985.0 / 1023.0}, {6, 0.0, 64.0 / 1023.0}, {6, 1.0, 940.0 / 1023.0},
    };
    for (const auto& point : kPoints) {
        R settings;
        settings.imageGammaCurve = point.curve;
        settings.pdLogBlackPoint = 64;
        settings.pdLogWhitePoint = 940;
        settings.pdLogGamma = 1.7f;
        EXPECT_NEAR(GammaCurve(settings)(point.light), point.signal, 2e-5) << point.curve << " at " << point.light;
    }
}

TEST(LookReference, ColourSpacesMatchTheirPublishedMatrices) {
    const std::pair<uint32_t, Matrix3> kPublished[] = {
        {1, {}},
        {4, {}},
        {5, {{{{0.7152, 0.2848, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0412, 0.9588}}}}},
        {13, {{{{0.6274, 0.3293, 0.0433}, {0.0691, 0.9195, 0.0114}, {0.0164, 0.0880, 0.8956}}}}},
        {17, {{{{0.5293, 0.3301, 0.1406}, {0.0983, 0.8735, 0.0283}, {0.0169, 0.1177, 0.8655}}}}},
    };
    for (const auto& [space, wanted] : kPublished) {
        const Matrix3 matrix = ColourSpaceMatrix(space);
        for (size_t i = 0; i < 9; ++i) EXPECT_NEAR(matrix.rows[i / 3][i % 3], wanted.rows[i / 3][i % 3], 1e-3) << space;
    }
}

TEST(LookReference, WhiteBalanceKeepsTheLightOfGrey) {
    EXPECT_EQ(WhiteBalanceGains(5600, 0), (Vector3{1, 1, 1}));
    for (const double kelvin : {1700.0, 3200.0, 5600.0, 6500.0, 20000.0, 100000.0}) {
        for (const double tint : {-100.0, 0.0, 100.0}) {
            const Vector3 gains = WhiteBalanceGains(kelvin, tint);
            double luminance = 0;
            for (size_t c = 0; c < 3; ++c) luminance += kLuminance[c] * gains[c];
            EXPECT_NEAR(luminance, 1.0, 1e-12);
            EXPECT_TRUE(std::all_of(gains.begin(), gains.end(), [](double g) { return g > 0.0 && g < 100.0; }))
                << kelvin;
        }
    }
}

// One stop is twice the light, whichever setting it comes from.
TEST(LookReference, AStopIsAStop) {
    R exposure, iso, gain;
    exposure.exposureCompensation = 1.0f;
    iso.imageIso = 640;
    gain.gainRed = gain.gainGreen = gain.gainBlue = 2.0f;
    for (const R& settings : {exposure, iso, gain}) {
        for (size_t c = 0; c < 3; ++c) EXPECT_DOUBLE_EQ(Look(settings).ExposedLight(c, 0.1), 0.2);
    }
}

TEST(LookReference, ToneCurvesGoThroughTheirPointsAndNeverTurnBack) {
    const struct {
        const char* name;
        UserCurvePoints points;
        bool straight;
    } kCases[] = {
        {"default", {}, true},
        {"on the line", {{0, 0, 0.1f, 0.1f, 0.5f, 0.5f, 0.6f, 0.6f, 1, 1}}, true},
        {"S", {{0, 0, 0.25f, 0.15f, 0.5f, 0.5f, 0.75f, 0.85f, 1, 1}}, false},
        {"flat part", {{0, 0, 0.25f, 0.5f, 0.5f, 0.5f, 0.75f, 0.5f, 1, 1}}, false},
        {"steep", {{0, 0, 0.49f, 0.01f, 0.5f, 0.5f, 0.51f, 0.99f, 1, 1}}, false},
        {"ends inside", {{0.2f, 0.1f, 0.3f, 0.2f, 0.5f, 0.5f, 0.6f, 0.7f, 0.8f, 0.9f}}, false},
    };
    for (const auto& test : kCases) {
        const ToneCurve curve(test.points);
        EXPECT_EQ(curve.IsStraight(), test.straight) << test.name;
        for (size_t i = 0; i < 10; i += 2) {
            EXPECT_NEAR(curve(test.points.xy[i]), test.points.xy[i + 1], 1e-6) << test.name;
        }
        for (int i = 1; i <= 1200; ++i) EXPECT_GE(curve(i / 1000.0), curve((i - 1) / 1000.0) - 1e-12) << test.name << i;
    }
}

TEST(LookReference, ToneCurvesBearAnyPoints) {
    const float nan = std::nanf("");
    const UserCurvePoints kBad[] = {
        {{1, 1, 0.75f, 0.75f, 0.5f, 0.5f, 0.25f, 0.25f, 0, 0}},  // backwards
        {{nan, nan, nan, nan, nan, nan, nan, nan, nan, nan}},
        {{0.5f, 0, 0.5f, 0.2f, 0.5f, 0.4f, 0.5f, 0.6f, 0.5f, 0.8f}},  // all at one place
        {{-5, -5, 1e30f, 1e30f, 0, 0, 0, 0, 1, 1}},
    };
    for (const UserCurvePoints& points : kBad) {
        for (int i = -100; i < 1500; ++i) {
            const double y = ToneCurve(points)(i / 1000.0);
            ASSERT_TRUE(std::isfinite(y) && y >= -0.1 - 1e-9 && y <= 1.5) << i;
        }
    }
    EXPECT_TRUE(ToneCurve(kBad[0]).IsStraight());
    EXPECT_TRUE(ToneCurve(kBad[1]).IsStraight());
}

}  // namespace
}  // namespace clipfio::decoder::test
