#include <gtest/gtest.h>
#ifndef _WIN32
#include <sys/mman.h>
#include <unistd.h>
#endif

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

#ifndef _WIN32

constexpr std::size_t kPage = 4096;
constexpr uid_t kNobody = 65534;

// As another user, who may not look into the parent.
CHILD_ROLE(open_as_nobody) {
    if (setresuid(kNobody, kNobody, kNobody) != 0) return 2;
    for (const DWORD access : {kMemory, PROCESS_DUP_HANDLE}) {
        if (OpenProcess(access, FALSE, static_cast<DWORD>(getppid()))) return 3;
        if (GetLastError() != ERROR_ACCESS_DENIED) return 4;
    }
    return 0;
}

// Two pages of which only the first can be read.
class HalfReadable {
  public:
    HalfReadable() {
        pages_ =
            static_cast<char*>(mmap(nullptr, 2 * kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        mprotect(pages_ + kPage, kPage, PROT_NONE);
    }
    ~HalfReadable() { munmap(pages_, 2 * kPage); }
    HalfReadable(const HalfReadable&) = delete;
    HalfReadable& operator=(const HalfReadable&) = delete;
    [[nodiscard]] char* End() const { return pages_ + kPage; }

  private:
    char* pages_;
};

TEST(ProcessMemory, ShortAndBadTransfersFail) {
    const HalfReadable pages;
    std::vector<char> here(2 * kPage);
    const HANDLE self = GetCurrentProcess();
    const std::tuple<const char*, SIZE_T, SIZE_T, DWORD> rows[] = {
        {pages.End() - 100, 100, 100, 0},    {pages.End() - 100, 101, 100, ERROR_PARTIAL_COPY},
        {pages.End(), 1, 0, ERROR_NOACCESS}, {pages.End() - 100, kPage, 100, ERROR_PARTIAL_COPY},
        {nullptr, 1, 0, ERROR_NOACCESS},     {nullptr, 0, 0, 0},
    };
    for (const auto& [address, bytes, whole, error] : rows) {
        SIZE_T moved = 99;
        SetLastError(0);
        EXPECT_EQ(ReadProcessMemory(self, address, here.data(), bytes, &moved) != FALSE, error == 0) << bytes;
        EXPECT_EQ(GetLastError(), error) << bytes;
        EXPECT_EQ(std::exchange(moved, 99), whole) << bytes;
        SetLastError(0);
        EXPECT_EQ(WriteProcessMemory(self, const_cast<char*>(address), here.data(), bytes, &moved) != FALSE,
                  error == 0);
        EXPECT_EQ(GetLastError(), error) << bytes;
        EXPECT_EQ(moved, whole) << bytes;
    }
    const std::vector<char> many(5'000'001, 'm');
    std::vector<char> copy(many.size());
    EXPECT_TRUE(ReadProcessMemory(self, many.data(), copy.data(), many.size(), nullptr));
    EXPECT_TRUE(copy == many);
}

TEST(ProcessMemory, AnotherUsersProcessIsRefused) {
    if (geteuid() != 0) GTEST_SKIP() << "only the superuser can start a process as somebody else";
    support::ChildProcess child("open_as_nobody");
    EXPECT_EQ(child.Wait(), 0u);
}

#endif

}  // namespace
