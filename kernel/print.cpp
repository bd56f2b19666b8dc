#include "kernel/print.h"

#include <algorithm>
#include <limits>

#include "kernel/guard.h"
#include "kernel/internationals.h"
#include "kernel/text_copy.h"
#include "platform/text.h"

namespace {

constexpr HRESULT kBufferTooSmall = static_cast<HRESULT>(0x8004E03Cu);
constexpr HRESULT kTextCut = static_cast<HRESULT>(0x8007007Au);
constexpr std::size_t kLongestConversion = 260;  // characters of one conversion's text, and of one number

// Where the text goes: the caller's buffer, with the count of characters that are left.
class Sink {
  public:
    Sink(WCHAR* out, std::size_t room) noexcept : out_(out), start_(out), left_(room) {}

    [[nodiscard]] bool IsFull() const noexcept { return left_ == 0; }
    [[nodiscard]] std::size_t Room() const noexcept { return left_; }
    [[nodiscard]] std::size_t Length() const noexcept { return static_cast<std::size_t>(out_ - start_); }
    // False when the text was cut.
    bool Put(WStringView text) noexcept {
        const std::size_t fit = std::min(left_, text.size());
        out_ = std::copy_n(text.data(), fit, out_);
        left_ -= fit;
        return fit == text.size();
    }
    void Terminate() noexcept { *out_ = 0; }

  private:
    WCHAR* out_;
    WCHAR* start_;
    std::size_t left_;
};

// One conversion: its gathered text, always behind a leading '%', and the character that ends it.
struct Conversion {
    WString text;
    WCHAR kind = 0;
    bool grouped = false;
};

class Engine {
  public:
    Engine(Sink& sink, const WCHAR* format, std::va_list arguments) noexcept : sink_(sink), next_(format) {
        va_copy(arguments_, arguments);
    }
    ~Engine() { va_end(arguments_); }
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    HRESULT Run() {
        while (*next_ && !sink_.IsFull()) {
            const WCHAR c = *next_;
            if (c != W('$') && c != W('%')) {
                const WCHAR* literal = next_;
                while (*next_ && *next_ != W('$') && *next_ != W('%')) ++next_;
                sink_.Put({literal, static_cast<std::size_t>(next_ - literal)});
            } else if (next_[1] == c) {
                sink_.Put({next_, 1});
                next_ += 2;
            } else {
                Convert();
            }
        }
        return status_;
    }

  private:
    void Convert() {
        Conversion conversion;
        conversion.grouped = *next_++ == W('$');
        conversion.text = W("%");
        while (*next_ && conversion.text.size() < kLongestConversion && !conversion.kind) {
            const WCHAR c = *next_++;
            conversion.text += c;
            if (WStringView(W("*,:Xcdisux")).find(c) != WStringView::npos) conversion.kind = c;
        }
        switch (conversion.kind) {
            case 0:
                sink_.Put(conversion.text);
                break;
            case W('*'):
                sink_.Put(Facts().decimal);
                break;
            case W(','):
                sink_.Put(Facts().list);
                break;
            case W(':'):
                sink_.Put(Facts().time);
                break;
            case W('s'):
                Text(conversion, va_arg(arguments_, const WCHAR*));
                break;
            case W('c'):
                Text(conversion, va_arg(arguments_, int));
                break;
            default:
                Number(conversion);
                break;
        }
    }

    template <class Argument>
    void Text(const Conversion& conversion, Argument argument) {
        // The runtime says by -1 that a text was cut; grow until it is whole. What does not fit the sink is cut there.
        for (std::size_t room = kLongestConversion;; room *= 2) {
            WString text(room, 0);
            const int length = _snwprintf(text.data(), room, conversion.text.c_str(), argument);
            if (length < 0 && room < kMostText) continue;
            const std::size_t stored = length < 0 ? room : static_cast<std::size_t>(length);
            status_ = sink_.Put({text.data(), stored}) ? S_OK : kTextCut;
            return;
        }
    }

    void Number(const Conversion& conversion) {
        // "I32" is a 32-bit number, an I with anything else a 64-bit one.
        const std::size_t prefix = conversion.text.find(W('I'));
        const bool wide = prefix != WString::npos && conversion.text.compare(prefix, 3, W("I32")) != 0;
        WCHAR digits[kLongestConversion] = {};
        const int length =
            wide ? _snwprintf(digits, kLongestConversion - 1, conversion.text.c_str(), va_arg(arguments_, int64_t))
                 : _snwprintf(digits, kLongestConversion - 1, conversion.text.c_str(), va_arg(arguments_, int32_t));
        const WStringView text(digits, length < 0 ? kLongestConversion - 1 : static_cast<std::size_t>(length));
        const bool hex = conversion.kind == W('x') || conversion.kind == W('X');
        if (conversion.grouped && !hex) {
            status_ = Grouped(text);
            return;
        }
        const bool fast = conversion.text.size() == 2;
        status_ = sink_.Put(text) || hex || !fast ? S_OK : kBufferTooSmall;
    }

    // Where the groups do not fit, the digits are printed without them.
    HRESULT Grouped(WStringView text) {
        const WString grouped = clipfio::GroupDigits(text, Facts());
        const bool fits = grouped.size() <= sink_.Room();
        sink_.Put(fits ? WStringView(grouped) : text);
        return fits ? S_OK : kBufferTooSmall;
    }

    const clipfio::Internationals& Facts() {
        if (!have_facts_) facts_ = clipfio::UserInternationals();
        have_facts_ = true;
        return facts_;
    }

    static constexpr std::size_t kMostText = std::size_t{1} << 24;

    Sink& sink_;
    const WCHAR* next_;
    std::va_list arguments_;
    HRESULT status_ = S_OK;
    bool have_facts_ = false;
    clipfio::Internationals facts_;
};

HRESULT Print(Sink& sink, const WCHAR* format, std::va_list arguments) noexcept {
    const HRESULT result = clipfio::Guarded([&] { return Engine(sink, format, arguments).Run(); });
    sink.Terminate();
    return result;
}

}  // namespace

int32_t KtVPrintF(WCHAR* out, const WCHAR* format, std::va_list arguments) noexcept {
    Sink sink(out, std::numeric_limits<std::size_t>::max());
    (void)Print(sink, format, arguments);
    return static_cast<int32_t>(sink.Length());
}

int32_t KtPrintF(WCHAR* out, const WCHAR* format, ...) noexcept {
    std::va_list arguments;
    va_start(arguments, format);
    const int32_t length = KtVPrintF(out, format, arguments);
    va_end(arguments);
    return length;
}

HRESULT KtNVPrintF(WCHAR* out, uint32_t size, uint32_t* length, const WCHAR* format, std::va_list arguments) noexcept {
    if (length) *length = 0;
    if (!out || size < 1) return E_INVALIDARG;
    Sink sink(out, size - 1);
    const HRESULT result = Print(sink, format, arguments);
    if (length) *length = static_cast<uint32_t>(sink.Length());
    return result;
}

HRESULT KtCchPrintF(WCHAR* out, uint32_t size, uint32_t* length, const WCHAR* format, ...) noexcept {
    std::va_list arguments;
    va_start(arguments, format);
    const HRESULT result = KtNVPrintF(out, size, length, format, arguments);
    va_end(arguments);
    return result;
}
