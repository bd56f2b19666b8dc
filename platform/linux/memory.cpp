#include "platform/memory.h"

#include <atomic>
#include <cstdlib>
#include <new>

#include "errors.h"
#include "fault_point.h"
#include "safe_memory.h"

// Every block carries its own description, because either side of the module boundary frees what the other made and
// each has its own copy of this code.
namespace {

using platform::Fail;

// 16 bytes, so that the data keeps malloc's alignment and the header never straddles a page.
struct Header {
    std::uint64_t cookie;              // kCookie and the header's own address: a copied or freed header is none
    std::atomic<std::uint64_t> state;  // size, then lock count, then flags
};
static_assert(sizeof(Header) == 16);

constexpr std::uint64_t kCookie = 0xC1A0B10C5EED0001;
constexpr std::uint64_t kMoveable = 1;
constexpr unsigned kLocksShift = 8;
constexpr std::uint64_t kOneLock = 1u << kLocksShift;
constexpr std::uint64_t kMaxLocks = 0xFF;
constexpr unsigned kSizeShift = 16;
// Above this no allocator of ours is asked, sanitizers' included.
constexpr std::uint64_t kMaxBytes = (1ull << 40) - 4096;
// A moveable block's handle: its data address with this bit, which no data address has.
constexpr std::uintptr_t kHandleBit = 8;
constexpr UINT kKnownFlags = 0x7F72;

std::uint64_t CookieOf(const Header* header) noexcept { return kCookie ^ reinterpret_cast<std::uintptr_t>(header); }

// Whether an address can be looked at at all is a question to the kernel, which takes long. Blocks that were made and
// not freed since need no asking: each is noted in the one place that its address leads to, over what stood there
// before.
std::atomic<std::uintptr_t>& KnownPlace(const Header* header) noexcept {
    constexpr unsigned kPlaceBits = 12;
    static_assert(1u << kPlaceBits == platform::kKnownBlocks);
    constexpr std::uint64_t kSpread = 0x9E3779B97F4A7C15;
    const auto address = reinterpret_cast<std::uintptr_t>(header);
    return platform::Shared().known_blocks[(address / sizeof(Header)) * kSpread >> (64 - kPlaceBits)];
}

bool IsKnown(const Header* header) noexcept {
    return KnownPlace(header).load(std::memory_order_acquire) == reinterpret_cast<std::uintptr_t>(header);
}

void Note(const Header* header) noexcept {
    KnownPlace(header).store(reinterpret_cast<std::uintptr_t>(header), std::memory_order_release);
}

void Forget(const Header* header) noexcept {
    auto address = reinterpret_cast<std::uintptr_t>(header);
    KnownPlace(header).compare_exchange_strong(address, 0);
}

// Foreign memory lies behind an address that is no block, so the checked builds must not look over our shoulder.
__attribute__((no_sanitize("address", "thread"))) bool HasCookie(const Header* header) noexcept {
    return *const_cast<const volatile std::uint64_t*>(&header->cookie) == CookieOf(header);
}

Header* HeaderOfData(std::uintptr_t data) noexcept {
    if (data <= sizeof(Header) || data % sizeof(Header) != 0) return nullptr;
    auto* const header = reinterpret_cast<Header*>(data - sizeof(Header));
    return (IsKnown(header) || platform::IsReadable(header)) && HasCookie(header) ? header : nullptr;
}

bool IsMoveable(const Header* header) noexcept { return (header->state.load() & kMoveable) != 0; }
std::uint64_t SizeOf(const Header* header) noexcept { return header->state.load() >> kSizeShift; }
void* DataOf(Header* header) noexcept { return header + 1; }

HGLOBAL HandleOf(Header* header) noexcept {
    const auto data = reinterpret_cast<std::uintptr_t>(DataOf(header));
    return reinterpret_cast<HGLOBAL>(IsMoveable(header) ? data | kHandleBit : data);
}

Header* HeaderOfHandle(HGLOBAL block) noexcept {
    const auto value = reinterpret_cast<std::uintptr_t>(block);
    Header* const header = HeaderOfData(value & ~kHandleBit);
    return header && HandleOf(header) == block ? header : nullptr;
}

}  // namespace

extern "C" HGLOBAL GlobalAlloc(UINT flags, SIZE_T bytes) noexcept {
    if ((flags & ~kKnownFlags) != 0) return Fail<HGLOBAL>(ERROR_INVALID_PARAMETER, nullptr);
    if (platform::FaultHere() || bytes > kMaxBytes) return Fail<HGLOBAL>(ERROR_NOT_ENOUGH_MEMORY, nullptr);
    const std::size_t all = sizeof(Header) + bytes;
    void* const memory = flags & GMEM_ZEROINIT ? std::calloc(1, all) : std::malloc(all);
    if (!memory) return Fail<HGLOBAL>(ERROR_NOT_ENOUGH_MEMORY, nullptr);
    auto* const header = new (memory) Header;
    header->cookie = CookieOf(header);
    header->state.store(bytes << kSizeShift | (flags & GMEM_MOVEABLE ? kMoveable : 0));
    Note(header);
    return HandleOf(header);
}

// A locked block is freed all the same.
extern "C" HGLOBAL GlobalFree(HGLOBAL block) noexcept {
    if (!block) return nullptr;
    Header* const header = HeaderOfHandle(block);
    if (!header) return Fail(ERROR_INVALID_HANDLE, block);
    Forget(header);
    // Of two who free the same block one is told that it is none.
    if (std::atomic_ref(header->cookie).exchange(0) != CookieOf(header)) return Fail(ERROR_INVALID_HANDLE, block);
    std::free(header);
    return nullptr;
}

extern "C" void* GlobalLock(HGLOBAL block) noexcept {
    Header* const header = HeaderOfHandle(block);
    if (!header) return Fail<void*>(ERROR_INVALID_HANDLE, nullptr);
    if (!IsMoveable(header)) return DataOf(header);
    if (SizeOf(header) == 0) return Fail<void*>(platform::ERROR_DISCARDED, nullptr);
    std::uint64_t state = header->state.load();
    // A full count stays full, as there is no room to count further.
    while ((state >> kLocksShift & kMaxLocks) != kMaxLocks &&
           !header->state.compare_exchange_weak(state, state + kOneLock)) {
    }
    return DataOf(header);
}

extern "C" BOOL GlobalUnlock(HGLOBAL block) noexcept {
    Header* const header = HeaderOfHandle(block);
    if (!header) return Fail(ERROR_INVALID_HANDLE);
    if (!IsMoveable(header)) return TRUE;
    std::uint64_t state = header->state.load();
    do {
        if ((state >> kLocksShift & kMaxLocks) == 0) return Fail(platform::ERROR_NOT_LOCKED);
    } while (!header->state.compare_exchange_weak(state, state - kOneLock));
    if ((state >> kLocksShift & kMaxLocks) > 1) return TRUE;
    return Fail(ERROR_SUCCESS);
}

extern "C" HGLOBAL GlobalHandle(const void* address) noexcept {
    Header* const header = HeaderOfData(reinterpret_cast<std::uintptr_t>(address));
    return header ? HandleOf(header) : Fail<HGLOBAL>(ERROR_INVALID_HANDLE, nullptr);
}

extern "C" SIZE_T GlobalSize(HGLOBAL block) noexcept {
    Header* const header = HeaderOfHandle(block);
    return header ? SizeOf(header) : Fail<SIZE_T>(ERROR_INVALID_HANDLE, 0);
}
