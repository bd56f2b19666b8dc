#include "kernel/text_tools.h"

#include <algorithm>
#include <cstddef>

#include "kernel/characters.h"
#include "kernel/print.h"
#include "kernel/text_copy.h"

namespace {

using clipfio::CopyText;

WStringView Trimmed(WStringView text) noexcept {
    while (!text.empty() && clipfio::IsSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && clipfio::IsSpace(text.back())) text.remove_suffix(1);
    return text;
}

// One number of up to `digits` hexadecimal digits, and nothing else. False, when there is none.
bool TakeHex(const WCHAR*& at, int digits, uint32_t& value) noexcept {
    at = clipfio::SkipSpace(at);
    const WCHAR* const start = at;
    value = 0;
    for (int digit = 0; at - start < digits && (digit = clipfio::HexDigit(*at)) >= 0; ++at) {
        value = value << 4 | static_cast<uint32_t>(digit);
    }
    return at != start;
}

}  // namespace

int32_t KtStringReplaceCharsW(WCHAR* text, WCHAR from, WCHAR to) noexcept {
    if (!text) return 0;
    const WStringView view(text);
    // Nothing but the text itself: its end is not replaced.
    if (from != 0) std::replace(text, text + view.size(), from, to);
    return static_cast<int32_t>(WStringView(text).size());
}

int32_t KtStringReplaceChars(WCHAR* text, WCHAR from, WCHAR to) noexcept {
    return KtStringReplaceCharsW(text, from, to);
}

int32_t KtStripWhiteSpace(WCHAR* text) noexcept {
    if (!text) return 0;
    const WStringView kept = Trimmed(text);
    std::copy(kept.begin(), kept.end(), text);
    text[kept.size()] = 0;
    return static_cast<int32_t>(kept.size());
}

WCHAR* KtPrepareName(const WCHAR* source, WCHAR* out, int32_t size) noexcept {
    return CopyText(out, size, source ? Trimmed(source) : WStringView()) > 0 ? out : nullptr;
}

int32_t KtFixNameForMenu(WCHAR* out, const WCHAR* source, int32_t size) noexcept {
    constexpr std::size_t kLongest = 259;
    WCHAR text[kLongest];
    std::size_t length = 0;
    for (; source && *source && length < kLongest; ++source) {
        if (*source == W('&')) text[length++] = W('&');
        if (length < kLongest) text[length++] = *source;
    }
    return CopyText(out, size, {text, length});
}

HRESULT KtFourCCToString(uint32_t code, WCHAR* out) noexcept {
    if (!out) return S_OK;
    for (int i = 0; i < 4; ++i, code >>= 8) {
        const auto byte = static_cast<WCHAR>(code & 0xFF);
        *out++ = byte >= 32 && byte <= 126 ? byte : W('.');
    }
    *out = 0;
    return S_OK;
}

HRESULT KtGuidToString(const GUID* guid, WCHAR* out, int32_t size) noexcept {
    CopyText(out, size, {});
    if (!guid || !out || size < 1) return S_OK;
    const auto& last = guid->Data4;
    KtCchPrintF(out, static_cast<uint32_t>(size), nullptr, W("%08x-%04x-%04x-%04x-%02x%02x%02x%02x%02x%02x"),
                static_cast<uint32_t>(guid->Data1), uint32_t{guid->Data2}, uint32_t{guid->Data3},
                static_cast<uint32_t>(last[0] << 8 | last[1]), uint32_t{last[2]}, uint32_t{last[3]}, uint32_t{last[4]},
                uint32_t{last[5]}, uint32_t{last[6]}, uint32_t{last[7]});
    return S_OK;
}

HRESULT KtGuidFromString(const WCHAR* text, GUID* guid) noexcept {
    constexpr int kDigits[] = {8, 4, 4, 4, 2, 2, 2, 2, 2, 2};
    constexpr std::size_t kWithDash = 4;  // fields with a dash behind them
    if (!text || !guid) return E_FAIL;
    uint32_t fields[std::size(kDigits)];
    for (std::size_t i = 0; i < std::size(kDigits); ++i) {
        if (!TakeHex(text, kDigits[i], fields[i])) return E_FAIL;
        if (i < kWithDash && *text++ != W('-')) return E_FAIL;
    }
    guid->Data1 = fields[0];
    guid->Data2 = static_cast<uint16_t>(fields[1]);
    guid->Data3 = static_cast<uint16_t>(fields[2]);
    guid->Data4[0] = static_cast<uint8_t>(fields[3] >> 8);
    guid->Data4[1] = static_cast<uint8_t>(fields[3]);
    for (std::size_t i = 2; i < 8; ++i) guid->Data4[i] = static_cast<uint8_t>(fields[i + 2]);
    return S_OK;
}
