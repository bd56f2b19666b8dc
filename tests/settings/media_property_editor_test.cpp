#include "settings/media_property_editor.h"

#include <atomic>
#include <thread>

#include "platform/files.h"
#include "platform/scoped.h"
#include "settings/property_items.h"
#include "settings/settings_fixture.h"
#include "support/fail_each.h"
#include "support/temp_file.h"

namespace clipfio {
namespace {

constexpr MediaPropertyEditor::WithoutDecoder kWithoutDecoder{};

size_t CountItems(const ItemTable& items) {
    size_t count = 0;
    items.ForEach([&](const MediaPropertyItem&) { ++count; });
    return count;
}

FloatItem& FloatOf(const MediaPropertyEditor& editor, const char* key) {
    return static_cast<FloatItem&>(*editor.Items().Find(key));
}

TEST(MediaPropertyEditor, HasAnItemForEachRowUnderItsKey) {
    const MediaPropertyEditor editor(kWithoutDecoder);
    EXPECT_EQ(CountItems(editor.Items()), kPropertyCount);
    for (const PropertyRow& row : kPropertyTable) {
        const MediaPropertyItem* const item = editor.Items().Find(row.key);
        ASSERT_NE(item, nullptr) << row.key.text;
        EXPECT_STREQ(item->GetName(), row.key.text);
        EXPECT_EQ(item->GetState(), ItemState::Unset);
        if (const auto* number = dynamic_cast<const FloatItem*>(item)) {
            EXPECT_EQ(number->GetMinimum(), row.minimum) << row.key.text;
            EXPECT_EQ(number->GetMaximum(), row.maximum) << row.key.text;
            EXPECT_EQ(number->GetDefault(), row.defaultValue) << row.key.text;
        }
    }
    EXPECT_EQ(editor.Items().Find("tint"), nullptr);
}

TEST(MediaPropertyEditor, HasNoItemsWithoutADecoder) {
    const MediaPropertyEditor editor;
    EXPECT_EQ(CountItems(editor.Items()), 0u);
    DecodeSettingsRecord record;
    MemoryStream written;
    EXPECT_EQ(editor.SaveSettings(&written, record), S_OK);
    EXPECT_TRUE(written.content.starts_with("File Content=")) << "the header alone";
    EXPECT_EQ(written.calls, 1);
    MemoryStream stream("Tint=5|");
    EXPECT_EQ(editor.ApplyFile(record, &stream), S_OK);
    EXPECT_TRUE(SameRecord(record, DecodeSettingsRecord{}));
}

TEST(MediaPropertyEditor, AKeyKeepsItsItem) {
    MediaPropertyEditor editor(kWithoutDecoder);
    const MediaPropertyItem* const first = editor.Items().Find("Tint");
    EXPECT_EQ(editor.AddItem(std::make_unique<Tint>()), S_OK);
    EXPECT_EQ(editor.Items().Find("Tint"), first);
    EXPECT_EQ(editor.AddItem(nullptr), E_OUTOFMEMORY);
}

TEST(MediaPropertyEditor, APassOverThreeClips) {
    MediaPropertyEditor editor(kWithoutDecoder);
    ASSERT_EQ(editor.BeginProperties(nullptr, nullptr), S_OK);
    DecodeSettingsRecord clips[3];
    clips[1].tint = 5;
    clips[2].contrast = 0.5f;
    for (const auto& clip : clips) editor.LoadItems(clip);
    EXPECT_EQ(editor.Items().Find("Tint")->GetState(), ItemState::Mixed);
    EXPECT_EQ(editor.Items().Find("Contrast")->GetState(), ItemState::Mixed);
    EXPECT_EQ(editor.Items().Find("DEB")->GetState(), ItemState::Agreed);
    EXPECT_EQ(editor.ClipDefaults().Find("Tint")->GetState(), ItemState::Unset);

    // The user sets one thing for all clips and leaves another to each of them.
    FloatOf(editor, "Saturation").SetValue(2);
    editor.Items().Find("Tint")->SetState(ItemState::Unset);
    for (const auto& clip : clips) {
        DecodeSettingsRecord result = clip;
        editor.StoreItems(result);
        EXPECT_EQ(result.saturation, 2.0f);
        EXPECT_EQ(result.tint, clip.tint);
        EXPECT_EQ(result.contrast, 0.5f) << "mixed: the last clip's";
    }

    ASSERT_EQ(editor.BeginProperties(nullptr, nullptr), S_OK);
    editor.Items().ForEach([](const MediaPropertyItem& item) { EXPECT_EQ(item.GetState(), ItemState::Unset); });
    EXPECT_EQ(CountItems(editor.ClipDefaults()), kPropertyCount);
}

// What a pass left in the items comes along with the clones, for keys that the file does not name.
TEST(MediaPropertyEditor, AppliesTheFileOverTheItemsAsTheyStand) {
    MediaPropertyEditor editor(kWithoutDecoder);
    FloatOf(editor, "Saturation").SetValue(3);
    MemoryStream stream("Tint=5|");
    DecodeSettingsRecord record;
    record.contrast = 0.75f;
    EXPECT_EQ(editor.ApplyFile(record, &stream), S_OK);
    EXPECT_EQ(record.tint, 5.0f);
    EXPECT_EQ(record.saturation, 3.0f);
    EXPECT_EQ(record.contrast, 0.75f);
    EXPECT_EQ(editor.Items().Find("Tint")->GetState(), ItemState::Unset) << "clones are thrown away";
    EXPECT_EQ(FloatOf(editor, "Tint").GetValue(), 0.0f);
}

TEST(MediaPropertyEditor, SavesAllEntriesWhateverIsSet) {
    MediaPropertyEditor editor(kWithoutDecoder);
    FloatOf(editor, "Saturation").SetValue(3);
    MemoryStream stream;
    EXPECT_EQ(editor.SaveSettings(&stream, DistinctRecord()), S_OK);
    EXPECT_TRUE(stream.content.ends_with("|" + kDistinctEntries));
    EXPECT_EQ(editor.Items().Find("Tint")->GetState(), ItemState::Unset);
}

class SettingsOnDisk : public testing::Test {
  protected:
    const support::TempFile file_{".KtDecProp"};
    const MediaPropertyEditor editor_{kWithoutDecoder};

    platform::ComPtr<IStream> Open(DWORD mode) const {
        platform::ComPtr<IStream> stream;
        EXPECT_EQ(SHCreateStreamOnFileW(file_.Path(), mode, stream.Out()), S_OK);
        return stream;
    }
};

TEST_F(SettingsOnDisk, RoundTripReplacesAnOlderFile) {
    const std::string older(100000, 'x');
    EXPECT_EQ(Open(STGM_CREATE | STGM_WRITE)->Write(older.data(), static_cast<ULONG>(older.size()), nullptr), S_OK);
    EXPECT_EQ(editor_.WriteFile(file_.Path(), DistinctRecord()), S_OK);
    MemoryStream stream;
    EXPECT_EQ(editor_.SaveSettings(&stream, DistinctRecord()), S_OK);
    std::string written(older.size(), '\0');
    ULONG length = 0;
    EXPECT_TRUE(SUCCEEDED(Open(STGM_READ)->Read(written.data(), static_cast<ULONG>(written.size()), &length)));
    EXPECT_EQ(written.substr(0, length), stream.content);
    DecodeSettingsRecord record;
    EXPECT_EQ(editor_.ApplyFile(record, file_.Path()), S_OK);
    EXPECT_TRUE(SameRecord(record, DistinctRecord()));
}

TEST_F(SettingsOnDisk, EveryFailingCallLeavesTheRecordAlone) {
    ASSERT_EQ(editor_.WriteFile(file_.Path(), DistinctRecord()), S_OK);
    int calls = 0;
    DecodeSettingsRecord record;
    support::FailEach<support::FailingCall>(
        [&] { return record = {}, editor_.ApplyFile(record, file_.Path()); },
        [&](HRESULT hr, bool failed) {
            EXPECT_TRUE(SameRecord(record, failed ? DecodeSettingsRecord{} : DistinctRecord()));
            EXPECT_EQ(hr == S_OK, !failed || calls++ == 0) << "a file that cannot be opened counts as none";
        });
}

TEST(MediaPropertyEditor, NullStreams) {
    const MediaPropertyEditor editor(kWithoutDecoder);
    DecodeSettingsRecord record;
    EXPECT_EQ(editor.SaveSettings(nullptr, record), E_POINTER);
    EXPECT_EQ(editor.ApplyFile(record, static_cast<IStream*>(nullptr)), E_POINTER);
}

TEST(MediaPropertyEditor, RunningOutOfMemory) {
    const auto check = [](HRESULT hr, bool failed) { EXPECT_EQ(hr, failed ? E_OUTOFMEMORY : S_OK); };
    MediaPropertyEditor editor(kWithoutDecoder);
    support::FailEach<FailingNew>(
        [&] {
            const HRESULT hr = editor.BeginProperties(nullptr, nullptr);
            EXPECT_EQ(CountItems(editor.ClipDefaults()), hr == S_OK ? kPropertyCount : 0);
            return hr;
        },
        check);
    MemoryStream stream("Unknown=|Tint=" + std::string(50, ' ') + "5|" + std::string(50, 'k') + "=1|");
    support::FailEach<FailingNew>(
        [&] {
            stream.position = 0;
            DecodeSettingsRecord record;
            const HRESULT hr = editor.ApplyFile(record, &stream);
            EXPECT_EQ(record.tint, hr == S_OK ? 5.0f : 0.0f);
            return hr;
        },
        check);
}

TEST(MediaPropertyEditor, SavingWithoutMemory) {
    const MediaPropertyEditor editor(kWithoutDecoder);
    MemoryStream stream;
    stream.content.reserve(10000);
    support::FailEach<FailingNew>(
        [&] { return stream.content.clear(), editor.SaveSettings(&stream, DistinctRecord()); },
        [&](HRESULT hr, bool failed) {
            // The version in the header has a short form to fall back on; everything else is needed.
            EXPECT_TRUE(hr == S_OK || (failed && hr == E_OUTOFMEMORY));
            EXPECT_TRUE(hr != S_OK || stream.content.ends_with(kDistinctEntries));
        });
}

TEST(MediaPropertyEditor, MadeWithoutMemory) {
    for (int n = 0;; ++n) {
        const FailingNew fail(n);
        const MediaPropertyEditor editor(kWithoutDecoder);
        if (!fail.Hit()) {
            EXPECT_EQ(n, static_cast<int>(kPropertyCount));
            break;
        }
        EXPECT_EQ(CountItems(editor.Items()), static_cast<size_t>(n));
    }
}

// Frames are decoded while the user moves sliders; the sanitizer judges.
TEST(MediaPropertyEditor, DecodingReadsWhileTheDialogWrites) {
    MediaPropertyEditor editor(kWithoutDecoder);
    ASSERT_EQ(editor.BeginProperties(nullptr, nullptr), S_OK);
    std::atomic<bool> stop = false;
    std::vector<std::thread> decoders;
    for (int i = 0; i < 2; ++i) {
        decoders.emplace_back([&] {
            while (!stop) {
                DecodeSettingsRecord record;
                if (editor.HasSink()) ADD_FAILURE();
                editor.StoreItems(record);
                EXPECT_TRUE(record.tint == 0.0f || record.tint == 5.0f);
                MemoryStream stream("Contrast=0.5|");
                EXPECT_EQ(editor.ApplyFile(record, &stream), S_OK);
                EXPECT_EQ(record.contrast, 0.5f);
            }
        });
    }
    for (int round = 0; round < 500; ++round) {
        FloatOf(editor, "Tint").SetValue(round % 2 == 0 ? 5.0f : 0.0f);
        editor.LoadItems(DecodeSettingsRecord{});
        EXPECT_EQ(editor.BeginProperties(nullptr, nullptr), S_OK);
    }
    stop = true;
    for (std::thread& decoder : decoders) decoder.join();
}

}  // namespace
}  // namespace clipfio
