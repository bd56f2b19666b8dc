#include <gtest/gtest.h>

#include "platform/text.h"
#include "support/last_error.h"

namespace {

using support::ErrorOf;

const struct {
    const char* name;
    UINT code_page;
    DWORD flags;
    std::string in;
    WString out;  // empty with an error
    DWORD error = 0;
} kToWide[] = {
    {"ASCII as 1252", 0, 0, "abc", W("abc")},
    {"ends of 1252", 1252, MB_PRECOMPOSED, "\x80\x9F\xA0\xFF", W("\u20AC\u0178\u00A0\u00FF")},
    {"open places of 1252", 1252, MB_ERR_INVALID_CHARS, "\x81\x8D\x8F\x90\x9D", W("\u0081\u008D\u008F\u0090\u009D")},
    {"Latin 1", 28591, 0, "\x80\x9F\xE9", W("\u0080\u009F\u00E9")},
    {"UTF-8 of each length", CP_UTF8, MB_ERR_INVALID_CHARS, "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80",
     W("a\u00E9\u20AC\U0001F600")},
    {"last code point", CP_UTF8, MB_ERR_INVALID_CHARS, "\xF4\x8F\xBF\xBF", W("\U0010FFFF")},
    {"lone byte", CP_UTF8, 0, "a\x80z", W("a\uFFFDz")},
    {"cut sequence", CP_UTF8, 0, "\xE2\x82z", W("\uFFFDz")},
    {"lone byte, strict", CP_UTF8, MB_ERR_INVALID_CHARS, "a\x80z", W(""), ERROR_NO_UNICODE_TRANSLATION},
    {"overlong, strict", CP_UTF8, MB_ERR_INVALID_CHARS, "\xC0\xAF", W(""), ERROR_NO_UNICODE_TRANSLATION},
    {"surrogate, strict", CP_UTF8, MB_ERR_INVALID_CHARS, "\xED\xA0\x80", W(""), ERROR_NO_UNICODE_TRANSLATION},
    {"too large, strict", CP_UTF8, MB_ERR_INVALID_CHARS, "\xF4\x90\x80\x80", W(""), ERROR_NO_UNICODE_TRANSLATION},
    {"cut at the end, strict", CP_UTF8, MB_ERR_INVALID_CHARS, "\xF0\x9F\x98", W(""), ERROR_NO_UNICODE_TRANSLATION},
    {"no such code page", 12345, 0, "a", W(""), ERROR_INVALID_PARAMETER},
};

TEST(CodePages, ToWide) {
    for (const auto& c : kToWide) {
        SCOPED_TRACE(c.name);
        const int length = static_cast<int>(c.in.size());
        SetLastError(0);
        EXPECT_EQ(MultiByteToWideChar(c.code_page, c.flags, c.in.data(), length, nullptr, 0),
                  static_cast<int>(c.out.size()));
        EXPECT_EQ(GetLastError(), c.error);
        if (c.error != 0) continue;
        WString out(c.out.size(), W('~'));
        const int size = static_cast<int>(out.size());
        EXPECT_EQ(MultiByteToWideChar(c.code_page, c.flags, c.in.data(), length, out.data(), size), size);
        EXPECT_EQ(platform::Utf8(out), platform::Utf8(c.out));
        // Platforms differ over a pair of which one half has room.
        if (!(out.back() >= 0xDC00 && out.back() <= 0xDFFF)) {
            EXPECT_EQ(MultiByteToWideChar(c.code_page, c.flags, c.in.data(), length, out.data(), size - 1),
                      size == 1 ? 1 : 0);
            EXPECT_EQ(GetLastError(), size == 1 ? 0 : ERROR_INSUFFICIENT_BUFFER);
        }
        // -1 takes the terminator along.
        EXPECT_EQ(MultiByteToWideChar(c.code_page, c.flags, c.in.c_str(), -1, nullptr, 0), size + 1);
    }
}

TEST(CodePages, ToBytes) {
    constexpr DWORD kStrict = 0x80, kNoBestFit = 0x400;
    const struct {
        UINT code_page;
        DWORD flags;
        WString in;
        std::string out;
        bool substituted = false;
        DWORD error = 0;
    } kToBytes[] = {
        {CP_ACP, 0, W("a\u20AC\u0178\u00FF"), "a\x80\x9F\xFF"},
        {1252, kNoBestFit, W("a\u0416b"), "a*b", true},
        {28591, 0, W("\u00E9\u0080"), "\xE9\x80"},
        {28591, kNoBestFit, W("\u20AC\u4E00"), "**", true},
        {CP_UTF8, kStrict, W("a\u00E9\u20AC\U0001F600"), "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"},
        {CP_UTF8, 0, WString{0xD800, 'z'}, "\xEF\xBF\xBDz"},
        {CP_UTF8, kStrict, WString{'a', 0xDC00}, "", false, ERROR_NO_UNICODE_TRANSLATION},
        {4711, 0, W("a"), "", false, ERROR_INVALID_PARAMETER},
    };
    for (const auto& c : kToBytes) {
        SCOPED_TRACE(&c - kToBytes);
        const bool utf8 = c.code_page == CP_UTF8;
        const int length = static_cast<int>(c.in.size());
        BOOL substituted = FALSE;
        char out[64] = {};
        SetLastError(0);
        const int written = WideCharToMultiByte(c.code_page, c.flags, c.in.data(), length, out, sizeof out,
                                                utf8 ? nullptr : "*", utf8 ? nullptr : &substituted);
        EXPECT_EQ(std::string(out, static_cast<std::size_t>(written)), c.out);
        EXPECT_EQ(GetLastError(), c.error);
        EXPECT_EQ(substituted != FALSE, c.substituted);
    }
}

}  // namespace
