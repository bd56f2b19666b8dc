#include "settings/media_property_editor.h"

#include <utility>

#include "kernel/guard.h"
#include "platform/scoped.h"
#include "r3dsdk/sdk_loader.h"
#include "settings/answered_dialog.h"
#include "settings/decode_properties_file.h"
#include "settings/property_items.h"

namespace clipfio {
namespace {

using platform::ComPtr;

template <size_t... Rows>
HRESULT AddRows(MediaPropertyEditor& editor, std::index_sequence<Rows...>) noexcept {
    HRESULT hr = S_OK;
    (... && SUCCEEDED(hr = editor.AddItem(std::unique_ptr<MediaPropertyItem>(new (std::nothrow) LeafOf<Rows>))));
    return hr;
}

HRESULT AddFloats(MediaPropertyEditor& editor) noexcept {
    return AddRows(editor, std::make_index_sequence<kFloatCount>());
}

template <size_t... Rows>
HRESULT AddOthers(MediaPropertyEditor& editor, std::index_sequence<Rows...>) noexcept {
    return AddRows(editor, std::index_sequence<(kFirstOtherRow + Rows)...>());
}

HRESULT AddOthers(MediaPropertyEditor& editor) noexcept {
    return AddOthers(editor, std::make_index_sequence<kPropertyCount - kFirstOtherRow>());
}

template <size_t Curve>
HRESULT AddCurve(MediaPropertyEditor& editor) noexcept {
    const CoordinateLeaf<Curve> prototype;
    HRESULT hr = S_OK;
    for (int32_t i = 0; i < static_cast<int32_t>(kCurveCoordinateCount) && SUCCEEDED(hr); ++i) {
        std::unique_ptr<MediaPropertyItem> item(prototype.Clone(nullptr));
        if (item) static_cast<Coordinate&>(*item).SetIndex(i);
        hr = editor.AddItem(std::move(item));
    }
    return hr;
}

HRESULT Apply(const ItemTable& items, DecodeSettingsRecord& record, EntrySource& source) noexcept {
    const ItemClones clones(items);
    const HRESULT hr = ReadEntries(clones, source);
    if (FAILED(hr)) return hr;
    clones.ForEach([&](const MediaPropertyItem& item) { item.StoreToSettings(record); });
    return S_OK;
}

}  // namespace

MediaPropertyEditor::MediaPropertyEditor() noexcept {
    if (SdkInitialize(".", 0) == 0) MakeItems();
}

MediaPropertyEditor::MediaPropertyEditor(WithoutDecoder) noexcept : hasDecoder(false) { MakeItems(); }

MediaPropertyEditor::~MediaPropertyEditor() {
    if (hasDecoder) SdkFinalize();
}

void MediaPropertyEditor::MakeItems() noexcept {
    constexpr HRESULT (*kSteps[])(MediaPropertyEditor&) noexcept = {AddFloats,   AddCurve<0>, AddCurve<1>,
                                                                    AddCurve<2>, AddCurve<3>, AddOthers};
    static_assert(kCurveCount == 4);
    for (const auto step : kSteps) {
        if (FAILED(step(*this))) return;
    }
}

HRESULT MediaPropertyEditor::AddItem(std::unique_ptr<MediaPropertyItem> item) noexcept {
    if (!item) return E_OUTOFMEMORY;
    const HRESULT hr = item->Initialize();
    if (FAILED(hr)) return hr;
    items.Insert(std::move(item));
    return S_OK;
}

HRESULT MediaPropertyEditor::BeginProperties(IKtReadVideoStream* stream, HKTLANG newLanguage) noexcept {
    videoStream = stream;
    language = newLanguage;
    dialogShown = false;
    revertToClipDefault = false;  // a pass without a dialog must not delete what the pass before meant to
    items.ForEach([](MediaPropertyItem& item) { item.SetState(ItemState::Unset); });
    return clipDefaults.CloneFrom(items);
}

void MediaPropertyEditor::LoadItems(const DecodeSettingsRecord& record) noexcept {
    items.ForEach([&](MediaPropertyItem& item) { item.LoadFromSettings(record); });
}

void MediaPropertyEditor::LoadClipDefaults(const DecodeSettingsRecord& record) noexcept {
    clipDefaults.ForEach([&](MediaPropertyItem& item) { item.LoadFromSettings(record); });
}

void MediaPropertyEditor::StoreItems(DecodeSettingsRecord& record) const noexcept {
    items.ForEach([&](const MediaPropertyItem& item) { item.StoreToSettings(record); });
}

HRESULT MediaPropertyEditor::SaveSettings(IStream* stream, const DecodeSettingsRecord& record) const noexcept {
    if (!stream) return E_POINTER;
    const ItemClones clones(items);
    clones.ForEach([&](MediaPropertyItem& item) { item.LoadFromSettings(record); });
    return Guarded([&] { return WriteEntries(clones, FileHeader::Current(), stream); });
}

HRESULT MediaPropertyEditor::WriteFile(const WCHAR* path, const DecodeSettingsRecord& record) const noexcept {
    ComPtr<IStream> stream;
    const HRESULT hr = SHCreateStreamOnFileW(path, STGM_CREATE | STGM_WRITE, stream.Out());
    if (SUCCEEDED(hr) && stream) static_cast<void>(SaveSettings(stream.Get(), record));
    return hr;
}

HRESULT MediaPropertyEditor::ApplyFile(DecodeSettingsRecord& record, IStream* stream) const noexcept {
    if (!stream) return E_POINTER;
    EntrySource source(stream, EntrySource::Reading::ByteByByte);
    return Apply(items, record, source);
}

HRESULT MediaPropertyEditor::ApplyFile(DecodeSettingsRecord& record, const WCHAR* path) const noexcept {
    ComPtr<IStream> stream;
    if (FAILED(SHCreateStreamOnFileW(path, STGM_READ, stream.Out())) || !stream) return S_OK;
    EntrySource source(stream.Get(), EntrySource::Reading::InBlocks);
    return Apply(items, record, source);
}

HRESULT MediaPropertyEditor::ShowDialog(HINSTANCE module, HWND parent, IKtPropertiesSink* newSink,
                                        uint32_t* ok) noexcept {
    if (!ok) return E_INVALIDARG;
    if (dialogShown || HasSink()) return S_FALSE;
    *ok = 0;
    ComPtr<IKtPropertiesAnswer> answer;
    if (!newSink || FAILED(newSink->QueryInterface(IID_IKtPropertiesAnswer, answer.OutVoid())) || !answer) {
        return E_FAIL;
    }
    AnsweredDialog dialog(std::move(answer));
    return RunDialog(dialog, module, parent, newSink, ok);
}

HRESULT MediaPropertyEditor::RunDialog(PropertiesDialog& dialog, HINSTANCE module, HWND parent,
                                       IKtPropertiesSink* newSink, uint32_t* ok) noexcept {
    const ComPtr<IKtPropertiesSink> held(newSink);
    sink.Set(newSink);
    revertToClipDefault = false;
    const HRESULT hr = dialog.Run(*this, module, parent);
    sink.Set(nullptr);
    if (hr != S_OK) revertToClipDefault = false;
    if (FAILED(hr)) return hr;
    *ok = hr == S_OK ? 1 : 0;
    dialogShown = true;
    return S_OK;
}

HRESULT MediaPropertyEditor::CopyClipDefault(MediaPropertyItem& item) noexcept {
    const MediaPropertyItem* original = clipDefaults.Find(item.GetName());
    if (original) return item.CopyFrom(*original);
    item.SetState(ItemState::Unset);
    return S_OK;
}

void MediaPropertyEditor::CopyClipDefaults() noexcept {
    revertToClipDefault = true;
    HRESULT hr = S_OK;
    items.ForEach([&](MediaPropertyItem& item) {
        if (SUCCEEDED(hr)) hr = CopyClipDefault(item);
    });
}

void MediaPropertyEditor::LoadFactoryDefaults() noexcept {
    items.ForEach([](MediaPropertyItem& item) { item.SetState(ItemState::Unset); });
    LoadItems(DecodeSettingsRecord{});
}

void MediaPropertyEditor::NotifySink() noexcept {
    if (IKtPropertiesSink* const listener = sink.Get()) listener->OnPropertiesChanged(videoStream, 0);
}

void MediaPropertyEditor::ReportChange() noexcept {
    if (!HasSink()) return;
    revertToClipDefault = false;
    NotifySink();
}

}  // namespace clipfio
