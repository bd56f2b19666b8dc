// In which direction the windows of the process are laid out.
#pragma once

#include "platform/base.h"

#ifndef _WIN32

inline constexpr DWORD LAYOUT_RTL = 1;

// 0 or LAYOUT_RTL, for windows that are made from now on; any other bit fails with ERROR_INVALID_PARAMETER.
extern "C" BOOL SetProcessDefaultLayout(DWORD layout) noexcept;
extern "C" BOOL GetProcessDefaultLayout(DWORD* layout) noexcept;

#endif
