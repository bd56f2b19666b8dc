#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/linux/paths.h"
#include "platform/scoped.h"
#include "platform/text.h"
#include "support/last_error.h"
#include "support/temp_file.h"

namespace {

using support::ErrorOf;

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
        DWORD access, error;
        const char* content;  // afterwards, with "old" before; null when there is no file
    } rows[] = {
        {CREATE_NEW, false, kBoth, 0, ""},
        {CREATE_NEW, true, kBoth, ERROR_FILE_EXISTS, "old"},
        {CREATE_ALWAYS, false, kBoth, 0, ""},
        {CREATE_ALWAYS, true, kBoth, ERROR_ALREADY_EXISTS, ""},
        {OPEN_EXISTING, false, kBoth, ERROR_FILE_NOT_FOUND, nullptr},
        {OPEN_EXISTING, true, kBoth, 0, "old"},
        {OPEN_ALWAYS, false, kBoth, 0, ""},
        {OPEN_ALWAYS, true, kBoth, ERROR_ALREADY_EXISTS, "old"},
        {TRUNCATE_EXISTING, false, kBoth, ERROR_FILE_NOT_FOUND, nullptr},
        {TRUNCATE_EXISTING, true, kBoth, 0, ""},
        {TRUNCATE_EXISTING, true, GENERIC_READ, ERROR_INVALID_PARAMETER, "old"},
        {0, true, kBoth, ERROR_INVALID_PARAMETER, "old"},
        {6, false, kBoth, ERROR_INVALID_PARAMETER, nullptr},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << "disposition " << row.disposition << (row.exists ? ", exists" : ""));
        const support::TempFile name;
        if (row.exists) Write(Open(name.Path(), GENERIC_WRITE, CREATE_NEW), "old");
        SetLastError(0);
        auto file = Open(name.Path(), row.access, row.disposition);
        EXPECT_EQ(GetLastError(), row.error);
        EXPECT_EQ(static_cast<bool>(file), row.error == 0 || row.error == ERROR_ALREADY_EXISTS);
        file.Reset();
        EXPECT_EQ(GetFileAttributesW(name.Path()) != INVALID_FILE_ATTRIBUTES, row.content != nullptr);
        if (row.content) {
            EXPECT_EQ(ReadAll(name.Path()), row.content);
        }
    }
}

TEST(Files, Refusals) {
    const support::TempFile name;
    const WString inside = WString(name.Path()) + W("\\x");
    WCHAR folder[512];
    GetTempPathW(512, folder);
    const auto check = [](HANDLE handle, DWORD error) {
        EXPECT_EQ(GetLastError(), error);
        EXPECT_EQ(handle, INVALID_HANDLE_VALUE);
    };
    const auto open = [](const WCHAR* path, DWORD access, DWORD disposition, DWORD flags = 0) {
        return CreateFileW(path, access, 0, nullptr, disposition, flags, nullptr);
    };
    check(open(folder, GENERIC_READ, OPEN_EXISTING), ERROR_ACCESS_DENIED);
    check(open(folder, GENERIC_WRITE, OPEN_EXISTING), ERROR_ACCESS_DENIED);
    check(open(inside.c_str(), GENERIC_READ, OPEN_EXISTING), ERROR_PATH_NOT_FOUND);
    check(open(inside.c_str(), GENERIC_WRITE, CREATE_NEW), ERROR_PATH_NOT_FOUND);
    check(open(W(""), GENERIC_READ, OPEN_EXISTING), ERROR_PATH_NOT_FOUND);
    check(open(name.Path(), GENERIC_READ, OPEN_EXISTING, 0x40000000), ERROR_NOT_SUPPORTED);
    check(open((WString(folder) + WString(300, 'a')).c_str(), GENERIC_READ, OPEN_EXISTING), ERROR_FILENAME_EXCED_RANGE);

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
    EXPECT_EQ(seek(4, FILE_BEGIN), 4);
    EXPECT_EQ(seek(2, FILE_CURRENT), 6);
    EXPECT_EQ(seek(-1, FILE_END), 9);
    EXPECT_EQ(seek(-1, FILE_BEGIN), -static_cast<LONGLONG>(ERROR_NEGATIVE_SEEK));
    EXPECT_EQ(seek(-10, FILE_CURRENT), -static_cast<LONGLONG>(ERROR_NEGATIVE_SEEK));
    EXPECT_EQ(seek(0, 3), -static_cast<LONGLONG>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(seek(0, FILE_CURRENT), 9);

    char data[8];
    DWORD read = 0;
    EXPECT_TRUE(ReadFile(file.Get(), data, sizeof data, &read, nullptr));
    EXPECT_EQ(read, 1u);
    EXPECT_TRUE(ReadFile(file.Get(), data, sizeof data, &read, nullptr));
    EXPECT_EQ(read, 0u);

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
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(ErrorOf(GetShortPathNameW(name.Path(), out, 512)), ERROR_FILE_NOT_FOUND);
    Open(name.Path(), GENERIC_WRITE, CREATE_NEW);
    EXPECT_EQ(GetFileAttributesW(name.Path()), FILE_ATTRIBUTE_NORMAL);
    const auto length = static_cast<DWORD>(lstrlenW(name.Path()));
    EXPECT_EQ(GetShortPathNameW(name.Path(), nullptr, 0), length + 1);
    EXPECT_EQ(GetShortPathNameW(name.Path(), out, length), length + 1);
    EXPECT_EQ(GetShortPathNameW(name.Path(), out, length + 1), length);
    EXPECT_EQ(lstrcmpW(out, name.Path()), 0);
    const DWORD folder = GetTempPathW(512, out);
    EXPECT_EQ(out[folder - 1], '\\');
    EXPECT_EQ(GetFileAttributesW(out), FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(GetTempPathW(folder, out), folder + 1);

    const support::TempFile protected_name;
    Open(protected_name.Path(), GENERIC_WRITE, CREATE_NEW, FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(GetFileAttributesW(protected_name.Path()), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(ErrorOf(DeleteFileW(protected_name.Path())), ERROR_ACCESS_DENIED);
    ASSERT_EQ(unlink(platform::PosixPath(protected_name.Path())->c_str()), 0);
}

}  // namespace
