#include "platform/locale.h"

#include <cstdlib>
#include <new>
#include <optional>
#include <string>
#include <string_view>

#include "paths.h"

namespace {

struct LocaleRow {
    std::string_view name;  // language, or language_REGION; the first row of a language is its usual region
    LCID id;
};

constexpr LCID kEnglish = 0x0409;

constexpr LocaleRow kLocales[] = {
    {"en_US", kEnglish}, {"en_GB", 0x0809}, {"en_AU", 0x0C09}, {"en_CA", 0x1009}, {"en_NZ", 0x1409}, {"en_IE", 0x1809},
    {"en_IN", 0x4009},   {"ja_JP", 0x0411}, {"de_DE", 0x0407}, {"de_CH", 0x0807}, {"de_AT", 0x0C07}, {"es_ES", 0x0C0A},
    {"es_MX", 0x080A},   {"es_AR", 0x2C0A}, {"fr_FR", 0x040C}, {"fr_BE", 0x080C}, {"fr_CA", 0x0C0C}, {"fr_CH", 0x100C},
    {"zh_CN", 0x0804},   {"zh_TW", 0x0404}, {"zh_HK", 0x0C04}, {"zh_SG", 0x1004}, {"da_DK", 0x0406}, {"fi_FI", 0x040B},
    {"it_IT", 0x0410},   {"it_CH", 0x0810}, {"ko_KR", 0x0412}, {"nl_NL", 0x0413}, {"nl_BE", 0x0813}, {"nb_NO", 0x0414},
    {"no_NO", 0x0414},   {"nn_NO", 0x0814}, {"pt_PT", 0x0816}, {"pt_BR", 0x0416}, {"ru_RU", 0x0419}, {"sv_SE", 0x041D},
    {"sv_FI", 0x081D},   {"pl_PL", 0x0415}, {"tr_TR", 0x041F}, {"hi_IN", 0x0439}, {"uk_UA", 0x0422}, {"cs_CZ", 0x0405},
    {"hu_HU", 0x040E},
};

// "de_DE.UTF-8@euro" is de_DE. Nothing for a name that no row knows even by its language.
std::optional<LCID> IdOfName(std::string_view name) noexcept {
    name = name.substr(0, name.find_first_of(".@"));
    const std::string_view language = name.substr(0, name.find('_'));
    if (language.empty()) return std::nullopt;
    std::optional<LCID> by_language;
    for (const LocaleRow& row : kLocales) {
        if (row.name == name) return row.id;
        if (!by_language && row.name.substr(0, row.name.find('_')) == language) by_language = row.id;
    }
    return by_language;
}

// Decimal, or hexadecimal after 0x. A language of 0 is nobody's.
std::optional<LCID> IdOfNumber(const std::string& text) noexcept {
    const bool hex = text.starts_with("0x") || text.starts_with("0X");
    const std::string_view digits = std::string_view(text).substr(hex ? 2 : 0);
    const std::string_view allowed = hex ? "0123456789abcdefABCDEF" : "0123456789";
    if (digits.empty() || digits.size() > 8 || digits.find_first_not_of(allowed) != std::string_view::npos) {
        return std::nullopt;
    }
    const unsigned long id = std::strtoul(text.c_str(), nullptr, hex ? 16 : 10);
    constexpr unsigned long kMaxId = 0xFFFFF;
    if (id > kMaxId || (id & 0xFFFF) == 0) return std::nullopt;
    return static_cast<LCID>(id);
}

// A variable that is empty or says nothing that is understood counts as not set.
LCID FromEnvironment() {
    if (const auto number = platform::Environment("KT_LCID")) {
        if (const auto id = IdOfNumber(*number)) return *id;
    }
    for (const char* variable : {"LC_ALL", "LANG"}) {
        const auto name = platform::Environment(variable);
        if (!name) continue;
        if (const auto id = IdOfName(*name)) return *id;
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
