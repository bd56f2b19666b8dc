// Paths as text: every operation as a table of rows.
#include "kernel/path_text.h"

#include <gtest/gtest.h>

#include <functional>
#include <tuple>

#include "platform/text.h"

namespace {

using platform::Utf8;

// A buffer in which a caller's text lies, with a mark behind the size that was told.
class Buffer {
  public:
    Buffer(const WCHAR* text, int32_t size) : size_(size) {
        std::fill(std::begin(text_), std::end(text_), W('#'));
        text_[WStringView(text).copy(text_, 400)] = 0;
        before_ = text_;
    }
    WCHAR* Data() { return text_; }
    [[nodiscard]] int32_t Size() const { return size_; }
    // The text; where more than the size was touched, what shows it.
    [[nodiscard]] std::string Text() const {
        const auto size = static_cast<size_t>(size_);
        const WString after = text_;
        if (after.size() < size) return Utf8(after);
        return after == before_ ? Utf8(after) : "unterminated: " + Utf8(after);
    }

  private:
    WCHAR text_[512];
    int32_t size_;
    WString before_;
};

TEST(PathText, FindsNameAndExtension) {
    const std::tuple<const WCHAR*, const char*, const char*> kRows[] = {
        {W("C:\\a.b\\clip.r3d"), "clip.r3d", ".r3d"},
        {W("C:clip"), "clip", ""},
        {W("C:\\folder.x\\"), "", ".x\\"},
        {W("/home/a.b/clip"), "/home/a.b/clip", ".b/clip"},  // a slash has no meaning
        {W("a.b.c"), "a.b.c", ".c"},
        {W("a."), "a.", "."},
        {W(".r3d"), ".r3d", ".r3d"},
        {W("take 1.5 b"), "take 1.5 b", ""},
        {W("a b.c"), "a b.c", ".c"},
        {W(""), "", ""},
        {W("a.b\tc.d"), "a.b\tc.d", ".d"},
    };
    for (const auto& [path, name, extension] : kRows) {
        EXPECT_EQ(Utf8(KtGetFileNamePtrW(path)), name);
        EXPECT_EQ(Utf8(KtGetFileNameExtensionPtrW(path)), extension) << name;
        const std::string narrow = Utf8(path);
        EXPECT_STREQ(KtGetFileNamePtrA(narrow.c_str()), name);
        EXPECT_STREQ(KtGetFileNameExtensionPtrA(narrow.c_str()), extension);
    }
    EXPECT_EQ(Utf8(KtGetFileNameExtensionPtrW(W("a.b\u00A0c"))), "") << "a blank that is no ASCII";
    EXPECT_EQ(KtGetFileNamePtrW(nullptr), nullptr);
    EXPECT_EQ(KtGetFileNameExtensionPtrA(nullptr), nullptr);
}

TEST(PathText, TellsGoodNamesAndMendsBadOnes) {
    const std::pair<const WCHAR*, const char*> kRows[] = {
        // null: it is a good one
        {W(""), nullptr},      {W(".a b\t"), nullptr},    {W("clip 1.r3d"), nullptr},
        {W("ends."), "ends_"}, {W("ends "), "ends_"},     {W("a/b\\c:d*e?f\"g<h>i|j"), "a_b_c_d_e_f_g_h_i_j"},
        {W("."), "_"},         {W("ends.. "), "ends.._"}, {W("line\r\nend"), "line__end"},
    };
    for (const auto& [given, mended] : kRows) {
        Buffer name(given, 40);
        for (const int32_t mends : {0, 1}) {
            EXPECT_EQ(KtValidateFileName(name.Data(), mends), mended == nullptr) << Utf8(given);
            EXPECT_EQ(name.Text(), mends && mended ? mended : Utf8(given));
        }
    }
}

// Operations on a path in its buffer, by what they make of it and what they return.
using Operation = std::function<int32_t(WCHAR*, int32_t)>;

const Operation AddSlash = KtAddSlashToPathName, DropSlash = KtRemoveSlashFromPathNameEnd;
Operation Extend(const WCHAR* extension) {
    return [=](WCHAR* path, int32_t size) { return KtAddExtensionToPathName(path, size, extension); };
}
Operation Replace(const WCHAR* extension) {
    return [=](WCHAR* path, int32_t size) {
        KtReplaceExtensionOnPathName(path, size, extension);
        return -1;
    };
}
Operation Renumber(const WCHAR* extension) {
    return [=](WCHAR* path, int32_t size) {
        KtReplaceExtensionOnPathNameEx(path, size, extension, 1);
        return -1;
    };
}
Operation Append(const WCHAR* name, const WCHAR* extension = nullptr) {
    return [=](WCHAR* path, int32_t size) { return KtAppendToPathName(path, size, name, extension); };
}

TEST(PathText, ChangesAPathInItsBuffer) {
    const struct {
        Operation operation;
        const WCHAR* path;
        const char* changed;
        int32_t result = -1, size = 40;
    } kRows[] = {
        {AddSlash, W("c:\\"), "c:\\", 3},
        {AddSlash, W("c:\\"), "c:\\", 3, 4},
        {AddSlash, W("a/"), "a/\\", 3},
        {AddSlash, W(""), "", 0},
        {AddSlash, W("abc"), "abc", 0, 4},
        {AddSlash, W("abc"), "abc\\", 4, 5},
        {AddSlash, W("abc"), "abc", 0, 0},
        {DropSlash, W("c:\\a\\\\"), "c:\\a\\", 5},
        {DropSlash, W("c:\\a"), "c:\\a", 4},
        {DropSlash, W("\\"), "", 0},
        {DropSlash, W(""), "", 0},
        {DropSlash, W("a\\"), "a\\", 0, 2},
        {Extend(W(".txt")), W("a.TXT"), "a.TXT", 5},
        {Extend(W("wav")), W("a.TXT"), "a.wav", 5},
        {Extend(W("..wav")), W("c:\\x.y\\a"), "c:\\x.y\\a.wav", 12},
        {Extend(W("I")), W("a.i"), "a.i", 3},
        {Extend(W("")), W("a"), "a.", 2},
        {Extend(W("wav")), W("clip"), "clip.w", 6, 7},
        {Extend(W("wav")), W("clip"), "clip", 4, 5},
        {Extend(nullptr), W("clip"), "clip", 4},
        {Replace(W("Prop")), W("C:\\a.b\\c.r3d"), "C:\\a.b\\c.Prop"},
        {Replace(W(".x")), W("C:\\a.b\\clip"), "C:\\a.b\\clip.x"},
        {Replace(W("")), W("clip.r3d"), "clip."},
        {Replace(W("x")), W("clip."), "clip.x"},
        {Replace(W("x")), W(""), ""},
        {Replace(W("y")), W("C:\\folder.x\\"), "C:\\folder.x\\"},
        {Replace(W("long")), W("clip.r3d"), "clip.lon", -1, 9},
        {Replace(W("long")), W("clip.r3d"), "clip", -1, 5},
        {Replace(W(".x")), W("clip"), "clip", -1, 5},
        {Replace(W("x")), W("clip.r3d"), "clip.r3d", -1, 0},
        {Replace(nullptr), W("clip.r3d"), "clip.r3d"},
        {Replace(W("aif")), W("take_012.wav"), "take_012.aif"},
        {Renumber(W("aif")), W("x\\take_.wav"), "x\\take.aif"},
        {Renumber(W("aif")), W("take012.wav"), "take012.aif"},
        {Renumber(W("aif")), W("x\\_012.wav"), "x\\_012.aif"},
        {Renumber(W("aif")), W("012"), "012.aif"},
        {Renumber(W("aif")), W("a_1_2"), "a_1.aif"},
        {Append(W("clip.r3d")), W("c:\\a"), "c:\\a\\clip.r3d", 13},
        {Append(W("\\\\clip")), W("c:\\"), "c:\\\\clip", 8},
        {Append(W("b\\c"), W(".wav")), W("a"), "a\\b\\c.wav", 9},
        {Append(W(""), W(".wav")), W("a.b"), "a.b\\", 4},
        {Append(W("clip")), W(""), "clip", 4},
        {Append(nullptr), W("a"), "a\\", 2},
        {Append(W("clip"), W("wav")), W("a"), "a\\cl", 4, 5},
        {Append(W("clip")), W("abc"), "abc", 0, 4},
    };
    for (const auto& row : kRows) {
        Buffer path(row.path, row.size);
        EXPECT_EQ(row.operation(path.Data(), row.size), row.result) << Utf8(row.path) << " -> " << row.changed;
        EXPECT_EQ(path.Text(), row.changed) << Utf8(row.path);
    }
    for (const Operation& operation : {AddSlash, DropSlash, Extend(W("x")), Renumber(W("x")), Append(W("x"))}) {
        EXPECT_LE(operation(nullptr, 10), 0);
    }
}

TEST(PathText, TakesPartsOfAPath) {
    const std::tuple<const WCHAR*, const char*, const char*, const char*> kRows[] = {
        {W("C:\\a.b\\clip.r3d"), "clip", "C:\\a.b\\", "C:\\"},
        {W("C:clip"), "clip", "C:", ""},
        {W("clip.a.b"), "clip.a", "", ""},
        {W("\\\\server\\share\\x"), "x", "\\\\server\\share\\", "\\\\server\\share\\"},
        {W("\\\\server\\share"), "share", "\\\\server\\", ""},
        {W("\\\\server"), "server", "\\\\", ""},
        {W("a\\b\\"), "", "a\\b\\", "a\\"},
        {W("\\"), "", "\\", "\\"},
        {W(""), "", "", ""},
    };
    for (const auto& [path, stem, folder, root] : kRows) {
        for (const int32_t size : {300, 4, 1}) {
            const auto cut = [size](const char* text) {
                return std::string(text).substr(0, static_cast<size_t>(size) - 1);
            };
            Buffer out(W("old"), size);
            const auto check = [&](const char* whole, int32_t length) {
                EXPECT_EQ(out.Text(), cut(whole));
                EXPECT_EQ(static_cast<size_t>(length), cut(whole).size()) << whole;
            };
            const WCHAR* const end = KtGetFileNameWithoutPathOrExtension(path, out.Data(), size);
            check(stem, static_cast<int32_t>(end - out.Data()));
            check(folder, KtGetPathNameFromFilePath(path, out.Data(), size));
            check(root, KtGetRootPathFromFilePath(path, out.Data(), size));
        }
        Buffer same(path, 300);
        KtGetPathNameFromFilePath(same.Data(), same.Data(), 300);
        EXPECT_EQ(same.Text(), folder);
    }
    Buffer none(W("old"), 4);
    EXPECT_EQ(KtGetPathNameFromFilePath(nullptr, none.Data(), 4), 0);
    EXPECT_EQ(KtGetRootPathFromFilePath(W("c:\\"), nullptr, 4), 0);
    EXPECT_EQ(KtGetPathNameFromFilePath(W("c:\\"), none.Data(), 0), 0);
}

TEST(PathText, MatchesWildCards) {
    using Pair = std::pair<const WCHAR*, const WCHAR*>;  // pattern and name
    const std::vector<Pair> kMatching = {
        {W("*"), W("")},   {W("*"), W("a.b.wav")}, {W("a"), W("a")},    {W("*.wav"), W("a.wav")},
        {W("a."), W("a")}, {W("*.*"), W("a.wav")}, {W("a"), W("a.")},   {W("a*.wav"), W("a")},
        {W("?"), W("a")},  {W("a?c"), W("abc")},   {W("a*"), W("abc")}, {W("t*_1.wav"), W("ta_1.wav")},
        {W(""), W("")},    {W("**.c"), W("ab.c")}, {W("*."), W("abc")}, {W("?.?"), W("a.b")},
    };
    const std::vector<Pair> kApart = {
        {W("*.wav"), W("a.b.wav")}, {W("*.*"), W("a")},    {W("*.wav"), W("a.WAV")}, {W("*.wav"), W("a.wave")},
        {W("a.."), W("a")},         {W("a"), W("a..")},    {W("?"), W("")},          {W("a?"), W("a")},
        {W("*b"), W("abab")},       {W("a*"), W("abc.d")}, {W(""), W("a")},
    };
    for (const auto& pairs : {kMatching, kApart}) {
        for (const auto& [pattern, name] : pairs) {
            EXPECT_EQ(KtIsMatchWildCard(pattern, name), pairs == kMatching) << Utf8(pattern) << " and " << Utf8(name);
        }
    }
    EXPECT_EQ(KtIsMatchWildCard(nullptr, W("a")), 0);
    EXPECT_EQ(KtIsMatchWildCard(W("a"), nullptr), 0);
}

TEST(PathText, ComparesPathsFromTheirEnds) {
    const std::tuple<const WCHAR*, const WCHAR*, const char*, const char*> kRows[] = {
        {W("D:\\x\\a\\b.wav"), W("C:\\y\\A\\B.WAV"), "A\\B.WAV", "C:\\y\\"},
        {W("D:\\x\\ca\\b.wav"), W("C:\\y\\da\\b.wav"), "b.wav", "C:\\y\\da\\"},
        {W("D:\\\\a.wav"), W("C:\\\\a.wav"), "a.wav", "C:\\\\"},
        {W("b.wav"), W("C:\\a\\b.wav"), "", "C:\\a\\b.wav\\"},
        {W("C:\\a\\b.wav"), W("a\\b.wav"), "a\\b.wav", ""},
        {W("C:\\a"), W("C:\\b"), "", "C:\\b\\"},
        {W("x"), W(""), "", ""},
        {W(""), W("a\\b"), "", "a\\b\\"},
        {nullptr, W("a\\b"), "", "a\\b\\"},
    };
    for (const auto& [other, path, relative, base] : kRows) {
        EXPECT_EQ(Utf8(KtGetFileNamePtrRelative(other, path)), relative) << Utf8(path);
        const auto needed = static_cast<int32_t>(std::string(base).size()) + 1;
        for (const int32_t size : {300, needed, needed - 1}) {
            Buffer out(W("old"), size);
            EXPECT_EQ(KtGetBasePathRelative(other, path, out.Data(), size), size < needed ? E_FAIL : S_OK);
            if (size > 0) {
                EXPECT_EQ(out.Text(), size < needed ? "" : base);
            }
        }
    }
    EXPECT_EQ(KtGetFileNamePtrRelative(W("a"), nullptr), nullptr);
    Buffer out(W("old"), 400);
    EXPECT_EQ(KtGetBasePathRelative(W("x"), WString(260, W('a')).c_str(), out.Data(), 400), E_FAIL);
    EXPECT_EQ(out.Text(), "");
    EXPECT_EQ(KtGetBasePathRelative(W("x"), WString(259, W('a')).c_str(), out.Data(), 400), S_OK);
    EXPECT_EQ(out.Text(), std::string(259, 'a')) << "without the '\\' that has no room";
}

TEST(PathText, OrdersNamesAsPeopleDo) {
    const WCHAR* const kInOrder[] = {W(""), W("2"), W("A1b"), W("a2b"), W("A10b"), W("a10c"), W("clip9"), W("clip10")};
    for (size_t i = 1; i < std::size(kInOrder); ++i) {
        EXPECT_EQ(KtFilenameLogicalCompare(kInOrder[i - 1], kInOrder[i]), -1) << Utf8(kInOrder[i]);
        EXPECT_EQ(KtFilenameLogicalCompare(kInOrder[i], kInOrder[i - 1]), 1) << Utf8(kInOrder[i]);
    }
    EXPECT_EQ(KtFilenameLogicalCompare(W("CLIP I10"), W("clip i10")), 0);
    EXPECT_EQ(KtFilenameLogicalCompare(nullptr, W("a")), -1);
}

TEST(PathText, ReplacesABase) {
    const WString long_base(250, W('n'));
    const std::tuple<const WCHAR*, const WCHAR*, WString, int32_t, HRESULT, std::string> kRows[] = {
        {W("C:\\Old\\a\\b"), W("c:\\old"), W("D:\\new"), 40, S_OK, "D:\\new\\a\\b"},
        {W("\u00C4b"), W("\u00E4"), W("x"), 40, S_OK, "xb"},
        {W("Title"), W("tI"), W(""), 40, S_OK, "tle"},
        {W("abc"), W(""), W("x"), 40, S_OK, "xabc"},
        {W("abc"), W("abc"), W("x"), 40, S_OK, "x"},
        {W("abc"), W("abd"), W("x"), 40, E_FAIL, ""},
        {W("ab"), W("abc"), W("x"), 40, E_FAIL, ""},
        {W("abc"), W("a"), W("xyz"), 6, S_OK, "xyzbc"},
        {W("abc"), W("a"), W("xyz"), 5, E_FAIL, ""},
        {W("a123456789"), W("a"), long_base, 400, S_OK, std::string(250, 'n').append("123456789")},
        {W("a1234567890"), W("a"), long_base, 400, E_FAIL, ""},
        {nullptr, W("a"), W("x"), 40, E_FAIL, ""},
    };
    for (const auto& [path, old_base, new_base, size, result, replaced] : kRows) {
        Buffer out(W("old"), size);
        EXPECT_EQ(KtReplaceBasePathRelative(path, old_base, new_base.c_str(), out.Data(), size), result) << replaced;
        EXPECT_EQ(out.Text(), replaced);
    }
    Buffer same(W("abc"), 40);
    EXPECT_EQ(KtReplaceBasePathRelative(same.Data(), W("a"), W("long\\"), same.Data(), 40), S_OK);
    EXPECT_EQ(same.Text(), "long\\bc");
    EXPECT_EQ(KtReplaceBasePathRelative(W("abc"), W("a"), W("x"), nullptr, 40), E_FAIL);
}

}  // namespace
