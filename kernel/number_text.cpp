#include "kernel/number_text.h"

#include <algorithm>

#include "kernel/characters.h"
#include "kernel/text_copy.h"
#include "platform/locale.h"

namespace clipfio {
namespace {

constexpr std::size_t kLongestNumber = 512;  // characters of a number that has blanks behind it

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

uint32_t CountDecimals(WStringView number) noexcept {
    const std::size_t point = number.find(W('.'));
    if (point == WStringView::npos) return 0;
    std::size_t end = point + 1;
    while (end < number.size() && IsDigit(number[end])) ++end;
    return static_cast<uint32_t>(end - point - 1);
}

NUMBERFMTW FormatOf(NumberForm form, WStringView number, int32_t decimals, const KTINTERNATIONALS& record) noexcept {
    static constexpr WCHAR kNone[] = W("");
    const bool whole = form == NumberForm::kGrouped;
    const bool counted = form == NumberForm::kDecimal || decimals < 0;
    NUMBERFMTW format{};
    format.NumDigits = whole ? 0 : counted ? CountDecimals(number) : static_cast<uint32_t>(decimals);
    format.LeadingZero = record.leading_zero;
    format.Grouping = form == NumberForm::kDecimal ? 0 : record.grouping;
    // The platform only reads the separators.
    format.lpDecimalSep = const_cast<WCHAR*>(whole ? kNone : record.decimal.text);
    format.lpThousandSep = const_cast<WCHAR*>(record.thousands.text);
    format.NegativeOrder = 1;
    return format;
}

}  // namespace

int32_t PlainMinus(WCHAR* text, int32_t length, WStringView sign) noexcept {
    const WStringView number(text, static_cast<std::size_t>(length));
    if (sign.empty() || !number.starts_with(sign)) return length;
    text[0] = W('-');
    std::copy(text + sign.size(), text + number.size() + 1, text + 1);
    return length - static_cast<int32_t>(sign.size()) + 1;
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
    if (std::none_of(number.begin(), number.end(), IsDigit)) return kNotANumber;

    // The platform wants a terminator behind the number. Blanks are rare, so the copy is too.
    WCHAR copy[kLongestNumber];
    if (behind > 0 && number.size() >= kLongestNumber) return kNotANumber;
    if (behind > 0) CopyText(copy, kLongestNumber, number);
    const NUMBERFMTW format = FormatOf(form, number, decimals, record);
    const int32_t room = size - static_cast<int32_t>(leading);
    WCHAR* const place = out + leading;
    const int written =
        GetNumberFormatW(LOCALE_USER_DEFAULT, 0, behind > 0 ? copy : number.data(), &format, place, room);
    if (written <= 0) {
        const bool no_room = GetLastError() == ERROR_INSUFFICIENT_BUFFER;
        out[0] = 0;
        return no_room ? kNoRoom : kNotANumber;
    }
    const WStringView sign(record.negative_sign.text, record.negative_sign.length);
    const auto length = static_cast<std::size_t>(PlainMinus(place, written - 1, sign));
    if (length + behind >= static_cast<std::size_t>(room)) {
        out[0] = 0;
        return kNoRoom;
    }
    std::copy_n(source, leading, out);
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
