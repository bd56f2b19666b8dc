// What our own layer does with wild blocks, unreadable memory and the environment, and no other platform is asked for.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <tuple>
#include <utility>

#include "platform/locale.h"
#include "platform/memory.h"
#include "platform/scoped.h"
#include "support/child_roles.h"
#include "support/last_error.h"
#include "support/scoped_variable.h"

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

TEST(WildBlocks, AreRefused) {
    alignas(64) unsigned char on_stack[256] = {};
    const HGLOBAL fixed = GlobalAlloc(GPTR, 64);
    const HGLOBAL moveable = GlobalAlloc(GHND, 64);
    auto* const inside = static_cast<unsigned char*>(fixed) + 16;
    void* const moveable_data = GlobalLock(moveable);
    // A copy of a block with its header is no block.
    std::memcpy(on_stack + 64, static_cast<unsigned char*>(fixed) - 16, 80);
    std::vector<void*> bad = {on_stack + 128, on_stack + 80, inside, inside + 3, moveable_data};
    for (const std::uintptr_t wild : {std::uintptr_t{0}, std::uintptr_t{1}, std::uintptr_t{16}, std::uintptr_t{0x1000},
                                      ~std::uintptr_t{0}, ~std::uintptr_t{15}, std::uintptr_t{7} << 60}) {
        bad.push_back(reinterpret_cast<void*>(wild));
    }
    for (void* const block : bad) {
        SCOPED_TRACE(block);
        SetLastError(0);
        EXPECT_EQ(ErrorOf(GlobalLock(block)), ERROR_INVALID_HANDLE);
        EXPECT_FALSE(GlobalUnlock(block));
        EXPECT_EQ(GlobalSize(block), 0u);
        EXPECT_EQ(GlobalFree(block), block);
        EXPECT_EQ(GlobalHandle(block), block == moveable_data ? moveable : nullptr);
    }
    for (const HGLOBAL block : {fixed, moveable}) {
        EXPECT_EQ(GlobalFree(block), nullptr);
        EXPECT_EQ(GlobalFree(block), block);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    }
}

TEST(Locale, ComesFromTheEnvironment) {
    // By KT_LCID, LC_ALL and LANG.
    const std::tuple<const WCHAR*, const WCHAR*, const WCHAR*, LCID> rows[] = {
        {W("1031"), W("fr_FR"), nullptr, 0x0407},        {W("0x411"), W("fr_FR"), nullptr, 0x0411},
        {W("0X0C0A"), nullptr, nullptr, 0x0C0A},         {W("nonsense"), W("fr_FR"), nullptr, 0x040C},
        {W("0"), W("fr_FR"), nullptr, 0x040C},           {W("12ab"), nullptr, W("it_IT"), 0x0410},
        {W("0xFFFFFFFFF"), nullptr, W("it_IT"), 0x0410}, {W("0x3FF"), nullptr, W("it_IT"), 0x0410},
        {W("0x400"), nullptr, W("it_IT"), 0x0410},       {W(""), W(""), W("ko_KR.UTF-8"), 0x0412},
        {nullptr, W("tr_TR.UTF-8"), W("de_DE"), 0x041F}, {nullptr, W("de_DE.UTF-8@euro"), nullptr, 0x0407},
        {nullptr, W("de_AT"), nullptr, 0x0C07},          {nullptr, W("de_XX"), nullptr, 0x0407},
        {nullptr, W("pt_BR"), nullptr, 0x0416},          {nullptr, W("pt"), nullptr, 0x0416},
        {nullptr, W("zh_TW"), nullptr, 0x0404},          {nullptr, W("zh"), nullptr, 0x0804},
        {nullptr, W("C"), W("sv_SE"), 0x041D},           {nullptr, W("C.UTF-8"), W("POSIX"), 0x0409},
        {nullptr, W("tlh_QO"), W("nb_NO"), 0x0414},      {nullptr, nullptr, nullptr, 0x0409},
    };
    for (const auto& [number, all, lang, expected] : rows) {
        const support::ScopedVariable first(W("KT_LCID"), number), then(W("LC_ALL"), all), last(W("LANG"), lang);
        EXPECT_EQ(GetUserDefaultLCID(), expected);
        EXPECT_EQ(GetSystemDefaultLCID(), expected);
    }
}

}  // namespace
