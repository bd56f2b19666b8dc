#include "host/settings_pass.h"

#include <array>

#include "host/failure.h"
#include "host/memory_stream.h"
#include "host/result_text.h"
#include "settings/properties_panel.h"
#include "settings/properties_sink.h"
#include "settings/property_table.h"

namespace clipfio::host {
namespace {

// Answers the module's dialog with the edits, and reads back what all settings then are. Lives where it is declared.
class EditingSink final : public IKtPropertiesSink, public IKtPropertiesAnswer {
  public:
    explicit EditingSink(const SettingEdits& edits) : edits_(edits) {}
    [[nodiscard]] bool WasAsked() const { return asked_; }
    [[nodiscard]] const std::string& Error() const { return error_; }
    [[nodiscard]] const std::map<std::string, std::string>& Values() const { return values_; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) noexcept override {
        if (out == nullptr) return E_POINTER;
        *out = nullptr;
        if (id == IID_IUnknown || id == IID_IKtPropertiesSink) *out = static_cast<IKtPropertiesSink*>(this);
        if (id == IID_IKtPropertiesAnswer) *out = static_cast<IKtPropertiesAnswer*>(this);
        if (*out == nullptr) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ++count_; }
    ULONG STDMETHODCALLTYPE Release() noexcept override { return --count_; }
    HRESULT STDMETHODCALLTYPE OnPropertiesChanged(IKtReadVideoStream*, uint32_t) noexcept override { return S_OK; }

    HRESULT STDMETHODCALLTYPE Answer(IKtPropertiesPanel* panel) noexcept override {
        asked_ = true;
        try {
            Edit(*panel);
            ReadBack(*panel);
            return S_OK;
        } catch (const std::exception& failure) {
            // Said by whoever started the pass: nothing may leave through the module.
            error_ = failure.what();
            return E_FAIL;
        }
    }

  private:
    void Edit(IKtPropertiesPanel& panel) {
        if (edits_.reset) Require(panel.ClipDefault(), "the clip's own settings cannot be had");
        for (const std::string& key : edits_.unset) Require(panel.UseClipDefault(key.c_str()), key.c_str());
        for (const auto& [key, value] : edits_.set) Require(panel.SetValue(key.c_str(), value.c_str()), key.c_str());
    }

    void ReadBack(IKtPropertiesPanel& panel) {
        for (const PropertyRow& row : kPropertyTable) {
            std::array<char, 24> text{};
            Require(panel.GetValue(row.key.text, text.data(), text.size()), row.key.text);
            values_[row.key.text] = text.data();
        }
    }

    const SettingEdits& edits_;
    std::map<std::string, std::string> values_;
    std::string error_;
    bool asked_ = false;
    ULONG count_ = 1;
};

void RunDialog(Clip& clip, EditingSink& sink) {
    uint32_t ok = 0;
    const HRESULT result = clip.Properties().ShowPropertiesDialog(nullptr, 0, &sink, &ok);
    if (!sink.Error().empty()) throw Failure(sink.Error());
    if (result != S_OK || ok != 1 || !sink.WasAsked()) {
        throw Failure("the module does not let its settings be edited without a window (" + ResultText(result) + ")");
    }
}

// The module does not tell of every failure to write, so what is in force now is compared with what was wanted.
void Apply(Clip& clip, IStream* snapshot, PassResult& pass) {
    const std::string file = SettingsFileOf(clip.Path());
    const HRESULT result = clip.Properties().ApplyProperties(snapshot);
    if (FAILED(result)) throw Failure("cannot write " + file + ": " + ResultText(result));
    const Look now = GatherLook(clip);
    if (now.values != pass.after.values)
        throw Failure(file + " was not written as it should be: is there room for it?");
    pass.written = true;
}

}  // namespace

PassResult EditSettings(Clip& clip, const SettingEdits& edits, bool dry_run) {
    PassResult pass;
    pass.before = GatherLook(clip);
    EditingSink sink(edits);
    RunDialog(clip, sink);
    pass.after = {pass.before.decoder, sink.Values()};
    if (!dry_run) Apply(clip, nullptr, pass);
    return pass;
}

PassResult CopySettings(Clip& clip, const std::string& snapshot, bool dry_run) {
    PassResult pass;
    pass.before = GatherLook(clip);
    pass.after = ParseLook(snapshot);
    MemoryStream stream(snapshot);
    if (!dry_run) Apply(clip, &stream, pass);
    return pass;
}

}  // namespace clipfio::host
