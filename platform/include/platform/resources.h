// Resources of a module: found by name, type and language, then loaded and read in place.
#pragma once

#include "platform/base.h"

#ifndef _WIN32

#define MAKEINTRESOURCEW(id) (reinterpret_cast<const WCHAR*>(static_cast<ULONG_PTR>(static_cast<WORD>(id))))
#define RT_BITMAP MAKEINTRESOURCEW(2)
#define RT_DIALOG MAKEINTRESOURCEW(5)
#define RT_STRING MAKEINTRESOURCEW(6)

// A language of 0 takes the best match for the thread: the user's language, then English, then the first one there is.
extern "C" HRSRC FindResourceExW(HMODULE module, const WCHAR* type, const WCHAR* name, WORD language) noexcept;
extern "C" HGLOBAL LoadResource(HMODULE module, HRSRC resource) noexcept;
extern "C" void* LockResource(HGLOBAL resource) noexcept;
extern "C" DWORD SizeofResource(HMODULE module, HRSRC resource) noexcept;

#endif
