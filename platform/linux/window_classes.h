// Which procedure serves a class of windows.
#pragma once

#include "process_shared.h"
#include "window_record.h"

namespace platform {

struct FoundClass {
    WNDPROC procedure = nullptr;  // null: the built-in class of that number
    std::uint32_t builtin = 0;
};

// False for a name that no class has.
bool FindWindowClass(const WCHAR* name, FoundClass& found) noexcept;

}  // namespace platform
