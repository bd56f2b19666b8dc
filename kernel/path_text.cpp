#include "kernel/path_text.h"

namespace {

constexpr bool IsWhiteSpace(WCHAR c) noexcept {
    return c == W(' ') || (c >= W('\t') && c <= W('\r')) || c == 0x85 || c == 0xA0 || c == 0x1680 ||
           (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F || c == 0x205F || c == 0x3000;
}

}  // namespace

const WCHAR* KtGetFileNamePtrW(const WCHAR* path) noexcept {
    const WCHAR* name = path;
    for (const WCHAR* p = path; *p; ++p) {
        if (*p == W(':') || *p == W('\\')) name = p + 1;
    }
    return name;
}

const WCHAR* KtGetFileNameExtensionPtrW(const WCHAR* text) noexcept {
    const WCHAR* dot = nullptr;
    const WCHAR* p = text;
    for (; *p; ++p) {
        if (*p == W('.')) {
            dot = p;
        } else if (IsWhiteSpace(*p)) {
            dot = nullptr;
        }
    }
    return dot ? dot : p;
}

void KtReplaceExtensionOnPathName(WCHAR* path, int32_t size, const WCHAR* extension) noexcept {
    if (!path || !extension || size < 1) return;
    const WCHAR* name = KtGetFileNamePtrW(path);
    if (!*name) return;
    WCHAR* out = path + (KtGetFileNameExtensionPtrW(name) - path);
    WCHAR* const last = path + size - 1;  // where the terminator has to stand at the latest
    if (out > last) return;
    if (*extension != W('.') && out < last) *out++ = W('.');
    while (*extension && out < last) *out++ = *extension++;
    *out = 0;
}
