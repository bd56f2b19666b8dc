// Each setting shows in the picture, in the direction that its name promises.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>

#include "substitutes/decoder_library.h"

namespace clipfio::decoder::test {
namespace {

using Picture = std::vector<uint16_t>;
using Measure = double (*)(const Picture&);

constexpr uint32_t kWidth = 16, kHeight = 2;

// A row of greys from near black to near white, and a row of soft colours.
Picture TestCard() {
    Picture card;
    for (uint32_t x = 0; x < kWidth; ++x) card.insert(card.end(), 3, static_cast<uint16_t>(2000 + x * 4000));
    for (uint32_t x = 0; x < kWidth; ++x) {
        for (uint32_t c = 0; c < 3; ++c) card.push_back(static_cast<uint16_t>((x % 3 == c ? 34000 : 22000) + x * 400));
    }
    return card;
}

template <class Value>
double MeanOver(const Picture& p, Value value) {
    double sum = 0;
    for (size_t i = 0; i < p.size(); i += 3) sum += value(p[i] / 65535.0, p[i + 1] / 65535.0, p[i + 2] / 65535.0);
    return sum / static_cast<double>(p.size() / 3);
}

// Weights in halves.
template <int R, int G, int B>
double Mean(const Picture& p) {
    return MeanOver(p, [](double r, double g, double b) { return (R * r + G * g + B * b) / 2; });
}
constexpr Measure Red = Mean<2, 0, 0>, Green = Mean<0, 2, 0>, Blue = Mean<0, 0, 2>;
constexpr Measure Warmth = Mean<2, 0, -2>, Magenta = Mean<1, -2, 1>;
double Luma(double r, double g, double b) { return 0.2126 * r + 0.7152 * g + 0.0722 * b; }
double Light(const Picture& p) { return MeanOver(p, Luma); }
double Colour(const Picture& p) {
    return MeanOver(p, [](double r, double g, double b) { return std::max({r, g, b}) - std::min({r, g, b}); });
}
double Spread(const Picture& p) {
    const double mean = Light(p);
    return MeanOver(p, [mean](double r, double g, double b) { return std::fabs(Luma(r, g, b) - mean); });
}
double Shadows(const Picture& p) { return MeanOver({p.begin(), p.begin() + 12}, Luma); }
double Highlights(const Picture& p) { return MeanOver({p.begin() + 36, p.begin() + 48}, Luma); }

struct Setting {
    const char* name;
    std::function<void(DecodeSettingsRecord&)> lower, higher;  // null: the neutral picture
    Measure measure;                                           // greater in the higher one
};

template <class Field>
std::function<void(DecodeSettingsRecord&)> Set(Field DecodeSettingsRecord::*field, Field value) {
    return [=](DecodeSettingsRecord& s) { s.*field = value; };
}

std::function<void(DecodeSettingsRecord&)> Grade(LiftGammaGain DecodeSettingsRecord::*channel,
                                                 float LiftGammaGain::*part, float value) {
    return [=](DecodeSettingsRecord& s) { (s.*channel).*part = value; };
}

// Raises or lowers the middle of a curve.
std::function<void(DecodeSettingsRecord&)> Bend(UserCurvePoints DecodeSettingsRecord::*curve, float middle) {
    return [=](DecodeSettingsRecord& s) { (s.*curve).xy[5] = middle; };
}

using R = DecodeSettingsRecord;
using L = LiftGammaGain;

const Setting kSettings[] = {
    {"ColorTemperature", Set(&R::colorTemperature, 3200.0f), Set(&R::colorTemperature, 8000.0f), Warmth},
    {"ColorTemperature, ends", Set(&R::colorTemperature, 1700.0f), Set(&R::colorTemperature, 100000.0f), Warmth},
    {"Tint", Set(&R::tint, -40.0f), Set(&R::tint, 40.0f), Magenta},
    {"ExposureCompensation", Set(&R::exposureCompensation, -1.0f), Set(&R::exposureCompensation, 0.5f), Light},
    {"GainRed", Set(&R::gainRed, 0.8f), Set(&R::gainRed, 1.2f), Red},
    {"GainGreen", Set(&R::gainGreen, 0.8f), Set(&R::gainGreen, 1.2f), Green},
    {"GainBlue", Set(&R::gainBlue, 0.8f), Set(&R::gainBlue, 1.2f), Blue},
    {"Saturation", Set(&R::saturation, 0.5f), Set(&R::saturation, 1.5f), Colour},
    {"Contrast", Set(&R::contrast, -0.5f), Set(&R::contrast, 0.5f), Spread},
    {"Brightness", Set(&R::brightness, -2.0f), Set(&R::brightness, 2.0f), Light},
    {"DRX", Set(&R::drx, 1.0f), nullptr, Highlights},
    {"Shadow", Set(&R::shadow, -1.0f), Set(&R::shadow, 1.0f), Shadows},
    {"FLUT", Set(&R::flut, -1.0f), Set(&R::flut, 1.0f), Light},
    {"DEB", Set(&R::deb, uint8_t{1}), nullptr, Shadows},
    {"ImageISO", Set(&R::imageIso, uint64_t{200}), Set(&R::imageIso, uint64_t{500}), Light},
    {"LggLiftRed", Grade(&R::lggRed, &L::lift, -0.1f), Grade(&R::lggRed, &L::lift, 0.1f), Red},
    {"LggLiftGreen", Grade(&R::lggGreen, &L::lift, -0.1f), Grade(&R::lggGreen, &L::lift, 0.1f), Green},
    {"LggLiftBlue", Grade(&R::lggBlue, &L::lift, -0.1f), Grade(&R::lggBlue, &L::lift, 0.1f), Blue},
    {"LggGammaRed", Grade(&R::lggRed, &L::gamma, 0.8f), Grade(&R::lggRed, &L::gamma, 1.2f), Red},
    {"LggGammaGreen", Grade(&R::lggGreen, &L::gamma, 0.8f), Grade(&R::lggGreen, &L::gamma, 1.2f), Green},
    {"LggGammaBlue", Grade(&R::lggBlue, &L::gamma, 0.8f), Grade(&R::lggBlue, &L::gamma, 1.2f), Blue},
    {"LggGainRed", Grade(&R::lggRed, &L::gain, 0.8f), Grade(&R::lggRed, &L::gain, 1.2f), Red},
    {"LggGainGreen", Grade(&R::lggGreen, &L::gain, 0.8f), Grade(&R::lggGreen, &L::gain, 1.2f), Green},
    {"LggGainBlue", Grade(&R::lggBlue, &L::gain, 0.8f), Grade(&R::lggBlue, &L::gain, 1.2f), Blue},
    {"UserCurve", Bend(&R::userCurve, 0.4f), Bend(&R::userCurve, 0.6f), Light},
    {"UserCurveRed", Bend(&R::userCurveRed, 0.4f), Bend(&R::userCurveRed, 0.6f), Red},
    {"UserCurveGreen", Bend(&R::userCurveGreen, 0.4f), Bend(&R::userCurveGreen, 0.6f), Green},
    {"UserCurveBlue", Bend(&R::userCurveBlue, 0.4f), Bend(&R::userCurveBlue, 0.6f), Blue},
    {"ImageGammaCurve, linear", Set(&R::imageGammaCurve, 0u), nullptr, Light},
    {"ImageGammaCurve, log", nullptr, Set(&R::imageGammaCurve, 18u), Shadows},
    {"ImageColorSpace", Set(&R::imageColorSpace, 13u), nullptr, Colour},
};

class LookSettings : public testing::Test {
  protected:
    void SetUp() override {
        WriteClip(file_, {.width = kWidth, .height = kHeight}, {TestCard()});
        ASSERT_EQ(clip_.Load(file_.Utf8()), 0u);
    }

    [[nodiscard]] Picture Show(const DecodeSettingsRecord& look) const {
        return clip_.Rgb16(0, DecodeMode::FullPremium, look);
    }
    [[nodiscard]] Picture ShowWith(const std::function<void(DecodeSettingsRecord&)>& change) const {
        DecodeSettingsRecord look = NeutralLook();
        if (change) change(look);
        return Show(look);
    }

    TestFile file_;
    TestClip clip_;
};

// And a channel's own settings leave the other channels alone.
TEST_F(LookSettings, EachMovesThePictureItsOwnWay) {
    constexpr Measure kChannels[] = {Red, Green, Blue};
    const Picture card = TestCard();
    for (const Setting& setting : kSettings) {
        const Picture lower = ShowWith(setting.lower), higher = ShowWith(setting.higher);
        ASSERT_FALSE(lower.empty() || higher.empty()) << setting.name;
        // By more than a code of 8 bits, so that it can be seen.
        EXPECT_GT(setting.measure(higher), setting.measure(lower) + 1.0 / 255.0) << setting.name;
        const auto own = std::find(kChannels, kChannels + 3, setting.measure) - kChannels;
        for (size_t i = 0; own < 3 && i < card.size(); ++i) {
            if (static_cast<ptrdiff_t>(i % 3) == own) continue;
            ASSERT_TRUE(lower[i] == card[i] && higher[i] == card[i]) << setting.name;
        }
    }
}

TEST_F(LookSettings, GreyStaysGreyInEveryColourSpaceAndGammaCurve) {
    for (uint32_t number = 0; number < 20; ++number) {
        for (const bool is_curve : {true, false}) {
            DecodeSettingsRecord look;
            (is_curve ? look.imageGammaCurve : look.imageColorSpace) = number;
            look.saturation = 1.3f;
            const Picture out = Show(look);
            for (size_t i = 0; i < kWidth * 3; i += 3) {
                ASSERT_NEAR(out[i], out[i + 1], 2) << (is_curve ? "curve " : "space ") << number;
                ASSERT_NEAR(out[i], out[i + 2], 2) << (is_curve ? "curve " : "space ") << number;
            }
            // And lighter grey stays lighter.
            for (size_t i = 3; i < kWidth * 3; i += 3) ASSERT_GE(out[i], out[i - 3]) << number;
        }
    }
}

// Every float of the record in turn: not a number counts as the default, and values beyond the limits as the limits.
TEST_F(LookSettings, NoValueOfAnyFieldDoesHarm) {
    constexpr float kBad[] = {std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(),
                              std::numeric_limits<float>::denorm_min(), -1.0f};
    const Picture neutral = Show(NeutralLook());
    for (size_t offset = 8; offset < sizeof(R); offset += 4) {
        const auto set = [offset](R look, const void* word) {
            std::memcpy(reinterpret_cast<std::byte*>(&look) + offset, word, 4);
            return look;
        };
        for (const float bad : kBad) ASSERT_FALSE(Show(set(NeutralLook(), &bad)).empty()) << offset;
        const uint32_t all_bits = 0xFFFFFFFF;  // not a number, and the largest of integers
        const Picture out = Show(set(NeutralLook(), &all_bits));
        ASSERT_FALSE(out.empty()) << offset;
        // The numbers among the fields mean something even then.
        const bool is_number = offset == offsetof(R, deb) || (offset >= offsetof(R, imageIso) && offset < 72);
        EXPECT_EQ(out == neutral, !is_number) << offset;
    }
    R wild = NeutralLook();
    wild.exposureCompensation = 7.0f;
    wild.brightness = -10.0f;
    wild.lggRed.gamma = wild.lggGreen.gamma = wild.lggBlue.gamma = 0.0f;
    wild.userCurve.xy[7] = 1.0f;  // ends flat
    const Picture white = Show(wild);
    ASSERT_FALSE(white.empty());
    for (size_t i = kWidth * 3 - 3; i < kWidth * 3; ++i) EXPECT_EQ(white[i], 65535) << "white however far it is pushed";
    std::memset(reinterpret_cast<std::byte*>(&wild) + 8, 0xFF, sizeof wild - 8);
    EXPECT_FALSE(Show(wild).empty());
    std::memset(reinterpret_cast<std::byte*>(&wild) + 8, 0, sizeof wild - 8);
    EXPECT_FALSE(Show(wild).empty());
}

}  // namespace
}  // namespace clipfio::decoder::test
