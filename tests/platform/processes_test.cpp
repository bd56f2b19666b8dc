#include <gtest/gtest.h>

#include <cstring>
#include <iostream>

#include "platform/scoped.h"
#include "support/child_roles.h"
#include "support/last_error.h"

namespace {

using support::ChildProcess;
using support::ErrorOf;

constexpr DWORD kMemory = PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE;
constexpr DWORD kSize = 3 * 65536 + 100;

template <class T>
std::string AsText(T value) {
    return std::to_string(reinterpret_cast<std::uint64_t>(value));
}
template <class T>
T FromText(const std::string& text) {
    return reinterpret_cast<T>(std::stoull(text));
}

CHILD_ROLE(echo_arguments) {
    std::string line;
    while (std::getline(std::cin, line) && line != "go") {
    }
    for (const std::string& argument : arguments) std::cout << argument << '\n' << std::flush;
    return 42;
}

CHILD_ROLE(wait_for_ever) {
    std::cout << "ready\n" << std::flush;
    std::string line;
    std::getline(std::cin, line);
    return 7;
}

// Fills the mapping of its parent, named by process id and handle value, and counts what it finds wrong.
CHILD_ROLE(fill_mapping) {
    platform::ScopedHandle parent(OpenProcess(PROCESS_DUP_HANDLE, FALSE, static_cast<DWORD>(std::stoul(arguments[0]))));
    if (!parent) return 2;
    platform::ScopedHandle mapping;
    if (!DuplicateHandle(parent.Get(), FromText<HANDLE>(arguments[1]), GetCurrentProcess(), mapping.Out(), 0, FALSE,
                         DUPLICATE_SAME_ACCESS)) {
        return 3;
    }
    platform::ScopedView view(MapViewOfFile(mapping.Get(), FILE_MAP_READ | FILE_MAP_WRITE, 0, 0, kSize));
    auto* const bytes = static_cast<unsigned char*>(view.Get());
    if (!bytes) return 4;
    if (bytes[0] != 0xAA || bytes[kSize - 1] != 0xAA) return 5;
    std::memset(bytes, 0x55, kSize);
    // A handle value that means nothing in the parent, and one that is no mapping.
    HANDLE wrong = nullptr;
    const HANDLE bad = reinterpret_cast<HANDLE>(std::stoull(arguments[1]) + 0x1000000);
    if (DuplicateHandle(parent.Get(), bad, GetCurrentProcess(), &wrong, 0, FALSE, DUPLICATE_SAME_ACCESS)) return 6;
    return GetLastError() == ERROR_INVALID_HANDLE ? 0 : 7;
}

// Reads the parent's memory, doubles each byte and writes it back.
CHILD_ROLE(double_memory) {
    platform::ScopedHandle parent(OpenProcess(kMemory, FALSE, static_cast<DWORD>(std::stoul(arguments[0]))));
    if (!parent) return 2;
    std::vector<unsigned char> copy(std::stoul(arguments[2]));
    SIZE_T moved = 0;
    if (!ReadProcessMemory(parent.Get(), FromText<void*>(arguments[1]), copy.data(), copy.size(), &moved)) return 3;
    if (moved != copy.size()) return 4;
    for (unsigned char& byte : copy) byte = static_cast<unsigned char>(2 * byte);
    if (!WriteProcessMemory(parent.Get(), FromText<void*>(arguments[1]), copy.data(), copy.size(), &moved)) return 5;
    return moved == copy.size() ? 0 : 6;
}

TEST(Processes, PassArgumentsOutputAndExitCode) {
    const std::vector<std::string> arguments = {
        "plain", "", "two words", "quo\"te", "back\\slash", "end\\", "\\\"", "a\\\\b c\\\\", "\t", "\"\"",
    };
    ChildProcess child("echo_arguments", arguments);
    ASSERT_TRUE(child.Started());
    DWORD code = 0;
    EXPECT_TRUE(GetExitCodeProcess(child.Process(), &code));
    EXPECT_EQ(code, STILL_ACTIVE);
    EXPECT_EQ(WaitForSingleObject(child.Process(), 0), WAIT_TIMEOUT);
    EXPECT_EQ(WaitForSingleObject(child.Process(), 1), WAIT_TIMEOUT);
    EXPECT_TRUE(child.WriteLine("go"));
    for (const std::string& argument : arguments) EXPECT_EQ(child.ReadLine(), argument);
    EXPECT_EQ(child.Wait(), 42u);
    EXPECT_EQ(WaitForSingleObject(child.Process(), INFINITE), WAIT_OBJECT_0);
    EXPECT_FALSE(child.WriteLine("nobody reads this"));
}

TEST(Processes, TerminateGivesTheCode) {
    ChildProcess child("wait_for_ever");
    EXPECT_EQ(child.ReadLine(), "ready");
    EXPECT_TRUE(TerminateProcess(child.Process(), 1234));
    EXPECT_EQ(child.Wait(), 1234u);
}

TEST(Processes, OpenRefusesWhatIsNone) {
    for (const DWORD id : {0u, 0xFFFFFFFCu, 0x7FFFFFFCu}) {
        EXPECT_EQ(OpenProcess(kMemory, FALSE, id), nullptr) << id;
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER) << id;
    }
}

TEST(Processes, RightsCount) {
    ChildProcess child("wait_for_ever");
    EXPECT_EQ(child.ReadLine(), "ready");
    const platform::ScopedHandle process(OpenProcess(PROCESS_DUP_HANDLE, FALSE, child.Id()));
    ASSERT_TRUE(process);
    char c = 0;
    SIZE_T moved = 9;
    EXPECT_EQ(ErrorOf(ReadProcessMemory(process.Get(), &c, &c, 1, &moved)), ERROR_ACCESS_DENIED);
    EXPECT_EQ(ErrorOf(TerminateProcess(process.Get(), 1)), ERROR_ACCESS_DENIED);
    EXPECT_EQ(child.Wait(), 7u);
}

TEST(Mappings, AreReachedFromAnotherProcess) {
    const platform::ScopedHandle mapping(
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, kSize, nullptr));
    ASSERT_TRUE(mapping);
    const platform::ScopedView view(MapViewOfFile(mapping.Get(), FILE_MAP_READ | FILE_MAP_WRITE, 0, 0, 0));
    auto* const bytes = static_cast<unsigned char*>(view.Get());
    ASSERT_NE(bytes, nullptr);
    std::memset(bytes, 0xAA, kSize);
    ChildProcess child("fill_mapping", {std::to_string(GetCurrentProcessId()), AsText(mapping.Get())});
    ASSERT_TRUE(child.Started());
    EXPECT_EQ(child.Wait(), 0u);
    EXPECT_EQ(bytes[0], 0x55);
    EXPECT_EQ(bytes[kSize - 1], 0x55);
}

TEST(Mappings, ViewsAndTheirLimits) {
    const platform::ScopedHandle mapping(
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, kSize, nullptr));
    constexpr DWORD kMappedAlignment = 1132;
    const struct {
        DWORD access, offset;
        SIZE_T bytes;
        DWORD error;
    } rows[] = {
        {FILE_MAP_READ | FILE_MAP_WRITE, 2 * 65536, 65536, 0},       {FILE_MAP_READ, 0, 0, 0},
        {FILE_MAP_READ, 0, kSize + 65536, ERROR_ACCESS_DENIED},      {FILE_MAP_WRITE, 0, kSize, 0},
        {FILE_MAP_READ, 0, ~SIZE_T{0} - 65536, ERROR_ACCESS_DENIED}, {FILE_MAP_READ, 3 * 65536, 0, 0},
        {FILE_MAP_READ, 5 * 65536, 0, ERROR_ACCESS_DENIED},          {FILE_MAP_READ, 100, 10, kMappedAlignment},
    };
    for (const auto& row : rows) {
        SetLastError(0);
        const platform::ScopedView view(MapViewOfFile(mapping.Get(), row.access, 0, row.offset, row.bytes));
        EXPECT_EQ(static_cast<bool>(view), row.error == 0) << row.offset << ' ' << row.bytes;
        // Which number stands for a view past the end is not told.
        const bool is_told = row.error != ERROR_ACCESS_DENIED;
        EXPECT_TRUE(is_told ? GetLastError() == row.error : GetLastError() != 0) << row.offset << ' ' << row.bytes;
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

TEST(ProcessMemory, MovesBothWays) {
    // A mapping is made somewhere in the life of a process that lends its memory.
    const platform::ScopedHandle mapping(
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 1, nullptr));
    std::vector<unsigned char> data(5'000'001, 3);
    ChildProcess child("double_memory",
                       {std::to_string(GetCurrentProcessId()), AsText(data.data()), std::to_string(data.size())});
    EXPECT_EQ(child.Wait(), 0u);
    EXPECT_EQ(std::count(data.begin(), data.end(), 6), static_cast<std::ptrdiff_t>(data.size()));
}

}  // namespace
