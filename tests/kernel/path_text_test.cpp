// Paths as text: every operation as a table of rows.
#include "kernel/path_text.h"

#include <gtest/gtest.h>

#include <functional>

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
    struct Row {
        const WCHAR* path;
        const char* name;
        const char* extension;
    };
    const Row kRows[] = {
        {W("C:\\a.b\\clip.r3d"), "clip.r3d", ".r3d"},
        {W("clip.r3d"), "clip.r3d", ".r3d"},
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
    for (const Row& row : kRows) {
        EXPECT_EQ(Utf8(KtGetFileNamePtrW(row.path)), row.name);
        EXPECT_EQ(Utf8(KtGetFileNameExtensionPtrW(row.path)), row.extension) << row.name;
        const std::string narrow = Utf8(row.path);
        EXPECT_STREQ(KtGetFileNamePtrA(narrow.c_str()), row.name);
        EXPECT_STREQ(KtGetFileNameExtensionPtrA(narrow.c_str()), row.extension);
    }
    EXPECT_EQ(Utf8(KtGetFileNameExtensionPtrW(W("a.b\u00A0c"))), "") << "a blank that is no ASCII";
    EXPECT_EQ(KtGetFileNamePtrW(nullptr), nullptr);
    EXPECT_EQ(KtGetFileNameExtensionPtrA(nullptr), nullptr);
}

TEST(PathText, TellsGoodNamesAndMendsBadOnes) {
    struct Row {
        const WCHAR* name;
        const char* mended;  // null: the name is valid
    };
    const Row kRows[] = {
        {W(""), nullptr},
        {W("clip 1.r3d"), nullptr},
        {W(".a b\t"), nullptr},
        {W("a/b\\c:d*e?f\"g<h>i|j"), "a_b_c_d_e_f_g_h_i_j"},
        {W("line\r\nend"), "line__end"},
        {W("ends."), "ends_"},
        {W("ends "), "ends_"},
        {W("ends.. "), "ends.._"},
        {W("."), "_"},
    };
    for (const Row& row : kRows) {
        Buffer name(row.name, 40);
        EXPECT_EQ(KtValidateFileName(name.Data(), 0), row.mended == nullptr) << Utf8(row.name);
        EXPECT_EQ(name.Text(), Utf8(row.name));
        EXPECT_EQ(KtValidateFileName(name.Data(), 1), row.mended == nullptr) << Utf8(row.name);
        EXPECT_EQ(name.Text(), row.mended ? row.mended : Utf8(row.name));
    }
}

// Operations on a path in its buffer, by what they make of it and what they return.
using Operation = std::function<int32_t(WCHAR*, int32_t)>;

Operation AddExtension(const WCHAR* extension) {
    return [=](WCHAR* path, int32_t size) { return KtAddExtensionToPathName(path, size, extension); };
}
Operation ReplaceExtension(const WCHAR* extension) {
    return [=](WCHAR* path, int32_t size) {
        KtReplaceExtensionOnPathName(path, size, extension);
        return -1;
    };
}
Operation ReplaceNumber(const WCHAR* extension) {
    return [=](WCHAR* path, int32_t size) {
        KtReplaceExtensionOnPathNameEx(path, size, extension, 1);
        return -1;
    };
}
Operation Append(const WCHAR* name, const WCHAR* extension = nullptr) {
    return [=](WCHAR* path, int32_t size) { return KtAppendToPathName(path, size, name, extension); };
}

TEST(PathText, ChangesAPathInItsBuffer) {
    struct Row {
        Operation operation;
        const WCHAR* path;
        int32_t size;
        int32_t result;
        const char* changed;
    };
    const Row kRows[] = {
        {KtAddSlashToPathName, W("c:"), 40, 3, "c:\\"},
        {KtAddSlashToPathName, W("c:\\"), 40, 3, "c:\\"},
        {KtAddSlashToPathName, W("c:\\"), 4, 3, "c:\\"},
        {KtAddSlashToPathName, W("a/"), 40, 3, "a/\\"},
        {KtAddSlashToPathName, W(""), 40, 0, ""},
        {KtAddSlashToPathName, W("abc"), 4, 0, "abc"},
        {KtAddSlashToPathName, W("abc"), 5, 4, "abc\\"},
        {KtAddSlashToPathName, W("abc"), 0, 0, "abc"},
        {KtRemoveSlashFromPathNameEnd, W("c:\\a\\\\"), 40, 5, "c:\\a\\"},
        {KtRemoveSlashFromPathNameEnd, W("c:\\a"), 40, 4, "c:\\a"},
        {KtRemoveSlashFromPathNameEnd, W("\\"), 40, 0, ""},
        {KtRemoveSlashFromPathNameEnd, W(""), 40, 0, ""},
        {KtRemoveSlashFromPathNameEnd, W("a\\"), 2, 0, "a\\"},
        {AddExtension(W("txt")), W("a.TXT"), 40, 5, "a.TXT"},
        {AddExtension(W(".txt")), W("a.TXT"), 40, 5, "a.TXT"},
        {AddExtension(W("wav")), W("a.TXT"), 40, 5, "a.wav"},
        {AddExtension(W("..wav")), W("c:\\x.y\\a"), 40, 12, "c:\\x.y\\a.wav"},
        {AddExtension(W("I")), W("a.i"), 40, 3, "a.i"},
        {AddExtension(W("")), W("a"), 40, 2, "a."},
        {AddExtension(W("wav")), W("clip"), 7, 6, "clip.w"},
        {AddExtension(W("wav")), W("clip"), 5, 4, "clip"},
        {AddExtension(W("wav")), W("clip"), 4, 4, "clip"},
        {AddExtension(nullptr), W("clip"), 40, 4, "clip"},
        {ReplaceExtension(W("KtDecProp")), W("C:\\a.b\\clip.r3d"), 40, -1, "C:\\a.b\\clip.KtDecProp"},
        {ReplaceExtension(W(".x")), W("C:\\a.b\\clip"), 40, -1, "C:\\a.b\\clip.x"},
        {ReplaceExtension(W("")), W("clip.r3d"), 40, -1, "clip."},
        {ReplaceExtension(W("x")), W("clip."), 40, -1, "clip.x"},
        {ReplaceExtension(W("x")), W(""), 40, -1, ""},
        {ReplaceExtension(W("y")), W("C:\\folder.x\\"), 40, -1, "C:\\folder.x\\"},
        {ReplaceExtension(W("long")), W("clip.r3d"), 9, -1, "clip.lon"},
        {ReplaceExtension(W("long")), W("clip.r3d"), 5, -1, "clip"},  // no room for the point
        {ReplaceExtension(W(".x")), W("clip"), 5, -1, "clip"},
        {ReplaceExtension(W("x")), W("clip.r3d"), 3, -1, "clip.r3d"},  // a text that is longer than its buffer stays
        {ReplaceExtension(W("x")), W("clip.r3d"), 0, -1, "clip.r3d"},
        {ReplaceExtension(nullptr), W("clip.r3d"), 40, -1, "clip.r3d"},
        {ReplaceExtension(W("aif")), W("take_012.wav"), 40, -1, "take_012.aif"},
        {ReplaceNumber(W(".aif")), W("take_012.wav"), 40, -1, "take.aif"},
        {ReplaceNumber(W("aif")), W("x\\take_.wav"), 40, -1, "x\\take.aif"},
        {ReplaceNumber(W("aif")), W("take012.wav"), 40, -1, "take012.aif"},
        {ReplaceNumber(W("aif")), W("x\\_012.wav"), 40, -1, "x\\_012.aif"},
        {ReplaceNumber(W("aif")), W("012"), 40, -1, "012.aif"},
        {ReplaceNumber(W("aif")), W("a_1_2"), 40, -1, "a_1.aif"},
        {Append(W("clip.r3d")), W("c:\\a"), 40, 13, "c:\\a\\clip.r3d"},
        {Append(W("\\\\clip")), W("c:\\"), 40, 8, "c:\\\\clip"},
        {Append(W("clip.r3d"), W("wav")), W("c:\\a.b"), 40, 15, "c:\\a.b\\clip.wav"},
        {Append(W("b\\clip"), W(".wav")), W("a"), 40, 12, "a\\b\\clip.wav"},
        {Append(W(""), W(".wav")), W("a.b"), 40, 4, "a.b\\"},
        {Append(W("clip")), W(""), 40, 4, "clip"},
        {Append(nullptr), W("a"), 40, 2, "a\\"},
        {Append(W("clip"), W("wav")), W("a"), 5, 4, "a\\cl"},
        {Append(W("clip")), W("abc"), 4, 0, "abc"},
    };
    for (const Row& row : kRows) {
        Buffer path(row.path, row.size);
        EXPECT_EQ(row.operation(path.Data(), row.size), row.result) << Utf8(row.path) << " -> " << row.changed;
        EXPECT_EQ(path.Text(), row.changed) << Utf8(row.path);
    }
    for (const Operation& operation : {Operation(KtAddSlashToPathName), Operation(KtRemoveSlashFromPathNameEnd),
                                       AddExtension(W("x")), ReplaceNumber(W("x")), Append(W("x"))}) {
        EXPECT_LE(operation(nullptr, 10), 0);
    }
}

TEST(PathText, TakesPartsOfAPath) {
    struct Row {
        const WCHAR* path;
        const char* name;  // without its extension
        const char* folder;
        const char* root;
    };
    const Row kRows[] = {
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
    for (const Row& row : kRows) {
        for (const int32_t size : {300, 4, 1}) {
            const auto cut = [size](const char* text) {
                return std::string(text).substr(0, static_cast<size_t>(size) - 1);
            };
            const auto check = [&](const char* whole, Buffer& out, int32_t length) {
                EXPECT_EQ(out.Text(), cut(whole)) << Utf8(row.path);
                EXPECT_EQ(static_cast<size_t>(length), cut(whole).size()) << Utf8(row.path);
            };
            Buffer out(W("old"), size);
            const WCHAR* const end = KtGetFileNameWithoutPathOrExtension(row.path, out.Data(), size);
            check(row.name, out, static_cast<int32_t>(end - out.Data()));
            check(row.folder, out, KtGetPathNameFromFilePath(row.path, out.Data(), size));
            check(row.root, out, KtGetRootPathFromFilePath(row.path, out.Data(), size));
        }
        Buffer same(row.path, 300);
        KtGetPathNameFromFilePath(same.Data(), same.Data(), 300);
        EXPECT_EQ(same.Text(), row.folder);
    }
    Buffer none(W("old"), 4);
    EXPECT_EQ(KtGetPathNameFromFilePath(nullptr, none.Data(), 4), 0);
    EXPECT_EQ(KtGetRootPathFromFilePath(W("c:\\"), nullptr, 4), 0);
    EXPECT_EQ(KtGetPathNameFromFilePath(W("c:\\"), none.Data(), 0), 0);
}

TEST(PathText, MatchesWildCards) {
    struct Row {
        const WCHAR* pattern;
        const WCHAR* name;
        int32_t result;
    };
    const Row kRows[] = {
        {W("*"), W("a.b.wav"), 1},
        {W("*"), W(""), 1},
        {W("*.wav"), W("a.wav"), 1},
        {W("*.wav"), W("a.b.wav"), 0},
        {W("*.*"), W("a.wav"), 1},
        {W("*.*"), W("a"), 0},
        {W("*.wav"), W("a.WAV"), 0},
        {W("*.wav"), W("a.wave"), 0},
        {W("a*.wav"), W("a"), 1},
        {W("a"), W("a"), 1},
        {W("a."), W("a"), 1},
        {W("a"), W("a."), 1},
        {W("a.."), W("a"), 0},
        {W("a"), W("a.."), 0},
        {W("?"), W("a"), 1},
        {W("?"), W(""), 0},
        {W("a?c"), W("abc"), 1},
        {W("a?"), W("a"), 0},
        {W("t*_1.wav"), W("ta_1.wav"), 1},
        {W("*b"), W("abab"), 0},
        {W("a*"), W("abc"), 1},
        {W("a*"), W("abc.d"), 0},
        {W("**.c"), W("ab.c"), 1},
        {W(""), W(""), 1},
        {W(""), W("a"), 0},
        {W("*."), W("abc"), 1},
        {W("?.?"), W("a.b"), 1},
        {nullptr, W("a"), 0},
        {W("a"), nullptr, 0},
    };
    for (const Row& row : kRows) {
        EXPECT_EQ(KtIsMatchWildCard(row.pattern, row.name), row.result)
            << Utf8(row.pattern ? row.pattern : W("null")) << " and " << Utf8(row.name ? row.name : W("null"));
    }
}

TEST(PathText, ComparesPathsFromTheirEnds) {
    struct Row {
        const WCHAR* other;
        const WCHAR* path;
        const char* relative;
        const char* base;
    };
    const Row kRows[] = {
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
    for (const Row& row : kRows) {
        EXPECT_EQ(Utf8(KtGetFileNamePtrRelative(row.other, row.path)), row.relative) << Utf8(row.path);
        const auto needed = static_cast<int32_t>(std::string(row.base).size()) + 1;
        for (const int32_t size : {300, needed, needed - 1}) {
            Buffer out(W("old"), size);
            EXPECT_EQ(KtGetBasePathRelative(row.other, row.path, out.Data(), size), size < needed ? E_FAIL : S_OK);
            if (size > 0) {
                EXPECT_EQ(out.Text(), size < needed ? "" : row.base);
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

TEST(PathText, ReplacesABase) {
    const WString long_base(250, W('n'));
    struct Row {
        const WCHAR* path;
        const WCHAR* old_base;
        WString new_base;
        int32_t size;
        HRESULT result;
        std::string replaced;
    };
    const Row kRows[] = {
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
    for (const Row& row : kRows) {
        Buffer out(W("old"), row.size);
        EXPECT_EQ(KtReplaceBasePathRelative(row.path, row.old_base, row.new_base.c_str(), out.Data(), row.size),
                  row.result)
            << row.replaced;
        EXPECT_EQ(out.Text(), row.replaced);
    }
    Buffer same(W("abc"), 40);
    EXPECT_EQ(KtReplaceBasePathRelative(same.Data(), W("a"), W("long\\"), same.Data(), 40), S_OK);
    EXPECT_EQ(same.Text(), "long\\bc");
    EXPECT_EQ(KtReplaceBasePathRelative(W("abc"), W("a"), W("x"), nullptr, 40), E_FAIL);
}

TEST(PathText, OrdersNamesAsPeopleDo) {
    const WCHAR* const kInOrder[] = {W(""),     W("2"),    W("10"),    W("A1b"),    W("a2b"),  W("A10b"),
                                     W("a10c"), W("clip"), W("clip9"), W("clip10"), W("clipa")};
    for (size_t i = 0; i < std::size(kInOrder); ++i) {
        for (size_t j = 0; j < std::size(kInOrder); ++j) {
            const int32_t result = KtFilenameLogicalCompare(kInOrder[i], kInOrder[j]);
            EXPECT_EQ(result, i < j ? -1 : i > j ? 1 : 0) << Utf8(kInOrder[i]) << " and " << Utf8(kInOrder[j]);
        }
    }
    EXPECT_EQ(KtFilenameLogicalCompare(W("CLIP I10"), W("clip i10")), 0);
    EXPECT_EQ(KtFilenameLogicalCompare(nullptr, W("a")), -1);
}

}  // namespace
