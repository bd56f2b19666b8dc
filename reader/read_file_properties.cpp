// The host's editing pass over a clip. None of it takes the file's lock: the editor is one object of the process, for
// the host's user interface thread.
#include "reader/plugin_module.h"
#include "reader/read_file.h"
#include "reader/read_video_stream.h"
#include "settings/media_property_editor.h"

namespace clipfio {

HRESULT CReadFile::BeginProperties() {
    MediaPropertyEditor* editor = ProcessEditor();
    return editor ? editor->BeginProperties(video_stream_, Module().hLang) : E_UNEXPECTED;
}

HRESULT CReadFile::GatherProperties(IStream* snapshot) {
    const bool was_closed = IsOpen() != S_OK;
    if (was_closed) (void)Open(0, 0);
    const HRESULT result = GatherFromOpenClip(snapshot);
    if (was_closed) (void)Close();
    return result;
}

HRESULT CReadFile::GatherFromOpenClip(IStream* snapshot) noexcept {
    MediaPropertyEditor* editor = ProcessEditor();
    if (!editor || !clip_ || !video_stream_ || IsOpen() != S_OK) return E_UNEXPECTED;
    DecodeSettingsRecord look;
    HRESULT result = video_stream_->GetDecodeSettings(&look);
    if (FAILED(result)) return result;
    editor->LoadItems(look);
    if (snapshot) {
        result = editor->SaveSettings(snapshot, look);
        if (FAILED(result)) return result;
    }
    DecodeSettingsRecord own;
    result = video_stream_->GetClipDefaultSettings(&own);
    if (FAILED(result)) return result;
    editor->LoadClipDefaults(own);
    return S_OK;
}

HRESULT CReadFile::ShowPropertiesDialog(HWND parent, uint64_t, IKtPropertiesSink* sink, uint32_t* ok) {
    MediaPropertyEditor* editor = ProcessEditor();
    return editor ? editor->ShowDialog(Module().hInstance, parent, sink, ok) : E_UNEXPECTED;
}

HRESULT CReadFile::ApplyProperties(IStream* snapshot) {
    MediaPropertyEditor* editor = ProcessEditor();
    if (!editor || !video_stream_) return E_UNEXPECTED;
    DecodeSettingsRecord look;
    HRESULT result = video_stream_->GetDecodeSettings(&look);
    if (FAILED(result)) return result;
    if (snapshot) {
        result = editor->ApplyFile(look, snapshot);
        if (FAILED(result)) return result;
    } else {
        editor->StoreItems(look);
    }
    WCHAR path[MAX_PATH];
    result = video_stream_->GetPropertiesPath(path);
    if (FAILED(result)) return result;
    if (editor->RevertToClipDefault()) {
        DeleteFileW(path);
        return S_OK;
    }
    return editor->WriteFile(path, look);
}

}  // namespace clipfio
