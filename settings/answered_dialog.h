// The properties dialog of a host that answers for its user: no window, and IKtPropertiesPanel for the controls.
#pragma once

#include "platform/scoped.h"
#include "settings/properties_dialog.h"
#include "settings/properties_panel.h"

namespace clipfio {

class AnsweredDialog final : public PropertiesDialog {
  public:
    explicit AnsweredDialog(platform::ComPtr<IKtPropertiesAnswer> answer) noexcept : answer_(std::move(answer)) {}
    [[nodiscard]] HRESULT Run(MediaPropertyEditor& editor, HINSTANCE module, HWND parent) noexcept override;

  private:
    platform::ComPtr<IKtPropertiesAnswer> answer_;
};

}  // namespace clipfio
