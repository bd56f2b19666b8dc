// The one object of the process that owns the decode settings, and the steps of an editing pass over them.
//
// An editing pass, its dialog and everything not said otherwise belong to the host's user interface thread; there is no
// lock. HasSink, StoreItems and ApplyFile may run on decoding threads at the same time: each item is then read as it
// happens to stand. Nothing throws; what runs out of memory gives E_OUTOFMEMORY.
#pragma once

#include <cstdint>
#include <memory>

#include "kernel/lang.h"
#include "platform/base.h"
#include "platform/com.h"
#include "r3dsdk/sdk_records.h"
#include "settings/item_map.h"
#include "settings/properties_sink.h"
#include "settings/shared_word.h"

namespace clipfio {

struct PropertiesDialog;

class MediaPropertyEditor {
  public:
    // Loads the decoder library, looking in the current folder first, and makes all items. Without the library there
    // are none.
    MediaPropertyEditor() noexcept;
    // Makes all items and leaves the decoder library alone, for an editor that never meets a decoder.
    struct WithoutDecoder {};
    explicit MediaPropertyEditor(WithoutDecoder) noexcept;
    ~MediaPropertyEditor();  // lets the decoder library go first
    MediaPropertyEditor(const MediaPropertyEditor&) = delete;
    MediaPropertyEditor& operator=(const MediaPropertyEditor&) = delete;

    // E_OUTOFMEMORY for null. A key that is already there keeps its item, and `item` is deleted.
    HRESULT AddItem(std::unique_ptr<MediaPropertyItem> item) noexcept;

    // Starts a pass: all items unset, the clip defaults fresh clones of them. `stream` goes to the sink with each
    // change and is not counted; `language` serves the dialog. After a failure there are no clip defaults.
    HRESULT BeginProperties(IKtReadVideoStream* stream, HKTLANG language) noexcept;

    void LoadItems(const DecodeSettingsRecord& record) noexcept;
    void LoadClipDefaults(const DecodeSettingsRecord& record) noexcept;
    // Unset items leave their field as it is.
    void StoreItems(DecodeSettingsRecord& record) const noexcept;

    // Writes the record to a stream or file in the form of a decode-properties file: always all entries. The result for
    // a stream is that of its first failing write. The result for a file is that of opening it, which replaces an older
    // file; a failing write after that is not reported.
    HRESULT SaveSettings(IStream* stream, const DecodeSettingsRecord& record) const noexcept;
    HRESULT WriteFile(const WCHAR* path, const DecodeSettingsRecord& record) const noexcept;

    // Overlays the record with the entries of a stream, which is read byte by byte, or of a file. Unless the result is
    // S_OK the record is as before. A file that cannot be opened counts as none: the record stands, with S_OK.
    HRESULT ApplyFile(DecodeSettingsRecord& record, IStream* stream) const noexcept;
    HRESULT ApplyFile(DecodeSettingsRecord& record, const WCHAR* path) const noexcept;

    [[nodiscard]] bool HasSink() const noexcept { return sink.Get() != nullptr; }  // the dialog is up
    // Clip Default was pressed, OK followed, and nothing was changed in between.
    [[nodiscard]] bool RevertToClipDefault() const noexcept { return revertToClipDefault; }

    // Shows the pass's one dialog. `*ok`: 1 when it ended with OK, else 0. S_FALSE, with `*ok` untouched, when it was
    // already shown in this pass or is up. E_INVALIDARG for a null `ok`. The sink may be null; it is asked for
    // IKtPropertiesAnswer (settings/properties_panel.h), and without that the result is E_FAIL.
    HRESULT ShowDialog(HINSTANCE module, HWND parent, IKtPropertiesSink* sink, uint32_t* ok) noexcept;

    // What a dialog works with.
    [[nodiscard]] const ItemTable& Items() const noexcept { return items; }
    [[nodiscard]] const ItemTable& ClipDefaults() const noexcept { return clipDefaults; }
    [[nodiscard]] HKTLANG Language() const noexcept { return language; }
    HRESULT CopyClipDefault(MediaPropertyItem& item) noexcept;  // unset where there is none
    void CopyClipDefaults() noexcept;                           // the button Clip Default, but for telling the sink
    void LoadFactoryDefaults() noexcept;                        // the button Factory Default, likewise
    void NotifySink() noexcept;
    // A change by the user: with a sink, the clip default no longer stands, and the sink hears of it.
    void ReportChange() noexcept;

  private:
    void MakeItems() noexcept;
    HRESULT RunDialog(PropertiesDialog& dialog, HINSTANCE module, HWND parent, IKtPropertiesSink* newSink,
                      uint32_t* ok) noexcept;

    const bool hasDecoder = true;
    IKtReadVideoStream* videoStream = nullptr;
    ItemMap items;
    ItemMap clipDefaults;
    HKTLANG language = nullptr;
    bool dialogShown = false;
    bool revertToClipDefault = false;
    SharedWord<IKtPropertiesSink*> sink;
};

}  // namespace clipfio
