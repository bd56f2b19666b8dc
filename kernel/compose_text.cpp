#include "kernel/compose_text.h"

#include <cstdarg>

#include "platform/modules.h"

uint32_t KtComposeStr(WCHAR* out, uint32_t size, const WCHAR* format, ...) noexcept {
    if (!out || size < 1) return 0;
    out[0] = 0;
    if (!format) return 0;
    std::va_list arguments;
    va_start(arguments, format);
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_STRING, format, 0, 0, out, size, &arguments);
    va_end(arguments);
    if (length == 0) out[0] = 0;
    return length;
}
