// What the tests of the settings share: a record that is different everywhere, and its file's text.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "settings/media_property_editor.h"
#include "support/memory_stream.h"

namespace clipfio {

using support::MemoryStream;

inline bool SameRecord(const DecodeSettingsRecord& a, const DecodeSettingsRecord& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// A record with a different value in each field that a setting covers. The text below is its file.
inline DecodeSettingsRecord DistinctRecord() {
    DecodeSettingsRecord r;
    r.colorVersion = 1;
    r.colorTemperature = 3200.5f;
    r.tint = -12.25f;
    r.exposureCompensation = 1.5f;
    r.gainRed = 1.1f;
    r.gainGreen = 1.2f;
    r.gainBlue = 1.3f;
    r.saturation = 0.333333f;
    r.contrast = -0.5f;
    r.brightness = -9.75f;
    r.drx = 0.00001f;
    r.imageIso = 12800;
    r.imageGammaCurve = 18;
    r.imageColorSpace = 17;
    r.deb = 1;
    r.imageDetail = 0xFFFFFFFF;
    r.imageOlpfCompensation = 3;
    r.imageDenoise = 6;
    r.shadow = -2.0f;
    r.flut = 8.0f;
    UserCurvePoints* const curves[] = {&r.userCurve, &r.userCurveRed, &r.userCurveGreen, &r.userCurveBlue};
    for (int c = 0; c < 4; ++c) {
        for (int i = 0; i < 10; ++i) curves[c]->xy[i] = static_cast<float>(100 * (c + 1) + i) / 1000.0f;
    }
    r.lggRed = {-0.1f, 2.1f, 1.6f};
    r.lggGreen = {-0.2f, 2.2f, 1.7f};
    r.lggBlue = {-0.3f, 2.3f, 1.8f};
    return r;
}

// The entries of the four curves as a file has them, with what `value` gives for curve and index.
template <class Value>
std::string CurveEntries(Value value) {
    std::string text;
    for (const char* const curve : {"UserCurveBlue", "UserCurveGreen", "UserCurveRed", "UserCurve"}) {
        for (int i = 0; i < 10; ++i)
            text += std::string(curve) + "[" + std::to_string(i) + "]=" + value(curve, i) + "|";
    }
    return text;
}

inline const std::string kDistinctEntries =
    "Brightness=-9.75|ColorTemperature=3200.5|ColorVersion=1|Contrast=-0.5|DEB=1|DRX=1e-05|ExposureCompensation=1.5|"
    "FLUT=8|GainBlue=1.3|GainGreen=1.2|GainRed=1.1|ImageColorSpace=17|ImageDenoise=6|ImageDetail=-1|"
    "ImageGammaCurve=18|ImageISO=12800|ImageOLPFCompensation=3|LggGainBlue=1.8|LggGainGreen=1.7|LggGainRed=1.6|"
    "LggGammaBlue=2.3|LggGammaGreen=2.2|LggGammaRed=2.1|LggLiftBlue=-0.3|LggLiftGreen=-0.2|LggLiftRed=-0.1|"
    "Saturation=0.333333|Shadow=-2|Tint=-12.25|" +
    CurveEntries([](std::string_view curve, int i) {
        const char* const tenths = curve == "UserCurve"        ? "0.1"
                                   : curve == "UserCurveRed"   ? "0.2"
                                   : curve == "UserCurveGreen" ? "0.3"
                                                               : "0.4";
        return tenths + (i == 0 ? "" : "0" + std::to_string(i));
    });

}  // namespace clipfio
