#include "platform/text.h"

#include <locale.h>
#include <wctype.h>

#include <algorithm>
#include <cstring>
#include <limits>

#include "errors.h"

namespace {

using platform::Fail;

constexpr UINT kLatin1 = 28591;
constexpr UINT kWindows1252 = 1252;
constexpr DWORD WC_ERR_INVALID_CHARS = 0x80;
constexpr DWORD WC_NO_BEST_FIT_CHARS = 0x400;
constexpr char32_t kReplacement = 0xFFFD;

// What 1252 has at 0x80 to 0x9F. The five bytes that it leaves open stand for themselves.
constexpr WCHAR kHigh1252[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
                                 0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
                                 0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

enum class Kind { kUnknown, kUtf8, kLatin1, k1252 };

Kind KindOf(UINT code_page) noexcept {
    switch (code_page) {
        case CP_ACP:
        case kWindows1252:
            return Kind::k1252;
        case kLatin1:
            return Kind::kLatin1;
        case CP_UTF8:
            return Kind::kUtf8;
        default:
            return Kind::kUnknown;
    }
}

WCHAR WideOf(unsigned char byte, Kind kind) noexcept {
    return kind == Kind::k1252 && byte >= 0x80 && byte < 0xA0 ? kHigh1252[byte - 0x80] : byte;
}

// -1 for a character that the code page does not have.
int ByteOf(WCHAR c, Kind kind) noexcept {
    if (kind == Kind::kLatin1 || c < 0x80 || (c >= 0xA0 && c < 0x100)) return c < 0x100 ? c : -1;
    const WCHAR* const found = std::find(std::begin(kHigh1252), std::end(kHigh1252), c);
    return found == std::end(kHigh1252) ? -1 : static_cast<int>(0x80 + (found - kHigh1252));
}

// Counts units and stores them while there is room. A size of 0 only counts.
template <class Unit>
class Output {
  public:
    Output(Unit* out, int size) noexcept : out_(out), size_(size) {}

    void Put(Unit unit) noexcept {
        if (count_ < size_) out_[count_] = unit;
        ++count_;
    }
    [[nodiscard]] int Result() const noexcept {
        if (count_ > std::numeric_limits<int>::max()) return Fail(ERROR_INVALID_PARAMETER, 0);
        if (size_ != 0 && count_ > size_) return Fail(ERROR_INSUFFICIENT_BUFFER, 0);
        return static_cast<int>(count_);
    }

  private:
    Unit* out_;
    std::int64_t size_;
    std::int64_t count_ = 0;
};

// Decodes UTF-8 one character at a time. Of a broken sequence it takes the longest part that could have begun a good
// one, and says so.
class Utf8Reader {
  public:
    Utf8Reader(const char* text, std::size_t size) noexcept
        : at_(reinterpret_cast<const unsigned char*>(text)), end_(at_ + size) {}

    [[nodiscard]] bool AtEnd() const noexcept { return at_ == end_; }

    // Nothing when the sequence is broken: kReplacement, and `good` false.
    char32_t Next(bool& good) noexcept {
        const unsigned char first = *at_++;
        good = true;
        if (first < 0x80) return first;
        good = false;
        if (first < 0xC2 || first > 0xF4) return kReplacement;
        const int following = first < 0xE0 ? 1 : first < 0xF0 ? 2 : 3;
        // The second byte's range shuts out overlong forms, surrogates and what lies above U+10FFFF.
        unsigned char least = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
        unsigned char most = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
        char32_t c = first & (0x3Fu >> following);
        for (int i = 0; i < following; ++i) {
            if (at_ == end_ || *at_ < least || *at_ > most) return kReplacement;
            c = c << 6 | (*at_++ & 0x3Fu);
            least = 0x80;
            most = 0xBF;
        }
        good = true;
        return c;
    }

  private:
    const unsigned char* at_;
    const unsigned char* end_;
};

// False with the last error set when the arguments of a conversion are no conversion.
template <class In, class Out>
bool CheckArguments(const In* in, int in_length, const Out* out, int out_size) noexcept {
    const bool bad = !in || in_length == 0 || in_length < -1 || out_size < 0 || (out_size > 0 && !out) ||
                     static_cast<const void*>(in) == static_cast<const void*>(out);
    return !bad || Fail(ERROR_INVALID_PARAMETER, false);
}

int WideFromUtf8(const char* in, std::size_t length, bool strict, Output<WCHAR> output) noexcept {
    for (Utf8Reader reader(in, length); !reader.AtEnd();) {
        bool good = false;
        const char32_t c = reader.Next(good);
        if (!good && strict) return Fail(ERROR_NO_UNICODE_TRANSLATION, 0);
        if (c < 0x10000) {
            output.Put(static_cast<WCHAR>(c));
        } else {
            output.Put(static_cast<WCHAR>(0xD7C0 + (c >> 10)));
            output.Put(static_cast<WCHAR>(0xDC00 + (c & 0x3FF)));
        }
    }
    return output.Result();
}

void PutUtf8(Output<char>& output, char32_t c) noexcept {
    const auto put = [&output](char32_t byte) { output.Put(static_cast<char>(byte)); };
    if (c < 0x80) return put(c);
    if (c < 0x800) {
        put(0xC0 | c >> 6);
    } else {
        if (c < 0x10000) {
            put(0xE0 | c >> 12);
        } else {
            put(0xF0 | c >> 18);
            put(0x80 | (c >> 12 & 0x3F));
        }
        put(0x80 | (c >> 6 & 0x3F));
    }
    put(0x80 | (c & 0x3F));
}

int Utf8FromWide(const WCHAR* in, std::size_t length, bool strict, Output<char> output) noexcept {
    for (std::size_t i = 0; i < length; ++i) {
        char32_t c = in[i];
        if ((c & 0xFC00) == 0xD800 && i + 1 < length && (in[i + 1] & 0xFC00) == 0xDC00) {
            c = 0x10000 + ((c & 0x3FF) << 10) + (in[++i] & 0x3FFu);
        } else if ((c & 0xF800) == 0xD800) {
            if (strict) return Fail(ERROR_NO_UNICODE_TRANSLATION, 0);
            c = kReplacement;
        }
        PutUtf8(output, c);
    }
    return output.Result();
}

bool IsDigit(WCHAR c) noexcept { return c >= u'0' && c <= u'9'; }

// The order of two characters in a list for people: signs, then digits, then letters.
int ClassOf(WCHAR c) noexcept {
    if (IsDigit(c)) return 1;
    const WCHAR lower = c | 0x20;
    return (lower >= u'a' && lower <= u'z') || c >= 0xC0 ? 2 : 0;
}

int Sign(int difference) noexcept { return difference < 0 ? -1 : difference > 0 ? 1 : 0; }

// The numbers that both texts begin with; both are moved behind them.
int CompareNumbers(const WCHAR*& a, const WCHAR*& b) noexcept {
    while (*a == u'0') ++a;
    while (*b == u'0') ++b;
    int difference = 0;
    for (; IsDigit(*a) && IsDigit(*b); ++a, ++b) {
        if (difference == 0) difference = Sign(*a - *b);
    }
    if (IsDigit(*a) || IsDigit(*b)) return IsDigit(*a) ? 1 : -1;
    return difference;
}

}  // namespace

extern "C" int MultiByteToWideChar(UINT code_page, DWORD flags, const char* in, int in_length, WCHAR* out,
                                   int out_size) noexcept {
    if (!CheckArguments(in, in_length, out, out_size)) return 0;
    const Kind kind = KindOf(code_page);
    if (kind == Kind::kUnknown) return Fail(ERROR_INVALID_PARAMETER, 0);
    const DWORD allowed = kind == Kind::kUtf8 ? MB_ERR_INVALID_CHARS : MB_ERR_INVALID_CHARS | MB_PRECOMPOSED;
    if ((flags & ~allowed) != 0) return Fail(platform::ERROR_INVALID_FLAGS, 0);

    const std::size_t length = in_length < 0 ? std::strlen(in) + 1 : static_cast<std::size_t>(in_length);
    Output<WCHAR> output(out, out_size);
    if (kind == Kind::kUtf8) return WideFromUtf8(in, length, (flags & MB_ERR_INVALID_CHARS) != 0, output);
    for (std::size_t i = 0; i < length; ++i) output.Put(WideOf(static_cast<unsigned char>(in[i]), kind));
    return output.Result();
}

extern "C" int WideCharToMultiByte(UINT code_page, DWORD flags, const WCHAR* in, int in_length, char* out, int out_size,
                                   const char* substitute, BOOL* substituted) noexcept {
    if (!CheckArguments(in, in_length, out, out_size)) return 0;
    const Kind kind = KindOf(code_page);
    if (kind == Kind::kUnknown) return Fail(ERROR_INVALID_PARAMETER, 0);
    const DWORD allowed = kind == Kind::kUtf8 ? WC_ERR_INVALID_CHARS : WC_NO_BEST_FIT_CHARS;
    if ((flags & ~allowed) != 0) return Fail(platform::ERROR_INVALID_FLAGS, 0);
    if (kind == Kind::kUtf8 && (substitute || substituted)) return Fail(ERROR_INVALID_PARAMETER, 0);

    const std::size_t length = in_length < 0 ? WStringView(in).size() + 1 : static_cast<std::size_t>(in_length);
    Output<char> output(out, out_size);
    if (kind == Kind::kUtf8) return Utf8FromWide(in, length, (flags & WC_ERR_INVALID_CHARS) != 0, output);
    const char instead = substitute ? *substitute : '?';
    BOOL used = FALSE;
    for (std::size_t i = 0; i < length; ++i) {
        const int byte = ByteOf(in[i], kind);
        if (byte < 0) used = TRUE;
        output.Put(byte < 0 ? instead : static_cast<char>(byte));
    }
    if (substituted) *substituted = used;
    return output.Result();
}

extern "C" int lstrlenW(const WCHAR* text) noexcept { return text ? static_cast<int>(WStringView(text).size()) : 0; }

extern "C" int StrCmpLogicalW(const WCHAR* a, const WCHAR* b) noexcept {
    if (!a || !b) return (a ? 1 : 0) - (b ? 1 : 0);
    for (;;) {
        if (IsDigit(*a) && IsDigit(*b)) {
            if (const int difference = CompareNumbers(a, b)) return difference;
            continue;
        }
        if (*a == 0 || *b == 0) return (*a ? 1 : 0) - (*b ? 1 : 0);
        const int classes = ClassOf(*a) - ClassOf(*b);
        const int folded = platform::UpperCase(*a++) - platform::UpperCase(*b++);
        if (folded != 0) return Sign(classes != 0 ? classes : folded);
    }
}

extern "C" UINT GetACP() noexcept { return kWindows1252; }
extern "C" int _getmbcp() noexcept { return 0; }
extern "C" int _mbbtype(unsigned char, int) noexcept { return _MBC_SINGLE; }

extern "C" char* CharNextA(const char* text) noexcept { return const_cast<char*>(*text ? text + 1 : text); }

namespace platform {

WCHAR UpperCase(WCHAR c) noexcept {
    if (c < 0x80) return c >= u'a' && c <= u'z' ? static_cast<WCHAR>(c - 0x20) : c;
    static const locale_t unicode = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    if (!unicode) return c;
    const wint_t upper = towupper_l(c, unicode);
    // The dotless i and the long s have capitals that are other letters' already.
    return upper < 0x80 || upper > 0xFFFF ? c : static_cast<WCHAR>(upper);
}

}  // namespace platform
