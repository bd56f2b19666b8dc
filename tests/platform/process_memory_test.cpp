#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <iostream>
#include <thread>

#include "platform/scoped.h"
#include "support/child_roles.h"
#include "support/last_error.h"

namespace {

using support::ErrorOf;

constexpr DWORD kMemory = PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE;
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

CHILD_ROLE(end_at_once) { return 5; }

CHILD_ROLE(crash) {
    std::cout << "ready\n" << std::flush;
    raise(SIGKILL);
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
    const struct {
        const char* address;
        SIZE_T bytes, moved;
        DWORD error;
    } rows[] = {
        {pages.End() - 100, 100, 100, 0},    {pages.End() - 100, 101, 100, ERROR_PARTIAL_COPY},
        {pages.End(), 1, 0, ERROR_NOACCESS}, {pages.End() - 100, kPage, 100, ERROR_PARTIAL_COPY},
        {nullptr, 1, 0, ERROR_NOACCESS},     {nullptr, 0, 0, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.bytes);
        SIZE_T moved = 99;
        SetLastError(0);
        EXPECT_EQ(ReadProcessMemory(self, row.address, here.data(), row.bytes, &moved) != FALSE, row.error == 0);
        EXPECT_EQ(GetLastError(), row.error);
        EXPECT_EQ(moved, row.moved);
        SetLastError(0);
        EXPECT_EQ(WriteProcessMemory(self, const_cast<char*>(row.address), here.data(), row.bytes, &moved) != FALSE,
                  row.error == 0);
        EXPECT_EQ(GetLastError(), row.error);
        EXPECT_EQ(moved, row.moved);
    }
}

TEST(ProcessMemory, AProcessThatHasEnded) {
    support::ChildProcess child("end_at_once");
    // Nobody has asked for its end yet, and it counts as gone all the same.
    EXPECT_EQ(WaitForSingleObject(child.Process(), INFINITE), WAIT_OBJECT_0);
    EXPECT_EQ(ErrorOf(OpenProcess(kMemory, FALSE, child.Id())), ERROR_INVALID_PARAMETER);
    char c = 0;
    SIZE_T moved = 9;
    EXPECT_EQ(ErrorOf(ReadProcessMemory(child.Process(), &c, &c, 1, &moved)), ERROR_ACCESS_DENIED);
    EXPECT_EQ(moved, 0u);
    EXPECT_EQ(child.Wait(), 5u);

    support::ChildProcess crashing("crash");
    EXPECT_EQ(crashing.ReadLine(), "ready");
    EXPECT_EQ(crashing.Wait(), 128u + 9u);
}

TEST(ProcessMemory, AnotherUsersProcessIsRefused) {
    if (geteuid() != 0) GTEST_SKIP() << "only the superuser can start a process as somebody else";
    support::ChildProcess child("open_as_nobody");
    EXPECT_EQ(child.Wait(), 0u);
}

TEST(ProcessMemory, ForeignHandlesThatAreNoMappings) {
    support::ChildProcess child("crash");
    EXPECT_EQ(child.ReadLine(), "ready");
    const platform::ScopedHandle mutex(CreateMutexW(nullptr, FALSE, nullptr));
    HANDLE out = reinterpret_cast<HANDLE>(1);
    EXPECT_EQ(ErrorOf(DuplicateHandle(child.Process(), mutex.Get(), GetCurrentProcess(), &out, 0, FALSE, 0)),
              ERROR_NOT_SUPPORTED);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(ErrorOf(DuplicateHandle(child.Process(), &out, GetCurrentProcess(), &out, 0, FALSE, 0)),
              ERROR_INVALID_HANDLE);
    EXPECT_EQ(ErrorOf(DuplicateHandle(GetCurrentProcess(), mutex.Get(), child.Process(), &out, 0, FALSE, 0)),
              ERROR_NOT_SUPPORTED);
}

}  // namespace
