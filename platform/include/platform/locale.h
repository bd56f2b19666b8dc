// Facts about the user's locale.
#pragma once

#include "platform/base.h"

#ifndef _WIN32

inline constexpr LCID LOCALE_USER_DEFAULT = 0x0400;

// The user's locale: KT_LCID, else LC_ALL, else LANG, else 0x0409.
extern "C" LCID GetUserDefaultLCID() noexcept;
extern "C" LCID GetSystemDefaultLCID() noexcept;

#endif
