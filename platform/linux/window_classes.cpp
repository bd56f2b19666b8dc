// Classes of windows: one table for the process.
#include <algorithm>
#include <iterator>

#include "errors.h"
#include "window_classes.h"

namespace platform {
namespace {

bool CapitalName(const WCHAR* name, WCHAR (&out)[kLongestClassName]) noexcept {
    if (reinterpret_cast<std::uintptr_t>(name) <= 0xFFFF) return false;  // an atom
    std::size_t length = 0;
    for (; name[length] != 0; ++length) {
        if (length + 1 == kLongestClassName) return false;
        const WCHAR c = name[length];
        out[length] = c >= u'a' && c <= u'z' ? static_cast<WCHAR>(c - u'a' + u'A') : c;
    }
    out[length] = 0;
    return length > 0;
}

// With the classes locked.
WindowClass* Find(WStringView capital_name) noexcept {
    WindowClass* const classes = Shared().window_classes;
    WindowClass* const end = classes + kMaxWindowClasses;
    WindowClass* const found = std::find_if(
        classes, end, [capital_name](const WindowClass& each) { return WStringView(each.name) == capital_name; });
    return found == end ? nullptr : found;
}

// What RegisterClassExW gives is the place in the table.
constexpr std::uintptr_t kFirstAtom = 0xC000;
constexpr std::uintptr_t kLastAtom = 0xFFFF;

bool FindAtom(std::uintptr_t atom, FoundClass& found) noexcept {
    if (atom - kFirstBuiltinAtom < kBuiltinAtoms) {
        found = {nullptr, static_cast<std::uint32_t>(atom - kFirstBuiltinAtom)};
        return true;
    }
    if (atom - kFirstAtom >= kMaxWindowClasses) return false;
    const PthreadLock lock(Shared().class_lock);
    const WindowClass& row = Shared().window_classes[atom - kFirstAtom];
    if (row.name[0] != 0) found = {row.procedure, 0};
    return row.name[0] != 0;
}

}  // namespace

bool FindWindowClass(const WCHAR* name, FoundClass& found) noexcept {
    if (const auto atom = reinterpret_cast<std::uintptr_t>(name); atom <= kLastAtom) return FindAtom(atom, found);
    WCHAR capitals[kLongestClassName];
    if (!CapitalName(name, capitals)) return false;
    const WStringView wanted(capitals);
    const auto* builtin = std::find(std::begin(kBuiltinClasses), std::end(kBuiltinClasses), wanted);
    if (builtin != std::end(kBuiltinClasses)) {
        found = {nullptr, static_cast<std::uint32_t>(builtin - std::begin(kBuiltinClasses))};
        return true;
    }
    const PthreadLock lock(Shared().class_lock);
    const WindowClass* const row = Find(wanted);
    if (row) found = {row->procedure, 0};
    return row != nullptr;
}

}  // namespace platform

using namespace platform;

extern "C" ATOM RegisterClassExW(const WNDCLASSEXW* window_class) noexcept {
    WCHAR capitals[kLongestClassName];
    if (!window_class || window_class->cbSize != sizeof *window_class || !window_class->lpfnWndProc ||
        !CapitalName(window_class->lpszClassName, capitals)) {
        return Fail(ERROR_INVALID_PARAMETER, ATOM{0});
    }
    FoundClass found;
    if (FindWindowClass(capitals, found)) return Fail(ERROR_CLASS_ALREADY_EXISTS, ATOM{0});
    const PthreadLock lock(Shared().class_lock);
    WindowClass* const row = Find({});
    if (!row) return Fail(ERROR_NOT_ENOUGH_MEMORY, ATOM{0});
    std::copy(std::begin(capitals), std::end(capitals), row->name);
    row->procedure = window_class->lpfnWndProc;
    row->instance = window_class->hInstance;
    return static_cast<ATOM>(kFirstAtom + static_cast<std::uintptr_t>(row - Shared().window_classes));
}

extern "C" BOOL UnregisterClassW(const WCHAR* name, HINSTANCE) noexcept {
    WCHAR capitals[kLongestClassName];
    if (!CapitalName(name, capitals)) return Fail(ERROR_CLASS_DOES_NOT_EXIST);
    const PthreadLock lock(Shared().class_lock);
    WindowClass* const row = Find(capitals);
    if (!row) return Fail(ERROR_CLASS_DOES_NOT_EXIST);
    *row = {};
    return TRUE;
}
