#include "platform/text.h"

namespace platform {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

constexpr bool IsHigh(char32_t c) { return c >= 0xD800 && c <= 0xDBFF; }
constexpr bool IsLow(char32_t c) { return c >= 0xDC00 && c <= 0xDFFF; }
constexpr bool IsSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDFFF; }

void AppendUtf8(std::string& out, char32_t c) {
    const auto put = [&out](char32_t byte) { out.push_back(static_cast<char>(byte)); };
    if (c < 0x80) {
        put(c);
    } else if (c < 0x800) {
        put(0xC0 | (c >> 6));
        put(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        put(0xE0 | (c >> 12));
        put(0x80 | ((c >> 6) & 0x3F));
        put(0x80 | (c & 0x3F));
    } else {
        put(0xF0 | (c >> 18));
        put(0x80 | ((c >> 12) & 0x3F));
        put(0x80 | ((c >> 6) & 0x3F));
        put(0x80 | (c & 0x3F));
    }
}

// Takes one character off the front of `in`. A broken sequence costs one byte and reads as U+FFFD.
char32_t TakeUtf8(std::string_view& in) {
    const auto at = [&in](std::size_t i) { return static_cast<char32_t>(static_cast<unsigned char>(in[i])); };
    const char32_t first = at(0);
    std::size_t length = 1;
    char32_t c = first;
    char32_t least = 0;
    if (first >= 0xF0 && first <= 0xF4) {
        length = 4, c = first & 0x07, least = 0x10000;
    } else if (first >= 0xE0 && first < 0xF0) {
        length = 3, c = first & 0x0F, least = 0x800;
    } else if (first >= 0xC2 && first < 0xE0) {
        length = 2, c = first & 0x1F, least = 0x80;
    } else if (first >= 0x80) {
        in.remove_prefix(1);
        return kReplacement;
    }
    bool good = in.size() >= length;
    for (std::size_t i = 1; good && i < length; ++i) {
        good = (at(i) & 0xC0) == 0x80;
        c = (c << 6) | (at(i) & 0x3F);
    }
    good = good && c >= least && c <= 0x10FFFF && !IsSurrogate(c);
    in.remove_prefix(good ? length : 1);
    return good ? c : kReplacement;
}

}  // namespace

std::string Utf8(WStringView text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        if (IsHigh(c) && i + 1 < text.size() && IsLow(text[i + 1])) {
            c = 0x10000 + ((c - 0xD800) << 10) + (static_cast<char32_t>(text[++i]) - 0xDC00);
        } else if (IsSurrogate(c)) {
            c = kReplacement;
        }
        AppendUtf8(out, c);
    }
    return out;
}

WString Wide(std::string_view utf8) {
    WString out;
    out.reserve(utf8.size());
    while (!utf8.empty()) {
        const char32_t c = TakeUtf8(utf8);
        if (c < 0x10000) {
            out.push_back(static_cast<WCHAR>(c));
        } else {
            out.push_back(static_cast<WCHAR>(0xD800 + ((c - 0x10000) >> 10)));
            out.push_back(static_cast<WCHAR>(0xDC00 + ((c - 0x10000) & 0x3FF)));
        }
    }
    return out;
}

}  // namespace platform
