#include "kernel/lang_facts.h"

#include <algorithm>
#include <iterator>
#include <span>

#include "kernel/lang_handle.h"
#include "kernel/string_table.h"
#include "kernel/text_copy.h"
#include "platform/com.h"
#include "platform/locale.h"
#include "platform/multilanguage.h"
#include "platform/text.h"
#include "platform/window_layout.h"

namespace {

using namespace clipfio;

constexpr LCID kTraditionalChinese = 0x0404;
constexpr LCID kSimplifiedChinese = 0x0804;
constexpr LCID kJapanese = 0x0411;
constexpr HRESULT kNoCodePage = static_cast<HRESULT>(0x8004E1FDu);

struct Tag {
    LCID primary;
    const WCHAR* text;
};

constexpr Tag kTags[] = {
    {0x04, W("zh-CN")}, {0x07, W("de-DE")}, {0x0A, W("es-ES")}, {0x0C, W("fr-FR")},
    {0x11, W("ja-JP")}, {0x12, W("ko-KR")}, {0x15, W("pl-PL")}, {0x16, W("pt-BR")},
};

// The list of languages that a resource has, as it grows. An abbreviation that does not fit any more is left out whole.
struct LanguageList {
    WCHAR text[260] = {};
    int32_t length = 0;

    void Add(LCID language) noexcept {
        WCHAR name[10] = {};
        if (GetLocaleInfoW(language, LOCALE_SABBREVLANGNAME, name, static_cast<int>(std::size(name))) == 0) return;
        const WStringView added(name);
        if (length + added.size() + 1 >= std::size(text)) return;
        if (length > 0) text[length++] = W(',');
        length += CopyText(text + length, static_cast<int32_t>(std::size(text)) - length, added);
    }
};

BOOL CALLBACK AddLanguage(HMODULE, const WCHAR*, const WCHAR*, WORD language, LONG_PTR list) noexcept {
    reinterpret_cast<LanguageList*>(list)->Add(language);
    return TRUE;
}

}  // namespace

namespace clipfio {

int32_t ColumnOfLanguage(LCID lcid) noexcept {
    const auto& languages = g_string_table.languages;
    const LCID wanted = KtLang_GetConditionedLCID(lcid);
    const auto* const found = std::find_if(std::begin(languages), std::end(languages), [wanted](uint32_t language) {
        return KtLang_GetConditionedLCID(language) == wanted;
    });
    return found == std::end(languages) ? 0 : static_cast<int32_t>(found - languages) + 1;
}

LCID LanguageOfColumn(int32_t column) noexcept { return g_string_table.languages[column - 1]; }

}  // namespace clipfio

LCID KtLang_GetConditionedLCID(LCID lcid) noexcept {
    const LCID primary = PrimaryLanguage(lcid);
    const LCID sub = (lcid & 0xFFFF) >> 10;
    if (primary == 0x04) return sub == 1 || sub == 3 || sub == 5 ? kTraditionalChinese : kSimplifiedChinese;
    return primary == 0x16 ? lcid : primary | 0x0400;
}

int32_t KtLang_GetLangAbbrev(HKTLANG handle, WCHAR* buffer, int32_t size) noexcept {
    CopyText(buffer, size, {});
    if (!handle || !buffer || size < 1) return 0;
    const LCID lcid = KtLang_GetConditionedLCID(handle->lcid);
    if (GetLocaleInfoW(lcid, LOCALE_SABBREVLANGNAME, buffer, size) > 0) return 1;
    buffer[0] = 0;
    return 0;
}

int32_t KtLang_GetLangllCC(HKTLANG handle, WCHAR* buffer, int32_t size) noexcept {
    CopyText(buffer, size, {});
    const LCID primary = PrimaryLanguage(KtLang_GetLCID(handle));
    for (const Tag& tag : kTags) {
        if (tag.primary != primary) continue;
        CopyText(buffer, size, tag.text);
        return 0;
    }
    return 1;
}

int32_t KtLang_UseRTL(HKTLANG handle) noexcept { return IsRightToLeft(KtLang_GetLCID(handle)); }

void KtLang_EnableProcessMirroring() noexcept { SetProcessDefaultLayout(LAYOUT_RTL); }

void KtLang_DisableProcessMirroring() noexcept { SetProcessDefaultLayout(0); }

int32_t KtLang_IsLCIDEnglish(LCID lcid) noexcept { return IsEnglish(lcid); }

int32_t KtLang_IsNameOrderReversed(HKTLANG handle) noexcept { return KtLang_GetLCID(handle) == kJapanese; }

int32_t KtLang_LocalizeUserName(HKTLANG handle, const WCHAR* first, const WCHAR* last, WCHAR* buffer,
                                int32_t size) noexcept {
    CopyText(buffer, size, {});
    if (!buffer || size < 1) return 0;
    const WStringView names[] = {first ? first : kNoText, last ? last : kNoText};
    const bool reversed = KtLang_IsNameOrderReversed(handle) != 0;
    int32_t length = 0;
    for (const WStringView part : {names[reversed], WStringView(W(" ")), names[!reversed]}) {
        length += CopyText(buffer + length, size - length, part);
    }
    return length;
}

bool clipfio::HasMultiByteCharacters(const char* bytes, int32_t length, MultiByteType type_of) noexcept {
    const auto* at = reinterpret_cast<const unsigned char*>(bytes);
    const auto* const end = at + length;
    // A lead byte is told from a trail byte by what stands before it.
    int type = 0;
    for (; at != end && *at != 0; ++at) {
        type = type_of(*at, type);
        if (type == _MBC_TRAIL) return true;
    }
    return false;
}

int32_t KtLang_DetectMultiByteCharacters(const char* bytes, int32_t length) noexcept {
    if (!bytes || length < 2 || *bytes == 0 || _getmbcp() == 0) return 0;
    return HasMultiByteCharacters(bytes, length, _mbbtype);
}

HRESULT KtLang_DetectPossibleCodepage(const char* text, int32_t length, uint32_t* code_page) noexcept {
    if (!code_page) return E_POINTER;
    *code_page = 0;
    if (!text || length < 0) return E_INVALIDARG;
    platform::ComPtr<IMultiLanguage2> languages;
    const HRESULT made =
        CoCreateInstance(CLSID_CMultiLanguage, nullptr, CLSCTX_INPROC_SERVER, IID_IMultiLanguage2, languages.OutVoid());
    if (FAILED(made)) return made;
    DetectEncodingInfo found[10] = {};
    INT bytes = length;
    INT count = static_cast<INT>(std::size(found));
    const HRESULT detected =
        languages->DetectInputCodepage(MLDETECTCP_NONE, 0, const_cast<char*>(text), &bytes, found, &count);
    if (FAILED(detected)) return detected;
    INT best = 0;
    const auto kept = static_cast<std::size_t>(std::clamp<INT>(count, 0, static_cast<INT>(std::size(found))));
    for (const DetectEncodingInfo& info : std::span(found, kept)) {
        if (info.nDocPercent != 100 || info.nConfidence <= best) continue;
        best = info.nConfidence;
        *code_page = info.nCodePage;
    }
    if (best >= 100) return S_OK;
    *code_page = 0;
    return kNoCodePage;
}

int32_t KtEnumResourceLanguages(HKTLANG handle, uint32_t id, WCHAR* buffer, int32_t size) noexcept {
    CopyText(buffer, size, {});
    const HMODULE satellite = handle ? handle->Satellite() : nullptr;
    if (!satellite || id > 0xFFFF) return 0;
    LanguageList list;
    EnumResourceLanguagesW(satellite, RT_VERSION, MAKEINTRESOURCEW(id), AddLanguage, reinterpret_cast<LONG_PTR>(&list));
    return CopyText(buffer, size, list.text);
}
