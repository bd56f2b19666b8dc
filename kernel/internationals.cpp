#include "kernel/internationals.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <limits>

#include "kernel/lang_handle.h"
#include "kernel/print.h"
#include "kernel/print_tokens.h"
#include "kernel/string_rows.h"
#include "kernel/text_copy.h"
#include "platform/locale.h"

namespace clipfio {
namespace {

constexpr int kLongest = 80;  // characters of any one fact, as the platform limits them

constinit KTINTERNATIONALS g_record{};

template <std::size_t Size>
void Set(KTINATTEXT<Size>& out, WStringView text) noexcept {
    out.length = static_cast<uint32_t>(CopyText(out.text, Size, text));
}

template <std::size_t Size>
void SetFact(KTINATTEXT<Size>& out, DWORD type) noexcept {
    const int count = GetLocaleInfoW(LOCALE_USER_DEFAULT, type, out.text, Size);
    out.length = static_cast<uint32_t>(std::max(count - 1, 0));
    out.text[out.length] = 0;
}

// The number at the start of a fact, which is short.
uint32_t NumberFact(DWORD type, uint32_t base = 10) noexcept {
    WCHAR text[kLongest] = {};
    GetLocaleInfoW(LOCALE_USER_DEFAULT, type, text, kLongest);
    uint32_t number = 0;
    for (const WCHAR* at = text;; ++at) {
        uint32_t digit = base;
        if (*at >= W('0') && *at <= W('9')) digit = static_cast<uint32_t>(*at - W('0'));
        if (*at >= W('A') && *at <= W('F')) digit = static_cast<uint32_t>(*at - W('A') + 10);
        if (*at >= W('a') && *at <= W('f')) digit = static_cast<uint32_t>(*at - W('a') + 10);
        if (digit >= base || number > 0xFFFFFF) return number;
        number = number * base + digit;
    }
}

void Refresh() noexcept {
    KTINTERNATIONALS record{};
    record.record_size = sizeof record;
    record.system_lcid = GetSystemDefaultLCID();
    record.language_number = NumberFact(LOCALE_ILANGUAGE, 16);
    SetFact(record.language_name, LOCALE_SLANGUAGE);
    SetFact(record.english_language_name, LOCALE_SENGLANGUAGE);
    record.country_number = NumberFact(LOCALE_ICOUNTRY);
    SetFact(record.country_name, LOCALE_SCOUNTRY);
    SetFact(record.english_country_name, LOCALE_SENGCOUNTRY);
    SetFact(record.negative_sign, LOCALE_SNEGATIVESIGN);
    Set(record.plain_minus, W("-"));
    SetFact(record.thousands, LOCALE_STHOUSAND);
    SetFact(record.decimal, LOCALE_SDECIMAL);
    KeepSeparatorsApart(record);
    record.grouping = NumberFact(LOCALE_SGROUPING);
    record.decimal_digits = NumberFact(LOCALE_IDIGITS);
    record.leading_zero = NumberFact(LOCALE_ILZERO);
    SetFact(record.time, LOCALE_STIME);
    SetFact(record.list, LOCALE_SLIST);
    record.measure_system = NumberFact(LOCALE_IMEASURE);
    Set(record.smpte_whole, W(":"));
    Set(record.smpte_non_drop, W("."));
    Set(record.smpte_drop, W(","));
    Set(record.language_id, g_record.language_id.length ? g_record.language_id.text : W("ENU"));
    Set(record.measures_to_beats, W("."));
    Set(record.beats_to_ticks, W("."));
    g_record = record;
}

// What stands over the fields of a time, with the record's separators between.
struct Label {
    const WCHAR* token;
    const KTLANGSTRINGID* row;
    const KTINATTEXT<8>* separators[3];
};

void AddLabel(const Label& label) noexcept {
    const auto text = [](const KTINATTEXT<8>* separator) { return separator ? separator->text : kNoText; };
    WCHAR value[64];
    KtCchPrintF(value, static_cast<uint32_t>(std::size(value)), nullptr, KtGetString(KernelLanguage(), *label.row),
                text(label.separators[0]), text(label.separators[1]), text(label.separators[2]));
    KtPrintF_AddToken(label.token, value);
}

// A token that there is no memory for stays in the texts by its name.
void AddTokens() noexcept {
    const KTINTERNATIONALS& record = g_record;
    KtPrintF_AddToken(W("SMPTE.Whole"), record.smpte_whole.text);
    KtPrintF_AddToken(W("SMPTE.NonDrop"), record.smpte_non_drop.text);
    KtPrintF_AddToken(W("SMPTE.Drop"), record.smpte_drop.text);
    KtPrintF_AddToken(W("m.b"), record.measures_to_beats.text);
    KtPrintF_AddToken(W("b.t"), record.beats_to_ticks.text);
    const auto *const whole = &record.smpte_whole, *const non_drop = &record.smpte_non_drop;
    const auto* const drop = &record.smpte_drop;
    const auto *const beats = &record.measures_to_beats, *const ticks = &record.beats_to_ticks;
    const Label labels[] = {
        {W("SMPTE.Label.NonDrop"), &kKtStrTimeLabel, {whole, whole, non_drop}},
        {W("SMPTE.Label.Drop"), &kKtStrTimeLabel, {whole, whole, drop}},
        {W("SMPTE.Label.NonDrop.Full"), &kKtStrTimeLabelFull, {whole, whole, non_drop}},
        {W("SMPTE.Label.Drop.Full"), &kKtStrTimeLabelFull, {whole, whole, drop}},
        {W("MusicTime.Label"), &kKtStrMusicLabel, {beats, ticks, nullptr}},
        {W("MusicTime.Label.Full"), &kKtStrMusicLabelFull, {beats, ticks, nullptr}},
    };
    for (const Label& label : labels) AddLabel(label);
}

WStringView TextOf(uint32_t key) noexcept {
    const auto view = [](const auto& field) { return WStringView(field.text, field.length); };
    switch (key) {
        case KTINAT_LANGUAGE_NAME:
            return view(g_record.language_name);
        case KTINAT_ENGLISH_LANGUAGE_NAME:
            return view(g_record.english_language_name);
        case KTINAT_DECIMAL:
            return view(g_record.decimal);
        case KTINAT_LIST:
            return view(g_record.list);
        case KTINAT_TIME:
            return view(g_record.time);
        case KTINAT_SMPTE_WHOLE:
            return view(g_record.smpte_whole);
        case KTINAT_SMPTE_NON_DROP:
            return view(g_record.smpte_non_drop);
        case KTINAT_SMPTE_DROP:
            return view(g_record.smpte_drop);
        case KTINAT_MEASURES_TO_BEATS:
            return view(g_record.measures_to_beats);
        case KTINAT_BEATS_TO_TICKS:
            return view(g_record.beats_to_ticks);
        default:
            return {};
    }
}

uint32_t NumberOf(uint32_t key) noexcept {
    switch (key) {
        case KTINAT_SYSTEM_LCID:
            return g_record.system_lcid;
        case KTINAT_LANGUAGE_NUMBER:
            return g_record.language_number;
        case KTINAT_COUNTRY_NUMBER:
            return g_record.country_number;
        default:
            return 0;
    }
}

}  // namespace

const KTINTERNATIONALS& InternationalsRecord() noexcept { return g_record; }

void KeepSeparatorsApart(KTINTERNATIONALS& record) noexcept {
    const WStringView thousands(record.thousands.text);
    if (thousands.empty() || !WStringView(record.decimal.text).starts_with(thousands)) return;
    Set(record.decimal, thousands.front() == W('.') ? W(",") : W("."));
}

}  // namespace clipfio

using namespace clipfio;

HRESULT KtLang_GetInternationals(void* buffer, uint32_t size) noexcept {
    if (!buffer) {
        Refresh();
        AddTokens();
        return S_OK;
    }
    const uint32_t copied = std::min<uint32_t>(size, sizeof g_record);
    std::memcpy(buffer, &g_record, copied);
    if (copied >= sizeof copied) std::memcpy(buffer, &copied, sizeof copied);
    return S_OK;
}

int32_t KtGetInatN(uint32_t key, WCHAR* buffer, int32_t size) noexcept {
    const WStringView text = TextOf(key);
    const int32_t length = CopyText(buffer, size, text);
    if (const uint32_t number = NumberOf(key)) return static_cast<int32_t>(number);
    return buffer ? length : static_cast<int32_t>(text.size());
}

int32_t KtGetInat(uint32_t key, WCHAR* buffer) noexcept {
    return KtGetInatN(key, buffer, std::numeric_limits<int32_t>::max());
}

void KtSetLangID(const WCHAR* id) noexcept { Set(g_record.language_id, id && *id ? id : W("ENU")); }
