#include "kernel/string_table.h"

#include <array>
#include <cstddef>

#include "kernel/string_rows.h"

namespace clipfio {
namespace {

// One row as the data has it: a text for all columns, or for those that have none of their own.
struct Texts {
    const WCHAR* all = nullptr;
    const WCHAR* en = nullptr;
    const WCHAR* ja = nullptr;
    const WCHAR* de = nullptr;
    const WCHAR* es = nullptr;
    const WCHAR* fr = nullptr;
    const WCHAR* zh_cn = nullptr;
    const WCHAR* zh_tw = nullptr;
    const WCHAR* da = nullptr;
    const WCHAR* fi = nullptr;
    const WCHAR* it = nullptr;
    const WCHAR* ko = nullptr;
    const WCHAR* nl = nullptr;
    const WCHAR* nb = nullptr;
    const WCHAR* pt_br = nullptr;
    const WCHAR* pt_pt = nullptr;
    const WCHAR* ru = nullptr;
    const WCHAR* sv = nullptr;
    const WCHAR* pl = nullptr;
};

struct Column {
    uint32_t lcid;
    const WCHAR* Texts::*text;
};

constexpr Column kColumns[] = {
    {0x0409, &Texts::en}, {0x0411, &Texts::ja},    {0x0407, &Texts::de},    {0x040A, &Texts::es},
    {0x040C, &Texts::fr}, {0x0804, &Texts::zh_cn}, {0x0404, &Texts::zh_tw}, {0x0406, &Texts::da},
    {0x040B, &Texts::fi}, {0x0410, &Texts::it},    {0x0412, &Texts::ko},    {0x0413, &Texts::nl},
    {0x0414, &Texts::nb}, {0x0416, &Texts::pt_br}, {0x0816, &Texts::pt_pt}, {0x0419, &Texts::ru},
    {0x041D, &Texts::sv}, {0x0415, &Texts::pl},
};
static_assert(std::size(kColumns) == kKtLanguages);

#define ALL(text) .all = W(text),
#define EN(text) .en = W(text),
#define JA(text) .ja = W(text),
#define DE(text) .de = W(text),
#define ES(text) .es = W(text),
#define FR(text) .fr = W(text),
#define ZH_CN(text) .zh_cn = W(text),
#define ZH_TW(text) .zh_tw = W(text),
#define DA(text) .da = W(text),
#define FI(text) .fi = W(text),
#define IT(text) .it = W(text),
#define KO(text) .ko = W(text),
#define NL(text) .nl = W(text),
#define NB(text) .nb = W(text),
#define PT_BR(text) .pt_br = W(text),
#define PT_PT(text) .pt_pt = W(text),
#define RU(text) .ru = W(text),
#define SV(text) .sv = W(text),
#define PL(text) .pl = W(text),
#define KT_STRING_ROW(name, ...) Texts{__VA_ARGS__},
constexpr Texts kTexts[] = {
#include "kernel/strings/all_rows.inc"
};
#undef KT_STRING_ROW
static_assert(std::size(kTexts) == kStringRows);

constexpr WStringView TextOf(const Texts& row, std::size_t column) {
    const WCHAR* const own = row.*kColumns[column].text;
    return own ? own : row.all;
}

// A row without a text for all columns has to have one for each.
constexpr bool HasEveryText() {
    for (const Texts& row : kTexts) {
        for (const Column& column : kColumns) {
            if (!row.all && !(row.*column.text)) return false;
        }
    }
    return true;
}
static_assert(HasEveryText());

constexpr std::size_t PoolSize(std::size_t column) {
    std::size_t size = 0;
    for (const Texts& row : kTexts) size += TextOf(row, column).size() + 1;
    return size;
}

template <std::size_t ColumnIndex>
consteval auto MakePool() {
    std::array<WCHAR, PoolSize(ColumnIndex)> pool{};
    std::size_t at = 0;
    for (const Texts& row : kTexts) {
        for (const WCHAR c : TextOf(row, ColumnIndex)) pool[at++] = c;
        ++at;
    }
    return pool;
}

#define KT_STRING_POOL(column) [[gnu::section("strings")]] constexpr auto kPool##column = MakePool<column>();
KT_STRING_POOL(0)
KT_STRING_POOL(1)
KT_STRING_POOL(2)
KT_STRING_POOL(3)
KT_STRING_POOL(4)
KT_STRING_POOL(5)
KT_STRING_POOL(6)
KT_STRING_POOL(7)
KT_STRING_POOL(8)
KT_STRING_POOL(9)
KT_STRING_POOL(10)
KT_STRING_POOL(11)
KT_STRING_POOL(12)
KT_STRING_POOL(13)
KT_STRING_POOL(14)
KT_STRING_POOL(15)
KT_STRING_POOL(16)
KT_STRING_POOL(17)

constexpr const WCHAR* kPools[] = {
    kPool0.data(),  kPool1.data(),  kPool2.data(),  kPool3.data(),  kPool4.data(),  kPool5.data(),
    kPool6.data(),  kPool7.data(),  kPool8.data(),  kPool9.data(),  kPool10.data(), kPool11.data(),
    kPool12.data(), kPool13.data(), kPool14.data(), kPool15.data(), kPool16.data(), kPool17.data(),
};
static_assert(std::size(kPools) == kKtLanguages);

consteval StringTable MakeTable() {
    StringTable table{};
    for (std::size_t column = 0; column < kKtLanguages; ++column) {
        table.languages[column] = kColumns[column].lcid;
        const WCHAR* text = kPools[column];
        for (std::size_t row = 0; row < kStringRows; ++row) {
            table.rows[row].entries[column] = text;
            text += TextOf(kTexts[row], column).size() + 1;
        }
    }
    for (KTLANGSTRINGROW& row : table.rows) {
        row.signature = kKtRowSignature;
        row.count = kKtLanguages;
    }
    return table;
}

}  // namespace

[[gnu::section("ktlang_t")]] constinit StringTable g_string_table = MakeTable();

#define KT_STRING_ROW(name, ...)        \
    const KTLANGSTRINGID kKtStr##name = \
        reinterpret_cast<KTLANGSTRINGID>(&g_string_table.rows[static_cast<std::size_t>(StringRow::k##name)]);
#include "kernel/strings/all_rows.inc"
#undef KT_STRING_ROW

}  // namespace clipfio
