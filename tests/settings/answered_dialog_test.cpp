#include "settings/answered_dialog.h"

#include <functional>
#include <limits>

#include "settings/settings_fixture.h"
#include "support/answering_host.h"

namespace clipfio {
namespace {

class AnsweredDialogTest : public testing::Test {
  protected:
    MediaPropertyEditor editor_{MediaPropertyEditor::WithoutDecoder{}};
    support::AnsweringHost host_;
    IKtReadVideoStream* const stream_ = reinterpret_cast<IKtReadVideoStream*>(&host_);  // only handed through

    void Begin(std::initializer_list<DecodeSettingsRecord> clips, const DecodeSettingsRecord& original = {}) {
        EXPECT_EQ(editor_.BeginProperties(stream_, nullptr), S_OK);
        for (const auto& clip : clips) {
            editor_.LoadItems(clip);
            editor_.LoadClipDefaults(original);
        }
    }
    HRESULT Show(uint32_t* ok, std::function<HRESULT(IKtPropertiesPanel&)> edit) {
        host_.edit = std::move(edit);
        const HRESULT hr = editor_.ShowDialog(nullptr, nullptr, &host_, ok);
        EXPECT_FALSE(editor_.HasSink());
        EXPECT_EQ(host_.references, 1);
        return hr;
    }
    // One edit, closed with OK.
    void Edit(std::function<void(IKtPropertiesPanel&)> edit) {
        uint32_t ok = 7;
        EXPECT_EQ(Show(&ok, [&](IKtPropertiesPanel& panel) { return edit(panel), S_OK; }), S_OK);
        EXPECT_EQ(ok, 1u);
    }
    static std::string Value(IKtPropertiesPanel& panel, const char* key) {
        char text[24] = "?";
        EXPECT_EQ(panel.GetValue(key, text, sizeof text), S_OK) << key;
        return text;
    }
    static uint32_t State(IKtPropertiesPanel& panel, const char* key) {
        uint32_t state = 99;
        EXPECT_EQ(panel.GetState(key, &state), S_OK) << key;
        return state;
    }
};

TEST_F(AnsweredDialogTest, WhatIsNotShownDoesNotCount) {
    Begin({{}});
    uint32_t ok = 7;
    EXPECT_EQ(editor_.ShowDialog(nullptr, nullptr, nullptr, &ok), E_FAIL);
    EXPECT_EQ(ok, 0u);
    host_.answers = false;
    EXPECT_EQ(Show(&ok, {}), E_FAIL);
    host_.answers = true;
    EXPECT_EQ(Show(&ok, [](IKtPropertiesPanel& p) { return p.ClipDefault(), E_NOTIMPL; }), E_NOTIMPL);
    EXPECT_FALSE(editor_.RevertToClipDefault());
    EXPECT_EQ(ok, 0u);
    EXPECT_EQ(Show(&ok, [](IKtPropertiesPanel&) -> HRESULT { throw 1; }), E_UNEXPECTED);
    Edit([](IKtPropertiesPanel&) {});
}

constexpr HRESULT kNoNumber = kKtPanelNotANumber, kOutside = kKtPanelOutOfRange, kNotOffered = kKtPanelNotOffered,
                  kUnknown = kKtPanelUnknownKey;

constexpr struct {
    const char *key, *text;
    HRESULT result;
    const char* value = nullptr;  // as read back, when it differs from the text
    bool is_in_force = false;     // before as well: a default that the dialog does not offer
} kInputs[] = {
    {"Tint", "12.5", S_OK},     {"Tint", "1e1", S_OK, "10"},        {"ColorTemperature", "100000", S_OK, "100000"},
    {"Tint", "-100", S_OK},     {"Tint", "100.001", kOutside},      {"UserCurveRed[3]", "1.5", kOutside},
    {"Tint", "nan", kNoNumber}, {"Tint", "-100.001", kOutside},     {"UserCurveRed[10]", "0.5", kUnknown},
    {"Tint", "inf", kNoNumber}, {"Tint", "1e999", kOutside},        {"ImageDenoise", "-1", kNotOffered},
    {"Tint", "", kNoNumber},    {"Tint", "1,5", kNoNumber},         {"ImageDenoise", "4294967296", kNotOffered},
    {"Tint", " 1", kNoNumber},  {"UserCurveRed[3]", "0.4", S_OK},   {"ImageISO", "99999999999999999999", kNotOffered},
    {"Tint", "1 ", kNoNumber},  {"ImageDenoise", "6", S_OK},        {"ImageDenoise", "Maximum", kNoNumber},
    {"DEB", "1", S_OK},         {"ImageDenoise", "7", kNotOffered}, {"ColorVersion", "0", kNotOffered},
    {"DEB", "2", kNotOffered},  {"ImageDenoise", "1.0", kNoNumber}, {"ColorVersion", "3", S_OK, nullptr, true},
    {"tint", "1", kUnknown},    {"ImageISO", "12800", S_OK},        {"ImageISO", "12801", kNotOffered},
    {"", "1", kUnknown},        {"DEB", "true", kNoNumber},         {"ImageGammaCurve", "12", S_OK, nullptr, true},
    {nullptr, "1", E_POINTER},  {"Tint", nullptr, E_POINTER},       {"ImageGammaCurve", "11", kNotOffered},
};

TEST_F(AnsweredDialogTest, TakesWhatFitsAndRefusesTheRest) {
    for (const auto& row : kInputs) {
        SCOPED_TRACE(testing::Message() << (row.key ? row.key : "null") << "=" << (row.text ? row.text : "null"));
        Begin({{}});
        host_.changes = 0;
        DecodeSettingsRecord before, after;
        editor_.StoreItems(before);
        Edit([&](IKtPropertiesPanel& panel) {
            EXPECT_EQ(panel.SetValue(row.key, row.text), row.result);
            if (row.result == S_OK) {
                EXPECT_EQ(Value(panel, row.key), row.value ? row.value : row.text);
                EXPECT_EQ(State(panel, row.key), kKtPropertyChanged);
            }
        });
        editor_.StoreItems(after);
        EXPECT_EQ(SameRecord(before, after), row.result != S_OK || row.is_in_force);
        EXPECT_EQ(host_.changes, row.result == S_OK ? 1 : 0);
    }
    EXPECT_EQ(host_.stream, stream_);
}

TEST_F(AnsweredDialogTest, SettingTheOldValueAppliesItToAllClips) {
    DecodeSettingsRecord first, last;
    first.tint = 1;
    last.tint = 2;
    Begin({first, last});
    Edit([&](IKtPropertiesPanel& panel) {
        EXPECT_EQ(State(panel, "Tint"), kKtPropertyMixed);
        EXPECT_EQ(panel.SetValue("Tint", "2"), S_OK);
        EXPECT_EQ(State(panel, "Tint"), kKtPropertyChanged);
        EXPECT_EQ(panel.Unset("Contrast"), S_OK);
        EXPECT_EQ(panel.SetValue("Contrast", "0"), S_OK);
        EXPECT_EQ(State(panel, "Contrast"), kKtPropertyChanged);
    });
}

TEST_F(AnsweredDialogTest, UnsetLeavesEachClipItsOwn) {
    DecodeSettingsRecord clip;
    clip.tint = 9;
    Begin({{}});
    Edit([&](IKtPropertiesPanel& panel) {
        EXPECT_EQ(panel.Unset("Tint"), S_OK);
        EXPECT_EQ(panel.Unset("none"), kKtPanelUnknownKey);
        EXPECT_EQ(State(panel, "Tint"), kKtPropertyUnset);
    });
    editor_.StoreItems(clip);
    EXPECT_EQ(clip.tint, 9.0f);
    EXPECT_EQ(host_.changes, 1);
}

TEST_F(AnsweredDialogTest, ReadsIntoSmallBuffers) {
    DecodeSettingsRecord clip;
    clip.tint = -std::numeric_limits<float>::denorm_min();
    clip.imageDetail = 0x80000000;
    Begin({clip});
    Edit([&](IKtPropertiesPanel& panel) {
        EXPECT_EQ(Value(panel, "Tint"), "-1.4013e-45");
        EXPECT_EQ(Value(panel, "ImageDetail"), "-2147483648");
        EXPECT_EQ(Value(panel, "DEB"), "0");
        char text[5] = "old";
        EXPECT_EQ(panel.GetValue("ColorTemperature", text, 4), kKtPanelBufferTooSmall);
        EXPECT_STREQ(text, "");
        EXPECT_EQ(panel.GetValue("ColorTemperature", text, 5), S_OK);
        EXPECT_STREQ(text, "5600");
        EXPECT_EQ(panel.GetValue("ColorTemperature", text, 0), kKtPanelBufferTooSmall);
        EXPECT_STREQ(text, "5600");
        EXPECT_EQ(panel.GetValue("none", text, 5), kKtPanelUnknownKey);
        EXPECT_STREQ(text, "");
        EXPECT_EQ(panel.GetValue("Tint", nullptr, 5), E_POINTER);
        EXPECT_EQ(panel.GetState("Tint", nullptr), E_POINTER);
    });
}

TEST_F(AnsweredDialogTest, OneSettingBackToTheClip) {
    DecodeSettingsRecord clip, original;
    clip.tint = 4;
    clip.contrast = 0.5f;
    original.tint = 3;
    Begin({clip}, original);
    Edit([&](IKtPropertiesPanel& panel) {
        EXPECT_EQ(panel.UseClipDefault("Tint"), S_OK);
        EXPECT_EQ(Value(panel, "Tint"), "3");
        EXPECT_EQ(State(panel, "Tint"), kKtPropertyChanged);
        EXPECT_EQ(panel.Unset("DEB"), S_OK);
        EXPECT_EQ(panel.UseClipDefault("DEB"), S_OK);
        EXPECT_EQ(State(panel, "DEB"), kKtPropertyLoaded);
        EXPECT_EQ(Value(panel, "Contrast"), "0.5");
        EXPECT_EQ(panel.UseClipDefault("none"), kKtPanelUnknownKey);
    });
    EXPECT_EQ(host_.changes, 3);
    EXPECT_FALSE(editor_.RevertToClipDefault());
}

TEST_F(AnsweredDialogTest, ClipDefaultTakesEverythingBack) {
    DecodeSettingsRecord original = DistinctRecord(), result;
    original.drx = 0.5f;  // further from the clip's than the tolerance
    Begin({{}}, original);
    Edit([&](IKtPropertiesPanel& panel) {
        EXPECT_EQ(panel.ClipDefault(), S_OK);
        EXPECT_EQ(panel.ClipDefault(), S_OK);
    });
    editor_.StoreItems(result);
    EXPECT_TRUE(SameRecord(result, original));
    EXPECT_EQ(host_.changes, 2);
    EXPECT_TRUE(editor_.RevertToClipDefault());
}

TEST_F(AnsweredDialogTest, FactoryDefaultIsTheFreshRecordForAllClips) {
    DecodeSettingsRecord other, result = DistinctRecord();
    other.tint = 5;
    Begin({DistinctRecord(), other});
    Edit([&](IKtPropertiesPanel& panel) {
        EXPECT_EQ(panel.FactoryDefault(), S_OK);
        for (const PropertyRow& row : kPropertyTable) EXPECT_EQ(State(panel, row.key.text), kKtPropertyLoaded);
    });
    editor_.StoreItems(result);
    EXPECT_TRUE(SameRecord(result, DecodeSettingsRecord{}));
    EXPECT_EQ(host_.changes, 1);
}

TEST_F(AnsweredDialogTest, TheFileGoesOnlyWhenClipDefaultWasTheLastWord) {
    using Panel = IKtPropertiesPanel;
    const struct {
        const char* name;
        HRESULT (*edit)(IKtPropertiesPanel&);
        bool reverts, cancels = false;
    } kCases[] = {
        {"OK alone", [](Panel&) { return S_OK; }, false},
        {"Clip Default", [](Panel& p) { return p.ClipDefault(); }, true},
        {"then Cancel", [](Panel& p) { return p.ClipDefault(), S_FALSE; }, false, true},
        {"then a value", [](Panel& p) { return p.ClipDefault(), p.SetValue("Tint", "1"); }, false},
        {"then a refused value", [](Panel& p) { return p.ClipDefault(), p.SetValue("Tint", "x"), S_OK; }, true},
        {"then Unset", [](Panel& p) { return p.ClipDefault(), p.Unset("Tint"); }, false},
        {"then one default", [](Panel& p) { return p.ClipDefault(), p.UseClipDefault("Tint"); }, false},
        {"then Factory Default", [](Panel& p) { return p.ClipDefault(), p.FactoryDefault(); }, false},
        {"behind Factory Default", [](Panel& p) { return p.FactoryDefault(), p.ClipDefault(); }, true},
    };
    for (const auto& row : kCases) {
        Begin({{}});
        uint32_t ok = 7;
        EXPECT_EQ(Show(&ok, row.edit), S_OK) << row.name;
        EXPECT_EQ(ok, row.cancels ? 0u : 1u) << row.name;
        EXPECT_EQ(editor_.RevertToClipDefault(), row.reverts) << row.name;
    }
    // The next dialog starts afresh.
    Begin({{}});
    Edit([&](Panel&) { EXPECT_FALSE(editor_.RevertToClipDefault()); });
}

TEST_F(AnsweredDialogTest, TheSinkSeesTheNewValues) {
    Begin({{}});
    float seen = 0;
    host_.onChange = [&] {
        DecodeSettingsRecord record;
        ASSERT_TRUE(editor_.HasSink());
        uint32_t nested = 7;
        EXPECT_EQ(editor_.ShowDialog(nullptr, nullptr, &host_, &nested), S_FALSE);
        EXPECT_EQ(nested, 7u);
        editor_.StoreItems(record);
        seen = record.tint;
    };
    Edit([&](IKtPropertiesPanel& panel) { EXPECT_EQ(panel.SetValue("Tint", "-8"), S_OK); });
    EXPECT_EQ(seen, -8.0f);
}

}  // namespace
}  // namespace clipfio
