// The record of the user's locale: how numbers, lists and times are written. One per process, filled at the kernel's
// start and whenever somebody asks for a refresh; no lock guards it, so refresh it while no other thread formats.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/base.h"

template <std::size_t Size>
struct KTINATTEXT {
    WCHAR text[Size];
    uint32_t length;  // characters, without the terminator
};

struct KTINTERNATIONALS {
    uint32_t record_size;  // bytes
    uint32_t system_lcid;
    uint32_t language_number;  // the language id
    KTINATTEXT<64> language_name;
    KTINATTEXT<64> english_language_name;
    uint32_t country_number;  // the telephone prefix
    KTINATTEXT<64> country_name;
    KTINATTEXT<64> english_country_name;
    KTINATTEXT<8> negative_sign;
    KTINATTEXT<8> plain_minus;
    KTINATTEXT<8> thousands;
    KTINATTEXT<8> decimal;  // never the same as the thousands separator
    uint32_t grouping;      // digits in a group, 0 for none
    uint32_t decimal_digits;
    uint32_t leading_zero;
    KTINATTEXT<8> time;
    KTINATTEXT<8> list;
    uint32_t measure_system;  // 0 metric, 1 United States
    KTINATTEXT<8> smpte_whole;
    KTINATTEXT<8> smpte_non_drop;
    KTINATTEXT<8> smpte_drop;
    KTINATTEXT<4> language_id;  // three letters, as KtSetLangID set them
    KTINATTEXT<8> measures_to_beats;
    KTINATTEXT<8> beats_to_ticks;
    uint32_t reserved;
};
static_assert(sizeof(KTINTERNATIONALS) == 796 && offsetof(KTINTERNATIONALS, language_name) == 12);
static_assert(offsetof(KTINTERNATIONALS, english_language_name) == 144);
static_assert(offsetof(KTINTERNATIONALS, country_number) == 276 && offsetof(KTINTERNATIONALS, country_name) == 280);
static_assert(offsetof(KTINTERNATIONALS, english_country_name) == 412);
static_assert(offsetof(KTINTERNATIONALS, negative_sign) == 544 && offsetof(KTINTERNATIONALS, plain_minus) == 564);
static_assert(offsetof(KTINTERNATIONALS, thousands) == 584 && offsetof(KTINTERNATIONALS, decimal) == 604);
static_assert(offsetof(KTINTERNATIONALS, grouping) == 624 && offsetof(KTINTERNATIONALS, decimal_digits) == 628);
static_assert(offsetof(KTINTERNATIONALS, leading_zero) == 632 && offsetof(KTINTERNATIONALS, time) == 636);
static_assert(offsetof(KTINTERNATIONALS, list) == 656 && offsetof(KTINTERNATIONALS, measure_system) == 676);
static_assert(offsetof(KTINTERNATIONALS, smpte_whole) == 680 && offsetof(KTINTERNATIONALS, smpte_non_drop) == 700);
static_assert(offsetof(KTINTERNATIONALS, smpte_drop) == 720 && offsetof(KTINTERNATIONALS, language_id) == 740);
static_assert(offsetof(KTINTERNATIONALS, measures_to_beats) == 752);
static_assert(offsetof(KTINTERNATIONALS, beats_to_ticks) == 772 && offsetof(KTINTERNATIONALS, reserved) == 792);

// Without a buffer the record and the formatter's tokens that come from it are refreshed. With one, at most `size`
// bytes of the record are copied, and their number stands in the copy's first word, if that has room. Always 0.
KT_API HRESULT KtLang_GetInternationals(void* buffer, uint32_t size) noexcept;

// What KtGetInat gives. The first four numbers in the order of the record, then texts.
enum KTINAT : uint32_t {
    KTINAT_SYSTEM_LCID = 0,
    KTINAT_LANGUAGE_NUMBER = 1,
    KTINAT_LANGUAGE_NAME = 2,
    KTINAT_ENGLISH_LANGUAGE_NAME = 3,
    KTINAT_COUNTRY_NUMBER = 4,
    KTINAT_DECIMAL = 24,
    KTINAT_LIST = 40,
    KTINAT_TIME = 60,
    KTINAT_SMPTE_WHOLE = 100,
    KTINAT_SMPTE_NON_DROP = 101,
    KTINAT_SMPTE_DROP = 102,
    KTINAT_MEASURES_TO_BEATS = 120,
    KTINAT_BEATS_TO_TICKS = 121,
};

// A number of the record as the result, or a text (up to 63 characters and the terminator) into `buffer`, which may be
// null, and its length. 0 and an empty text for any other key. The second form cuts to `size` characters and returns
// the length that is left.
KT_API int32_t KtGetInat(uint32_t key, WCHAR* buffer) noexcept;
KT_API int32_t KtGetInatN(uint32_t key, WCHAR* buffer, int32_t size) noexcept;

// The three letters of the language; null or an empty text means "ENU". Longer texts are cut.
KT_API void KtSetLangID(const WCHAR* id) noexcept;

namespace clipfio {

const KTINTERNATIONALS& InternationalsRecord() noexcept;

// Gives the record another decimal separator where it begins as the thousands separator does: such numbers could not be
// read back.
void KeepSeparatorsApart(KTINTERNATIONALS& record) noexcept;

}  // namespace clipfio
