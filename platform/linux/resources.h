// The resource images of the modules of this process.
#pragma once

#include "platform/base.h"

namespace platform {

// `image` is a .res file in memory, as the resource compiler writes it; it stays the caller's and must live until it is
// unregistered. A null module stands for the program. A second image of a module takes the first one's place. False
// when there are too many modules.
bool RegisterResources(HMODULE module, const void* image, std::size_t bytes) noexcept;
void UnregisterResources(HMODULE module) noexcept;

}  // namespace platform
