#include <gtest/gtest.h>

#include <unistd.h>
#include <tuple>

#include "platform/linux/paths.h"
#include "platform/modules.h"
#include "platform/scoped.h"
#include "platform/text.h"
#include "support/last_error.h"
#include "support/scoped_variable.h"
#include "support/temp_file.h"

namespace {

using support::ErrorOf;
using support::ScopedVariable;

constexpr DWORD kBoth = GENERIC_READ | GENERIC_WRITE;

platform::ScopedHandle Open(const WCHAR* path, DWORD access, DWORD disposition, DWORD flags = 0) {
    return platform::ScopedHandle(CreateFileW(path, access, FILE_SHARE_READ, nullptr, disposition, flags, nullptr));
}

std::string ReadAll(const WCHAR* path) {
    const auto file = Open(path, GENERIC_READ, OPEN_EXISTING);
    char data[64];
    DWORD read = 0;
    return ReadFile(file.Get(), data, sizeof data, &read, nullptr) ? std::string(data, read) : "unreadable";
}

void Write(const platform::ScopedHandle& file, const std::string& text) {
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(file.Get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr));
    EXPECT_EQ(written, text.size());
}

TEST(Files, Dispositions) {
    const struct {
        DWORD disposition;
        bool exists;
        DWORD error;
        const char* content;  // afterwards, with "old" before; null when there is no file
    } rows[] = {
        {CREATE_NEW, true, ERROR_FILE_EXISTS, "old"},          {CREATE_NEW, false, 0, ""},
        {6, false, ERROR_INVALID_PARAMETER, nullptr},          {CREATE_ALWAYS, false, 0, ""},
        {CREATE_ALWAYS, true, ERROR_ALREADY_EXISTS, ""},       {OPEN_EXISTING, true, 0, "old"},
        {OPEN_ALWAYS, true, ERROR_ALREADY_EXISTS, "old"},      {TRUNCATE_EXISTING, true, 0, ""},
        {OPEN_EXISTING, false, ERROR_FILE_NOT_FOUND, nullptr},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << "disposition " << row.disposition << (row.exists ? ", exists" : ""));
        const support::TempFile name;
        if (row.exists) Write(Open(name.Path(), GENERIC_WRITE, CREATE_NEW), "old");
        SetLastError(0);
        auto file = Open(name.Path(), kBoth, row.disposition);
        EXPECT_EQ(GetLastError(), row.error);
        EXPECT_EQ(static_cast<bool>(file), row.error == 0 || row.error == ERROR_ALREADY_EXISTS);
        file.Reset();
        EXPECT_EQ(GetFileAttributesW(name.Path()) != INVALID_FILE_ATTRIBUTES, row.content != nullptr);
        EXPECT_TRUE(!row.content || ReadAll(name.Path()) == row.content);
    }
}

TEST(Files, Refusals) {
    const support::TempFile name;
    const WString inside = WString(name.Path()) + W("\\x");
    WCHAR folder[512];
    GetTempPathW(512, folder);
    const std::tuple<WString, DWORD, DWORD, DWORD, DWORD> rows[] = {
        {folder, GENERIC_READ, OPEN_EXISTING, 0, ERROR_ACCESS_DENIED},
        {folder, GENERIC_WRITE, OPEN_EXISTING, 0, ERROR_ACCESS_DENIED},
        {inside, GENERIC_READ, OPEN_EXISTING, 0, ERROR_PATH_NOT_FOUND},
        {inside, GENERIC_WRITE, CREATE_NEW, 0, ERROR_PATH_NOT_FOUND},
        {W(""), GENERIC_READ, OPEN_EXISTING, 0, ERROR_PATH_NOT_FOUND},
        {name.Path(), GENERIC_READ, OPEN_EXISTING, 0x40000000, ERROR_NOT_SUPPORTED},
        {folder + WString(300, 'a'), GENERIC_READ, OPEN_EXISTING, 0, ERROR_FILENAME_EXCED_RANGE},
    };
    for (const auto& [path, access, disposition, flags, error] : rows) {
        SetLastError(0);
        EXPECT_FALSE(Open(path.c_str(), access, disposition, flags));
        EXPECT_EQ(GetLastError(), error) << platform::Utf8(path);
    }

    Write(Open(name.Path(), GENERIC_WRITE, CREATE_NEW), "abc");
    char c = 0;
    DWORD count = 9;
    const auto write_only = Open(name.Path(), GENERIC_WRITE, OPEN_EXISTING);
    EXPECT_EQ(ErrorOf(ReadFile(write_only.Get(), &c, 1, &count, nullptr)), ERROR_ACCESS_DENIED);
    EXPECT_EQ(count, 0u);
    const auto read_only = Open(name.Path(), GENERIC_READ, OPEN_EXISTING);
    EXPECT_EQ(ErrorOf(WriteFile(read_only.Get(), &c, 1, &count, nullptr)), ERROR_ACCESS_DENIED);
    EXPECT_EQ(ErrorOf(ReadFile(read_only.Get(), nullptr, 1, &count, nullptr)), ERROR_NOACCESS);
    EXPECT_EQ(ErrorOf(DeleteFileW(folder)), ERROR_ACCESS_DENIED);
    EXPECT_EQ(ErrorOf(DeleteFileW(inside.c_str())), ERROR_PATH_NOT_FOUND);
}

TEST(Files, PositionsAndSizes) {
    const support::TempFile name;
    const auto file = Open(name.Path(), kBoth, CREATE_NEW);
    Write(file, "0123456789");
    const auto seek = [&file](LONGLONG move, DWORD origin) {
        LARGE_INTEGER by;
        LARGE_INTEGER at;
        by.QuadPart = move;
        return SetFilePointerEx(file.Get(), by, &at, origin) ? at.QuadPart : -static_cast<LONGLONG>(GetLastError());
    };
    // One after another.
    const std::tuple<LONGLONG, DWORD, LONGLONG> rows[] = {{4, FILE_BEGIN, 4},
                                                          {2, FILE_CURRENT, 6},
                                                          {-1, FILE_END, 9},
                                                          {-1, FILE_BEGIN, -LONGLONG{ERROR_NEGATIVE_SEEK}},
                                                          {-10, FILE_CURRENT, -LONGLONG{ERROR_NEGATIVE_SEEK}},
                                                          {0, 3, -LONGLONG{ERROR_INVALID_PARAMETER}},
                                                          {0, FILE_CURRENT, 9}};
    for (const auto& [move, origin, at] : rows) EXPECT_EQ(seek(move, origin), at);
    for (const DWORD left : {1u, 0u}) {
        char data[8];
        DWORD read = 9;
        EXPECT_TRUE(ReadFile(file.Get(), data, sizeof data, &read, nullptr));
        EXPECT_EQ(read, left);
    }

    // One byte short of 4 GiB and more: the low half alone looks like a failure.
    EXPECT_EQ(seek(0x1FFFFFFFE, FILE_BEGIN), 0x1FFFFFFFE);
    Write(file, "x");
    DWORD high = 9;
    SetLastError(77);
    EXPECT_EQ(GetFileSize(file.Get(), &high), 0xFFFFFFFF);
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    EXPECT_EQ(high, 1u);
}

TEST(Files, AttributesAndNames) {
    const support::TempFile name;
    WCHAR out[512];
    EXPECT_EQ(GetFileAttributesW(name.Path()), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(ErrorOf(GetShortPathNameW(name.Path(), out, 512)), ERROR_FILE_NOT_FOUND);
    Open(name.Path(), GENERIC_WRITE, CREATE_NEW);
    EXPECT_EQ(GetFileAttributesW(name.Path()), FILE_ATTRIBUTE_NORMAL);
    const auto length = static_cast<DWORD>(lstrlenW(name.Path()));
    EXPECT_EQ(GetShortPathNameW(name.Path(), nullptr, 0), length + 1);
    EXPECT_EQ(GetShortPathNameW(name.Path(), out, length), length + 1);
    EXPECT_EQ(GetShortPathNameW(name.Path(), out, length + 1), length);
    EXPECT_EQ(lstrcmpW(out, name.Path()), 0);
    GetTempPathW(512, out);
    EXPECT_EQ(GetFileAttributesW(out), FILE_ATTRIBUTE_DIRECTORY);

    const support::TempFile protected_name;
    Open(protected_name.Path(), GENERIC_WRITE, CREATE_NEW, FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(GetFileAttributesW(protected_name.Path()), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(ErrorOf(DeleteFileW(protected_name.Path())), ERROR_ACCESS_DENIED);
    ASSERT_EQ(unlink(platform::PosixPath(protected_name.Path())->c_str()), 0);
}

TEST(Paths, ToTheFileSystem) {
    const std::tuple<const WCHAR*, const WCHAR*, const char*, DWORD> rows[] = {
        {nullptr, W("c:/a\\b.r3d"), "/a/b.r3d", 0},
        {nullptr, W("\\a\\b"), "/a/b", 0},
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
    for (const auto& [map, path, expected, error] : rows) {
        const ScopedVariable drives(W("KT_DRIVES"), map);
        SetLastError(0);
        const auto posix = platform::PosixPath(path);
        EXPECT_EQ(GetLastError(), error) << (path ? platform::Utf8(path) : "null");
        EXPECT_EQ(posix.value_or("none"), expected ? expected : "none");
    }
    const WCHAR lone_surrogate[] = {'a', 0xD800, 0};
    EXPECT_EQ(ErrorOf(platform::PosixPath(lone_surrogate)), ERROR_INVALID_NAME);
}

TEST(Paths, ToDriveForm) {
    const std::tuple<const WCHAR*, const char*, const char*> rows[] = {
        {W("C=/;D=/mnt/x"), "/mnt/x/a", "D:\\a"}, {nullptr, "/usr/lib/x.so", "C:\\usr\\lib\\x.so"},
        {W("C=/;D=/mnt/x"), "/mnt/x", "D:\\"},    {nullptr, "/", "C:\\"},
        {W("C=/srv"), "/mnt/x", "/mnt/x"},        {W("C=/;D=/mnt/x"), "/mnt/xy/a", "C:\\mnt\\xy\\a"},
    };
    for (const auto& [map, posix, path] : rows) {
        const ScopedVariable drives(W("KT_DRIVES"), map);
        EXPECT_EQ(platform::Utf8(platform::DrivePath(posix)), path);
    }
}

TEST(Paths, EnvironmentVariables) {
    ScopedVariable variable(W("CLIPFIO_TEST_VARIABLE"), W("w\u00E9rt"));
    WCHAR out[8] = {};
    for (const DWORD room : {0u, 4u, 5u}) {
        EXPECT_EQ(GetEnvironmentVariableW(W("CLIPFIO_TEST_VARIABLE"), out, room), room < 5 ? 5u : 4u);
    }
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
