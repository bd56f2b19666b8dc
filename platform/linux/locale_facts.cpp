// How numbers and lists are written, by language. The layer's languages as the documented defaults of Win32 have them.
#include <algorithm>
#include <iterator>

#include "platform/locale.h"

namespace {

struct Facts {
    LANGID language;  // the primary language, or the whole id where regions differ
    const WCHAR* decimal;
    const WCHAR* thousands;
    const WCHAR* list;
    const WCHAR* grouping;
    const WCHAR* time;
};

#define NO_BREAK_SPACE W("\u00A0")

constexpr Facts kFacts[] = {
    {0x0816, W(","), NO_BREAK_SPACE, W(";"), W("3;0"), W(":")},  // pt-PT, before pt
    {0x04, W("."), W(","), W(","), W("3;0"), W(":")},            // zh
    {0x05, W(","), NO_BREAK_SPACE, W(";"), W("3;0"), W(":")},    // cs
    {0x06, W(","), W("."), W(";"), W("3;0"), W(":")},            // da
    {0x07, W(","), W("."), W(";"), W("3;0"), W(":")},            // de
    {0x09, W("."), W(","), W(","), W("3;0"), W(":")},            // en
    {0x0A, W(","), W("."), W(";"), W("3;0"), W(":")},            // es
    {0x0B, W(","), NO_BREAK_SPACE, W(";"), W("3;0"), W(".")},    // fi
    {0x0C, W(","), NO_BREAK_SPACE, W(";"), W("3;0"), W(":")},    // fr
    {0x0E, W(","), NO_BREAK_SPACE, W(";"), W("3;0"), W(":")},    // hu
    {0x10, W(","), W("."), W(";"), W("3;0"), W(":")},            // it
    {0x11, W("."), W(","), W(","), W("3;0"), W(":")},            // ja
    {0x12, W("."), W(","), W(","), W("3;0"), W(":")},            // ko
    {0x13, W(","), W("."), W(";"), W("3;0"), W(":")},            // nl
    {0x14, W(","), NO_BREAK_SPACE, W(";"), W("3;0"), W(":")},    // nb
    {0x15, W(","), NO_BREAK_SPACE, W(";"), W("3;0"), W(":")},    // pl
    {0x16, W(","), W("."), W(";"), W("3;0"), W(":")},            // pt
    {0x19, W(","), NO_BREAK_SPACE, W(";"), W("3;0"), W(":")},    // ru
    {0x1D, W(","), NO_BREAK_SPACE, W(";"), W("3;0"), W(":")},    // sv
    {0x1F, W(","), W("."), W(";"), W("3;0"), W(":")},            // tr
    {0x22, W(","), NO_BREAK_SPACE, W(";"), W("3;0"), W(":")},    // uk
    {0x39, W("."), W(","), W(","), W("3;2;0"), W(":")},          // hi
};

const Facts* FindFacts(LCID lcid) noexcept {
    const auto language = static_cast<LANGID>(lcid & 0xFFFF);
    const auto* row = std::find_if(std::begin(kFacts), std::end(kFacts), [language](const Facts& facts) {
        return facts.language == language || facts.language == (language & 0x3FF);
    });
    return row == std::end(kFacts) ? nullptr : row;
}

const WCHAR* Fact(const Facts& facts, DWORD type) noexcept {
    switch (type) {
        case LOCALE_SDECIMAL:
            return facts.decimal;
        case LOCALE_STHOUSAND:
            return facts.thousands;
        case LOCALE_SLIST:
            return facts.list;
        case LOCALE_SGROUPING:
            return facts.grouping;
        case LOCALE_STIME:
            return facts.time;
        default:
            return nullptr;
    }
}

}  // namespace

int GetLocaleInfoW(LCID lcid, DWORD type, WCHAR* out, int size) noexcept {
    const Facts* facts = FindFacts(lcid == LOCALE_USER_DEFAULT ? GetUserDefaultLCID() : lcid);
    const WCHAR* fact = facts ? Fact(*facts, type) : nullptr;
    if (!fact || size < 0 || (size > 0 && !out)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const auto wanted = static_cast<int>(WStringView(fact).size()) + 1;
    if (size == 0) return wanted;
    if (size < wanted) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    std::copy_n(fact, wanted, out);
    return wanted;
}
