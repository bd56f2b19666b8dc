#include "kernel/number_text.h"

#include <algorithm>
#include <iterator>

#include "kernel/characters.h"
#include "kernel/text_copy.h"
#include "platform/locale.h"

namespace clipfio {
namespace {

constexpr int32_t kLongestNumber = 512;  // characters of a number that is rounded

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

// Into a caller's room; what does not fit is found out before it is written.
class RoomedText {
  public:
    RoomedText(WCHAR* out, std::size_t room) noexcept : start_(out), out_(out), end_(out + room) {}
    void Put(WCHAR c) noexcept {
        if (out_ == end_) {
            fits_ = false;
        } else {
            *out_++ = c;
        }
    }
    void Put(WStringView text) noexcept {
        for (const WCHAR c : text) Put(c);
    }
    // Characters, or nothing when they did not fit.
    [[nodiscard]] int32_t Length() const noexcept { return fits_ ? static_cast<int32_t>(out_ - start_) : 0; }

  private:
    WCHAR* start_;
    WCHAR* out_;
    WCHAR* end_;
    bool fits_ = true;
};

// As the platform writes numbers, for those that need no rounding: nearly all, and so without its call. 0 when there is
// no room, which is counted without the terminator.
int32_t WriteExactly(const Parts& parts, const Style& style, const KTINTERNATIONALS& record, WCHAR* out,
                     std::size_t room) noexcept {
    RoomedText text(out, room);
    if (parts.negative) text.Put(W('-'));
    if (parts.whole.empty() && record.leading_zero != 0) text.Put(W('0'));
    const WStringView separator(record.thousands.text, record.thousands.length);
    const std::size_t group = style.grouped && record.grouping != 0 ? record.grouping : parts.whole.size() + 1;
    std::size_t until = parts.whole.size() % group;
    if (until == 0) until = group;
    for (const WCHAR digit : parts.whole) {
        if (until == 0) {
            text.Put(separator);
            until = group;
        }
        text.Put(digit);
        --until;
    }
    if (style.decimals > 0) text.Put({record.decimal.text, record.decimal.length});
    text.Put(parts.fraction);
    for (std::size_t i = parts.fraction.size(); i < style.decimals; ++i) text.Put(W('0'));
    return text.Length();
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
