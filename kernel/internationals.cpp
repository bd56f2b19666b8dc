#include "kernel/internationals.h"

#include "platform/locale.h"

namespace clipfio {
namespace {

constexpr int kLongest = 80;  // characters of any one fact, as the platform limits them

WString Fact(DWORD type) {
    WCHAR text[kLongest] = {};
    const int length = GetLocaleInfoW(LOCALE_USER_DEFAULT, type, text, kLongest);
    return length > 1 ? WString(text, static_cast<std::size_t>(length) - 1) : WString();
}

uint32_t LeadingNumber(WStringView text) {
    uint32_t number = 0;
    for (const WCHAR c : text) {
        if (c < W('0') || c > W('9') || number > 100) break;
        number = number * 10 + static_cast<uint32_t>(c - W('0'));
    }
    return number;
}

// A zero that a field width put in front of a number.
bool IsPadding(WStringView digits, std::size_t at) {
    const WCHAR next = at + 1 < digits.size() ? digits[at + 1] : W(' ');
    return digits[at] == W('0') && next >= W('0') && next <= W('9');
}

}  // namespace

Internationals UserInternationals() {
    Internationals facts;
    facts.thousands = Fact(LOCALE_STHOUSAND);
    facts.decimal = Fact(LOCALE_SDECIMAL);
    facts.list = Fact(LOCALE_SLIST);
    facts.time = Fact(LOCALE_STIME);
    facts.grouping = LeadingNumber(Fact(LOCALE_SGROUPING));
    return facts;
}

WString GroupDigits(WStringView digits, const Internationals& facts) {
    const auto is_digit = [](WCHAR c) { return c >= W('0') && c <= W('9'); };
    std::size_t first = 0;
    while (first < digits.size() && (!is_digit(digits[first]) || IsPadding(digits, first))) ++first;
    std::size_t end = first;
    while (end < digits.size() && is_digit(digits[end])) ++end;
    WString out(digits.substr(0, first));
    for (std::size_t i = first; i < end; ++i) {
        if (i > first && facts.grouping && (end - i) % facts.grouping == 0) out += facts.thousands;
        out += digits[i];
    }
    return out.append(digits.substr(end));
}

}  // namespace clipfio
