// Numbers as a locale writes them: plain work on digits, so that it may be called for every number that is printed.
#include <algorithm>
#include <array>
#include <optional>

#include "errors.h"
#include "platform/locale.h"

namespace {

using platform::Fail;

bool IsDigit(WCHAR c) noexcept { return c >= u'0' && c <= u'9'; }

WStringView DigitsAt(const WCHAR* text) noexcept {
    std::size_t count = 0;
    while (IsDigit(text[count])) ++count;
    return {text, count};
}

// A value taken apart. Both parts are views of the caller's text.
struct Value {
    bool negative = false;
    WStringView whole;  // without leading zeros
    WStringView fraction;
};

std::optional<Value> Parse(const WCHAR* text) noexcept {
    Value value;
    value.negative = *text == u'-';
    if (value.negative) ++text;
    while (*text == u'0') ++text;
    value.whole = DigitsAt(text);
    text += value.whole.size();
    if (*text == u'.') {
        value.fraction = DigitsAt(++text);
        text += value.fraction.size();
    }
    return *text == 0 ? std::optional(value) : std::nullopt;
}

// Counts what does not fit, and stores what does.
class Output {
  public:
    Output(WCHAR* out, std::size_t size) noexcept : out_(out), size_(size) {}
    void Put(WCHAR c) noexcept {
        if (count_ < size_) out_[count_] = c;
        ++count_;
    }
    void Put(WStringView text) noexcept {
        for (const WCHAR c : text) Put(c);
    }
    [[nodiscard]] std::size_t Count() const noexcept { return count_; }

  private:
    WCHAR* out_;
    std::size_t size_;
    std::size_t count_ = 0;
};

// The groups in front of the point: their sizes are the decimal digits of `grouping`, from the point on, and the last
// one repeats unless it is 0.
class Groups {
  public:
    explicit Groups(UINT grouping) noexcept {
        for (; grouping != 0 && count_ < sizes_.size(); grouping /= 10) sizes_[count_++] = grouping % 10;
        std::reverse(sizes_.begin(), sizes_.begin() + count_);
    }
    // Whether a separator stands in front of the last `behind` digits.
    [[nodiscard]] bool StartsBefore(std::size_t behind) const noexcept {
        if (count_ == 0 || behind == 0) return false;
        for (std::size_t i = 0; i + 1 < count_; ++i) {
            if (behind <= sizes_[i]) return behind == sizes_[i];
            behind -= sizes_[i];
        }
        const UINT last = sizes_[count_ - 1];
        return last != 0 && behind % last == 0;
    }

  private:
    std::array<UINT, 9> sizes_{};
    std::size_t count_ = 0;
};

// The digits of a value, rounded half away from zero to so many behind the point.
class Rounded {
  public:
    Rounded(const Value& value, std::size_t decimals) noexcept : value_(value) {
        const bool up = decimals < value.fraction.size() && value.fraction[decimals] >= u'5';
        if (!up) return;
        // The digits that turn over: the last one kept and the nines in front of it.
        std::size_t at = value_.whole.size() + decimals;
        while (at > 0 && Kept(at - 1) == u'9') --at;
        raised_ = at;
    }
    // One digit more when all of them turned over.
    [[nodiscard]] std::size_t WholeDigits() const noexcept { return value_.whole.size() + (raised_ == 0 ? 1 : 0); }
    [[nodiscard]] WCHAR Digit(std::size_t i) const noexcept {
        if (raised_ == kNotRaised) return Kept(i);
        if (raised_ == 0) return i == 0 ? u'1' : u'0';
        return i + 1 < raised_ ? Kept(i) : i + 1 == raised_ ? static_cast<WCHAR>(Kept(i) + 1) : u'0';
    }

  private:
    static constexpr std::size_t kNotRaised = static_cast<std::size_t>(-1);

    [[nodiscard]] WCHAR Kept(std::size_t i) const noexcept {
        if (i < value_.whole.size()) return value_.whole[i];
        i -= value_.whole.size();
        return i < value_.fraction.size() ? value_.fraction[i] : u'0';
    }

    const Value& value_;
    std::size_t raised_ = kNotRaised;  // the digits in front of this place are kept but for the last, which goes up
};

struct Order {
    WStringView before;
    WStringView behind;
};
constexpr Order kNegativeOrders[] = {{u"(", u")"}, {u"-", u""}, {u"- ", u""}, {u"", u"-"}, {u"", u" -"}};

void Write(Output& output, const Value& value, const NUMBERFMTW& format) noexcept {
    const Order order = value.negative ? kNegativeOrders[format.NegativeOrder] : Order{};
    const Rounded digits(value, format.NumDigits);
    const Groups groups(format.Grouping);
    const std::size_t whole = digits.WholeDigits();
    output.Put(order.before);
    if (whole == 0 && format.LeadingZero) output.Put(u'0');
    for (std::size_t i = 0; i < whole; ++i) {
        if (i > 0 && groups.StartsBefore(whole - i)) output.Put(format.lpThousandSep);
        output.Put(digits.Digit(i));
    }
    if (format.NumDigits > 0) output.Put(format.lpDecimalSep);
    for (std::size_t i = 0; i < format.NumDigits; ++i) output.Put(digits.Digit(whole + i));
    output.Put(order.behind);
    output.Put(u'\0');
}

constexpr int kLongestFact = 16;

// A locale's own way to write numbers, with the room for its texts.
struct LocaleFormat {
    WCHAR decimal[kLongestFact];
    WCHAR thousands[kLongestFact];
    NUMBERFMTW format{};

    bool Read(LCID lcid) noexcept {
        WCHAR grouping[kLongestFact];
        WCHAR digits[kLongestFact];
        if (!GetLocaleInfoW(lcid, LOCALE_SDECIMAL, decimal, kLongestFact) ||
            !GetLocaleInfoW(lcid, LOCALE_STHOUSAND, thousands, kLongestFact) ||
            !GetLocaleInfoW(lcid, LOCALE_SGROUPING, grouping, kLongestFact) ||
            !GetLocaleInfoW(lcid, LOCALE_IDIGITS, digits, kLongestFact)) {
            return false;
        }
        format = {static_cast<UINT>(digits[0] - u'0'), 1, 0, decimal, thousands, 1};
        // "3;2;0" is 32: the last group repeats.
        for (const WCHAR* c = grouping; *c != 0; ++c) {
            if (*c >= u'1' && *c <= u'9') format.Grouping = format.Grouping * 10 + static_cast<UINT>(*c - u'0');
        }
        return true;
    }
};

bool IsUsable(const NUMBERFMTW& format) noexcept {
    constexpr UINT kMostDecimals = 4096;
    return format.lpDecimalSep && format.lpThousandSep && format.NegativeOrder < std::size(kNegativeOrders) &&
           format.NumDigits <= kMostDecimals;
}

}  // namespace

extern "C" int GetNumberFormatW(LCID lcid, DWORD flags, const WCHAR* value, const NUMBERFMTW* format, WCHAR* out,
                                int size) noexcept {
    if (!value || flags != 0 || size < 0 || (size > 0 && !out)) return Fail(ERROR_INVALID_PARAMETER, 0);
    LocaleFormat own;
    if (!format && !own.Read(lcid)) return 0;
    const NUMBERFMTW& used = format ? *format : own.format;
    const auto parsed = Parse(value);
    if (!parsed || !IsUsable(used)) return Fail(ERROR_INVALID_PARAMETER, 0);

    Output output(out, static_cast<std::size_t>(size));
    Write(output, *parsed, used);
    if (size != 0 && output.Count() > static_cast<std::size_t>(size)) return Fail(ERROR_INSUFFICIENT_BUFFER, 0);
    return static_cast<int>(output.Count());
}
