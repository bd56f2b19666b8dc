#include "kernel/path_text.h"

#include <gtest/gtest.h>

#include "platform/text.h"

namespace {

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
        {W("a.b\u00A0c"), "a.b\u00A0c", ""},
        {W(""), "", ""},
        {W("a.b\tc.d"), "a.b\tc.d", ".d"},
    };
    for (const Row& row : kRows) {
        EXPECT_EQ(platform::Utf8(KtGetFileNamePtrW(row.path)), row.name);
        EXPECT_EQ(platform::Utf8(KtGetFileNameExtensionPtrW(row.path)), row.extension) << row.name;
    }
}

TEST(PathText, ReplacesTheExtensionOfTheName) {
    struct Row {
        const WCHAR* path;
        int32_t size;
        const WCHAR* extension;
        const char* result;
    };
    const Row kRows[] = {
        {W("C:\\a.b\\clip.r3d"), 40, W("KtDecProp"), "C:\\a.b\\clip.KtDecProp"},
        {W("C:\\a.b\\clip.r3d"), 40, W(".x"), "C:\\a.b\\clip.x"},
        {W("C:\\a.b\\clip"), 40, W(".x"), "C:\\a.b\\clip.x"},
        {W("clip.r3d"), 40, W(""), "clip."},
        {W("clip."), 40, W("x"), "clip.x"},
        {W(""), 40, W("x"), ""},
        {W("C:\\folder.x\\"), 40, W("y"), "C:\\folder.x\\"},
        {W("clip.r3d"), 9, W("long"), "clip.lon"},
        {W("clip.r3d"), 5, W("long"), "clip"},  // no room for the point
        {W("clip"), 5, W(".x"), "clip"},
        {W("clip.r3d"), 3, W("x"), "clip.r3d"},  // a text that is longer than its buffer stays
        {W("clip.r3d"), 0, W("x"), "clip.r3d"},
    };
    for (const Row& row : kRows) {
        WCHAR path[41] = {};
        WStringView(row.path).copy(path, 40);
        KtReplaceExtensionOnPathName(path, row.size, row.extension);
        EXPECT_EQ(platform::Utf8(path), row.result);
    }
    WCHAR path[10] = W("a.b");
    KtReplaceExtensionOnPathName(nullptr, 10, W("x"));
    KtReplaceExtensionOnPathName(path, 10, nullptr);
    EXPECT_EQ(WStringView(path), W("a.b"));
}

}  // namespace
