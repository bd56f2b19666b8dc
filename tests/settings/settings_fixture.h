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

inline const std::string kDistinctEntries =
    "Brightness=-9.75|ColorTemperature=3200.5|ColorVersion=1|Contrast=-0.5|DEB=1|DRX=1e-05|ExposureCompensation=1.5|"
    "FLUT=8|GainBlue=1.3|GainGreen=1.2|GainRed=1.1|ImageColorSpace=17|ImageDenoise=6|ImageDetail=-1|"
    "ImageGammaCurve=18|ImageISO=12800|ImageOLPFCompensation=3|LggGainBlue=1.8|LggGainGreen=1.7|LggGainRed=1.6|"
    "LggGammaBlue=2.3|LggGammaGreen=2.2|LggGammaRed=2.1|LggLiftBlue=-0.3|LggLiftGreen=-0.2|LggLiftRed=-0.1|"
    "Saturation=0.333333|Shadow=-2|Tint=-12.25|"
    "UserCurveBlue[0]=0.4|UserCurveBlue[1]=0.401|UserCurveBlue[2]=0.402|UserCurveBlue[3]=0.403|UserCurveBlue[4]=0.404|"
    "UserCurveBlue[5]=0.405|UserCurveBlue[6]=0.406|UserCurveBlue[7]=0.407|UserCurveBlue[8]=0.408|"
    "UserCurveBlue[9]=0.409|"
    "UserCurveGreen[0]=0.3|UserCurveGreen[1]=0.301|UserCurveGreen[2]=0.302|UserCurveGreen[3]=0.303|"
    "UserCurveGreen[4]=0.304|UserCurveGreen[5]=0.305|UserCurveGreen[6]=0.306|UserCurveGreen[7]=0.307|"
    "UserCurveGreen[8]=0.308|UserCurveGreen[9]=0.309|"
    "UserCurveRed[0]=0.2|UserCurveRed[1]=0.201|UserCurveRed[2]=0.202|UserCurveRed[3]=0.203|UserCurveRed[4]=0.204|"
    "UserCurveRed[5]=0.205|UserCurveRed[6]=0.206|UserCurveRed[7]=0.207|UserCurveRed[8]=0.208|UserCurveRed[9]=0.209|"
    "UserCurve[0]=0.1|UserCurve[1]=0.101|UserCurve[2]=0.102|UserCurve[3]=0.103|UserCurve[4]=0.104|"
    "UserCurve[5]=0.105|UserCurve[6]=0.106|UserCurve[7]=0.107|UserCurve[8]=0.108|UserCurve[9]=0.109|";

}  // namespace clipfio
