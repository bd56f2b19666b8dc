#include "kernel/text_to_number.h"

#include <charconv>
#include <limits>
#include <system_error>

#include "kernel/characters.h"
#include "kernel/internationals.h"

namespace {

using clipfio::DigitValue;
using clipfio::HexDigit;
using clipfio::IsSpace;
using clipfio::SkipSpace;

// The signs of a number in a text.
struct Signs {
    WStringView minus;
    WStringView thousands;
    WStringView decimal;
};

template <std::size_t Size>
WStringView View(const KTINATTEXT<Size>& field) noexcept {
    return {field.text, field.length};
}

Signs SignsOf(bool use_locale) noexcept {
    const KTINTERNATIONALS& record = clipfio::InternationalsRecord();
    if (!use_locale || record.record_size == 0) return {W("-"), W(","), W(".")};
    return {View(record.plain_minus), View(record.thousands), View(record.decimal)};
}

bool Skip(const WCHAR*& at, WStringView sign) noexcept {
    if (sign.empty()) return false;
    for (std::size_t i = 0; i < sign.size(); ++i) {
        if (at[i] != sign[i]) return false;
    }
    at += sign.size();
    return true;
}

// A number of a text in one form for all locales: digits, with at most a leading '-', and '.' for the point.
class NormalNumber {
  public:
    NormalNumber(const WCHAR* text, bool use_locale) noexcept {
        const Signs signs = SignsOf(use_locale);
        const WCHAR* at = SkipSpace(text);
        if (Skip(at, signs.minus)) Put('-');
        for (;;) {
            if (Skip(at, signs.thousands)) continue;
            if (Skip(at, signs.decimal)) {
                Put('.');
            } else if (const int digit = DigitValue(*at); digit >= 0) {
                Put(static_cast<char>('0' + digit));
                ++at;
            } else {
                break;
            }
        }
        end_ = at;
    }

    [[nodiscard]] const WCHAR* End() const noexcept { return end_; }
    [[nodiscard]] bool IsNegative() const noexcept { return count_ > 0 && text_[0] == '-'; }

    template <class Unsigned>
    [[nodiscard]] Unsigned Modulo() const noexcept {
        Unsigned value = 0;
        if (IsNegative()) return value;
        for (std::size_t i = 0; i < count_ && text_[i] != '.'; ++i) {
            value = static_cast<Unsigned>(value * 10 + static_cast<Unsigned>(text_[i] - '0'));
        }
        return value;
    }
    template <class Signed>
    [[nodiscard]] Signed Saturated() const noexcept {
        Signed value = 0;
        const auto result = std::from_chars(text_, text_ + count_, value);
        if (result.ec != std::errc::result_out_of_range) return value;
        return IsNegative() ? std::numeric_limits<Signed>::min() : std::numeric_limits<Signed>::max();
    }
    [[nodiscard]] double Double() const noexcept {
        double value = 0;
        std::from_chars(text_, text_ + count_, value, std::chars_format::fixed);
        return value;
    }

  private:
    static constexpr std::size_t kLongest = 63;

    void Put(char c) noexcept {
        if (count_ < kLongest) text_[count_++] = c;
    }

    char text_[kLongest];
    std::size_t count_ = 0;
    const WCHAR* end_;
};

void SetEnd(const WCHAR** end, const WCHAR* place) noexcept {
    if (end) *end = place;
}

template <class Value, class Read>
Value ReadDecimal(const WCHAR* text, const WCHAR** end, bool use_locale, Read read) noexcept {
    SetEnd(end, text);
    if (!text) return 0;
    const NormalNumber number(text, use_locale);
    SetEnd(end, number.End());
    return read(number);
}

template <class Unsigned>
Unsigned ReadHex(const WCHAR* text, const WCHAR** end) noexcept {
    SetEnd(end, text);
    if (!text) return 0;
    const WCHAR* at = SkipSpace(text);
    if (clipfio::BeginsWith(at, W("0x"))) at += 2;
    Unsigned value = 0;
    for (int digit = 0; (digit = HexDigit(*at)) >= 0; ++at) {
        value = static_cast<Unsigned>(value << 4 | static_cast<Unsigned>(digit));
    }
    SetEnd(end, at);
    return value;
}

template <class Value, class Read>
Value Limited(const WCHAR* text, Value default_value, Value minimum, Value maximum, const WCHAR** end,
              Read read) noexcept {
    const WCHAR* stopped = text;
    Value value = read(&stopped);
    SetEnd(end, stopped);
    if (value == Value{0} && stopped && *stopped != 0 && !IsSpace(*stopped)) value = default_value;
    return value < minimum ? minimum : value > maximum ? maximum : value;
}

}  // namespace

uint32_t KtTextToDWordToken(const WCHAR* text, const WCHAR** end) noexcept {
    return ReadDecimal<uint32_t>(text, end, true, [](const NormalNumber& n) { return n.Modulo<uint32_t>(); });
}
uint64_t KtTextToDWordLongToken(const WCHAR* text, const WCHAR** end) noexcept {
    return ReadDecimal<uint64_t>(text, end, true, [](const NormalNumber& n) { return n.Modulo<uint64_t>(); });
}
int32_t KtTextToLongToken(const WCHAR* text, const WCHAR** end) noexcept {
    return ReadDecimal<int32_t>(text, end, true, [](const NormalNumber& n) { return n.Saturated<int32_t>(); });
}
int64_t KtTextToLongLongToken(const WCHAR* text, const WCHAR** end) noexcept {
    return ReadDecimal<int64_t>(text, end, true, [](const NormalNumber& n) { return n.Saturated<int64_t>(); });
}
uint32_t KtHexToDWordToken(const WCHAR* text, const WCHAR** end) noexcept { return ReadHex<uint32_t>(text, end); }
uint64_t KtHexToDWordLongToken(const WCHAR* text, const WCHAR** end) noexcept { return ReadHex<uint64_t>(text, end); }
double KtTextToDoubleToken(const WCHAR* text, const WCHAR** end, int32_t use_locale) noexcept {
    return ReadDecimal<double>(text, end, use_locale != 0, [](const NormalNumber& n) { return n.Double(); });
}

uint32_t KtTextToDWordTokenEx(const WCHAR* text, uint32_t default_value, uint32_t minimum, uint32_t maximum,
                              const WCHAR** end) noexcept {
    return Limited(text, default_value, minimum, maximum, end,
                   [text](const WCHAR** stopped) { return KtTextToDWordToken(text, stopped); });
}
uint64_t KtTextToDWordLongTokenEx(const WCHAR* text, uint64_t default_value, uint64_t minimum, uint64_t maximum,
                                  const WCHAR** end) noexcept {
    return Limited(text, default_value, minimum, maximum, end,
                   [text](const WCHAR** stopped) { return KtTextToDWordLongToken(text, stopped); });
}
int32_t KtTextToLongTokenEx(const WCHAR* text, int32_t default_value, int32_t minimum, int32_t maximum,
                            const WCHAR** end) noexcept {
    return Limited(text, default_value, minimum, maximum, end,
                   [text](const WCHAR** stopped) { return KtTextToLongToken(text, stopped); });
}
int64_t KtTextToLongLongTokenEx(const WCHAR* text, int64_t default_value, int64_t minimum, int64_t maximum,
                                const WCHAR** end) noexcept {
    return Limited(text, default_value, minimum, maximum, end,
                   [text](const WCHAR** stopped) { return KtTextToLongLongToken(text, stopped); });
}
uint32_t KtHexToDWordTokenEx(const WCHAR* text, uint32_t default_value, uint32_t minimum, uint32_t maximum,
                             const WCHAR** end) noexcept {
    return Limited(text, default_value, minimum, maximum, end,
                   [text](const WCHAR** stopped) { return KtHexToDWordToken(text, stopped); });
}
uint64_t KtHexToDWordLongTokenEx(const WCHAR* text, uint64_t default_value, uint64_t minimum, uint64_t maximum,
                                 const WCHAR** end) noexcept {
    return Limited(text, default_value, minimum, maximum, end,
                   [text](const WCHAR** stopped) { return KtHexToDWordLongToken(text, stopped); });
}
double KtTextToDoubleTokenEx(const WCHAR* text, double default_value, double minimum, double maximum, const WCHAR** end,
                             int32_t use_locale) noexcept {
    return Limited(text, default_value, minimum, maximum, end, [text, use_locale](const WCHAR** stopped) {
        return KtTextToDoubleToken(text, stopped, use_locale);
    });
}
