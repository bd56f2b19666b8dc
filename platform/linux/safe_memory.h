// Looking at addresses that may be anything.
#pragma once

namespace platform {

// True when the 8 bytes at `address` can be read now.
bool IsReadable(const void* address) noexcept;

}  // namespace platform
