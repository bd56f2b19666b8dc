// The record of the user's locale.
#include "kernel/internationals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>

#include "kernel/lang.h"
#include "kernel/number_text.h"
#include "kernel/print.h"
#include "kernel/print_tokens.h"
#include "platform/locale.h"
#include "platform/text.h"
#include "support/scoped_variable.h"

namespace {

std::string Text(uint32_t key) {
    WCHAR text[64] = {W('x')};
    const int32_t length = KtGetInat(key, text);
    EXPECT_EQ(static_cast<std::size_t>(length), WStringView(text).size()) << key;
    EXPECT_EQ(KtGetInat(key, nullptr), length) << key;
    return platform::Utf8(text);
}

class Inat : public testing::Test {
  protected:
    void Use(const WCHAR* lcid) {
        variable_.emplace(W("KT_LCID"), lcid);
        EXPECT_EQ(KtLang_GetInternationals(nullptr, 0), S_OK);
    }
    void TearDown() override { KtSetLangID(nullptr); }
    std::optional<support::ScopedVariable> variable_;
};

TEST_F(Inat, FollowsTheUsersLocale) {
    const struct {
        const WCHAR* lcid;
        int32_t language, country;
        const char *name, *own_name, *country_name, *decimal, *list;
    } kRows[] = {
        {W("0x0409"), 0x0409, 1, "English", "English (United States)", "United States", ".", ","},
        {W("0x0407"), 0x0407, 49, "German", "Deutsch (Deutschland)", "Germany", ",", ";"},
        {W("0x0411"), 0x0411, 81, "Japanese", "日本語 (日本)", "Japan", ".", ","},
        {W("0x0439"), 0x0439, 91, "Hindi", "हिन्दी (भारत)", "India", ".", ","},
    };
    std::size_t others = 0;
    for (const auto& row : kRows) {
        Use(row.lcid);
        if (GetUserDefaultLCID() != static_cast<LCID>(row.language)) {
            ++others;
            continue;
        }
        SCOPED_TRACE(row.name);
        EXPECT_EQ(KtGetInat(KTINAT_SYSTEM_LCID, nullptr), row.language);
        EXPECT_EQ(KtGetInat(KTINAT_LANGUAGE_NUMBER, nullptr), row.language);
        EXPECT_EQ(KtGetInat(KTINAT_COUNTRY_NUMBER, nullptr), row.country);
        EXPECT_EQ(Text(KTINAT_ENGLISH_LANGUAGE_NAME), row.name);
        // Wine has the names in English alone.
        const std::string english = std::string(row.name) + " (" + row.country_name + ")";
        EXPECT_TRUE(Text(KTINAT_LANGUAGE_NAME) == row.own_name || Text(KTINAT_LANGUAGE_NAME) == english)
            << Text(KTINAT_LANGUAGE_NAME);
        EXPECT_EQ(Text(KTINAT_DECIMAL), row.decimal);
        EXPECT_EQ(Text(KTINAT_LIST), row.list);
        EXPECT_EQ(Text(KTINAT_TIME), ":");
        const KTINTERNATIONALS& record = clipfio::InternationalsRecord();
        EXPECT_EQ(platform::Utf8(record.english_country_name.text), row.country_name);
        EXPECT_EQ(record.grouping, 3u);
        EXPECT_EQ(record.record_size, 796u);
        EXPECT_EQ(record.decimal_digits, 2u);
        EXPECT_EQ(record.leading_zero, 1u);
        EXPECT_EQ(record.measure_system, row.language == 0x0409);
        EXPECT_EQ(platform::Utf8(record.plain_minus.text), "-");
        EXPECT_EQ(platform::Utf8(record.negative_sign.text), "-");
        EXPECT_EQ(record.reserved, 0u);
    }
    EXPECT_EQ(Text(KTINAT_SMPTE_WHOLE) + Text(KTINAT_SMPTE_NON_DROP) + Text(KTINAT_SMPTE_DROP), ":.,");
    EXPECT_EQ(Text(KTINAT_MEASURES_TO_BEATS) + Text(KTINAT_BEATS_TO_TICKS), "..");
    for (const uint32_t key : {5u, 23u, 25u, 61u, 99u, 103u, 119u, 122u, 0xFFFFFFFFu}) EXPECT_EQ(Text(key), "") << key;
    if (others == std::size(kRows)) GTEST_SKIP() << "needs a user of one of these locales";
}

TEST(Separators, NeverBeginAlike) {
    const struct {
        const WCHAR *thousands, *decimal;
        const char* kept;
    } kRows[] = {{W("."), W("."), ","},  {W(","), W(","), "."},  {W("'"), W("'"), "."},
                 {W("."), W(".,"), ","}, {W(","), W("."), "."},  {W("."), W(","), ","},
                 {W(""), W("."), "."},   {W(".,"), W("."), "."}, {W("ab"), W("abc"), "."}};
    for (const auto& row : kRows) {
        KTINTERNATIONALS record{};
        WStringView(row.thousands).copy(record.thousands.text, 7);
        WStringView(row.decimal).copy(record.decimal.text, 7);
        record.decimal.length = static_cast<uint32_t>(WStringView(row.decimal).size());
        clipfio::KeepSeparatorsApart(record);
        EXPECT_EQ(platform::Utf8(record.decimal.text), row.kept) << platform::Utf8(row.thousands);
        EXPECT_EQ(record.decimal.length, std::strlen(row.kept));
    }
}

TEST(Minus, IsPlainWhateverTheLocalesSign) {
    const struct {
        const WCHAR *number, *sign;
        const char* plain;
    } kRows[] = {{W("\u2212"
                    "12"),
                  W("\u2212"), "-12"},
                 {W("<->1,5"), W("<->"), "-1,5"},
                 {W("--7"), W("--"), "-7"},
                 {W("-7"), W("-"), "-7"},
                 {W("12"), W("<->"), "12"},
                 {W("1<->"), W("<->"), "1<->"},
                 {W("-7"), W(""), "-7"},
                 {W("<-"), W("<->"), "<-"}};
    for (const auto& row : kRows) {
        WString text = row.number;
        const int32_t length = clipfio::PlainMinus(text.data(), static_cast<int32_t>(text.size()), row.sign);
        EXPECT_EQ(platform::Utf8(text.c_str()), row.plain) << platform::Utf8(row.number);
        EXPECT_EQ(static_cast<std::size_t>(length), std::strlen(row.plain));
    }
}

TEST_F(Inat, CutsTextsAndCopies) {
    Use(W("0x0409"));
    if (GetUserDefaultLCID() != 0x0409) GTEST_SKIP() << "needs a user of US English";
    WCHAR text[8] = {};
    EXPECT_EQ(KtGetInatN(KTINAT_ENGLISH_LANGUAGE_NAME, text, 4), 3);
    EXPECT_EQ(platform::Utf8(text), "Eng");
    text[0] = W('x');
    EXPECT_EQ(KtGetInatN(KTINAT_COUNTRY_NUMBER, text, 4), 1);
    EXPECT_EQ(text[0], 0);
    text[0] = W('x');
    EXPECT_EQ(KtGetInatN(KTINAT_TIME, text, 0), 0);
    EXPECT_EQ(text[0], W('x'));

    for (const uint32_t size : {0u, 3u, 4u, 12u, 796u, 5000u}) {
        std::string copy(900, 'z');
        EXPECT_EQ(KtLang_GetInternationals(copy.data(), size), S_OK);
        const uint32_t copied = std::min(size, 796u);
        EXPECT_EQ(copy.substr(copied), std::string(900 - copied, 'z'));
        uint32_t said = 0;
        std::memcpy(&said, copy.data(), 4);
        if (copied >= 4) {
            EXPECT_EQ(said, copied);
        }
        EXPECT_EQ(copied <= 4
                      ? 0
                      : std::memcmp(copy.data() + 4,
                                    reinterpret_cast<const char*>(&clipfio::InternationalsRecord()) + 4, copied - 4),
                  0);
    }
}

TEST_F(Inat, GivesTheFormatterItsTokens) {
    ASSERT_EQ(clipfio::CreatePrintTokens(), S_OK);
    struct {
        const WCHAR* format;
        const char* text;
    } const kRows[] = {
        {W("$(SMPTE.Whole)$(SMPTE.NonDrop)$(SMPTE.Drop)$(m.b)$(b.t)"), ":.,.."},
        {W("$(SMPTE.Label.NonDrop)"), "hr:mn:sc.fr"},
        {W("$(SMPTE.Label.Drop)"), "hr:mn:sc,fr"},
        {W("$(SMPTE.Label.NonDrop.Full)"), "hours:minutes:seconds.frames"},
        {W("$(SMPTE.Label.Drop.Full)"), "hours:minutes:seconds,frames"},
        {W("$(MusicTime.Label)"), "ms.bt.tk"},
        {W("$(MusicTime.Label.Full)"), "measures.beats.ticks"},
    };
    Use(W("0x0409"));
    for (const auto& row : kRows) {
        WCHAR text[80];
        KtCchPrintF(text, 80, nullptr, row.format);
        EXPECT_EQ(platform::Utf8(text), row.text);
    }
    ASSERT_EQ(KtLang_Open(&clipfio::KernelLanguage(), nullptr, 0x0407, 0), S_OK);
    Use(W("0x0409"));
    WCHAR text[80];
    KtCchPrintF(text, 80, nullptr, W("$(SMPTE.Label.Drop.Full)"));
    EXPECT_EQ(platform::Utf8(text), "Stunden:Minuten:Sekunden,Frames");
    KtLang_Close(std::exchange(clipfio::KernelLanguage(), nullptr));
    clipfio::DestroyPrintTokens();
}

TEST_F(Inat, KeepsTheLettersOfTheLanguage) {
    Use(W("0x0409"));
    const auto letters = [] { return platform::Utf8(clipfio::InternationalsRecord().language_id.text); };
    EXPECT_EQ(letters(), "ENU");
    KtSetLangID(W("DEU"));
    Use(W("0x0411"));
    EXPECT_EQ(letters(), "DEU");
    KtSetLangID(W("LONGER"));
    EXPECT_EQ(letters(), "LON");
    KtSetLangID(W(""));
    EXPECT_EQ(letters(), "ENU");
}

}  // namespace
