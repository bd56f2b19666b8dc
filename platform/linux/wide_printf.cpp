// The bounded wide printf of the Microsoft C runtime that the Windows target links: %s is wide and %S narrow, `l` is
// 32 bits, an exponent has three digits, infinities read 1.#INF. No locale matters.
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>

#include "platform/text.h"

namespace {

constexpr std::int64_t kNone = -1;

class Sink {
  public:
    Sink(WCHAR* out, std::size_t size) noexcept : out_(out), size_(size) {}

    template <class Char>
    void Put(const Char* text, std::uint64_t count) noexcept {
        // Narrow text in the "C" locale: each byte is the character of its number.
        using Byte = std::conditional_t<sizeof(Char) == 1, unsigned char, Char>;
        for (std::uint64_t i = 0; i < count && count_ + i < size_; ++i) {
            out_[count_ + i] = static_cast<WCHAR>(static_cast<Byte>(text[i]));
        }
        count_ += count;
    }
    void Repeat(WCHAR c, std::int64_t count) noexcept {
        if (count <= 0) return;
        const std::uint64_t room = count_ < size_ ? size_ - count_ : 0;
        std::fill_n(out_ + std::min<std::uint64_t>(count_, size_), std::min(room, static_cast<std::uint64_t>(count)),
                    c);
        count_ += static_cast<std::uint64_t>(count);
    }
    [[nodiscard]] int Finish() noexcept {
        if (count_ < size_) out_[count_] = 0;
        const bool measured = !out_ && size_ == 0;
        const bool fits = (count_ <= size_ || measured) && count_ <= std::numeric_limits<int>::max();
        return fits ? static_cast<int>(count_) : -1;
    }

  private:
    WCHAR* out_;
    std::uint64_t size_;
    std::uint64_t count_ = 0;
};

enum class Prefix { kNone, kShort, kLong, kWide64, kPointer };

struct Conversion {
    bool minus = false, plus = false, blank = false, alternate = false, zero = false;
    std::int64_t width = 0;
    std::int64_t precision = kNone;
    Prefix prefix = Prefix::kNone;
    WCHAR letter = 0;
};

struct Arguments {
    std::va_list list;

    int Int() noexcept { return va_arg(list, int); }
    std::int64_t Int64() noexcept { return va_arg(list, std::int64_t); }
    double Double() noexcept { return va_arg(list, double); }
    template <class T>
    T* Pointer() noexcept {
        return va_arg(list, T*);
    }
};

bool Skip(const WCHAR*& at, WStringView text) noexcept {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (at[i] != text[i]) return false;
    }
    at += text.size();
    return true;
}

void ParseFlags(const WCHAR*& at, Conversion& c) noexcept {
    for (;; ++at) {
        switch (*at) {
            case u'-':
                c.minus = true;
                break;
            case u'+':
                c.plus = true;
                break;
            case u' ':
                c.blank = true;
                break;
            case u'#':
                c.alternate = true;
                break;
            case u'0':
                c.zero = true;
                break;
            default:
                return;
        }
    }
}

std::int64_t ParseNumber(const WCHAR*& at, Arguments& arguments) noexcept {
    if (*at == u'*') {
        ++at;
        return arguments.Int();
    }
    std::int64_t number = 0;
    for (; *at >= u'0' && *at <= u'9'; ++at) {
        number = std::min<std::int64_t>(number * 10 + (*at - u'0'), std::numeric_limits<int>::max());
    }
    return number;
}

Prefix ParsePrefix(const WCHAR*& at) noexcept {
    if (Skip(at, u"I64") || Skip(at, u"ll") || Skip(at, u"j")) return Prefix::kWide64;
    if (Skip(at, u"I32")) return Prefix::kNone;
    if (Skip(at, u"I") || Skip(at, u"z") || Skip(at, u"t")) return Prefix::kPointer;
    if (Skip(at, u"h")) return Prefix::kShort;
    if (Skip(at, u"l") || Skip(at, u"w")) return Prefix::kLong;
    return Prefix::kNone;
}

// Reads what follows a '%', and moves behind it.
Conversion Parse(const WCHAR*& at, Arguments& arguments) noexcept {
    Conversion c;
    ParseFlags(at, c);
    c.width = ParseNumber(at, arguments);
    if (c.width < 0) {
        c.minus = true;
        c.width = -c.width;
    }
    if (*at == u'.') {
        ++at;
        c.precision = std::max(ParseNumber(at, arguments), kNone);
    }
    c.prefix = ParsePrefix(at);
    c.letter = *at;
    if (*at != 0) ++at;
    return c;
}

// A number's parts, in the order in which they are printed.
struct Number {
    char sign[3] = {};  // sign, or 0x
    std::int64_t zeros = 0;
    const char* digits = "";
    std::int64_t digit_count = 0;
    std::int64_t zeros_after = 0;  // between the digits and the exponent
    const char* exponent = "";
};

void PrintNumber(Sink& sink, const Conversion& c, const Number& n, bool pads_with_zeros) noexcept {
    const auto sign_length = static_cast<std::int64_t>(std::strlen(n.sign));
    const auto exponent_length = static_cast<std::int64_t>(std::strlen(n.exponent));
    const std::int64_t length = sign_length + n.zeros + n.digit_count + n.zeros_after + exponent_length;
    const std::int64_t pad = c.width - length;
    const bool zeros = c.zero && !c.minus && pads_with_zeros;
    if (!c.minus && !zeros) sink.Repeat(u' ', pad);
    sink.Put(n.sign, static_cast<std::uint64_t>(sign_length));
    if (zeros) sink.Repeat(u'0', pad);
    sink.Repeat(u'0', n.zeros);
    sink.Put(n.digits, static_cast<std::uint64_t>(n.digit_count));
    sink.Repeat(u'0', n.zeros_after);
    sink.Put(n.exponent, static_cast<std::uint64_t>(exponent_length));
    if (c.minus) sink.Repeat(u' ', pad);
}

void SetSign(Number& n, const Conversion& c, bool negative) noexcept {
    n.sign[0] = negative ? '-' : c.plus ? '+' : c.blank ? ' ' : '\0';
}

std::int64_t TakeSigned(const Conversion& c, Arguments& arguments) noexcept {
    if (c.prefix == Prefix::kWide64 || c.prefix == Prefix::kPointer) return arguments.Int64();
    const int value = arguments.Int();
    return c.prefix == Prefix::kShort ? static_cast<short>(value) : value;
}

std::uint64_t TakeUnsigned(const Conversion& c, Arguments& arguments) noexcept {
    const auto value = static_cast<std::uint64_t>(TakeSigned(c, arguments));
    if (c.prefix == Prefix::kWide64 || c.prefix == Prefix::kPointer) return value;
    return c.prefix == Prefix::kShort ? value & 0xFFFF : value & 0xFFFFFFFF;
}

void PrintInteger(Sink& sink, const Conversion& c, std::uint64_t magnitude, bool negative, bool is_signed) noexcept {
    const bool hex = c.letter == u'x' || c.letter == u'X' || c.letter == u'p';
    const int base = hex ? 16 : c.letter == u'o' ? 8 : 10;
    char digits[24];
    char* const end = std::to_chars(digits, digits + sizeof digits, magnitude, base).ptr;
    if (c.letter == u'X' || c.letter == u'p') {
        std::transform(digits, end, digits, [](char d) { return static_cast<char>(d >= 'a' ? d - 'a' + 'A' : d); });
    }
    Number n;
    n.digits = digits;
    n.digit_count = magnitude == 0 && c.precision == 0 ? 0 : end - digits;
    n.zeros = std::max<std::int64_t>(c.precision - n.digit_count, 0);
    if (is_signed) SetSign(n, c, negative);
    if (c.alternate && hex && magnitude != 0 && c.letter != u'p') {
        n.sign[0] = '0';
        n.sign[1] = c.letter == u'X' ? 'X' : 'x';
    }
    if (c.alternate && base == 8 && n.zeros == 0 && (n.digit_count == 0 || digits[0] != '0')) n.zeros = 1;
    PrintNumber(sink, c, n, c.precision == kNone);
}

// A double has no more digits than this after the point.
constexpr std::int64_t kMaxDigits = 1100;

// Splits what to_chars wrote at its exponent and widens that to three digits.
void SplitExponent(char* text, char*& end, char (&exponent)[8], bool upper) noexcept {
    char* const e = std::find(text, end, 'e');
    exponent[0] = 0;
    if (e == end) return;
    const auto count = static_cast<std::size_t>(end - (e + 2));
    const std::size_t pad = count < 3 ? 3 - count : 0;
    exponent[0] = upper ? 'E' : 'e';
    exponent[1] = e[1];
    std::memset(exponent + 2, '0', pad);
    std::memcpy(exponent + 2 + pad, e + 2, count);
    exponent[2 + pad + count] = 0;
    end = e;
}

// %#g keeps its ending zeros, so it is %e or %f with the digits that %g means.
char* AlternateGeneral(char* out, char* limit, double value, int precision) noexcept {
    const int digits = std::max(precision, 1);
    char* const end = std::to_chars(out, limit, value, std::chars_format::scientific, digits - 1).ptr;
    int exponent = 0;
    const char* e = std::find(out, end, 'e') + 1;
    if (*e == '+') ++e;
    std::from_chars(e, end, exponent);
    if (exponent < -4 || exponent >= digits) return end;
    return std::to_chars(out, limit, value, std::chars_format::fixed, digits - 1 - exponent).ptr;
}

void PrintNotFinite(Sink& sink, const Conversion& c, double value, bool scientific, bool general, bool upper) noexcept {
    Number n;
    const bool indefinite = std::isnan(value) && std::signbit(value);
    n.digits = std::isinf(value) ? "1.#INF" : indefinite ? "1.#IND" : "1.#QNAN";
    n.digit_count = static_cast<std::int64_t>(std::strlen(n.digits));
    const std::int64_t precision = c.precision == kNone ? 6 : c.precision;
    if (!general) n.zeros_after = std::max<std::int64_t>(precision - (n.digit_count - 2), 0);
    if (scientific) n.exponent = upper ? "E+000" : "e+000";
    SetSign(n, c, std::signbit(value));
    PrintNumber(sink, c, n, true);
}

// The exact digits of a fixed-point number, rounded half to even as those of to_chars, where 128 bits hold all of it:
// much quicker than in general. Null for any other number.
char* SmallFixed(char* out, char* limit, double magnitude, int precision) noexcept {
    constexpr std::uint64_t kPowers[] = {1, 10, 100, 1000, 10000, 100000, 1000000};
    constexpr double kGreatest = 9007199254740992.0;
    constexpr int kMantissaBits = 53;
    if (precision >= static_cast<int>(std::size(kPowers)) || magnitude >= kGreatest || magnitude < 1) return nullptr;
    int exponent = 0;
    const double fraction = std::frexp(magnitude, &exponent);
    const auto mantissa = static_cast<std::uint64_t>(std::ldexp(fraction, kMantissaBits));
    const int shift = kMantissaBits - exponent;  // 0 to 52
    __extension__ using Wide = unsigned __int128;
    const Wide scaled = Wide{mantissa} * kPowers[precision];
    const Wide rest = scaled & ((Wide{1} << shift) - 1);
    const Wide half = shift == 0 ? Wide{1} : Wide{1} << (shift - 1);
    Wide units = scaled >> shift;
    if (rest > half || (rest == half && (units & 1) != 0)) ++units;
    const auto whole = static_cast<std::uint64_t>(units / kPowers[precision]);
    auto part = static_cast<std::uint64_t>(units % kPowers[precision]);
    char* end = std::to_chars(out, limit, whole).ptr;
    if (precision == 0) return end;
    *end = '.';
    for (int i = precision; i > 0; --i, part /= 10) end[i] = static_cast<char>('0' + part % 10);
    return end + precision + 1;
}

void PrintDouble(Sink& sink, const Conversion& c, double value) noexcept {
    const WCHAR kind = c.letter | 0x20;
    const bool upper = c.letter != kind;
    if (!std::isfinite(value)) return PrintNotFinite(sink, c, value, kind == u'e', kind == u'g', upper);

    char text[kMaxDigits + 320];
    char* const limit = text + sizeof text - 1;
    const std::int64_t wanted = c.precision == kNone ? 6 : c.precision;
    const int precision = static_cast<int>(std::min(wanted, kMaxDigits));
    const double magnitude = std::fabs(value);
    char* end = text;
    if (kind == u'g' && c.alternate) {
        end = AlternateGeneral(text, limit, magnitude, precision);
    } else if (char* const quick = kind == u'f' ? SmallFixed(text, limit, magnitude, precision) : nullptr) {
        end = quick;
    } else {
        const auto format = kind == u'e'   ? std::chars_format::scientific
                            : kind == u'f' ? std::chars_format::fixed
                                           : std::chars_format::general;
        end = std::to_chars(text, limit, magnitude, format, precision).ptr;
    }
    char exponent[8];
    SplitExponent(text, end, exponent, upper);
    if (c.alternate && std::find(text, end, '.') == end) *end++ = '.';

    Number n;
    n.digits = text;
    n.digit_count = end - text;
    if (kind != u'g' || c.alternate) n.zeros_after = wanted - precision;
    n.exponent = exponent;
    SetSign(n, c, std::signbit(value));
    PrintNumber(sink, c, n, true);
}

template <class Char>
void PrintText(Sink& sink, const Conversion& c, const Char* text, std::int64_t length) noexcept {
    const std::int64_t pad = c.width - length;
    if (!c.minus) sink.Repeat(c.zero ? u'0' : u' ', pad);
    sink.Put(text, static_cast<std::uint64_t>(length));
    if (c.minus) sink.Repeat(u' ', pad);
}

template <class Char>
void PrintString(Sink& sink, const Conversion& c, const Char* text) noexcept {
    if (!text) {
        constexpr std::int64_t kLength = 6;
        return PrintText(sink, c, "(null)", c.precision == kNone ? kLength : std::min(c.precision, kLength));
    }
    // With a precision the text need not be terminated.
    std::int64_t length = 0;
    while ((c.precision == kNone || length < c.precision) && text[length] != 0) ++length;
    PrintText(sink, c, text, length);
}

// A capital letter means the other width, and a prefix decides over both.
bool IsWideText(const Conversion& c) noexcept {
    if (c.prefix == Prefix::kShort) return false;
    return c.prefix == Prefix::kLong || c.letter == u's' || c.letter == u'c';
}

void PrintOne(Sink& sink, Conversion& c, Arguments& arguments) noexcept {
    switch (c.letter) {
        case u'd':
        case u'i': {
            const std::int64_t value = TakeSigned(c, arguments);
            const auto bits = static_cast<std::uint64_t>(value);
            return PrintInteger(sink, c, value < 0 ? 0 - bits : bits, value < 0, true);
        }
        case u'u':
        case u'o':
        case u'x':
        case u'X':
            return PrintInteger(sink, c, TakeUnsigned(c, arguments), false, false);
        case u'p':
            c.precision = 16;
            return PrintInteger(sink, c, reinterpret_cast<std::uintptr_t>(arguments.Pointer<void>()), false, false);
        case u'e':
        case u'E':
        case u'f':
        case u'F':
        case u'g':
        case u'G':
            return PrintDouble(sink, c, arguments.Double());
        case u'c':
        case u'C': {
            const int value = arguments.Int();
            const WCHAR unit = static_cast<WCHAR>(IsWideText(c) ? value : value & 0xFF);
            return PrintText(sink, c, &unit, 1);
        }
        case u's':
        case u'S':
            return IsWideText(c) ? PrintString(sink, c, arguments.Pointer<const WCHAR>())
                                 : PrintString(sink, c, arguments.Pointer<const char>());
        case 0:
            return;
        default:
            // What is no conversion is text; %% is the case that callers mean.
            return sink.Put(&c.letter, 1);
    }
}

}  // namespace

extern "C" int _vsnwprintf(WCHAR* out, std::size_t size, const WCHAR* format, std::va_list arguments) noexcept {
    if (!format || (!out && size != 0)) {
        errno = EINVAL;
        return -1;
    }
    Sink sink(out, size);
    Arguments taken;
    va_copy(taken.list, arguments);
    for (const WCHAR* at = format; *at != 0;) {
        if (*at != u'%') {
            sink.Put(at++, 1);
            continue;
        }
        ++at;
        Conversion c = Parse(at, taken);
        PrintOne(sink, c, taken);
    }
    va_end(taken.list);
    return sink.Finish();
}

extern "C" int _snwprintf(WCHAR* out, std::size_t size, const WCHAR* format, ...) noexcept {
    std::va_list arguments;
    va_start(arguments, format);
    const int result = _vsnwprintf(out, size, format, arguments);
    va_end(arguments);
    return result;
}

extern "C" int wsprintfW(WCHAR* out, const WCHAR* format, ...) noexcept {
    constexpr int kLongest = 1024;
    std::va_list arguments;
    va_start(arguments, format);
    const int length = _vsnwprintf(out, kLongest, format, arguments);
    va_end(arguments);
    const int stored = length < 0 ? kLongest : length;
    out[stored] = 0;
    return stored;
}
