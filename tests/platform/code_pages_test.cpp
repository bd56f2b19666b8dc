#include <gtest/gtest.h>

#include <cstring>

#include "platform/text.h"
#include "support/last_error.h"

namespace {

using support::ErrorOf;

struct ToWide {
    const char* name;
    UINT code_page;
    DWORD flags;
    std::string in;
    WString out;  // empty with an error
    DWORD error;
};

const ToWide kToWide[] = {
    {"ASCII as 1252", 0, 0, "abc", W("abc"), 0},
    {"ends of 1252", 1252, MB_PRECOMPOSED, "\x80\x9F\xA0\xFF", W("\u20AC\u0178\u00A0\u00FF"), 0},
    {"open places of 1252", 1252, MB_ERR_INVALID_CHARS, "\x81\x8D\x8F\x90\x9D", W("\u0081\u008D\u008F\u0090\u009D"), 0},
    {"Latin 1", 28591, 0, "\x80\x9F\xE9", W("\u0080\u009F\u00E9"), 0},
    {"UTF-8 of each length", CP_UTF8, MB_ERR_INVALID_CHARS, "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80",
     W("a\u00E9\u20AC\U0001F600"), 0},
    {"last code point", CP_UTF8, MB_ERR_INVALID_CHARS, "\xF4\x8F\xBF\xBF", W("\U0010FFFF"), 0},
    {"lone byte", CP_UTF8, 0, "a\x80z", W("a\uFFFDz"), 0},
    {"cut sequence", CP_UTF8, 0, "\xE2\x82z", W("\uFFFDz"), 0},
    {"lone byte, strict", CP_UTF8, MB_ERR_INVALID_CHARS, "a\x80z", W(""), ERROR_NO_UNICODE_TRANSLATION},
    {"overlong, strict", CP_UTF8, MB_ERR_INVALID_CHARS, "\xC0\xAF", W(""), ERROR_NO_UNICODE_TRANSLATION},
    {"surrogate, strict", CP_UTF8, MB_ERR_INVALID_CHARS, "\xED\xA0\x80", W(""), ERROR_NO_UNICODE_TRANSLATION},
    {"too large, strict", CP_UTF8, MB_ERR_INVALID_CHARS, "\xF4\x90\x80\x80", W(""), ERROR_NO_UNICODE_TRANSLATION},
    {"cut at the end, strict", CP_UTF8, MB_ERR_INVALID_CHARS, "\xF0\x9F\x98", W(""), ERROR_NO_UNICODE_TRANSLATION},
    {"no such code page", 12345, 0, "a", W(""), ERROR_INVALID_PARAMETER},
};

TEST(CodePages, ToWide) {
    for (const ToWide& c : kToWide) {
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

struct ToBytes {
    const char* name;
    UINT code_page;
    DWORD flags;
    WString in;
    std::string out;
    bool substituted;
    DWORD error;
};

constexpr DWORD kErrInvalidChars = 0x80;

const ToBytes kToBytes[] = {
    {"1252", CP_ACP, 0, W("a\u20AC\u0178\u00FF"), "a\x80\x9F\xFF", false, 0},
    {"not in 1252", 1252, 0x400, W("a\u0416b"), "a*b", true, 0},
    {"Latin 1", 28591, 0, W("\u00E9\u0080"), "\xE9\x80", false, 0},
    {"not in Latin 1", 28591, 0x400, W("\u20AC\u4E00"), "**", true, 0},
    {"UTF-8", CP_UTF8, kErrInvalidChars, W("a\u00E9\u20AC\U0001F600"), "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", false,
     0},
    {"lone surrogate", CP_UTF8, 0, WString{0xD800, 'z'}, "\xEF\xBF\xBDz", false, 0},
    {"lone surrogate, strict", CP_UTF8, kErrInvalidChars, WString{'a', 0xDC00}, "", false,
     ERROR_NO_UNICODE_TRANSLATION},
    {"no such code page", 4711, 0, W("a"), "", false, ERROR_INVALID_PARAMETER},
};

TEST(CodePages, ToBytes) {
    for (const ToBytes& c : kToBytes) {
        SCOPED_TRACE(c.name);
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

TEST(CodePages, BadArguments) {
    char bytes[4] = "abc";
    WCHAR wide[4] = {'a', 'b', 'c', 0};
    const auto check = [](int result) {
        EXPECT_EQ(ErrorOf(result), ERROR_INVALID_PARAMETER);
        SetLastError(0);
    };
    check(MultiByteToWideChar(CP_UTF8, 0, nullptr, 3, wide, 4));
    check(MultiByteToWideChar(CP_UTF8, 0, bytes, 0, wide, 4));
    check(MultiByteToWideChar(CP_UTF8, 0, bytes, 3, wide, -1));
    check(MultiByteToWideChar(CP_UTF8, 0, bytes, 3, nullptr, 4));
    check(WideCharToMultiByte(CP_UTF8, 0, nullptr, 3, bytes, 4, nullptr, nullptr));
    check(WideCharToMultiByte(CP_UTF8, 0, wide, 3, nullptr, 4, nullptr, nullptr));
}

TEST(CodePages, Comparison) {
    const struct {
        const WCHAR *a, *b;
        int sign;
    } rows[] = {
        {W(""), W(""), 0},    {W("abc"), W("abc"), 0},        {W("abc"), W("abd"), -1}, {W("ab"), W("abc"), -1},
        {W("a"), W("B"), -1}, {W("a"), W("A"), -1},           {W("aB"), W("Ab"), -1},   {W("Ab"), W("ac"), -1},
        {W("1"), W("a"), -1}, {W("\u00E9"), W("\u00C9"), -1}, {nullptr, W(""), -1},     {nullptr, nullptr, 0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(lstrcmpW(row.a, row.b), row.sign);
        EXPECT_EQ(lstrcmpW(row.b, row.a), -row.sign);
    }
    EXPECT_EQ(lstrlenW(W("abc")), 3);
    EXPECT_EQ(lstrlenW(nullptr), 0);
}

}  // namespace
