// Classes of 16-bit characters: the same on every target, whatever the C runtime's locale.
#pragma once

#include "platform/base.h"

namespace clipfio {

constexpr bool IsDigit(WCHAR c) noexcept { return c >= W('0') && c <= W('9'); }

// White space of all of Unicode, the no-break spaces included.
constexpr bool IsSpace(WCHAR c) noexcept {
    return (c >= 0x09 && c <= 0x0D) || c == 0x20 || c == 0x85 || c == 0xA0 || c == 0x1680 ||
           (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F || c == 0x205F || c == 0x3000;
}

// Of a narrow text only what is ASCII can be told without its code page.
constexpr bool IsSpace(char c) noexcept { return c == ' ' || (c >= '\t' && c <= '\r'); }

// The value of a hexadecimal digit, -1 for any other character.
constexpr int HexDigit(WCHAR c) noexcept {
    if (IsDigit(c)) return c - W('0');
    if (c >= W('A') && c <= W('F')) return c - W('A') + 10;
    if (c >= W('a') && c <= W('f')) return c - W('a') + 10;
    return -1;
}

// Whether `text` begins with `lower`, which is in small ASCII letters, in any case.
constexpr bool BeginsWith(const WCHAR* text, WStringView lower) noexcept {
    for (const WCHAR wanted : lower) {
        const WCHAR c = *text++;
        if ((c >= W('A') && c <= W('Z') ? c + (W('a') - W('A')) : int{c}) != wanted) return false;
    }
    return true;
}

constexpr const WCHAR* SkipSpace(const WCHAR* text) noexcept {
    while (IsSpace(*text)) ++text;
    return text;
}

}  // namespace clipfio
