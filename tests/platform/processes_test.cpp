#include <gtest/gtest.h>

#include <tuple>
#include <utility>

#include "platform/scoped.h"
#include "support/child_roles.h"
#include "support/last_error.h"

namespace {

using support::ErrorOf;

constexpr DWORD kMemory = PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE;
constexpr DWORD kSize = 3 * 65536 + 100;

TEST(Processes, OpenRefusesWhatIsNone) {
    for (const DWORD id : {0u, 0xFFFFFFFCu, 0x7FFFFFFCu}) {
        EXPECT_EQ(OpenProcess(kMemory, FALSE, id), nullptr) << id;
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER) << id;
    }
}

TEST(Mappings, ViewsAndTheirLimits) {
    const platform::ScopedHandle mapping(
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, kSize, nullptr));
    constexpr DWORD kMappedAlignment = 1132;
    const std::tuple<DWORD, DWORD, SIZE_T, DWORD> rows[] = {
        {FILE_MAP_READ | FILE_MAP_WRITE, 2 * 65536, 65536, 0},       {FILE_MAP_READ, 0, 0, 0},
        {FILE_MAP_READ, 0, kSize + 65536, ERROR_ACCESS_DENIED},      {FILE_MAP_WRITE, 0, kSize, 0},
        {FILE_MAP_READ, 0, ~SIZE_T{0} - 65536, ERROR_ACCESS_DENIED}, {FILE_MAP_READ, 3 * 65536, 0, 0},
        {FILE_MAP_READ, 5 * 65536, 0, ERROR_ACCESS_DENIED},          {FILE_MAP_READ, 100, 10, kMappedAlignment},
    };
    for (const auto& [access, offset, bytes, error] : rows) {
        SetLastError(0);
        const platform::ScopedView view(MapViewOfFile(mapping.Get(), access, 0, offset, bytes));
        EXPECT_EQ(static_cast<bool>(view), error == 0) << offset << ' ' << bytes;
        // Which number stands for a view past the end is not told.
        const bool is_told = error != ERROR_ACCESS_DENIED;
        EXPECT_TRUE(is_told ? GetLastError() == error : GetLastError() != 0) << offset << ' ' << bytes;
    }
    EXPECT_EQ(ErrorOf(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 0, nullptr)),
              ERROR_INVALID_PARAMETER);
    EXPECT_EQ(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0x7FFFFFFF, 0, nullptr), nullptr);
}

TEST(Mappings, AViewOutlivesItsHandleAndEndsOnce) {
    platform::ScopedHandle mapping(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 4096, nullptr));
    auto* const bytes = static_cast<unsigned char*>(MapViewOfFile(mapping.Get(), FILE_MAP_WRITE, 0, 0, 0));
    ASSERT_NE(bytes, nullptr);
    mapping.Reset();
    bytes[4095] = 1;
    int local = 0;
    for (const void* const wrong : {static_cast<const void*>(&local), static_cast<const void*>(nullptr)}) {
        EXPECT_EQ(ErrorOf(UnmapViewOfFile(wrong)), ERROR_INVALID_ADDRESS);
    }
    EXPECT_TRUE(UnmapViewOfFile(bytes));
    EXPECT_EQ(ErrorOf(UnmapViewOfFile(bytes)), ERROR_INVALID_ADDRESS);
}

}  // namespace
