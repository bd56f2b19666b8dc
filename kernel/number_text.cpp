#include "kernel/number_text.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "kernel/characters.h"
#include "kernel/digits.h"
#include "kernel/text_copy.h"
#include "platform/locale.h"

namespace clipfio {
namespace {

constexpr int32_t kLongestNumber = 512;  // characters of a number that is rounded

// "000" to "999", each behind the place of a separator.
constexpr auto kGroups = [] {
    std::array<std::array<WCHAR, 4>, 1000> groups{};
    for (std::size_t i = 0; i < groups.size(); ++i) {
        groups[i] = {0, static_cast<WCHAR>(W('0') + i / 100), static_cast<WCHAR>(W('0') + i / 10 % 10),
                     static_cast<WCHAR>(W('0') + i % 10)};
    }
    return groups;
}();

// What a field width put in front: everything up to a sign, a point, or the digits that count.
std::size_t LeadingLength(WStringView source) noexcept {
    std::size_t at = 0;
    for (; at < source.size(); ++at) {
        const WCHAR c = source[at];
        if (c == W('-') || c == W('.')) break;
        if (c == W('0') ? at + 1 < source.size() && source[at + 1] == W('.') : IsDigit(c)) break;
    }
    return at;
}

// A number taken apart; the parts are views of the source.
struct Parts {
    bool negative = false;
    WStringView whole;  // without leading zeros
    WStringView fraction;
};

// False for what is no number: an optional '-', and digits with at most one '.'.
bool TakeApart(WStringView number, Parts& parts) noexcept {
    const auto digits_from = [number](std::size_t start) {
        std::size_t end = start;
        while (end < number.size() && IsDigit(number[end])) ++end;
        return end;
    };
    std::size_t start = 0;
    if (!number.empty() && number.front() == W('-')) {
        parts.negative = true;
        start = 1;
    }
    std::size_t end = digits_from(start);
    std::size_t count = end - start;
    while (start < end && number[start] == W('0')) ++start;
    parts.whole = number.substr(start, end - start);
    if (end < number.size() && number[end] == W('.')) {
        start = end + 1;
        end = digits_from(start);
        count += end - start;
        parts.fraction = number.substr(start, end - start);
    }
    return count > 0 && end == number.size();
}

// How a number is to be written.
struct Style {
    bool grouped;
    std::size_t decimals;
};

Style StyleOf(NumberForm form, const Parts& parts, int32_t decimals) noexcept {
    if (form == NumberForm::kGrouped) return {true, 0};
    const bool counted = form == NumberForm::kDecimal || decimals < 0;
    return {form == NumberForm::kGroupedDecimal, counted ? parts.fraction.size() : static_cast<std::size_t>(decimals)};
}

WCHAR* CopyAll(WCHAR* out, WStringView text) noexcept { return std::copy(text.begin(), text.end(), out); }

// Digits in groups of three, the usual way, and of any other size; the first group may be shorter.
WCHAR* CopyGroups(WCHAR* out, WStringView digits, std::size_t first, std::size_t group,
                  WStringView separator) noexcept {
    const WCHAR* at = digits.data();
    const WCHAR* const end = at + digits.size();
    for (std::size_t i = 0; i < first; ++i) *out++ = *at++;
    while (at != end) {
        for (const WCHAR c : separator) *out++ = c;
        if (group == 3) {
            out[0] = at[0];
            out[1] = at[1];
            out[2] = at[2];
            out += 3;
        } else {
            out = std::copy_n(at, group, out);
        }
        at += group;
    }
    return out;
}

// As the platform writes numbers, for those that need no rounding: nearly all, and so without its call. 0 when there is
// no room, which is counted without the terminator.
int32_t WriteExactly(const Parts& parts, const Style& style, const KTINTERNATIONALS& record, WCHAR* out,
                     std::size_t room) noexcept {
    const std::size_t whole = parts.whole.size();
    const std::size_t group = style.grouped && record.grouping != 0 && whole != 0 ? record.grouping : whole + 1;
    // A division that the compiler knows is much quicker than one that it does not.
    const std::size_t separators = whole <= group ? 0 : group == 3 ? (whole - 1) / 3 : (whole - 1) / group;
    const WStringView separator(record.thousands.text, record.thousands.length);
    const bool zero = whole == 0 && record.leading_zero != 0;
    std::size_t length = (parts.negative ? 1u : 0u) + (zero ? 1u : 0u) + whole + separators * separator.size();
    if (style.decimals > 0) length += record.decimal.length + style.decimals;
    if (length > room) return 0;

    WCHAR* at = out;
    if (parts.negative) *at++ = W('-');
    if (zero) *at++ = W('0');
    at = CopyGroups(at, parts.whole, whole - separators * group, group, separator);
    if (style.decimals > 0) at = CopyAll(at, {record.decimal.text, record.decimal.length});
    at = CopyAll(at, parts.fraction);
    std::fill_n(at, style.decimals - parts.fraction.size(), W('0'));
    return static_cast<int32_t>(length);
}

// By the platform, which rounds. 0 when there is no room.
int32_t WriteRounded(WStringView number, const Style& style, const KTINTERNATIONALS& record, WCHAR* out,
                     int32_t size) noexcept {
    WCHAR value[kLongestNumber];
    if (number.size() >= std::size(value)) return 0;
    CopyText(value, kLongestNumber, number);
    NUMBERFMTW format{};
    format.NumDigits = static_cast<UINT>(style.decimals);
    format.LeadingZero = record.leading_zero;
    format.Grouping = style.grouped ? record.grouping : 0;
    // The platform only reads the separators.
    format.lpDecimalSep = const_cast<WCHAR*>(record.decimal.text);
    format.lpThousandSep = const_cast<WCHAR*>(record.thousands.text);
    format.NegativeOrder = 1;
    const int written = GetNumberFormatW(LOCALE_USER_DEFAULT, 0, value, &format, out, size);
    return written > 0 ? PlainMinus(out, written - 1, {record.negative_sign.text, record.negative_sign.length}) : 0;
}

}  // namespace

int32_t PlainMinus(WCHAR* text, int32_t length, WStringView sign) noexcept {
    const WStringView number(text, static_cast<std::size_t>(length));
    if (sign.empty() || !number.starts_with(sign)) return length;
    text[0] = W('-');
    std::copy(text + sign.size(), text + number.size() + 1, text + 1);
    return length - static_cast<int32_t>(sign.size()) + 1;
}

std::size_t GroupDigits(uint32_t magnitude, bool negative, WCHAR* out, std::size_t room,
                        const KTINTERNATIONALS& record) noexcept {
    if (record.grouping != 3 || record.thousands.length != 1) {
        const DecimalDigits digits(magnitude);
        return static_cast<std::size_t>(WriteExactly({negative, digits.View(), {}}, {true, 0}, record, out, room));
    }
    // What nearly every locale asks for, from the last group to the first.
    const std::size_t digits = CountDigits(magnitude);
    const std::size_t length = digits + (digits - 1) / 3 + (negative ? 1 : 0);
    if (length > room) return 0;
    WCHAR* end = out + length;
    const auto put_group = [&end, separator = record.thousands.text[0]](uint32_t group) {
        end -= 4;
        std::copy_n(kGroups[group].data(), 4, end);
        end[0] = separator;
    };
    for (; magnitude >= 1000; magnitude /= 1000) put_group(magnitude % 1000);
    const auto& first = kGroups[magnitude];
    end[-1] = first[3];
    if (magnitude >= 10) end[-2] = first[2];
    if (magnitude >= 100) end[-3] = first[1];
    if (negative) *out = W('-');
    return length;
}

NumberText FormatNumberText(const WCHAR* source, WCHAR* out, int32_t size, NumberForm form, int32_t decimals,
                            const KTINTERNATIONALS& record) noexcept {
    constexpr NumberText kNoRoom{NumberFit::kNoRoom, 0};
    constexpr NumberText kNotANumber{NumberFit::kNotANumber, 0};
    if (!out || size < 1) return kNoRoom;
    out[0] = 0;
    if (!source) return kNotANumber;
    const WStringView text(source);
    const std::size_t leading = record.record_size == 0 ? text.size() : LeadingLength(text);
    if (leading >= static_cast<std::size_t>(size)) return kNoRoom;

    WStringView number = text.substr(leading);
    if (number.empty()) return {NumberFit::kDone, CopyText(out, size, text)};
    const std::size_t end = number.find_last_not_of(W(' ')) + 1;
    const std::size_t behind = number.size() - end;
    number = number.substr(0, end);
    Parts parts;
    if (!TakeApart(number, parts)) return kNotANumber;

    const Style style = StyleOf(form, parts, decimals);
    const std::size_t room = static_cast<std::size_t>(size) - leading;
    WCHAR* const place = out + leading;
    // Text in front of a number is rare, and so is text behind it.
    std::copy_n(source, leading, out);
    const auto length = static_cast<std::size_t>(
        style.decimals >= parts.fraction.size() ? WriteExactly(parts, style, record, place, room - 1)
                                                : WriteRounded(number, style, record, place, static_cast<int>(room)));
    if (length == 0 || length + behind >= room) {
        out[0] = 0;
        return kNoRoom;
    }
    *std::fill_n(place + length, behind, W(' ')) = 0;
    return {NumberFit::kDone, static_cast<int32_t>(leading + length + behind)};
}

}  // namespace clipfio

using namespace clipfio;

int32_t KtFormatNumber(const WCHAR* source, WCHAR* out, int32_t size) noexcept {
    return FormatNumberText(source, out, size, NumberForm::kGrouped, 0, InternationalsRecord()).length;
}

int32_t KtFormatDecimalNumber(const WCHAR* source, WCHAR* out, int32_t size) noexcept {
    return FormatNumberText(source, out, size, NumberForm::kDecimal, kSourceDecimals, InternationalsRecord()).length;
}

int32_t KtFormatGroupDecimalNumber(const WCHAR* source, WCHAR* out, int32_t size, int32_t decimals) noexcept {
    return FormatNumberText(source, out, size, NumberForm::kGroupedDecimal, decimals, InternationalsRecord()).length;
}
