// Classes of 16-bit characters: the same on every target, whatever the C runtime's locale.
#pragma once

#include "platform/base.h"

namespace clipfio {

constexpr bool IsDigit(WCHAR c) noexcept { return c >= W('0') && c <= W('9'); }

// The value of a decimal digit of any script, full-width ones included, and -1 for any other character.
constexpr int DigitValue(WCHAR c) noexcept {
    if (c < 0x80) return IsDigit(c) ? c - W('0') : -1;
    constexpr WCHAR kZeros[] = {0x0660, 0x06F0, 0x0966, 0x09E6, 0x0A66, 0x0AE6, 0x0B66, 0x0C66, 0x0CE6,
                                0x0D66, 0x0E50, 0x0ED0, 0x0F20, 0x1040, 0x17E0, 0x1810, 0xFF10};
    for (const WCHAR zero : kZeros) {
        if (c >= zero && c < zero + 10) return c - zero;
    }
    return -1;
}

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
