// Resources of a module: found by name, type and language, then loaded and read in place.
#pragma once

#include "platform/base.h"

#ifdef _WIN32

namespace platform {

// Whether a resource is one of the module's; of another one's the module's calls would give wrong addresses.
inline bool HoldsResource(HMODULE module, HRSRC resource) noexcept {
    MEMORY_BASIC_INFORMATION info{};
    if (!resource || !VirtualQuery(resource, &info, sizeof info)) return false;
    return info.AllocationBase == (module ? module : GetModuleHandleW(nullptr));
}

}  // namespace platform

#else

#define MAKEINTRESOURCEW(id) (reinterpret_cast<const WCHAR*>(static_cast<ULONG_PTR>(static_cast<WORD>(id))))
#define RT_CURSOR MAKEINTRESOURCEW(1)
#define RT_BITMAP MAKEINTRESOURCEW(2)
#define RT_ICON MAKEINTRESOURCEW(3)
#define RT_MENU MAKEINTRESOURCEW(4)
#define RT_DIALOG MAKEINTRESOURCEW(5)
#define RT_STRING MAKEINTRESOURCEW(6)
#define RT_ACCELERATOR MAKEINTRESOURCEW(9)
#define RT_GROUP_CURSOR MAKEINTRESOURCEW(12)
#define RT_GROUP_ICON MAKEINTRESOURCEW(14)
#define RT_VERSION MAKEINTRESOURCEW(16)

// A language of 0 takes the best match for the thread: the user's language, then English, then the first one there is.
extern "C" HRSRC FindResourceExW(HMODULE module, const WCHAR* type, const WCHAR* name, WORD language) noexcept;
extern "C" HRSRC FindResourceW(HMODULE module, const WCHAR* name, const WCHAR* type) noexcept;  // of the best language
extern "C" HGLOBAL LoadResource(HMODULE module, HRSRC resource) noexcept;
extern "C" void* LockResource(HGLOBAL resource) noexcept;
extern "C" DWORD SizeofResource(HMODULE module, HRSRC resource) noexcept;
using ENUMRESLANGPROCW = BOOL(CALLBACK*)(HMODULE module, const WCHAR* type, const WCHAR* name, WORD language,
                                         LONG_PTR parameter);
// Calls back for each language that a resource has, until FALSE comes back. FALSE when that came or there is none.
extern "C" BOOL EnumResourceLanguagesW(HMODULE module, const WCHAR* type, const WCHAR* name, ENUMRESLANGPROCW callback,
                                       LONG_PTR parameter) noexcept;

namespace platform {

bool HoldsResource(HMODULE module, HRSRC resource) noexcept;

}  // namespace platform

#endif
