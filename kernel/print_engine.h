// The one engine behind all printing operations.
#pragma once

#include <cstdarg>
#include <cstddef>

#include "platform/base.h"

namespace clipfio {

inline constexpr std::size_t kUnlimited = static_cast<std::size_t>(-1);

// How `c` and `s` are printed: as the platform's own print does, which stops at 1024 characters, or into the room that
// is left, which tells of a cut.
enum class TextRule { kPlatform, kBounded };

struct Printed {
    HRESULT status;
    std::size_t length;  // characters, without the terminator
};

// The arguments of a format, which printing uses up.
struct PrintArguments {
    std::va_list list;
};

// `size` counts the terminator and is at least 1, or kUnlimited; neither pointer is null.
Printed Print(WCHAR* out, std::size_t size, TextRule rule, const WCHAR* format, PrintArguments& arguments) noexcept;

// The same, bounded, for a text that nobody has arguments for: each one that it asks for is 0 or empty.
Printed PrintWithoutArguments(WCHAR* out, std::size_t size, const WCHAR* format) noexcept;

}  // namespace clipfio
