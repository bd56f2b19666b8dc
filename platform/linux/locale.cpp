#include "platform/locale.h"

#include <cstdlib>
#include <new>
#include <optional>
#include <string>
#include <string_view>

#include "errors.h"
#include "locale_names.h"
#include "paths.h"

namespace {

constexpr LCID kEnglish = 0x0409;

thread_local LCID t_locale = 0;  // 0: not set

// Decimal, or hexadecimal after 0x. A number that no locale has is none.
std::optional<LCID> IdOfNumber(const std::string& text) {
    const bool hex = text.starts_with("0x") || text.starts_with("0X");
    const std::string_view digits = std::string_view(text).substr(hex ? 2 : 0);
    const std::string_view allowed = hex ? "0123456789abcdefABCDEF" : "0123456789";
    if (digits.empty() || digits.size() > 8 || digits.find_first_not_of(allowed) != std::string_view::npos) {
        return std::nullopt;
    }
    const unsigned long id = std::strtoul(text.c_str(), nullptr, hex ? 16 : 10);
    return platform::IsLocale(static_cast<LCID>(id)) ? std::optional(static_cast<LCID>(id)) : std::nullopt;
}

// A variable that is empty or says nothing that is understood counts as not set.
LCID FromEnvironment() {
    if (const auto number = platform::Environment("KT_LCID")) {
        if (const auto id = IdOfNumber(*number)) return *id;
    }
    for (const char* variable : {"LC_ALL", "LANG"}) {
        const auto name = platform::Environment(variable);
        if (!name) continue;
        if (const auto id = platform::LcidOfPosixName(*name)) return *id;
    }
    return kEnglish;
}

}  // namespace

extern "C" LCID GetUserDefaultLCID() noexcept {
    try {
        return FromEnvironment();
    } catch (const std::bad_alloc&) {
        return kEnglish;
    }
}

extern "C" LCID GetSystemDefaultLCID() noexcept { return GetUserDefaultLCID(); }
extern "C" LANGID GetUserDefaultUILanguage() noexcept { return static_cast<LANGID>(GetUserDefaultLCID()); }

extern "C" LCID GetThreadLocale() noexcept { return t_locale ? t_locale : GetUserDefaultLCID(); }

extern "C" BOOL SetThreadLocale(LCID lcid) noexcept {
    const auto found = platform::Guarded(std::optional<LCID>(), [lcid] {
        const auto locale = platform::FindLocale(lcid);
        return locale ? std::optional(locale->lcid) : std::nullopt;
    });
    if (!found) return platform::Fail(ERROR_INVALID_PARAMETER);
    t_locale = *found;
    return TRUE;
}
