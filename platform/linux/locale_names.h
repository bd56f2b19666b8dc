// Locales by their three names: the LCID of Win32, the name of POSIX, the id of ICU.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/base.h"

namespace platform {

// A locale as ICU takes it apart. Latin digits are asked for by `numbers`.
struct IcuLocale {
    LCID lcid;             // with a region
    std::string id;        // language_Script_REGION, the script where it distinguishes
    std::string numbers;   // the same with Latin digits
    std::string language;  // language_Script
    std::string region;    // two letters
};

// Nothing when nobody knows the number. The defaults of the user and the system are looked up.
std::optional<IcuLocale> FindLocale(LCID lcid);

// Whether the number is some locale's own, and not a default.
bool IsLocale(LCID lcid);

// "de_DE.UTF-8@euro" is de_DE; a region that Win32 has no number for counts as the language's usual one. Nothing for a
// name that is not known even by its language.
std::optional<LCID> LcidOfPosixName(std::string_view name);

}  // namespace platform
