// Answers the module's settings dialog in place of a window.
#pragma once

#include "settings/properties_panel.h"
#include "settings/properties_sink.h"

namespace clipfio::host {

// Lives where it is declared: its count is kept for the module's sake and frees nothing. What follows writes Answer,
// which must throw nothing.
class AnsweringSink : public IKtPropertiesSink, public IKtPropertiesAnswer {
  public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) noexcept final {
        if (out == nullptr) return E_POINTER;
        *out = nullptr;
        if (id == IID_IUnknown || id == IID_IKtPropertiesSink) *out = static_cast<IKtPropertiesSink*>(this);
        if (id == IID_IKtPropertiesAnswer) *out = static_cast<IKtPropertiesAnswer*>(this);
        if (*out == nullptr) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept final { return ++count_; }
    ULONG STDMETHODCALLTYPE Release() noexcept final { return --count_; }
    HRESULT STDMETHODCALLTYPE OnPropertiesChanged(IKtReadVideoStream*, uint32_t) noexcept final { return S_OK; }

  protected:
    AnsweringSink() = default;
    ~AnsweringSink() = default;

  private:
    ULONG count_ = 1;
};

}  // namespace clipfio::host
