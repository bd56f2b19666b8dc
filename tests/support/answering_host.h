// A host that answers the dialog of the settings itself.
#pragma once

#include <gtest/gtest.h>

#include <functional>

#include "settings/properties_panel.h"
#include "settings/properties_sink.h"

namespace support {

// A host that edits without a window. Lives on the stack and counts its references.
class AnsweringHost final : public IKtPropertiesSink, public IKtPropertiesAnswer {
  public:
    std::function<HRESULT(IKtPropertiesPanel&)> edit;
    std::function<void()> onChange = [] {};
    bool answers = true;
    int references = 1;
    int changes = 0;
    IKtReadVideoStream* stream = nullptr;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override {
        *out = nullptr;
        if (!answers || !(id == IID_IKtPropertiesAnswer)) return E_NOINTERFACE;
        *out = static_cast<IKtPropertiesAnswer*>(this);
        ++references;
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++references); }
    ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(--references); }
    HRESULT STDMETHODCALLTYPE OnPropertiesChanged(IKtReadVideoStream* changed, uint32_t reserved) override {
        EXPECT_EQ(reserved, 0u);
        stream = changed;
        ++changes;
        onChange();
        return E_FAIL;  // nobody cares
    }
    HRESULT STDMETHODCALLTYPE Answer(IKtPropertiesPanel* panel) override { return edit(*panel); }
};

}  // namespace support
