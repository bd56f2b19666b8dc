// The record of the user's locale.
#include "kernel/internationals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <tuple>
#include <utility>

#include "kernel/lang.h"
#include "kernel/number_text.h"
#include "kernel/print.h"
#include "kernel/print_tokens.h"
#include "platform/text.h"
#include "support/in_locale.h"

namespace {

std::string Text(uint32_t key) {
    WCHAR text[64] = {W('x')};
    const int32_t length = KtGetInat(key, text);
    EXPECT_EQ(static_cast<std::size_t>(length), WStringView(text).size()) << key;
    EXPECT_EQ(KtGetInat(key, nullptr), length) << key;
    return platform::Utf8(text);
}

std::string Printed(const WCHAR* format) {
    WCHAR text[80];
    KtCchPrintF(text, 80, nullptr, format);
    return platform::Utf8(text);
}

class Inat : public testing::Test {
  protected:
    void Use(LCID lcid) { locale_.emplace(lcid); }
    void TearDown() override { KtSetLangID(nullptr); }
    std::optional<support::InLocale> locale_;
};

TEST_F(Inat, FollowsTheUsersLocale) {
    using Name = const char*;
    const std::tuple<int32_t, int32_t, Name, Name, Name, Name, Name> kRows[] = {
        {0x0409, 1, "English", "English (United States)", "United States", ".", ","},
        {0x0407, 49, "German", "Deutsch (Deutschland)", "Germany", ",", ";"},
        {0x0411, 81, "Japanese", "日本語 (日本)", "Japan", ".", ","},
        {0x0439, 91, "Hindi", "हिन्दी (भारत)", "India", ".", ","},
    };
    std::size_t others = 0;
    for (const auto& [language, country, name, own_name, country_name, decimal, list] : kRows) {
        Use(static_cast<LCID>(language));
        if (!locale_->IsSet()) {
            ++others;
            continue;
        }
        SCOPED_TRACE(name);
        EXPECT_EQ(KtGetInat(KTINAT_SYSTEM_LCID, nullptr), language);
        EXPECT_EQ(KtGetInat(KTINAT_LANGUAGE_NUMBER, nullptr), language);
        EXPECT_EQ(KtGetInat(KTINAT_COUNTRY_NUMBER, nullptr), country);
        EXPECT_EQ(Text(KTINAT_ENGLISH_LANGUAGE_NAME), name);
        // Wine has the names in English alone.
        const std::string english = std::string(name) + " (" + country_name + ")";
        EXPECT_TRUE(Text(KTINAT_LANGUAGE_NAME) == own_name || Text(KTINAT_LANGUAGE_NAME) == english)
            << Text(KTINAT_LANGUAGE_NAME);
        EXPECT_EQ(Text(KTINAT_DECIMAL), decimal);
        EXPECT_EQ(Text(KTINAT_LIST), list);
        EXPECT_EQ(Text(KTINAT_TIME), ":");
        const KTINTERNATIONALS& record = clipfio::InternationalsRecord();
        EXPECT_EQ(platform::Utf8(record.english_country_name.text), country_name);
        const uint32_t kNumbers[] = {record.grouping,     record.record_size,    record.decimal_digits,
                                     record.leading_zero, record.measure_system, record.reserved};
        const uint32_t kExpected[] = {3, 796, 2, 1, language == 0x0409, 0};
        EXPECT_TRUE(std::equal(kNumbers, kNumbers + 6, kExpected)) << testing::PrintToString(kNumbers);
        for (const auto& sign : {record.plain_minus, record.negative_sign}) EXPECT_EQ(platform::Utf8(sign.text), "-");
    }
    EXPECT_EQ(Text(KTINAT_SMPTE_WHOLE) + Text(KTINAT_SMPTE_NON_DROP) + Text(KTINAT_SMPTE_DROP), ":.,");
    EXPECT_EQ(Text(KTINAT_MEASURES_TO_BEATS) + Text(KTINAT_BEATS_TO_TICKS), "..");
    for (const uint32_t key : {5u, 23u, 25u, 61u, 99u, 103u, 119u, 122u, 0xFFFFFFFFu}) EXPECT_EQ(Text(key), "") << key;
    if (others == std::size(kRows)) GTEST_SKIP() << "needs a user of one of these locales";
}

TEST(Separators, NeverBeginAlike) {
    const std::tuple<const WCHAR*, const WCHAR*, const char*> kRows[] = {
        {W("."), W("."), ","},  {W(","), W(","), "."},  {W("'"), W("'"), "."},
        {W("."), W(".,"), ","}, {W(","), W("."), "."},  {W("."), W(","), ","},
        {W(""), W("."), "."},   {W(".,"), W("."), "."}, {W("ab"), W("abc"), "."}};
    for (const auto& [thousands, decimal, kept] : kRows) {
        KTINTERNATIONALS record{};
        WStringView(thousands).copy(record.thousands.text, 7);
        WStringView(decimal).copy(record.decimal.text, 7);
        record.decimal.length = static_cast<uint32_t>(WStringView(decimal).size());
        clipfio::KeepSeparatorsApart(record);
        EXPECT_EQ(platform::Utf8(record.decimal.text), kept) << platform::Utf8(thousands);
        EXPECT_EQ(record.decimal.length, std::strlen(kept));
    }
}

TEST(Minus, IsPlainWhateverTheLocalesSign) {
    const std::tuple<const WCHAR*, const WCHAR*, const char*> kRows[] = {{W("\u2212x"), W("\u2212"), "-x"},
                                                                         {W("<->1,5"), W("<->"), "-1,5"},
                                                                         {W("--7"), W("--"), "-7"},
                                                                         {W("-7"), W("-"), "-7"},
                                                                         {W("12"), W("<->"), "12"},
                                                                         {W("1<->"), W("<->"), "1<->"},
                                                                         {W("-7"), W(""), "-7"},
                                                                         {W("<-"), W("<->"), "<-"}};
    for (const auto& [number, sign, plain] : kRows) {
        WString text = number;
        const int32_t length = clipfio::PlainMinus(text.data(), static_cast<int32_t>(text.size()), sign);
        EXPECT_EQ(platform::Utf8(text.c_str()), plain) << platform::Utf8(number);
        EXPECT_EQ(static_cast<std::size_t>(length), std::strlen(plain));
    }
}

TEST_F(Inat, CutsTextsAndCopies) {
    Use(0x0409);
    if (!locale_->IsSet()) GTEST_SKIP() << locale_->Lack();
    const std::tuple<uint32_t, uint32_t, int32_t, const char*> kRows[] = {
        {KTINAT_ENGLISH_LANGUAGE_NAME, 4, 3, "Eng"}, {KTINAT_COUNTRY_NUMBER, 4, 1, ""}, {KTINAT_TIME, 0, 0, "x"}};
    for (const auto& [key, size, result, expected] : kRows) {
        WCHAR text[8] = {W('x'), 0};
        EXPECT_EQ(KtGetInatN(key, text, size), result);
        EXPECT_EQ(platform::Utf8(text), expected);
    }

    for (const uint32_t size : {0u, 3u, 4u, 12u, 796u, 5000u}) {
        std::string copy(900, 'z');
        EXPECT_EQ(KtLang_GetInternationals(copy.data(), size), S_OK);
        const uint32_t copied = std::min(size, 796u);
        EXPECT_EQ(copy.substr(copied), std::string(900 - copied, 'z'));
        // The size says how much was copied.
        KTINTERNATIONALS expected = clipfio::InternationalsRecord();
        if (copied >= 4) expected.record_size = copied;
        EXPECT_EQ(std::memcmp(copy.data(), &expected, copied < 4 ? 0 : copied), 0) << size;
    }
}

TEST_F(Inat, GivesTheFormatterItsTokens) {
    ASSERT_EQ(clipfio::CreatePrintTokens(), S_OK);
    const std::pair<const WCHAR*, const char*> kRows[] = {
        {W("$(SMPTE.Whole)$(SMPTE.NonDrop)$(SMPTE.Drop)$(m.b)$(b.t)"), ":.,.."},
        {W("$(SMPTE.Label.NonDrop)"), "hr:mn:sc.fr"},
        {W("$(SMPTE.Label.Drop)"), "hr:mn:sc,fr"},
        {W("$(SMPTE.Label.NonDrop.Full)"), "hours:minutes:seconds.frames"},
        {W("$(SMPTE.Label.Drop.Full)"), "hours:minutes:seconds,frames"},
        {W("$(MusicTime.Label)"), "ms.bt.tk"},
        {W("$(MusicTime.Label.Full)"), "measures.beats.ticks"},
    };
    Use(0x0409);
    for (const auto& [format, text] : kRows) EXPECT_EQ(Printed(format), text);
    ASSERT_EQ(KtLang_Open(&clipfio::KernelLanguage(), nullptr, 0x0407, 0), S_OK);
    Use(0x0409);
    EXPECT_EQ(Printed(W("$(SMPTE.Label.Drop.Full)")), "Stunden:Minuten:Sekunden,Frames");
    KtLang_Close(std::exchange(clipfio::KernelLanguage(), nullptr));
    clipfio::DestroyPrintTokens();
}

TEST_F(Inat, KeepsTheLettersOfTheLanguage) {
    const std::pair<const WCHAR*, const char*> kRows[] = {
        {nullptr, "ENU"}, {W("DEU"), "DEU"}, {W("LONGER"), "LON"}, {W(""), "ENU"}};
    for (const auto& [set, letters] : kRows) {
        KtSetLangID(set);
        EXPECT_EQ(platform::Utf8(clipfio::InternationalsRecord().language_id.text), letters);
        Use(0x0411);
        EXPECT_EQ(platform::Utf8(clipfio::InternationalsRecord().language_id.text), letters);
    }
}

}  // namespace
