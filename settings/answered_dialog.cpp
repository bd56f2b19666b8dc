#include "settings/answered_dialog.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include "kernel/guard.h"
#include "settings/media_property_editor.h"

namespace clipfio {
namespace {

static_assert(static_cast<uint32_t>(ItemState::Unset) == kKtPropertyUnset);
static_assert(static_cast<uint32_t>(ItemState::Loaded) == kKtPropertyLoaded);
static_assert(static_cast<uint32_t>(ItemState::Mixed) == kKtPropertyMixed);
static_assert(static_cast<uint32_t>(ItemState::Agreed) == kKtPropertyAgreed);
static_assert(static_cast<uint32_t>(ItemState::Changed) == kKtPropertyChanged);

static_assert(FreshChoice(*FindProperty("ColorVersion")) == DecodeSettingsRecord{}.colorVersion);
static_assert(FreshChoice(*FindProperty("ImageGammaCurve")) == DecodeSettingsRecord{}.imageGammaCurve);

// The whole text as a number; infinities and the like are none.
template <class T>
HRESULT ParseWhole(std::string_view text, T& out) noexcept {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), out);
    if (error == std::errc::invalid_argument || end != text.data() + text.size()) return kKtPanelNotANumber;
    return error == std::errc() ? S_OK : kKtPanelOutOfRange;
}

// What the user sets is set for all clips, also where it is the value that the last clip had.
template <class Item, class T>
void SetForAllClips(Item& item, T value) noexcept {
    if (!item.SetValue(value)) item.SetState(ItemState::Changed);
}

HRESULT SetText(FloatItem& item, std::string_view text) noexcept {
    double number = 0;
    const HRESULT hr = ParseWhole(text, number);
    if (FAILED(hr)) return hr;
    if (std::isnan(number) || std::isinf(number)) return kKtPanelNotANumber;
    if (number < item.GetMinimum() || number > item.GetMaximum()) return kKtPanelOutOfRange;
    SetForAllClips(item, static_cast<float>(number));
    return S_OK;
}

HRESULT ParseInteger(std::string_view text, int64_t& out) noexcept {
    const HRESULT hr = ParseWhole(text, out);
    return hr == kKtPanelOutOfRange ? kKtPanelNotOffered : hr;
}

HRESULT SetText(ComboBoxItem& item, const PropertyRow& row, std::string_view text) noexcept {
    int64_t number = 0;
    const HRESULT hr = ParseInteger(text, number);
    if (FAILED(hr)) return hr;
    const bool isOffered =
        std::any_of(row.offered.begin(), row.offered.end(), [&](const auto& o) { return o.value == number; });
    // What a fresh record holds is in force where nobody chose, offered or not.
    if (!isOffered && number != FreshChoice(row)) return kKtPanelNotOffered;
    SetForAllClips(item, static_cast<uint32_t>(number));
    return S_OK;
}

HRESULT SetText(BooleanItem& item, std::string_view text) noexcept {
    int64_t number = 0;
    const HRESULT hr = ParseInteger(text, number);
    if (FAILED(hr)) return hr;
    if (number != 0 && number != 1) return kKtPanelNotOffered;
    SetForAllClips(item, number == 1);
    return S_OK;
}

// Room for every value that GetText writes.
constexpr size_t kValueTextBytes = 24;

std::string_view GetText(const MediaPropertyItem& item, PropertyKind kind, char (&buffer)[kValueTextBytes]) noexcept {
    char* const end = buffer + sizeof buffer;
    char* stop = buffer;
    switch (kind) {
        case PropertyKind::Float:
        case PropertyKind::Coordinate:
            stop = std::to_chars(buffer, end, static_cast<const FloatItem&>(item).GetValue(),
                                 std::chars_format::general, 6)
                       .ptr;
            break;
        case PropertyKind::Boolean:
            *stop++ = static_cast<const BooleanItem&>(item).GetValue() ? '1' : '0';
            break;
        case PropertyKind::StringCombo:
        case PropertyKind::IntCombo:
            stop =
                std::to_chars(buffer, end, static_cast<int32_t>(static_cast<const ComboBoxItem&>(item).GetValue())).ptr;
            break;
    }
    return {buffer, static_cast<size_t>(stop - buffer)};
}

class Panel final : public IKtPropertiesPanel {
  public:
    explicit Panel(MediaPropertyEditor& editor) noexcept : editor_(editor) {}

    HRESULT STDMETHODCALLTYPE SetValue(const char* key, const char* text) override {
        if (!key || !text) return E_POINTER;
        const Setting setting = Find(key);
        if (!setting.item) return kKtPanelUnknownKey;
        return Changed(SetText(setting, text));
    }

    HRESULT STDMETHODCALLTYPE Unset(const char* key) override {
        if (!key) return E_POINTER;
        const Setting setting = Find(key);
        if (!setting.item) return kKtPanelUnknownKey;
        setting.item->SetState(ItemState::Unset);
        return Changed(S_OK);
    }

    HRESULT STDMETHODCALLTYPE UseClipDefault(const char* key) override {
        if (!key) return E_POINTER;
        const Setting setting = Find(key);
        if (!setting.item) return kKtPanelUnknownKey;
        return Changed(editor_.CopyClipDefault(*setting.item));
    }

    HRESULT STDMETHODCALLTYPE ClipDefault() override {
        editor_.CopyClipDefaults();
        editor_.NotifySink();
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE FactoryDefault() override {
        editor_.LoadFactoryDefaults();
        return Changed(S_OK);
    }

    HRESULT STDMETHODCALLTYPE GetValue(const char* key, char* text, uint32_t size) override {
        if (!key || !text) return E_POINTER;
        if (size > 0) *text = '\0';
        const Setting setting = Find(key);
        if (!setting.item) return kKtPanelUnknownKey;
        char buffer[kValueTextBytes];
        const std::string_view value = GetText(*setting.item, setting.row->kind, buffer);
        if (value.size() >= size) return kKtPanelBufferTooSmall;
        text[value.copy(text, value.size())] = '\0';
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE GetState(const char* key, uint32_t* state) override {
        if (!key || !state) return E_POINTER;
        *state = kKtPropertyUnset;
        const Setting setting = Find(key);
        if (!setting.item) return kKtPanelUnknownKey;
        *state = static_cast<uint32_t>(setting.item->GetState());
        return S_OK;
    }

  private:
    struct Setting {
        const PropertyRow* row;
        MediaPropertyItem* item;
    };

    Setting Find(const char* key) const noexcept { return {FindProperty(key), editor_.Items().Find(key)}; }

    static HRESULT SetText(const Setting& setting, const char* text) noexcept {
        switch (setting.row->kind) {
            case PropertyKind::Float:
            case PropertyKind::Coordinate:
                return clipfio::SetText(static_cast<FloatItem&>(*setting.item), text);
            case PropertyKind::Boolean:
                return clipfio::SetText(static_cast<BooleanItem&>(*setting.item), text);
            case PropertyKind::StringCombo:
            case PropertyKind::IntCombo:
                return clipfio::SetText(static_cast<ComboBoxItem&>(*setting.item), *setting.row, text);
        }
        return E_UNEXPECTED;
    }

    HRESULT Changed(HRESULT hr) noexcept {
        if (SUCCEEDED(hr)) editor_.ReportChange();
        return hr;
    }

    MediaPropertyEditor& editor_;
};

}  // namespace

HRESULT AnsweredDialog::Run(MediaPropertyEditor& editor, HINSTANCE, HWND) noexcept {
    Panel panel(editor);
    const HRESULT hr = Guarded([&] { return answer_->Answer(&panel); });
    return FAILED(hr) || hr == S_OK ? hr : S_FALSE;
}

}  // namespace clipfio
