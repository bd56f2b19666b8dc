#include "locale_names.h"

#include <unicode/uloc.h>

#include "platform/locale.h"

namespace platform {
namespace {

constexpr LCID kPrimaryMask = 0x3FF;
constexpr unsigned kSubShift = 10;
constexpr LCID kFirstRegion = 1u << kSubShift;
constexpr LCID kChineseSimplified = 0x0804;

// Regions are numbered from 1; the last few numbers stand for no region, or for a script.
bool HasRegion(LCID lcid) noexcept {
    const LCID sub = (lcid & 0xFFFF) >> kSubShift;
    constexpr LCID kFirstWithoutRegion = 0x1B;
    return sub >= 1 && sub < kFirstWithoutRegion;
}

using IcuCall = int32_t (*)(const char*, char*, int32_t, UErrorCode*);

std::string Ask(IcuCall call, const std::string& locale) {
    char text[ULOC_FULLNAME_CAPACITY] = {};
    UErrorCode error = U_ZERO_ERROR;
    const int32_t length = call(locale.c_str(), text, sizeof text, &error);
    return U_SUCCESS(error) && length > 0 ? std::string(text) : std::string();
}

std::string Language(const std::string& locale) { return Ask(uloc_getLanguage, locale); }
std::string Script(const std::string& locale) { return Ask(uloc_getScript, locale); }
std::string Region(const std::string& locale) { return Ask(uloc_getCountry, locale); }
std::string Likely(const std::string& locale) { return Ask(uloc_addLikelySubtags, locale); }

std::string IcuName(LCID lcid) {
    char text[ULOC_FULLNAME_CAPACITY] = {};
    UErrorCode error = U_ZERO_ERROR;
    const int32_t length = uloc_getLocaleForLCID(lcid, text, sizeof text, &error);
    if (U_FAILURE(error) || length <= 0) return {};
    const std::string_view name(text);
    return std::string(name.substr(0, name.find('@')));
}

LCID WithRegion(LCID lcid) noexcept {
    if (HasRegion(lcid)) return lcid;
    const LCID primary = lcid & kPrimaryMask;
    return primary == (kChineseSimplified & kPrimaryMask) ? kChineseSimplified : primary | kFirstRegion;
}

bool IsUsersLocale(LCID lcid) noexcept {
    return lcid == 0 || lcid == LOCALE_USER_DEFAULT || lcid == LOCALE_SYSTEM_DEFAULT;
}

}  // namespace

bool IsLocale(LCID lcid) {
    constexpr LCID kMaxLcid = 0xFFFFF;  // a language and a way of sorting
    return lcid <= kMaxLcid && !IsUsersLocale(lcid) && (lcid == LOCALE_INVARIANT || !Language(IcuName(lcid)).empty());
}

std::optional<IcuLocale> FindLocale(LCID lcid) {
    if (IsUsersLocale(lcid)) lcid = GetUserDefaultLCID();
    if (lcid == LOCALE_INVARIANT) return IcuLocale{lcid, "en", "en@numbers=latn", "en", {}};
    const std::string name = IcuName(lcid);
    const std::string language = Language(name);
    if (language.empty()) return std::nullopt;
    const std::string likely = Likely(name);

    IcuLocale locale;
    locale.lcid = WithRegion(lcid & 0xFFFF);
    locale.region = Region(name).empty() ? Region(likely) : Region(name);
    // Chinese is two languages to its readers, and they differ by the script.
    const std::string script = language == "zh" ? Script(likely) : Script(name);
    locale.language = script.empty() ? language : language + "_" + script;
    locale.id = locale.language + "_" + locale.region;
    locale.numbers = locale.id + "@numbers=latn";
    return locale;
}

std::optional<LCID> LcidOfPosixName(std::string_view posix) {
    const std::string name(posix.substr(0, posix.find_first_of(".@")));
    const std::string language = Language(name);
    if (language.empty()) return std::nullopt;
    const std::string usual = Likely(language);
    for (const std::string& candidate : {name, Likely(name), Language(usual) + "_" + Region(usual)}) {
        const LCID lcid = uloc_getLCID(candidate.c_str());
        if (HasRegion(lcid)) return lcid;
    }
    const LCID primary = uloc_getLCID(language.c_str()) & kPrimaryMask;
    return primary == 0 || primary == LOCALE_INVARIANT ? std::nullopt : std::optional(primary | kFirstRegion);
}

}  // namespace platform
