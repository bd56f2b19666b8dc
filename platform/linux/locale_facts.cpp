// The facts of a locale: ICU's, in the form in which Win32 documents them.
//
// Differences that matter: digits are always Latin, and with them the signs that go with Latin digits; the space in
// front of a group is U+00A0 and never a narrow one; the negative sign is "-"; a list is separated by a semicolon where
// the comma is the decimal separator.
#include <unicode/udat.h>
#include <unicode/uldnames.h>
#include <unicode/ulocdata.h>
#include <unicode/unum.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <string>

#include "errors.h"
#include "locale_data.h"
#include "locale_names.h"
#include "platform/locale.h"
#include "platform/text.h"

namespace {

using platform::IcuLocale;

constexpr int32_t kLongest = 128;  // characters of what is asked of ICU here

struct Close {
    void operator()(UNumberFormat* format) const noexcept { unum_close(format); }
    void operator()(ULocaleDisplayNames* names) const noexcept { uldn_close(names); }
};
// A format of dates has the same type in ICU's interface, and a call of its own.
struct CloseDates {
    void operator()(UDateFormat* format) const noexcept { udat_close(format); }
};
using Numbers = std::unique_ptr<UNumberFormat, Close>;
using Dates = std::unique_ptr<UDateFormat, CloseDates>;
using Names = std::unique_ptr<ULocaleDisplayNames, Close>;

// The text that `call(buffer, size, error)` gives, empty when it fails.
template <class Call>
WString Text(Call call) {
    WCHAR text[kLongest];
    UErrorCode error = U_ZERO_ERROR;
    const int32_t length = call(text, kLongest, &error);
    return U_SUCCESS(error) && length > 0 ? WString(text, static_cast<std::size_t>(std::min(length, kLongest)))
                                          : WString();
}

Numbers OpenNumbers(const IcuLocale& locale) {
    UErrorCode error = U_ZERO_ERROR;
    return Numbers(unum_open(UNUM_DECIMAL, nullptr, 0, locale.numbers.c_str(), nullptr, &error));
}

WString Symbol(const IcuLocale& locale, UNumberFormatSymbol symbol) {
    const Numbers numbers = OpenNumbers(locale);
    if (!numbers) return {};
    WString text = Text([&](WCHAR* out, int32_t size, UErrorCode* error) {
        return unum_getSymbol(numbers.get(), symbol, out, size, error);
    });
    std::replace(text.begin(), text.end(), u'\u202F', u'\u00A0');
    return text;
}

WString Grouping(const IcuLocale& locale) {
    const Numbers numbers = OpenNumbers(locale);
    if (!numbers || !unum_getAttribute(numbers.get(), UNUM_GROUPING_USED)) return u"0";
    const int32_t first = unum_getAttribute(numbers.get(), UNUM_GROUPING_SIZE);
    const int32_t second = unum_getAttribute(numbers.get(), UNUM_SECONDARY_GROUPING_SIZE);
    std::string text = std::to_string(first);
    if (second > 0 && second != first) text.append(";").append(std::to_string(second));
    return platform::Wide(text + ";0");
}

const platform::Separators* FindSeparators(LCID lcid) noexcept {
    constexpr LCID kPrimaryMask = 0x3FF;
    const auto* row = std::find_if(
        std::begin(platform::kSeparators), std::end(platform::kSeparators),
        [lcid](const platform::Separators& each) { return each.lcid == lcid || each.lcid == (lcid & kPrimaryMask); });
    return row == std::end(platform::kSeparators) ? nullptr : row;
}

// What stands between hours and minutes; a word there is not a separator.
WString TimeSeparator(const IcuLocale& locale) {
    const platform::Separators* row = FindSeparators(locale.lcid);
    if (row && row->time) return row->time;
    UErrorCode error = U_ZERO_ERROR;
    const Dates dates(udat_open(UDAT_SHORT, UDAT_NONE, locale.id.c_str(), nullptr, 0, nullptr, 0, &error));
    if (!dates) return u":";
    const WString pattern = Text([&](WCHAR* out, int32_t size, UErrorCode* status) {
        return udat_toPattern(dates.get(), false, out, size, status);
    });
    const std::size_t minutes = pattern.find(u'm');
    const std::size_t hours = pattern.find_last_of(u"hHkK", minutes);
    const bool one = minutes != WString::npos && hours != WString::npos && minutes == hours + 2;
    return one ? pattern.substr(hours + 1, 1) : WString(u":");
}

WString ListSeparator(const IcuLocale& locale) {
    const platform::Separators* row = FindSeparators(locale.lcid);
    if (row && row->list) return row->list;
    return Symbol(locale, UNUM_DECIMAL_SEPARATOR_SYMBOL) == u"," ? u";" : u",";
}

WString MeasureSystem(const IcuLocale& locale) {
    UErrorCode error = U_ZERO_ERROR;
    return ulocdata_getMeasurementSystem(locale.id.c_str(), &error) == UMS_US ? u"1" : u"0";
}

WString CountryNumber(const IcuLocale& locale) {
    const auto* row = std::find_if(std::begin(platform::kDiallingCodes), std::end(platform::kDiallingCodes),
                                   [&](const platform::DiallingCode& each) { return each.region == locale.region; });
    return row == std::end(platform::kDiallingCodes) ? u"1" : platform::Wide(std::to_string(row->code));
}

WString Abbreviated(const IcuLocale& locale) {
    const auto* row = std::find_if(std::begin(platform::kAbbreviations), std::end(platform::kAbbreviations),
                                   [&](const platform::Abbreviation& each) { return each.lcid == locale.lcid; });
    if (row != std::end(platform::kAbbreviations)) return platform::Wide(row->letters);
    WString letters = platform::Wide(uloc_getISO3Language(locale.id.c_str()));
    for (WCHAR& c : letters) c = c >= u'a' && c <= u'z' ? static_cast<WCHAR>(c - u'a' + u'A') : c;
    return letters;
}

WString HexNumber(LCID lcid) {
    constexpr WStringView kDigits = u"0123456789abcdef";
    WString text;
    for (unsigned shift = 16; shift > 0; shift -= 4) text += kDigits[lcid >> (shift - 4) & 0xF];
    return text;
}

enum class Name { kLanguage, kRegion, kBoth };

// The name as a reader of `reader` would find it in a list.
WString NameFor(const std::string& reader, const IcuLocale& locale, Name name) {
    // Where nobody asks which of the two countries is meant.
    if (name == Name::kRegion && locale.region == "KR" && reader == "en_US") return u"Korea";
    UDisplayContext contexts[] = {UDISPCTX_STANDARD_NAMES, UDISPCTX_CAPITALIZATION_FOR_UI_LIST_OR_MENU};
    UErrorCode error = U_ZERO_ERROR;
    const Names names(uldn_openForContext(reader.c_str(), contexts, 2, &error));
    if (!names) return {};
    return Text([&](WCHAR* out, int32_t size, UErrorCode* status) {
        switch (name) {
            case Name::kLanguage:
                return uldn_localeDisplayName(names.get(), locale.language.c_str(), out, size, status);
            case Name::kRegion:
                return uldn_regionDisplayName(names.get(), locale.region.c_str(), out, size, status);
            default:
                return uldn_localeDisplayName(names.get(), locale.id.c_str(), out, size, status);
        }
    });
}

std::string UsersReader() {
    const auto user = platform::FindLocale(LOCALE_USER_DEFAULT);
    return user ? user->id : "en_US";
}

// The locale that is nobody's: English without a region.
std::optional<WString> InvariantFact(DWORD type) {
    switch (type) {
        case LOCALE_SLANGUAGE:
            return u"Invariant Language (Invariant Country)";
        case LOCALE_SENGLANGUAGE:
            return u"Invariant Language";
        case LOCALE_SCOUNTRY:
        case LOCALE_SENGCOUNTRY:
            return u"Invariant Country";
        case LOCALE_SABBREVLANGNAME:
            return u"IVL";
        case LOCALE_IMEASURE:
            return u"0";
        default:
            return std::nullopt;
    }
}

std::optional<WString> Fact(const IcuLocale& locale, DWORD type) {
    if (locale.lcid == LOCALE_INVARIANT) {
        if (auto fact = InvariantFact(type)) return fact;
    }
    switch (type) {
        case LOCALE_ILANGUAGE:
            return HexNumber(locale.lcid);
        case LOCALE_SLANGUAGE:
            return NameFor(UsersReader(), locale, Name::kBoth);
        case LOCALE_SENGLANGUAGE:
            return NameFor("en_US", locale, Name::kLanguage);
        case LOCALE_SABBREVLANGNAME:
            return Abbreviated(locale);
        case LOCALE_ICOUNTRY:
            return CountryNumber(locale);
        case LOCALE_SCOUNTRY:
            return NameFor(UsersReader(), locale, Name::kRegion);
        case LOCALE_SENGCOUNTRY:
            return NameFor("en_US", locale, Name::kRegion);
        case LOCALE_SNEGATIVESIGN:
            return u"-";
        case LOCALE_STHOUSAND:
            return Symbol(locale, UNUM_GROUPING_SEPARATOR_SYMBOL);
        case LOCALE_SDECIMAL:
            return Symbol(locale, UNUM_DECIMAL_SEPARATOR_SYMBOL);
        case LOCALE_SGROUPING:
            return Grouping(locale);
        case LOCALE_IDIGITS:
            return u"2";
        case LOCALE_ILZERO:
            return u"1";
        case LOCALE_STIME:
            return TimeSeparator(locale);
        case LOCALE_SLIST:
            return ListSeparator(locale);
        case LOCALE_IMEASURE:
            return MeasureSystem(locale);
        default:
            return std::nullopt;
    }
}

int CopyFact(const WString& fact, WCHAR* out, int size) noexcept {
    const auto wanted = static_cast<int>(fact.size()) + 1;
    if (size == 0) return wanted;
    if (size < wanted) return platform::Fail(ERROR_INSUFFICIENT_BUFFER, 0);
    std::copy_n(fact.c_str(), wanted, out);
    return wanted;
}

}  // namespace

extern "C" int GetLocaleInfoW(LCID lcid, DWORD type, WCHAR* out, int size) noexcept {
    if (size < 0 || (size > 0 && !out)) return platform::Fail(ERROR_INVALID_PARAMETER, 0);
    return platform::Guarded(0, [&] {
        const auto locale = platform::FindLocale(lcid);
        const auto fact = locale ? Fact(*locale, type) : std::nullopt;
        return fact ? CopyFact(*fact, out, size) : platform::Fail(ERROR_INVALID_PARAMETER, 0);
    });
}
