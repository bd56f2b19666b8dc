// Files read and written at once.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "platform/files.h"
#include "platform/scoped.h"

namespace support {

inline void WriteWhole(const WCHAR* path, std::string_view bytes) {
    const platform::ScopedHandle file(CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr));
}

inline std::string ReadWhole(const WCHAR* path) {
    const platform::ScopedHandle file(
        CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    std::string bytes(GetFileSize(file.Get(), nullptr), '\0');
    DWORD read = 0;
    EXPECT_TRUE(ReadFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr));
    return bytes;
}

}  // namespace support
