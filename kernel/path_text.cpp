#include "kernel/path_text.h"

#include <algorithm>

#include "kernel/characters.h"
#include "kernel/text_copy.h"
#include "platform/text.h"

namespace {

using clipfio::CopyText;
using clipfio::IsDigit;
using clipfio::IsSpace;

constexpr size_t kPathSize = 260;  // characters, terminator included

const WCHAR* OrEmpty(const WCHAR* text) noexcept { return text ? text : W(""); }
int32_t LengthOf(const WCHAR* text) noexcept { return static_cast<int32_t>(WStringView(text).size()); }

const WCHAR* Next(const WCHAR* text) noexcept { return text + 1; }
const char* Next(const char* text) noexcept { return CharNextA(text); }

template <class Char>
const Char* FindName(const Char* path) noexcept {
    const Char* name = path;
    for (const Char* p = path; p && *p; p = Next(p)) {
        if (*p == ':' || *p == '\\') name = p + 1;
    }
    return name;
}

template <class Char>
const Char* FindExtension(const Char* text) noexcept {
    const Char* dot = nullptr;
    const Char* p = text;
    for (; p && *p; p = Next(p)) {
        if (*p == '.') {
            dot = p;
        } else if (IsSpace(*p)) {
            dot = nullptr;
        }
    }
    return dot ? dot : p;
}

bool SameCharacter(WCHAR a, WCHAR b) noexcept { return platform::UpperCase(a) == platform::UpperCase(b); }

bool SameText(WStringView a, WStringView b) noexcept {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), SameCharacter);
}

bool StartsWith(WStringView text, WStringView start) noexcept {
    return text.size() >= start.size() && SameText(text.substr(0, start.size()), start);
}

// Writes the extension from `out` on, which lies within the path's buffer.
void PutExtension(WCHAR* path, int32_t size, WCHAR* out, const WCHAR* extension) noexcept {
    WCHAR* const last = path + size - 1;  // where the terminator has to stand at the latest
    if (out > last) return;
    if (*extension != W('.') && out < last) *out++ = W('.');
    CopyText(out, static_cast<int32_t>(last - out) + 1, extension);
}

// The '_' in front of the digits that end at `end`, or `end`.
const WCHAR* WithoutNumber(const WCHAR* name, const WCHAR* end) noexcept {
    const WCHAR* p = end;
    while (p > name && IsDigit(p[-1])) --p;
    return p - name >= 2 && p[-1] == W('_') ? p - 1 : end;
}

constexpr bool IsBadInName(WCHAR c) noexcept { return WStringView(W("\n\r\"*/:<>?\\|")).find(c) != WStringView::npos; }

size_t RootLength(WStringView path) noexcept {
    size_t at = 0;
    if (path.starts_with(W("\\\\"))) {
        at = path.find(W('\\'), 2);
        if (at == WStringView::npos) return 0;
        ++at;
    }
    const size_t end = path.find(W('\\'), at);
    return end == WStringView::npos ? 0 : end + 1;
}

bool IsLastPoint(const WCHAR* text) noexcept { return text[0] == W('.') && text[1] == 0; }

HRESULT Store(WCHAR* destination, int32_t size, WStringView text) noexcept {
    const bool fits = destination && size > 0 && text.size() < static_cast<size_t>(size);
    CopyText(destination, size, fits ? text : WStringView());
    return fits ? S_OK : E_FAIL;
}

}  // namespace

const char* KtGetFileNamePtrA(const char* path) noexcept { return FindName(path); }
const WCHAR* KtGetFileNamePtrW(const WCHAR* path) noexcept { return FindName(path); }
const char* KtGetFileNameExtensionPtrA(const char* text) noexcept { return FindExtension(text); }
const WCHAR* KtGetFileNameExtensionPtrW(const WCHAR* text) noexcept { return FindExtension(text); }

int32_t KtValidateFileName(WCHAR* name, int32_t fix) noexcept {
    int32_t is_valid = 1;
    for (WCHAR* p = name; p && *p; ++p) {
        const bool is_bad_end = p[1] == 0 && (*p == W(' ') || *p == W('.'));
        if (!is_bad_end && !IsBadInName(*p)) continue;
        is_valid = 0;
        if (!fix) break;
        *p = W('_');
    }
    return is_valid;
}

int32_t KtAddSlashToPathName(WCHAR* path, int32_t size) noexcept {
    const int32_t length = LengthOf(OrEmpty(path));
    if (length == 0 || length >= size) return 0;
    if (path[length - 1] == W('\\')) return length;
    if (length + 1 >= size) return 0;
    path[length] = W('\\');
    path[length + 1] = 0;
    return length + 1;
}

int32_t KtRemoveSlashFromPathNameEnd(WCHAR* path, int32_t size) noexcept {
    const int32_t length = LengthOf(OrEmpty(path));
    if (length == 0 || length >= size) return 0;
    if (path[length - 1] != W('\\')) return length;
    path[length - 1] = 0;
    return length - 1;
}

int32_t KtAddExtensionToPathName(WCHAR* path, int32_t size, const WCHAR* extension) noexcept {
    const int32_t length = LengthOf(OrEmpty(path));
    if (!path || !extension || length >= size) return length;
    while (*extension == W('.')) ++extension;
    const WCHAR* const name = KtGetFileNamePtrW(path);
    const WCHAR* const own = KtGetFileNameExtensionPtrW(name);
    if (*own == W('.') && SameText(own + 1, extension)) return length;
    PutExtension(path, size, path + (own - path), extension);
    return LengthOf(path);
}

void KtReplaceExtensionOnPathName(WCHAR* path, int32_t size, const WCHAR* extension) noexcept {
    KtReplaceExtensionOnPathNameEx(path, size, extension, 0);
}

void KtReplaceExtensionOnPathNameEx(WCHAR* path, int32_t size, const WCHAR* extension, int32_t strip_number) noexcept {
    if (!path || !extension || size < 1) return;
    const WCHAR* const name = KtGetFileNamePtrW(path);
    if (!*name) return;
    const WCHAR* own = KtGetFileNameExtensionPtrW(name);
    if (strip_number) own = WithoutNumber(name, own);
    PutExtension(path, size, path + (own - path), extension);
}

int32_t KtAppendToPathName(WCHAR* path, int32_t size, const WCHAR* name, const WCHAR* extension) noexcept {
    if (!path || size < 1) return 0;
    const int32_t start = KtAddSlashToPathName(path, size);
    if (start == 0 && *path) return 0;
    name = OrEmpty(name);
    WCHAR* const part = path + start;
    CopyText(part, size - start, *name == W('\\') ? name + 1 : name);
    if (extension) KtReplaceExtensionOnPathName(part, size - start, extension);
    return LengthOf(path);
}

WCHAR* KtGetFileNameWithoutPathOrExtension(const WCHAR* path, WCHAR* destination, int32_t size) noexcept {
    const WCHAR* const name = KtGetFileNamePtrW(OrEmpty(path));
    const WCHAR* const end = KtGetFileNameExtensionPtrW(name);
    return destination + CopyText(destination, size, {name, static_cast<size_t>(end - name)});
}

int32_t KtGetPathNameFromFilePath(const WCHAR* path, WCHAR* destination, int32_t size) noexcept {
    path = OrEmpty(path);
    return CopyText(destination, size, {path, static_cast<size_t>(KtGetFileNamePtrW(path) - path)});
}

int32_t KtGetRootPathFromFilePath(const WCHAR* path, WCHAR* destination, int32_t size) noexcept {
    const WStringView whole = OrEmpty(path);
    return CopyText(destination, size, whole.substr(0, RootLength(whole)));
}

int32_t KtIsMatchWildCard(const WCHAR* pattern, const WCHAR* name) noexcept {
    if (!pattern || !name) return 0;
    if (WStringView(pattern) == W("*")) return 1;
    for (;;) {
        if (*name == 0) return *pattern == 0 || *pattern == W('*') || IsLastPoint(pattern);
        if (*pattern == 0) return IsLastPoint(name);
        if (*pattern == W('*')) {
            ++pattern;
            while (*name && *name != *pattern && *name != W('.')) ++name;
        } else if (*pattern == W('?') || *pattern == *name) {
            ++pattern;
            ++name;
        } else {
            return 0;
        }
    }
}

const WCHAR* KtGetFileNamePtrRelative(const WCHAR* other, const WCHAR* path) noexcept {
    if (!path) return nullptr;
    const WStringView whole = path;
    const WStringView with = OrEmpty(other);
    const auto differing = std::mismatch(whole.rbegin(), whole.rend(), with.rbegin(), with.rend(), SameCharacter).first;
    const auto common = static_cast<size_t>(whole.rend() - differing);
    if (common == 0) return path;
    const size_t slash = whole.find(W('\\'), common);
    return path + std::min(whole.find_first_not_of(W('\\'), slash), whole.size());
}

HRESULT KtGetBasePathRelative(const WCHAR* other, const WCHAR* path, WCHAR* destination, int32_t size) noexcept {
    const WStringView whole = OrEmpty(path);
    if (whole.size() >= kPathSize) {
        CopyText(destination, size, W(""));
        return E_FAIL;
    }
    WCHAR base[kPathSize] = {};
    whole.copy(base, static_cast<size_t>(KtGetFileNamePtrRelative(other, whole.data()) - whole.data()));
    KtAddSlashToPathName(base, kPathSize);
    return Store(destination, size, base);
}

HRESULT KtReplaceBasePathRelative(const WCHAR* path, const WCHAR* old_base, const WCHAR* new_base, WCHAR* destination,
                                  int32_t size) noexcept {
    const WStringView whole = OrEmpty(path);
    const WStringView old_start = OrEmpty(old_base);
    const WStringView new_start = OrEmpty(new_base);
    WCHAR replaced[kPathSize] = {};
    const bool is_below = StartsWith(whole, old_start);
    const WStringView rest = is_below ? whole.substr(old_start.size()) : WStringView();
    if (!is_below || new_start.size() + rest.size() >= kPathSize) {
        CopyText(destination, size, W(""));
        return E_FAIL;
    }
    rest.copy(replaced + new_start.copy(replaced, new_start.size()), rest.size());
    return Store(destination, size, replaced);
}

int32_t KtFilenameLogicalCompare(const WCHAR* a, const WCHAR* b) noexcept {
    return StrCmpLogicalW(OrEmpty(a), OrEmpty(b));
}
