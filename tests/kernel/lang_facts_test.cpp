// Facts about languages.
#include "kernel/lang_facts.h"

#include <tuple>

#include "lang_fixture.h"

namespace {

class LanguageFacts : public WithLanguage {
  protected:
    void Use(LCID lcid) { ASSERT_EQ(KtLang_UpdateKernelLCID(handle_, lcid, 0), 1); }
};

TEST(ConditionedLanguage, DropsTheRegion) {
    const std::pair<LCID, LCID> kRows[] = {
        {0x0C04, 0x0404}, {0x1004, 0x0804}, {0x0404, 0x0404}, {0x0804, 0x0804},  {0x1404, 0x0404},
        {0x1C04, 0x0804}, {0x0004, 0x0804}, {0x0816, 0x0816}, {0x0416, 0x0416},  {0x0809, 0x0409},
        {0x0807, 0x0407}, {0, 0x0400},      {0x7F, 0x047F},   {0x10407, 0x0407}, {0x20C04, 0x0404},
    };
    for (const auto& [lcid, conditioned] : kRows)
        EXPECT_EQ(KtLang_GetConditionedLCID(lcid), conditioned) << std::hex << lcid;
}

TEST_F(LanguageFacts, NameTheLanguage) {
    const std::tuple<LCID, const char*, const char*> kRows[] = {
        {0x0407, "DEU", "de-DE"}, {0x0C07, "DEU", "de-DE"}, {0x0411, "JPN", "ja-JP"}, {0x0404, "CHT", "zh-CN"},
        {0x0804, "CHS", "zh-CN"}, {0x080A, "ESP", "es-ES"}, {0x0C0C, "FRA", "fr-FR"}, {0x0412, "KOR", "ko-KR"},
        {0x0415, "PLK", "pl-PL"}, {0x0816, "PTG", "pt-BR"}, {0x0409, "ENU", ""},      {0x0410, "ITA", ""},
    };
    for (const auto& [lcid, abbreviation, tag] : kRows) {
        Use(lcid);
        WCHAR text[8];
        EXPECT_EQ(KtLang_GetLangAbbrev(handle_, text, 8), 1);
        EXPECT_EQ(platform::Utf8(text), abbreviation) << std::hex << lcid;
        EXPECT_EQ(KtLang_GetLangllCC(handle_, text, 8), *tag == 0);
        EXPECT_EQ(platform::Utf8(text), tag) << std::hex << lcid;
        EXPECT_EQ(KtLang_GetLangllCC(handle_, text, 3), *tag == 0);
        EXPECT_EQ(platform::Utf8(text), std::string(tag).substr(0, 2));
        text[0] = W('x');
        EXPECT_EQ(KtLang_GetLangllCC(handle_, text, 0), *tag == 0);
        EXPECT_EQ(text[0], W('x'));
        EXPECT_EQ(KtLang_GetLangAbbrev(handle_, text, 2), 0);  // no room for all of it
        EXPECT_EQ(text[0], 0);
    }
    WCHAR text[8];
    EXPECT_EQ(KtLang_GetLangAbbrev(nullptr, text, 8), 0);
    EXPECT_EQ(KtLang_GetLangAbbrev(handle_, nullptr, 8), 0);
    EXPECT_EQ(KtLang_GetLangllCC(nullptr, text, 8), 1);
    EXPECT_EQ(text[0], 0);
}

TEST_F(LanguageFacts, OrderTheNamesOfPeople) {
    const std::tuple<LCID, const WCHAR*, const WCHAR*, int32_t, const char*> kRows[] = {
        {0x0409, W("Ada"), W("King"), 20, "Ada King"}, {0x0411, W("Ada"), W("King"), 20, "King Ada"},
        {0x0811, W("Ada"), W("King"), 20, "Ada King"}, {0x0409, W("Ada"), W("King"), 6, "Ada K"},
        {0x0411, nullptr, W("King"), 20, "King "},     {0x0409, W("Ada"), W("King"), 1, ""},
    };
    for (const auto& [lcid, first, last, size, called] : kRows) {
        Use(lcid);
        WCHAR name[20] = {W('x')};
        const int32_t length = KtLang_LocalizeUserName(handle_, first, last, name, size);
        EXPECT_EQ(platform::Utf8(name), called);
        EXPECT_EQ(length, static_cast<int32_t>(WStringView(name).size()));
        EXPECT_EQ(KtLang_IsNameOrderReversed(handle_), lcid == 0x0411);
    }
    WCHAR name[20];
    EXPECT_EQ(KtLang_LocalizeUserName(nullptr, W("Ada"), W("King"), name, 20), 8);
    EXPECT_EQ(KtLang_LocalizeUserName(nullptr, W("Ada"), W("King"), name, 0), 0);
    EXPECT_EQ(KtLang_LocalizeUserName(nullptr, W("Ada"), W("King"), nullptr, 20), 0);
    EXPECT_EQ(platform::Utf8(name), "Ada King");
    EXPECT_TRUE(KtLang_IsLCIDEnglish(0x0809));
    EXPECT_FALSE(KtLang_IsLCIDEnglish(0x0411));
}

int ShiftJisType(unsigned char byte, int type_before) {
    constexpr int kLead = 1;
    if (type_before == kLead) return byte >= 0x40 && byte != 0x7F && byte <= 0xFC ? _MBC_TRAIL : _MBC_SINGLE;
    return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC) ? kLead : _MBC_SINGLE;
}

TEST(MultiByteCharacters, AreALeadByteWithItsTrailByte) {
    // The process's narrow code page has one byte to each character here.
    for (const char* const text : {"", "a", "\x82\xA0\x82\xA2", static_cast<const char*>(nullptr)}) {
        for (const int32_t length : {4, 1, -1}) EXPECT_FALSE(KtLang_DetectMultiByteCharacters(text, length)) << length;
    }
    const std::tuple<const char*, int32_t, bool> kRows[] = {
        {"\x82\xA0", 2, true},    {"abc\x82\xA0", 5, true}, {"\x83\x5C", 2, true},      {"\xFCz", 2, true},
        {"abc", 3, false},        {"\xA0\xA0", 2, false},   {"\x82\x20\x41", 3, false}, {"a\x82\xA0", 2, false},
        {"\x82\0\xA0", 3, false}, {"", 0, false},
    };
    for (const auto& [text, length, has] : kRows) {
        EXPECT_EQ(clipfio::HasMultiByteCharacters(text, length, ShiftJisType), has)
            << testing::PrintToString(text) << ", " << length;
    }
}

}  // namespace
