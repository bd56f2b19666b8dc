// The table of texts in all languages, and temporary text.
#include <algorithm>
#include <set>

#include "kernel/level_text.h"
#include "kernel/string_rows.h"
#include "kernel/string_table.h"
#include "lang_fixture.h"

namespace {

using clipfio::g_string_table;

std::string Utf8(const WCHAR* text) { return platform::Utf8(text); }

using Strings = WithLanguage;

TEST_F(Strings, AreInTheColumnOfTheLanguage) {
    const std::pair<LCID, int> kRows[] = {
        {0x0409, 1},     {0x0411, 2},  {0x0407, 3},  {0x040A, 4},  {0x040C, 5},  {0x0804, 6},  {0x0404, 7},
        {0x0406, 8},     {0x040B, 9},  {0x0410, 10}, {0x0412, 11}, {0x0413, 12}, {0x0414, 13}, {0x0416, 14},
        {0x0816, 15},    {0x0419, 16}, {0x041D, 17}, {0x0415, 18}, {0x0809, 1},  {0x0807, 3},  {0x0439, 1},
        {0xFFFFFFFF, 1}, {0x0C0C, 5},  {0x0C04, 7},  {0x1404, 7},  {0x1004, 6},  {0x7C04, 6},  {0x0016, 1},
    };
    const auto& entries = reinterpret_cast<const KTLANGSTRINGROW*>(clipfio::kKtStrCancel)->entries;
    for (const auto& [lcid, column] : kRows) {
        ASSERT_EQ(KtLang_UpdateKernelLCID(handle_, lcid, 0), 1);
        for (const HKTLANG lang : {handle_, clipfio::KernelLanguage()}) {
            const WCHAR* const text = KtGetString(lang, clipfio::kKtStrCancel);
            EXPECT_EQ(std::find(std::begin(entries), std::end(entries), text) - std::begin(entries) + 1, column)
                << std::hex << lcid;
        }
    }
    EXPECT_EQ(Utf8(KtGetString(nullptr, clipfio::kKtStrCancel)), "Cancel");
    const char* const kCancel[] = {"Cancel", "キャンセル", "Abbrechen", "Cancelar", "Annuler", "取消",
                                   "取消",   "Annuller",   "Peruuta",   "Annulla",  "취소",    "Annuleren",
                                   "Avbryt", "Cancelar",   "Cancelar",  "Отмена",   "Avbryt",  "Anuluj"};
    for (std::size_t i = 0; i < kKtLanguages; ++i) EXPECT_EQ(Utf8(entries[i]), kCancel[i]);
}

// What a text asks the formatter for: each introducer with its conversion.
std::vector<std::string> Conversions(const WCHAR* text) {
    std::vector<std::string> found;
    for (const std::string all = Utf8(text); const char c : all) {
        const bool open =
            !found.empty() && found.back() != "%1" && found.back().find_first_of("dsucxz", 1) == std::string::npos;
        if (open) {
            found.back() += c;
        } else if (c == '%' || c == '$') {
            found.emplace_back(1, c);
        }
    }
    return found;
}

TEST(StringTable, HasEveryTextOfEveryRow) {
    std::set<const WCHAR*> texts;
    for (const KTLANGSTRINGROW& row : g_string_table.rows) {
        EXPECT_EQ(row.signature, 0xFFFE);
        EXPECT_EQ(row.count, 18);
        EXPECT_EQ(row.reserved, 0u);
        EXPECT_EQ(row.terminator, 0u);
        const std::vector<std::string> wanted = Conversions(row.entries[0]);
        const bool marks = WStringView(row.entries[0]).find(W('&')) != WStringView::npos;
        for (const WCHAR* const entry : row.entries) {
            EXPECT_NE(WStringView(entry), W("")) << Utf8(row.entries[0]);
            EXPECT_EQ(Conversions(entry), wanted) << Utf8(row.entries[0]) << " / " << Utf8(entry);
            EXPECT_LT(WStringView(entry).size(), 200u);
            // A key to press is marked in each language or in none.
            EXPECT_EQ(std::count(entry, entry + WStringView(entry).size(), W('&')), marks) << Utf8(entry);
            texts.insert(entry);
        }
    }
    EXPECT_EQ(texts.size(), clipfio::kStringRows * kKtLanguages);
    // Language by language: the texts of one follow each other, row after row.
    const auto& rows = g_string_table.rows;
    for (std::size_t column = 0; column < kKtLanguages; ++column) {
        for (std::size_t row = 1; row < clipfio::kStringRows; ++row) {
            const WCHAR* const before = rows[row - 1].entries[column];
            EXPECT_EQ(rows[row].entries[column], before + WStringView(before).size() + 1);
        }
    }
}

// The buttons that a message box may show together, with the check box and the button of the details.
TEST(StringTable, MarksAKeyOnceInABox) {
    using namespace clipfio;
    const std::vector<KTLANGSTRINGID> kSets[] = {
        {kKtStrDoNotShowAgain, kKtStrAbort, kKtStrRetry, kKtStrIgnore},
        {kKtStrDoNotShowAgain, kKtStrYes, kKtStrYesToAll, kKtStrNo, kKtStrNoToAll},
        {kKtStrDoNotShowAgain, kKtStrYes, kKtStrNo, kKtStrDelete},
    };
    for (std::vector<KTLANGSTRINGID> rows : kSets) {
        for (std::size_t i = 0; i < 2 * kKtLanguages; ++i) {
            rows.push_back(i % 2 ? kKtStrShowDetails : kKtStrNoDetails);
            std::set<WCHAR> keys;
            for (const KTLANGSTRINGID row : rows) {
                const WCHAR* const text = reinterpret_cast<const KTLANGSTRINGROW*>(row)->entries[i / 2];
                const WCHAR key = text[WStringView(text).find(W('&')) + 1];
                EXPECT_TRUE(keys.insert(platform::UpperCase(key)).second) << i / 2 << ": " << Utf8(text);
            }
            rows.pop_back();
        }
    }
}

TEST_F(Strings, OfOtherRowsAreAsTheRowsHaveThem) {
    // Rows as another module would have them.
    struct alignas(8) {
        uint16_t signature = 0xFFFE, count = 1;
        uint32_t reserved = 0;
        const WCHAR* entries[2] = {W("one"), nullptr};
    } single;
    struct alignas(8) {
        uint16_t signature = 0xFFFE, count = 0x0102;  // only the low byte counts
        uint32_t reserved = 0;
        const WCHAR* entries[3] = {W("^*two"), reinterpret_cast<const WCHAR*>(uintptr_t{77}), nullptr};
    } pair;
    const auto id_of = [](auto& row) { return reinterpret_cast<KTLANGSTRINGID>(&row); };
    ASSERT_EQ(KtLang_UpdateKernelLCID(handle_, 0x0407, 0), 1);
    EXPECT_EQ(Utf8(KtGetString(handle_, id_of(single))), "one");
    // An id without a text: English, from then on.
    EXPECT_EQ(Utf8(KtGetString(handle_, id_of(pair))), "^*two");
    EXPECT_EQ(pair.entries[1], pair.entries[0]);
    WCHAR text[20];
    EXPECT_EQ(KtLoadString(handle_, id_of(pair), text, 20), 3);
    EXPECT_EQ(Utf8(text), "two");
    EXPECT_EQ(KtLoadString(handle_, id_of(single), text, 3), 2);
    EXPECT_EQ(Utf8(text), "on");
    EXPECT_EQ(KtLoadString(handle_, id_of(single), nullptr, 3), 0);
    // Rows that are none, or have nothing.
    pair.entries[0] = pair.entries[1] = reinterpret_cast<const WCHAR*>(uintptr_t{5});
    single.count = 0;
    for (const KTLANGSTRINGID id : {id_of(pair), id_of(single), KTLANGSTRINGID{}}) {
        EXPECT_EQ(Utf8(KtGetString(handle_, id)), "");
    }
    single.count = 1;
    single.signature = 0;
    EXPECT_EQ(Utf8(KtGetString(handle_, id_of(single))), "");
}

TEST_F(Strings, AreToldApartByTheirValues) {
    alignas(8) static constexpr WCHAR kText[] = W("a text of its own");
    ASSERT_EQ(KtLang_UpdateKernelLCID(handle_, 0x0415, 0), 1);
    const auto* const row = reinterpret_cast<const WCHAR*>(clipfio::kKtStrCancel);
    EXPECT_EQ(KtGetStringSmart(handle_, nullptr), nullptr);
    EXPECT_EQ(KtGetStringSmart(handle_, kText), kText);
    EXPECT_EQ(KtGetStringSmart(handle_, kText + 1), kText + 1);
    EXPECT_EQ(Utf8(KtGetStringSmart(handle_, row)), "Anuluj");
    EXPECT_EQ(Utf8(KtGetStringSmart(handle_, reinterpret_cast<const WCHAR*>(uintptr_t{0xFFFF}))), "");
    EXPECT_TRUE(IsKTLANGSTRINGID(handle_, row));
    EXPECT_TRUE(IsKTLANGSTRINGID(nullptr, row));
    for (const WCHAR* const other : {kText, kText + 1, static_cast<const WCHAR*>(nullptr), row + 1}) {
        EXPECT_FALSE(IsKTLANGSTRINGID(handle_, other));
    }
}

TEST_F(Strings, AreConvertedByWayOfTheRing) {
    const WCHAR* const wide = W("wide");
    EXPECT_EQ(KtGetPrintFromWideString(handle_, wide), wide);
    EXPECT_EQ(KtGetWideFromPrintString(handle_, wide), wide);
    EXPECT_EQ(Utf8(KtGetPrintFromWideString(nullptr, wide)), "");
    const std::string longest(1024, 'x');
    const std::string longer(1025, 'x');
    const std::pair<const char*, const char*> kRows[] = {
        {longer.c_str(), ""}, {"a\xE4\x80z", "a\u00E4\u20ACz"}, {nullptr, ""}, {longest.c_str(), longest.c_str()}};
    for (const auto& [narrow, converted] : kRows) {
        EXPECT_EQ(Utf8(KtGetPrintFromMultiByteString(handle_, narrow)), converted);
        EXPECT_EQ(Utf8(KtGetPrintFromMultiByteString(nullptr, narrow)), "");
    }
    EXPECT_STREQ(KtGetMultiByteFromPrintString(handle_, W("a\u00E4\u20ACz")), "a\xE4\x80z");
    EXPECT_STREQ(KtGetMultiByteFromPrintString(handle_, nullptr), "");
    EXPECT_STREQ(KtGetMultiByteFromPrintString(nullptr, W("x")), "");
    EXPECT_STREQ(KtGetMultiByteFromPrintString(handle_, WString(511, W('y')).c_str()), std::string(511, 'y').c_str());
    EXPECT_STREQ(KtGetMultiByteFromPrintString(handle_, WString(512, W('y')).c_str()), "");
}

TEST(LevelText, IsAShortErrorWithoutRoomForIt) {
    ASSERT_EQ(clipfio::KernelLanguage(), nullptr);
    EXPECT_EQ(Utf8(KtGetLabeledStringFixed(5, 0, 0, W(" dB"))), "Err.");
    EXPECT_EQ(Utf8(KtGetLabeledStringFloat(5, 1, 0, nullptr)), "Err.");
    EXPECT_EQ(Utf8(KtGetdBStringFixed(-600, 1, -600, 1)), "-Inf.");
}

}  // namespace
