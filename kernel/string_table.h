// The table of texts in all languages, as it lies in the module.
#pragma once

#include "kernel/lang.h"

namespace clipfio {

enum class StringRow : uint32_t {
#define KT_STRING_ROW(name, ...) k##name,
#include "kernel/strings/all_rows.inc"
#undef KT_STRING_ROW
    kCount
};
inline constexpr auto kStringRows = static_cast<std::size_t>(StringRow::kCount);

// The section `ktlang_t`: the languages of the columns, then the rows, one after the other. The texts lie in `strings`,
// language by language.
struct StringTable {
    uint32_t languages[kKtLanguages];  // LCIDs
    KTLANGSTRINGROW rows[kStringRows];
};
static_assert(sizeof(KTLANGSTRINGROW) == 160 && offsetof(KTLANGSTRINGROW, entries) == 8);
static_assert(offsetof(StringTable, rows) == 72);

extern StringTable g_string_table;

}  // namespace clipfio
