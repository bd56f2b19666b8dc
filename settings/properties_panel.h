// The properties dialog without a window: a host whose sink answers IKtPropertiesAnswer is asked for the edits of the
// user instead of being shown a dialog.
#pragma once

#include <cstdint>

#include "platform/base.h"
#include "platform/com.h"
#include "settings/property_table.h"

inline constexpr IID IID_IKtPropertiesAnswer = {
    0xAA961525, 0xBDE5, 0x4186, {0xAF, 0x22, 0xC5, 0xD0, 0xD7, 0xAE, 0x9D, 0x1F}};

// What the panel says of bad input. Nothing has changed then.
inline constexpr HRESULT kKtPanelUnknownKey = static_cast<HRESULT>(0x80020006u);      // no setting has this key
inline constexpr HRESULT kKtPanelNotANumber = static_cast<HRESULT>(0x80020005u);      // text in no form of the setting
inline constexpr HRESULT kKtPanelOutOfRange = static_cast<HRESULT>(0x8002000Au);      // a number outside the limits
inline constexpr HRESULT kKtPanelNotOffered = static_cast<HRESULT>(0x8002000Bu);      // a number not among the choices
inline constexpr HRESULT kKtPanelBufferTooSmall = static_cast<HRESULT>(0x8007007Au);  // see GetValue

// States of a setting over the clips being edited. An unset one stays in each clip as it is.
enum KtPropertyState : uint32_t {
    kKtPropertyUnset = 0,
    kKtPropertyLoaded = 1,   // from one clip
    kKtPropertyMixed = 2,    // clips differ; the value is that of the last one
    kKtPropertyAgreed = 3,   // clips agree
    kKtPropertyChanged = 4,  // edited
};

// The open panel. Keys are those of settings/property_table.h, compared byte for byte. A null pointer gives E_POINTER.
// Each operation that changes settings calls the sink's OnPropertiesChanged once. For the dialog's thread, and only
// until Answer returns.
struct IKtPropertiesPanel {
    // `text` is the whole number with "." as decimal point and without blanks: a float within the setting's limits; a
    // decimal integer among the offered ones or the one of a fresh record; "0" or "1". The setting then counts as
    // changed, even at its old value.
    virtual HRESULT STDMETHODCALLTYPE SetValue(const char* key, const char* text) = 0;
    // Leaves the setting as it is in each clip.
    virtual HRESULT STDMETHODCALLTYPE Unset(const char* key) = 0;
    // One setting back to the clips' own value.
    virtual HRESULT STDMETHODCALLTYPE UseClipDefault(const char* key) = 0;

    // The two buttons. After ClipDefault without a later change, OK takes the decode-properties files away.
    virtual HRESULT STDMETHODCALLTYPE ClipDefault() = 0;
    virtual HRESULT STDMETHODCALLTYPE FactoryDefault() = 0;

    // The value as SetValue takes it, floats with six significant digits. `size` counts characters with the
    // terminator; 24 are enough for every setting. On failure the text is empty where there is room for that.
    virtual HRESULT STDMETHODCALLTYPE GetValue(const char* key, char* text, uint32_t size) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetState(const char* key, uint32_t* state) = 0;  // a KtPropertyState
};

// Implemented by a sink that edits without a window.
struct IKtPropertiesAnswer : IUnknown {
    // S_OK: the user has pressed OK; S_FALSE: Cancel. A failure is the result of ShowPropertiesDialog, and the dialog
    // does not count as shown. Without this interface, and without a window system, that result is E_FAIL.
    virtual HRESULT STDMETHODCALLTYPE Answer(IKtPropertiesPanel* panel) = 0;
};

namespace clipfio {

// The choice that a fresh settings record holds, which SetValue takes whether the dialog offers it or not.
constexpr uint32_t FreshChoice(const PropertyRow& row) noexcept {
    constexpr uint32_t kNewestColorVersion = 3;
    return std::string_view(row.key) == "ColorVersion" ? kNewestColorVersion : static_cast<uint32_t>(row.defaultValue);
}

}  // namespace clipfio
