// The resource images of the modules of this process.
#pragma once

#include "platform/base.h"

namespace platform {

// `image` is a .res file in memory, as the resource compiler writes it; it stays the caller's and must live until it is
// unregistered. A null module stands for the program. A second image of a module takes the first one's place. False
// when there are too many modules.
bool RegisterResources(HMODULE module, const void* image, std::size_t bytes) noexcept;
void UnregisterResources(HMODULE module) noexcept;

// How many bytes there are from an address in the data of a resource to the resource's end; of memory that is no
// resource nothing is known, and the number is as great as can be.
std::size_t ResourceBytesFrom(const void* address) noexcept;

}  // namespace platform
