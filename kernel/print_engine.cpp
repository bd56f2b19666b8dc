#include "kernel/print_engine.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <type_traits>

#include "kernel/characters.h"
#include "kernel/digits.h"
#include "kernel/internationals.h"
#include "kernel/number_text.h"
#include "kernel/print_tokens.h"
#include "platform/text.h"

namespace clipfio {
namespace {

constexpr HRESULT kBufferTooSmall = static_cast<HRESULT>(0x8004E03Cu);
constexpr HRESULT kTextCut = static_cast<HRESULT>(0x8007007Au);

constexpr std::size_t kLongestConversion = 260;  // characters of a gathered conversion, its '%' included
constexpr std::size_t kLongestName = 260;        // of a token's name, and of a literal number
constexpr std::size_t kLongestNumber = 260;      // of the runtime's text of one number
constexpr std::size_t kLongestGrouped = 1024;    // of a number with its separators
constexpr std::size_t kLongestPlatformText = 1024;

// The caller's buffer, with the count of characters that are left in front of the terminator.
class Sink {
  public:
    Sink(WCHAR* out, std::size_t room) noexcept : out_(out), start_(out), left_(room) {}

    [[nodiscard]] bool IsFull() const noexcept { return left_ == 0; }
    [[nodiscard]] std::size_t Room() const noexcept { return left_; }
    [[nodiscard]] std::size_t Length() const noexcept { return static_cast<std::size_t>(out_ - start_); }
    [[nodiscard]] WCHAR* Tail() const noexcept { return out_; }
    void Put(WCHAR c) noexcept {
        if (left_ == 0) return;
        *out_++ = c;
        --left_;
    }
    // False when the text was cut.
    bool Put(WStringView text) noexcept {
        const std::size_t fit = std::min(left_, text.size());
        out_ = std::copy_n(text.data(), fit, out_);
        left_ -= fit;
        return fit == text.size();
    }
    // What was written at the tail by others.
    void Advance(std::size_t count) noexcept {
        out_ += count;
        left_ -= count;
    }
    void Terminate() noexcept { *out_ = 0; }

  private:
    WCHAR* out_;
    WCHAR* start_;
    std::size_t left_;
};

// What stands behind '%' or '$': the gathered characters, and the one that ends them.
struct Conversion {
    WStringView body;  // the last one is `kind`, unless there is none
    WCHAR kind = 0;    // 0: the format or the limit ended it
    bool grouped = false;

    [[nodiscard]] bool IsBare() const noexcept { return body.size() == 1; }
};

constexpr bool IsConversion(WCHAR c) noexcept {
    constexpr WStringView kKinds = W("!&*,:EGXcdefgiosuxz");
    return kKinds.find(c) != WStringView::npos;
}
constexpr auto kIsConversion = [] {
    std::array<bool, 128> table{};
    for (std::size_t i = 0; i < table.size(); ++i) table[i] = IsConversion(static_cast<WCHAR>(i));
    return table;
}();

// Letters that the runtime would take for conversions of its own, with an argument that is not there.
constexpr WStringView kForeignLetters = W("ACFSZanp");

// Whether the runtime, given '%' and this text, reads no other conversion than the one that the text ends with.
bool IsReadAlike(WStringView body) noexcept {
    if (body.find_first_of(kForeignLetters) == WStringView::npos) return true;
    bool open = true;  // behind a '%' whose letter is still to come
    for (const WCHAR c : body) {
        if (!open) {
            open = c == W('%');
        } else if (WStringView(W("-+ #.0123456789hlLIwjtN")).find(c) == WStringView::npos) {
            if (kForeignLetters.find(c) != WStringView::npos) return false;
            open = false;
        }
    }
    return true;
}

// The text of a conversion as the runtime is given it.
class RuntimeFormat {
  public:
    explicit RuntimeFormat(WStringView body) noexcept {
        text_[0] = W('%');
        *std::copy(body.begin(), body.end(), text_ + 1) = 0;
        end_ = body.size();
    }
    void SetKind(WCHAR kind) noexcept { text_[end_] = kind; }
    [[nodiscard]] const WCHAR* Text() const noexcept { return text_; }

  private:
    WCHAR text_[kLongestConversion + 1];
    std::size_t end_;
};

// The runtime's text of one number.
class RuntimeNumber {
  public:
    template <class Argument>
    RuntimeNumber(const WCHAR* format, Argument argument) noexcept {
        const int length = _snwprintf(text_, kLongestNumber + 1, format, argument);
        length_ = length < 0 ? kLongestNumber : std::min(static_cast<std::size_t>(length), kLongestNumber);
        text_[length_] = 0;
    }
    // A point at a place that the argument decides.
    RuntimeNumber(int decimals, double value) noexcept {
        const int length = _snwprintf(text_, kLongestNumber + 1, W("%.*f"), decimals, value);
        length_ = length < 0 ? kLongestNumber : std::min(static_cast<std::size_t>(length), kLongestNumber);
        text_[length_] = 0;
    }
    [[nodiscard]] const WCHAR* Text() const noexcept { return text_; }
    [[nodiscard]] WStringView View() const noexcept { return {text_, length_}; }

  private:
    WCHAR text_[kLongestNumber + 1];
    std::size_t length_;
};

constexpr std::size_t kHexDigits = 8;  // of 32 bits

// How many digits at least a body "x", "04x" and the like asks for; 0 for any other body.
std::size_t PaddedHexDigits(WStringView body) noexcept {
    if (body.back() != W('x') && body.back() != W('X')) return 0;
    if (body.size() == 1) return 1;
    const bool padded = body.size() == 3 && body[0] == W('0') && body[1] >= W('1') && body[1] <= W('8');
    return padded ? static_cast<std::size_t>(body[1] - W('0')) : 0;
}

// N of a body ".Nz", 0 for any other.
int32_t FixedPointDecimals(WStringView body) noexcept {
    if (body.size() < 3 || body.front() != W('.')) return 0;
    constexpr int32_t kMostDecimals = std::numeric_limits<double>::max_exponent10;
    int32_t decimals = 0;
    for (const WCHAR c : body.substr(1, body.size() - 2)) {
        if (!IsDigit(c)) return 0;
        decimals = std::min(decimals * 10 + (c - W('0')), kMostDecimals);
    }
    return decimals;
}

double PowerOfTen(int32_t exponent) noexcept {
    constexpr double kPowers[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    const auto index = static_cast<std::size_t>(exponent);
    return index < std::size(kPowers) ? kPowers[index] : std::pow(10.0, exponent);
}

template <std::size_t Size>
WStringView View(const KTINATTEXT<Size>& field) noexcept {
    return {field.text, field.length};
}

// The separator of timecode or of musical time that the character behind '!' or '&' chooses, else nothing.
WStringView TimeSeparator(const KTINTERNATIONALS& record, WCHAR kind, WCHAR choice) noexcept {
    const bool smpte = kind == W('!');
    switch (choice) {
        case W(':'):
            return View(smpte ? record.smpte_whole : record.measures_to_beats);
        case W('.'):
            return View(smpte ? record.smpte_non_drop : record.beats_to_ticks);
        case W(','):
            return smpte ? View(record.smpte_drop) : WStringView();
        default:
            return {};
    }
}

class Engine {
  public:
    // Without arguments each is a zero or an empty text.
    Engine(Sink& sink, TextRule rule, const WCHAR* format, PrintArguments* arguments) noexcept
        : sink_(sink), rule_(rule), at_(format), arguments_(arguments) {}
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    HRESULT Run() noexcept {
        while (*at_ && !sink_.IsFull()) {
            const WCHAR c = *at_;
            if (c != W('$') && c != W('%')) {
                sink_.Put(c);
                ++at_;
            } else if (at_[1] == c) {
                sink_.Put(c);
                at_ += 2;
            } else if (c == W('$') && at_[1] == W('(')) {
                at_ += 2;
                IsDigit(*at_) || *at_ == W('-') || *at_ == W('.') ? LiteralNumber() : NamedText();
            } else if (at_[1] == W('d')) {
                // What is printed most goes the shortest way.
                at_ += 2;
                Digits(Take<int32_t>(), c == W('$'));
            } else {
                Convert(Gather());
            }
        }
        return status_;
    }

  private:
    template <class Argument>
    Argument Take() noexcept {
        if (arguments_) return va_arg(arguments_->list, Argument);
        if constexpr (std::is_pointer_v<Argument>) {
            return W("");
        } else {
            return Argument{};
        }
    }

    void LiteralNumber() noexcept {
        const WCHAR* const start = at_++;
        const auto length = [&] { return static_cast<std::size_t>(at_ - start); };
        while ((IsDigit(*at_) || *at_ == W(',') || *at_ == W('.')) && length() < kLongestName) ++at_;
        const WStringView number(start, length());
        if (*at_ != W(')')) return Whole(W("$("), number, {});
        ++at_;
        WCHAR text[kLongestName + 1];
        *std::copy(number.begin(), number.end(), text) = 0;
        Number(text, number, NumberForm::kGroupedDecimal, kSourceDecimals);
    }

    void NamedText() noexcept {
        const WCHAR* const start = at_;
        while (*at_ && *at_ != W(')') && at_ - start < static_cast<std::ptrdiff_t>(kLongestName)) ++at_;
        const WStringView name(start, static_cast<std::size_t>(at_ - start));
        if (*at_ != W(')')) return Whole(W("$("), name, {});
        ++at_;
        WCHAR text[kLongestName + 1];
        *std::copy(name.begin(), name.end(), text) = 0;
        const TokenUse token(text);
        token.IsFound() ? static_cast<void>(sink_.Put(token.Value())) : Whole(W("$("), name, W(")"));
    }

    // Text that stays readable or is not printed at all: it needs more room than it takes.
    void Whole(WStringView opening, WStringView text, WStringView closing) noexcept {
        if (sink_.Room() <= opening.size() + text.size() + closing.size()) {
            status_ = kBufferTooSmall;
            return;
        }
        for (const WStringView part : {opening, text, closing}) sink_.Put(part);
    }

    Conversion Gather() noexcept {
        Conversion conversion;
        conversion.grouped = *at_++ == W('$');
        const WCHAR* const start = at_;
        while (*at_ && at_ - start + 1 < static_cast<std::ptrdiff_t>(kLongestConversion) && !conversion.kind) {
            const WCHAR c = *at_++;
            if (c < kIsConversion.size() && kIsConversion[c]) conversion.kind = c;
        }
        conversion.body = {start, static_cast<std::size_t>(at_ - start)};
        return conversion;
    }

    void Convert(const Conversion& conversion) noexcept {
        const KTINTERNATIONALS& record = InternationalsRecord();
        switch (conversion.kind) {
            case 0:
                sink_.Put(W('%'));
                sink_.Put(conversion.body);
                return;
            case W('*'):
                return Separator(View(record.decimal));
            case W(','):
                return Separator(View(record.list));
            case W(':'):
                return Separator(View(record.time));
            case W('!'):
            case W('&'):
                return ChosenSeparator(TimeSeparator(record, conversion.kind, *at_));
            case W('d'):
            case W('i'):
                return conversion.IsBare() ? Digits(Take<int32_t>(), conversion.grouped) : Integer(conversion);
            case W('u'):
                return conversion.IsBare() ? Digits(Take<uint32_t>(), conversion.grouped) : Integer(conversion);
            case W('c'):
                return Character(conversion, Take<int>());
            case W('s'):
                return Text(conversion, Take<const WCHAR*>());
            case W('z'):
                return FixedPoint(conversion);
            case W('e'):
            case W('E'):
            case W('f'):
            case W('g'):
            case W('G'):
                return Float(conversion, Take<double>());
            default:
                return Integer(conversion);
        }
    }

    void Separator(WStringView text) noexcept {
        if (sink_.Put(text)) status_ = S_OK;
    }

    // A character that chooses nothing stays where it is.
    void ChosenSeparator(WStringView text) noexcept {
        if (text.empty()) return;
        ++at_;
        Separator(text);
    }

    // Of 32 bits, with or without a sign.
    void Digits(int64_t value, bool grouped) noexcept {
        if (!grouped || value == 0) return PlainDigits(value);
        const KTINTERNATIONALS& record = InternationalsRecord();
        if (record.record_size == 0) return PlainDigits(value);
        const std::size_t length =
            GroupDigits(static_cast<uint32_t>(Magnitude(value)), value < 0, sink_.Tail(), sink_.Room(), record);
        sink_.Advance(length);
        if (length == 0) sink_.Put(DecimalDigits(value).View());
        status_ = length > 0 ? S_OK : kBufferTooSmall;
    }

    void PlainDigits(int64_t value) noexcept {
        const uint64_t magnitude = Magnitude(value);
        const std::size_t length = CountDigits(magnitude) + (value < 0 ? 1 : 0);
        if (length > sink_.Room()) {
            sink_.Put(DecimalDigits(value).View());
            status_ = kBufferTooSmall;
            return;
        }
        if (value < 0) *sink_.Tail() = W('-');
        WriteDigits(sink_.Tail() + length, magnitude);
        sink_.Advance(length);
        status_ = S_OK;
    }

    // "I32" is a 32-bit number, an I with anything else a 64-bit one. The runtime gets 64 bits in any case, so that
    // what it reads by other prefixes is the same number.
    int64_t TakeInteger(const Conversion& conversion, WCHAR kind) noexcept {
        const std::size_t prefix = conversion.body.find(W('I'));
        if (prefix != WStringView::npos && !conversion.body.substr(prefix).starts_with(W("I32"))) {
            return Take<int64_t>();
        }
        const int32_t value = Take<int32_t>();
        return kind == W('d') || kind == W('i') ? value : int64_t{static_cast<uint32_t>(value)};
    }

    void Integer(const Conversion& conversion) noexcept {
        const int64_t value = TakeInteger(conversion, conversion.kind);
        if (const std::size_t digits = PaddedHexDigits(conversion.body)) {
            return PaddedHex(static_cast<uint32_t>(value), digits, conversion.kind);
        }
        if (!IsReadAlike(conversion.body)) return AsItStands(conversion);
        const RuntimeNumber number(RuntimeFormat(conversion.body).Text(), value);
        const bool decimal = conversion.kind == W('d') || conversion.kind == W('i') || conversion.kind == W('u');
        if (conversion.grouped && decimal) return Number(number.Text(), number.View(), NumberForm::kGrouped, 0);
        AsRuntime(number.View());
    }

    // As the runtime prints "%08x", which messages are full of, without its help.
    void PaddedHex(uint32_t value, std::size_t digits, WCHAR kind) noexcept {
        const WCHAR* const letters = kind == W('x') ? W("0123456789abcdef") : W("0123456789ABCDEF");
        WCHAR text[kHexDigits];
        WCHAR* start = text + kHexDigits;
        for (; value != 0 || start > text + kHexDigits - digits; value >>= 4) *--start = letters[value & 0xF];
        AsRuntime({start, static_cast<std::size_t>(text + kHexDigits - start)});
    }

    void Float(const Conversion& conversion, double value) noexcept {
        if (!IsReadAlike(conversion.body)) return AsItStands(conversion);
        const RuntimeNumber number(RuntimeFormat(conversion.body).Text(), value);
        if (!conversion.grouped) return AsRuntime(number.View());
        switch (conversion.kind) {
            case W('f'):
                return Number(number.Text(), number.View(), NumberForm::kGroupedDecimal, kSourceDecimals);
            case W('g'):
            case W('G'):
                if (number.View().find_first_of(W("eE")) != WStringView::npos) break;
                return Number(number.Text(), number.View(), NumberForm::kDecimal, kSourceDecimals);
            default:
                break;
        }
        AsRuntime(number.View());
    }

    void FixedPoint(const Conversion& conversion) noexcept {
        const int32_t value = Take<int32_t>();
        if (const int32_t decimals = FixedPointDecimals(conversion.body)) {
            const RuntimeNumber number(decimals, value / PowerOfTen(decimals));
            // As many as the text was not cut to.
            const auto shown = static_cast<int32_t>(number.View().size() - number.View().find(W('.')) - 1);
            return Number(number.Text(), number.View(),
                          conversion.grouped ? NumberForm::kGroupedDecimal : NumberForm::kDecimal, shown);
        }
        if (!IsReadAlike(conversion.body)) return AsItStands(conversion);
        RuntimeFormat format(conversion.body);
        format.SetKind(W('d'));
        const RuntimeNumber number(format.Text(), int64_t{value});
        conversion.grouped ? Number(number.Text(), number.View(), NumberForm::kGrouped, 0) : AsRuntime(number.View());
    }

    // Where a number with its separators does not fit, or is none, it is printed without them.
    void Number(const WCHAR* text, WStringView view, NumberForm form, int32_t decimals) noexcept {
        const auto room = static_cast<int32_t>(std::min(sink_.Room(), kLongestGrouped)) + 1;
        const NumberText written = FormatNumberText(text, sink_.Tail(), room, form, decimals, InternationalsRecord());
        if (written.fit == NumberFit::kDone) {
            sink_.Advance(static_cast<std::size_t>(written.length));
            status_ = S_OK;
            return;
        }
        if (written.fit == NumberFit::kNoRoom && form == NumberForm::kDecimal) return CutDecimal(text, decimals);
        const bool whole = sink_.Put(view);
        status_ = whole && written.fit == NumberFit::kNotANumber ? S_OK : kBufferTooSmall;
    }

    // A number without groups is cut as any text is.
    void CutDecimal(const WCHAR* text, int32_t decimals) noexcept {
        WCHAR whole[kLongestGrouped + 1];
        const NumberText written = FormatNumberText(text, whole, static_cast<int32_t>(std::size(whole)),
                                                    NumberForm::kDecimal, decimals, InternationalsRecord());
        AsRuntime({whole, static_cast<std::size_t>(written.length)});
    }

    void AsRuntime(WStringView text) noexcept {
        if (sink_.Put(text)) status_ = S_OK;
    }

    void AsItStands(const Conversion& conversion) noexcept {
        sink_.Put(W('%'));
        sink_.Put(conversion.body);
    }

    // A bounded print refuses a size that cannot be one.
    bool HasTooMuchRoom() noexcept {
        if (rule_ == TextRule::kPlatform || sink_.Room() < std::numeric_limits<int32_t>::max()) return false;
        status_ = E_INVALIDARG;
        return true;
    }

    void Character(const Conversion& conversion, int c) noexcept {
        const WCHAR unit = static_cast<WCHAR>(c);
        if (!conversion.IsBare()) return ByPrint(conversion, c);
        if (HasTooMuchRoom()) return;
        if (unit != 0) sink_.Put(unit);
        status_ = S_OK;
    }

    void Text(const Conversion& conversion, const WCHAR* text) noexcept {
        if (!conversion.IsBare()) return ByPrint(conversion, text);
        if (HasTooMuchRoom()) return;
        WStringView view = text ? WStringView(text) : WStringView(W("(null)"));
        if (rule_ == TextRule::kPlatform) view = view.substr(0, kLongestPlatformText);
        status_ = sink_.Put(view) ? S_OK : kTextCut;
    }

    template <class Argument>
    void ByPrint(const Conversion& conversion, Argument argument) noexcept {
        if (!IsReadAlike(conversion.body)) return AsItStands(conversion);
        const RuntimeFormat format(conversion.body);
        if (rule_ == TextRule::kPlatform) {
            WCHAR text[kLongestPlatformText + 1];
            const int length = wsprintfW(text, format.Text(), argument);
            text[std::clamp<std::size_t>(static_cast<std::size_t>(std::max(length, 0)), 0, kLongestPlatformText)] = 0;
            sink_.Put(WStringView(text));
            return;
        }
        // What is printed is cut where the room ends, and not gathered before.
        if (HasTooMuchRoom()) return;
        const int length = _snwprintf(sink_.Tail(), sink_.Room() + 1, format.Text(), argument);
        const bool cut = length < 0 || static_cast<std::size_t>(length) > sink_.Room();
        const std::size_t stored = cut ? sink_.Room() : static_cast<std::size_t>(length);
        sink_.Tail()[stored] = 0;
        sink_.Advance(cut ? stored : WStringView(sink_.Tail()).size());
        status_ = cut ? kTextCut : S_OK;
    }

    Sink& sink_;
    TextRule rule_;
    const WCHAR* at_;
    PrintArguments* arguments_;
    HRESULT status_ = S_OK;
};

}  // namespace

Printed Print(WCHAR* out, std::size_t size, TextRule rule, const WCHAR* format, PrintArguments& arguments) noexcept {
    Sink sink(out, size - 1);
    const HRESULT status = Engine(sink, rule, format, &arguments).Run();
    sink.Terminate();
    return {status, sink.Length()};
}

Printed PrintWithoutArguments(WCHAR* out, std::size_t size, const WCHAR* format) noexcept {
    Sink sink(out, size - 1);
    const HRESULT status = Engine(sink, TextRule::kBounded, format, nullptr).Run();
    sink.Terminate();
    return {status, sink.Length()};
}

}  // namespace clipfio
