#include <gtest/gtest.h>

#include "platform/linux/paths.h"
#include "platform/modules.h"
#include "platform/text.h"
#include "support/last_error.h"
#include "support/scoped_variable.h"

namespace {

using support::ErrorOf;
using support::ScopedVariable;

TEST(Paths, ToTheFileSystem) {
    const struct {
        const WCHAR *drives, *path;
        const char* posix;  // null with an error
        DWORD error;
    } rows[] = {
        {nullptr, W("C:\\a\\b.r3d"), "/a/b.r3d", 0},
        {nullptr, W("c:/a/b"), "/a/b", 0},
        {nullptr, W("/a\\b/c"), "/a/b/c", 0},
        {nullptr, W("\\a\\b"), "/a/b", 0},
        {nullptr, W("a\\b"), "a/b", 0},
        {nullptr, W("..\\a"), "../a", 0},
        {nullptr, W("C:a"), "a", 0},
        {nullptr, W("C:"), ".", 0},
        {nullptr, W("C:\\"), "/", 0},
        {nullptr, W("\\\\?\\C:\\a"), "/a", 0},
        {nullptr, W("\u017C\u00F3\u0142\u0107\\\U0001F3AC"), "\xC5\xBC\xC3\xB3\xC5\x82\xC4\x87/\xF0\x9F\x8E\xAC", 0},
        {nullptr, W("1:\\a"), "1:/a", 0},
        {nullptr, W("D:\\a"), nullptr, ERROR_PATH_NOT_FOUND},
        {nullptr, W(""), nullptr, ERROR_PATH_NOT_FOUND},
        {nullptr, nullptr, nullptr, ERROR_PATH_NOT_FOUND},
        {nullptr, W("\\\\?\\"), nullptr, ERROR_PATH_NOT_FOUND},
        {nullptr, W("\\\\server\\share"), nullptr, 53},
        {W("C=/;D=/mnt/x"), W("D:\\a"), "/mnt/x/a", 0},
        {W("D=/mnt/x/"), W("d:/a"), "/mnt/x/a", 0},
        {W("D=/mnt/x/"), W("C:\\a"), "/a", 0},
        {W("D=/no/such"), W("D:a"), "/no/such/a", 0},
        {W("C=/srv;d=/mnt"), W("C:\\a"), "/srv/a", 0},
        {W(";;D;D=;=/x;DD=/y;E=rel;F=/ok"), W("F:\\a"), "/ok/a", 0},
        {W(";;D;D=;=/x;DD=/y;E=rel;F=/ok"), W("E:\\a"), nullptr, ERROR_PATH_NOT_FOUND},
    };
    for (const auto& row : rows) {
        ScopedVariable drives(W("KT_DRIVES"), row.drives);
        SetLastError(0);
        const auto posix = platform::PosixPath(row.path);
        SCOPED_TRACE(row.path ? platform::Utf8(row.path) : "null");
        EXPECT_EQ(posix.value_or("none"), row.posix ? row.posix : "none");
        EXPECT_EQ(GetLastError(), row.error);
    }
    const WCHAR lone_surrogate[] = {'a', 0xD800, 0};
    EXPECT_EQ(ErrorOf(platform::PosixPath(lone_surrogate)), ERROR_INVALID_NAME);
}

TEST(Paths, ToDriveForm) {
    const struct {
        const WCHAR* drives;
        const char *posix, *path;
    } rows[] = {
        {W("C=/;D=/mnt/x"), "/mnt/x/a", "D:\\a"}, {nullptr, "/usr/lib/x.so", "C:\\usr\\lib\\x.so"},
        {W("C=/;D=/mnt/x"), "/mnt/x", "D:\\"},    {nullptr, "/", "C:\\"},
        {W("C=/srv"), "/mnt/x", "/mnt/x"},        {W("C=/;D=/mnt/x"), "/mnt/xy/a", "C:\\mnt\\xy\\a"},
    };
    for (const auto& row : rows) {
        ScopedVariable drives(W("KT_DRIVES"), row.drives);
        EXPECT_EQ(platform::Utf8(platform::DrivePath(row.posix)), row.path);
    }
}

TEST(Paths, EnvironmentVariables) {
    ScopedVariable variable(W("CLIPFIO_TEST_VARIABLE"), W("w\u00E9rt"));
    WCHAR out[8] = {};
    EXPECT_EQ(GetEnvironmentVariableW(W("CLIPFIO_TEST_VARIABLE"), nullptr, 0), 5u);
    EXPECT_EQ(GetEnvironmentVariableW(W("CLIPFIO_TEST_VARIABLE"), out, 4), 5u);
    EXPECT_EQ(GetEnvironmentVariableW(W("CLIPFIO_TEST_VARIABLE"), out, 5), 4u);
    EXPECT_EQ(platform::Utf8(out), "w\xC3\xA9rt");
    EXPECT_TRUE(SetEnvironmentVariableW(W("CLIPFIO_TEST_VARIABLE"), W("")));
    SetLastError(1);
    EXPECT_EQ(GetEnvironmentVariableW(W("CLIPFIO_TEST_VARIABLE"), out, 8), 0u);
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    EXPECT_TRUE(SetEnvironmentVariableW(W("CLIPFIO_TEST_VARIABLE"), nullptr));
    EXPECT_EQ(ErrorOf(GetEnvironmentVariableW(W("CLIPFIO_TEST_VARIABLE"), out, 8)), ERROR_ENVVAR_NOT_FOUND);
    EXPECT_FALSE(SetEnvironmentVariableW(W("a=b"), W("c")));
}

}  // namespace
