// Text into a caller's buffer.
#pragma once

#include <algorithm>
#include <cstdint>

#include "platform/base.h"

namespace clipfio {

// Copies what fits and terminates; a null buffer or a size below 1 writes nothing. Returns characters copied.
inline int32_t CopyText(WCHAR* out, int32_t size, WStringView text) noexcept {
    if (!out || size < 1) return 0;
    const auto length = std::min(text.size(), static_cast<std::size_t>(size) - 1);
    std::copy_n(text.data(), length, out);
    out[length] = 0;
    return static_cast<int32_t>(length);
}

}  // namespace clipfio
