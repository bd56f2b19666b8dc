#include "kernel/print.h"

#include "kernel/print_engine.h"

namespace {

using clipfio::PrintArguments;
using clipfio::TextRule;

int32_t PrintWhole(WCHAR* out, const WCHAR* format, PrintArguments& arguments) noexcept {
    if (!out) return 0;
    *out = 0;
    if (!format) return 0;
    return static_cast<int32_t>(
        clipfio::Print(out, clipfio::kUnlimited, TextRule::kPlatform, format, arguments).length);
}

HRESULT PrintBounded(WCHAR* out, uint32_t size, uint32_t* length, const WCHAR* format,
                     PrintArguments& arguments) noexcept {
    if (length) *length = 0;
    if (!out || size < 1) return E_INVALIDARG;
    *out = 0;
    if (!format) return E_INVALIDARG;
    const clipfio::Printed printed = clipfio::Print(out, size, TextRule::kBounded, format, arguments);
    if (length) *length = static_cast<uint32_t>(printed.length);
    return printed.status;
}

}  // namespace

int32_t KtVPrintF(WCHAR* out, const WCHAR* format, std::va_list arguments) noexcept {
    PrintArguments taken;
    va_copy(taken.list, arguments);
    const int32_t length = PrintWhole(out, format, taken);
    va_end(taken.list);
    return length;
}

int32_t KtPrintF(WCHAR* out, const WCHAR* format, ...) noexcept {
    PrintArguments taken;
    va_start(taken.list, format);
    const int32_t length = PrintWhole(out, format, taken);
    va_end(taken.list);
    return length;
}

HRESULT KtNVPrintF(WCHAR* out, uint32_t size, uint32_t* length, const WCHAR* format, std::va_list arguments) noexcept {
    PrintArguments taken;
    va_copy(taken.list, arguments);
    const HRESULT result = PrintBounded(out, size, length, format, taken);
    va_end(taken.list);
    return result;
}

HRESULT KtCchPrintF(WCHAR* out, uint32_t size, uint32_t* length, const WCHAR* format, ...) noexcept {
    PrintArguments taken;
    va_start(taken.list, format);
    const HRESULT result = PrintBounded(out, size, length, format, taken);
    va_end(taken.list);
    return result;
}
