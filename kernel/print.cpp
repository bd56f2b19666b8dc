#include "kernel/print.h"

#include "kernel/print_engine.h"

using clipfio::Printed;
using clipfio::TextRule;

int32_t KtVPrintF(WCHAR* out, const WCHAR* format, std::va_list arguments) noexcept {
    if (!out) return 0;
    *out = 0;
    if (!format) return 0;
    return static_cast<int32_t>(
        clipfio::Print(out, clipfio::kUnlimited, TextRule::kPlatform, format, arguments).length);
}

int32_t KtPrintF(WCHAR* out, const WCHAR* format, ...) noexcept {
    std::va_list arguments;
    va_start(arguments, format);
    const int32_t length = KtVPrintF(out, format, arguments);
    va_end(arguments);
    return length;
}

HRESULT KtNVPrintF(WCHAR* out, uint32_t size, uint32_t* length, const WCHAR* format, std::va_list arguments) noexcept {
    if (length) *length = 0;
    if (!out || size < 1) return E_INVALIDARG;
    *out = 0;
    if (!format) return E_INVALIDARG;
    const Printed printed = clipfio::Print(out, size, TextRule::kBounded, format, arguments);
    if (length) *length = static_cast<uint32_t>(printed.length);
    return printed.status;
}

HRESULT KtCchPrintF(WCHAR* out, uint32_t size, uint32_t* length, const WCHAR* format, ...) noexcept {
    std::va_list arguments;
    va_start(arguments, format);
    const HRESULT result = KtNVPrintF(out, size, length, format, arguments);
    va_end(arguments);
    return result;
}
