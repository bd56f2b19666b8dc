#include "host/settings_pass.h"

#include <array>

#include "host/answering_sink.h"
#include "host/failure.h"
#include "host/memory_stream.h"
#include "host/older_settings.h"
#include "host/result_text.h"
#include "settings/property_table.h"

namespace clipfio::host {
namespace {

// Answers with the edits, and reads back what all settings then are.
class EditingSink final : public AnsweringSink {
  public:
    explicit EditingSink(const SettingEdits& edits) : edits_(edits) {}
    [[nodiscard]] bool WasAsked() const { return asked_; }
    [[nodiscard]] const std::string& Error() const { return error_; }
    [[nodiscard]] const std::map<std::string, std::string>& Values() const { return values_; }

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
};

void RunDialog(Clip& clip, EditingSink& sink) {
    uint32_t ok = 0;
    const HRESULT result = clip.Properties().ShowPropertiesDialog(nullptr, 0, &sink, &ok);
    if (!sink.Error().empty()) throw Failure(sink.Error());
    if (result != S_OK || ok != 1 || !sink.WasAsked()) {
        throw Failure("the module does not let its settings be edited without a window (" + ResultText(result) + ")");
    }
}

// A file that was cut short may still mean the same look: a whole one is, byte for byte, what the module tells of it.
bool IsWritten(Clip& clip, const Look& wanted) {
    const std::string snapshot = GatherSnapshot(clip);
    if (ParseLook(snapshot).values != wanted.values) return false;
    return !HasSettingsFile(clip.Path()) || FileBytes(SettingsFileOf(clip.Path())) == snapshot;
}

void Apply(Clip& clip, IStream* snapshot, PassResult& pass) {
    const std::string file = SettingsFileOf(clip.Path());
    if (file.empty()) throw Failure("a clip of this name can have no settings file");
    OlderSettings older(file);
    const HRESULT result = clip.Properties().ApplyProperties(snapshot);
    if (FAILED(result)) throw Failure("cannot write " + file + ": " + ResultText(result));
    if (!IsWritten(clip, pass.after)) {
        throw Failure("cannot write all of " + file + ": is there room for it? The settings stay as they were");
    }
    older.Forget();
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
