#include "platform/multilanguage.h"

#include <unicode/ucsdet.h>

#include <algorithm>
#include <memory>
#include <string_view>

namespace {

struct CodePage {
    std::string_view charset;
    UINT number;
};

constexpr CodePage kCodePages[] = {
    {"UTF-8", 65001},       {"UTF-16LE", 1200},      {"UTF-16BE", 1201},     {"Shift_JIS", 932},
    {"EUC-JP", 51932},      {"ISO-2022-JP", 50220},  {"GB18030", 54936},     {"Big5", 950},
    {"EUC-KR", 51949},      {"ISO-2022-KR", 50225},  {"KOI8-R", 20866},      {"IBM866", 866},
    {"windows-1250", 1250}, {"windows-1251", 1251},  {"windows-1252", 1252}, {"windows-1253", 1253},
    {"windows-1254", 1254}, {"windows-1255", 1255},  {"windows-1256", 1256}, {"ISO-8859-1", 28591},
    {"ISO-8859-2", 28592},  {"ISO-8859-5", 28595},   {"ISO-8859-6", 28596},  {"ISO-8859-7", 28597},
    {"ISO-8859-8", 28598},  {"ISO-8859-8-I", 38598}, {"ISO-8859-9", 28599},  {"UTF-32LE", 12000},
    {"UTF-32BE", 12001},
};
constexpr UINT kAscii = 20127;

// 0 for one that has no number.
UINT NumberOf(std::string_view charset) noexcept {
    const auto* const found = std::find_if(std::begin(kCodePages), std::end(kCodePages),
                                           [charset](const CodePage& page) { return page.charset == charset; });
    return found == std::end(kCodePages) ? 0 : found->number;
}

// Text of seven bits without a switch of character sets is the same in nearly all of them.
bool IsAscii(std::string_view text) noexcept {
    return std::none_of(text.begin(), text.end(),
                        [](char c) { return static_cast<unsigned char>(c) >= 0x80 || c == 27; });
}

struct CloseDetector {
    void operator()(UCharsetDetector* detector) const noexcept { ucsdet_close(detector); }
};

class MultiLanguage final : public IMultiLanguage2 {
  public:
    HRESULT QueryInterface(REFIID id, void** out) noexcept override {
        if (!out) return E_POINTER;
        const bool known = id == IID_IUnknown || id == IID_IMultiLanguage2;
        *out = known ? static_cast<IMultiLanguage2*>(this) : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG AddRef() noexcept override { return 1; }
    ULONG Release() noexcept override { return 1; }

    HRESULT DetectInputCodepage(DWORD, DWORD, CHAR* text, INT* bytes, DetectEncodingInfo* found,
                                INT* count) noexcept override {
        if (!text || !bytes || *bytes < 0 || !found || !count || *count < 1) return E_INVALIDARG;
        const INT room = *count;
        *count = 0;
        if (*bytes == 0) return S_FALSE;
        if (IsAscii({text, static_cast<std::size_t>(*bytes)})) {
            found[(*count)++] = {0, kAscii, 100, 100};
            return S_OK;
        }
        UErrorCode error = U_ZERO_ERROR;
        const std::unique_ptr<UCharsetDetector, CloseDetector> detector(ucsdet_open(&error));
        if (U_FAILURE(error)) return E_OUTOFMEMORY;
        ucsdet_setText(detector.get(), text, *bytes, &error);
        int32_t matches = 0;
        const UCharsetMatch** const match = ucsdet_detectAll(detector.get(), &matches, &error);
        if (U_FAILURE(error)) return E_FAIL;
        for (int32_t i = 0; i < matches && *count < room; ++i) {
            const char* const name = ucsdet_getName(match[i], &error);
            const int32_t confidence = ucsdet_getConfidence(match[i], &error);
            if (U_FAILURE(error)) return E_FAIL;
            if (const UINT number = NumberOf(name)) found[(*count)++] = {0, number, 100, confidence};
        }
        return *count ? S_OK : S_FALSE;
    }
};

}  // namespace

// The one class of objects that the layer makes by its id.
extern "C" HRESULT CoCreateInstance(REFCLSID id, IUnknown* outer, DWORD, REFIID interface_id, void** out) noexcept {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (id != CLSID_CMultiLanguage) return REGDB_E_CLASSNOTREG;
    if (outer) return CLASS_E_NOAGGREGATION;
    static constinit MultiLanguage object;
    return object.QueryInterface(interface_id, out);
}
