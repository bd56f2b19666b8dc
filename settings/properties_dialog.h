// The modal dialog over the settings, as the editor sees it.
#pragma once

#include "platform/base.h"

namespace clipfio {

class MediaPropertyEditor;

struct PropertiesDialog {
    // Shows the dialog and returns when it has closed. S_OK: with OK; S_FALSE: otherwise; a failure: it was not shown.
    [[nodiscard]] virtual HRESULT Run(MediaPropertyEditor& editor, HINSTANCE module, HWND parent) noexcept = 0;

  protected:
    ~PropertiesDialog() = default;
};

}  // namespace clipfio
