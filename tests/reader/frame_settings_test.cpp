// The way of the decode settings: from the clip, its settings file and the open dialog into each frame.
#include <cstring>

#include "platform/modules.h"
#include "platform/text.h"
#include "support/answering_host.h"
#include "support/temp_file.h"
#include "support/whole_file.h"
#include "tests/reader/reader_scene.h"

namespace reader_tests {
namespace {

using fake_decoder::DecodeSettingsRecord;

class FrameSettings : public ReaderTest {
  protected:
    void SetUp() override {
        ReaderTest::SetUp();
        DecodeSettingsRecord& own = Told().clip.settings;
        own.imageIso = 800;
        own.tint = 12.5f;
        own.imageColorSpace = 7;
        own.imageGammaCurve = 9;
        own.unlisted8 = 4711;
        clip_ = folder_.Path() + WString(W(".r3d"));
        settings_ = folder_.Path() + WString(W(".KtDecProp"));
    }
    void TearDown() override {
        DeleteFileW(settings_.c_str());
        DeleteFileW(clip_.c_str());
        ReaderTest::TearDown();
    }

    DecodeSettingsRecord SettingsOfFrame(IKtReadVideoStream* video,
                                         const _ktframerequest& request = Request(32)) const {
        Told().jobs.clear();
        std::vector<uint8_t> memory(4000);
        const auto token = TokenOf(memory.data(), memory.size());
        _ktframeinfo info;
        uint32_t bytes = 0;
        EXPECT_EQ(video->ReadFrame(0, &request, &token, &info, &bytes), S_OK);
        EXPECT_EQ(Told().jobs.size(), 1u);
        return Told().jobs.empty() ? DecodeSettingsRecord{} : Told().jobs[0].settings;
    }
    void WriteSettings(std::string_view text) const { support::WriteWhole(settings_.c_str(), text); }
    bool HasSettingsFile() const { return GetFileAttributesW(settings_.c_str()) != INVALID_FILE_ATTRIBUTES; }

    const support::TempFile folder_{""};
    WString clip_;
    WString settings_;
};

TEST_F(FrameSettings, AreTheClipsOwnWithTwoFieldsOverwritten) {
    const auto file = OpenFile(clip_.c_str());
    const auto video = VideoOf(file.Get());
    constexpr struct {
        uint32_t bits;
        double gamma;
        uint32_t curve;  // 0 linear, 1 Rec. 709
    } kRows[] = {{32, 1.0, 1},  {32, 0.0, 1},  {128, 0.0, 1}, {128, 2.2222, 1},
                 {128, 1.0, 0}, {128, 1.7, 0}, {128, -1.0, 0}};
    for (const auto& row : kRows) {
        DecodeSettingsRecord expected = Told().clip.settings;
        expected.imageColorSpace = 1;
        expected.imageGammaCurve = row.curve;
        const auto settings = SettingsOfFrame(video.Get(), Request(row.bits, 1.0, 4, row.gamma));
        EXPECT_EQ(std::memcmp(&settings, &expected, sizeof expected), 0) << row.bits << " " << row.gamma;
    }
}

TEST_F(FrameSettings, TakeTheSettingsFileAsItStandsAtEachFrame) {
    const auto file = OpenFile(clip_.c_str());
    const auto video = VideoOf(file.Get());
    EXPECT_EQ(SettingsOfFrame(video.Get()).tint, 12.5f);
    WriteSettings("Tint=-3|ImageISO=3200|ImageGammaCurve=5|ImageColorSpace=3|");
    auto settings = SettingsOfFrame(video.Get());
    EXPECT_EQ(settings.tint, -3.0f);
    EXPECT_EQ(settings.imageIso, 3200u);
    EXPECT_EQ(settings.imageGammaCurve, 1u);
    EXPECT_EQ(settings.imageColorSpace, 1u);
    EXPECT_EQ(settings.unlisted8, 4711u);
    WriteSettings("Tint=4|");
    settings = SettingsOfFrame(video.Get());
    EXPECT_EQ(settings.tint, 4.0f);
    EXPECT_EQ(settings.imageIso, 800u);
    DeleteFileW(settings_.c_str());
    EXPECT_EQ(SettingsOfFrame(video.Get()).tint, 12.5f);
}

TEST_F(FrameSettings, NeedNoPathThatHasRoomForAFile) {
    const WString long_path = W("C:\\") + WString(300, W('x')) + W(".r3d");
    const auto file = OpenFile(long_path.c_str());
    EXPECT_EQ(SettingsOfFrame(VideoOf(file.Get()).Get()).tint, 12.5f);
}

TEST_F(FrameSettings, TakeTheOpenDialogAndThenWhatItLeaves) {
    WriteSettings("Tint=4|");
    const auto file = OpenFile(clip_.c_str());
    const auto video = VideoOf(file.Get());
    ComPtr<IKtFileIOMediaProperties> properties;
    ASSERT_EQ(file->QueryInterface(IID_IKtFileIOMediaProperties, properties.OutVoid()), S_OK);
    EXPECT_EQ(properties->BeginProperties(), S_OK);
    EXPECT_EQ(properties->GatherProperties(nullptr), S_OK);
    EXPECT_EQ(file->IsOpen(), S_OK);

    support::AnsweringHost answer;
    answer.edit = [&](IKtPropertiesPanel& panel) {
        EXPECT_EQ(panel.SetValue("Tint", "-7"), S_OK);
        EXPECT_EQ(answer.stream, video.Get());
        EXPECT_EQ(SettingsOfFrame(video.Get()).tint, -7.0f);
        WriteSettings("Tint=99|");  // plays no part now
        EXPECT_EQ(SettingsOfFrame(video.Get()).tint, -7.0f);
        EXPECT_EQ(panel.Unset("Tint"), S_OK);
        EXPECT_EQ(SettingsOfFrame(video.Get()).tint, 12.5f);
        EXPECT_EQ(panel.SetValue("Tint", "-8"), S_OK);
        return S_OK;
    };
    uint32_t ok = 9;
    EXPECT_EQ(properties->ShowPropertiesDialog(nullptr, 0, &answer, &ok), S_OK);
    EXPECT_EQ(ok, 1u);
    EXPECT_EQ(SettingsOfFrame(video.Get()).tint, 99.0f);  // the dialog is down, and nothing applied yet
    ok = 9;
    EXPECT_EQ(properties->ShowPropertiesDialog(nullptr, 0, &answer, &ok), S_FALSE);
    EXPECT_EQ(ok, 9u);
    EXPECT_EQ(properties->ApplyProperties(nullptr), S_OK);
    EXPECT_EQ(SettingsOfFrame(video.Get()).tint, -8.0f);

    // Clip Default takes the file away.
    EXPECT_EQ(properties->BeginProperties(), S_OK);
    EXPECT_EQ(properties->GatherProperties(nullptr), S_OK);
    answer.edit = [](IKtPropertiesPanel& panel) { return panel.ClipDefault(); };
    EXPECT_EQ(properties->ShowPropertiesDialog(nullptr, 0, &answer, &ok), S_OK);
    EXPECT_TRUE(HasSettingsFile());
    EXPECT_EQ(properties->ApplyProperties(nullptr), S_OK);
    EXPECT_FALSE(HasSettingsFile());
    EXPECT_EQ(properties->ApplyProperties(nullptr), S_OK);  // nothing there to delete
    EXPECT_EQ(properties->ShowPropertiesDialog(nullptr, 0, &answer, nullptr), E_INVALIDARG);
}

TEST_F(FrameSettings, GatheringOpensAClosedClipAndClosesItAgain) {
    const auto file = MeasuredFile(clip_.c_str());
    ComPtr<IKtFileIOMediaProperties> properties;
    ASSERT_EQ(file->QueryInterface(IID_IKtFileIOMediaProperties, properties.OutVoid()), S_OK);
    EXPECT_EQ(properties->BeginProperties(), S_OK);
    Told().events.clear();
    EXPECT_EQ(properties->GatherProperties(nullptr), S_OK);
    const std::string load = "load " + platform::Utf8(clip_);
    EXPECT_EQ(Told().events, (std::vector<std::string>{load, "close"}));
    EXPECT_EQ(file->IsOpen(), S_FALSE);
    Told().loads_to_fail = 2;
    EXPECT_EQ(properties->GatherProperties(nullptr), E_UNEXPECTED);
    const auto empty = EmptyFile();
    ASSERT_EQ(empty->QueryInterface(IID_IKtFileIOMediaProperties, properties.OutVoid()), S_OK);
    Told().loads_to_fail = 2;
    EXPECT_EQ(properties->GatherProperties(nullptr), E_UNEXPECTED);
    EXPECT_EQ(properties->ApplyProperties(nullptr), E_FAIL);  // there is no name to put a file beside
}

}  // namespace
}  // namespace reader_tests
