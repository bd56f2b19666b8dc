// The guess at a text's code page. What a detector is sure of is its own affair, so this is about the native one.
#include <gtest/gtest.h>

#include <climits>
#include <utility>

#include "kernel/lang_facts.h"

namespace {

TEST(CodePage, IsDetectedWhereItIsBeyondDoubt) {
    uint32_t code_page = 7;
    for (const char* const sentence :
         {"日本語の文章です。漢字とかなが混ざっています。", "Обычный текст, в котором достаточно слов. "}) {
        std::string text;
        for (int i = 0; i < 20; ++i) text += sentence;
        EXPECT_EQ(KtLang_DetectPossibleCodepage(text.data(), static_cast<int32_t>(text.size()), &code_page), S_OK);
        EXPECT_EQ(std::exchange(code_page, 7), 65001u);
    }
    const char noise[] = "\x81\xFF\x80\xFE\x9D\x01\xC0\xC1";
    EXPECT_EQ(static_cast<uint32_t>(KtLang_DetectPossibleCodepage(noise, sizeof noise, &code_page)), 0x8004E1FDu);
    EXPECT_EQ(code_page, 0u);
    EXPECT_TRUE(FAILED(KtLang_DetectPossibleCodepage("", 0, &code_page)));
    EXPECT_EQ(KtLang_DetectPossibleCodepage("x", -1, &code_page), E_INVALIDARG);
    EXPECT_EQ(KtLang_DetectPossibleCodepage("x", INT_MIN, &code_page), E_INVALIDARG);
    EXPECT_EQ(KtLang_DetectPossibleCodepage(nullptr, 1, &code_page), E_INVALIDARG);
    EXPECT_EQ(KtLang_DetectPossibleCodepage("x", 1, nullptr), E_POINTER);
}

}  // namespace
