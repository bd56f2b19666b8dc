// The window behind a handle.
#pragma once

#include "errors.h"
#include "handles.h"
#include "window_record.h"

namespace platform {

// It stays while this does. Empty, with the last error set, when there is none.
class WindowUse {
  public:
    explicit WindowUse(HWND handle) noexcept : use_(handle, HandleType::kWindow) {
        if (!use_) SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    }
    explicit operator bool() const noexcept { return static_cast<bool>(use_); }
    Window* operator->() const noexcept { return use_->window; }
    Window& operator*() const noexcept { return *use_->window; }

  private:
    HandleUse use_;
};

}  // namespace platform
