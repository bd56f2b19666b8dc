// Private heaps: blocks of the C runtime, each in a ring of its heap, so that they go with it.
#include <pthread.h>

#include <cstdlib>
#include <cstring>
#include <new>

#include "errors.h"
#include "fault_point.h"
#include "platform/memory.h"
#include "safe_memory.h"

namespace {

using platform::Fail;
using platform::PthreadLock;

struct Heap;

struct alignas(16) Block {
    std::uint64_t cookie;  // kCookie and the block's own address
    Heap* owner;
    Block* previous;
    Block* next;
    std::size_t size;
};

struct Heap {
    std::uint64_t cookie;
    pthread_mutex_t lock;
    Block ring;
};

constexpr std::uint64_t kCookie = 0xC1A0B10C5EEDB10C;
// Above this no allocator of ours is asked, sanitizers' included.
constexpr std::uint64_t kMaxBytes = (1ull << 40) - 4096;
constexpr auto kNoSize = static_cast<SIZE_T>(-1);

// Foreign memory lies behind an address that is no block, so the checked builds must not look over our shoulder.
__attribute__((no_sanitize("address", "thread"))) bool HasCookie(const std::uint64_t* cookie) noexcept {
    return *const_cast<const volatile std::uint64_t*>(cookie) == (kCookie ^ reinterpret_cast<std::uintptr_t>(cookie));
}

template <class T>
T* Checked(std::uintptr_t address) noexcept {
    if (address < sizeof(T) || address % alignof(T) != 0) return nullptr;
    auto* const object = reinterpret_cast<T*>(address);
    return platform::IsReadable(&object->cookie) && HasCookie(&object->cookie) ? object : nullptr;
}

Heap* HeapOf(HANDLE handle) noexcept { return Checked<Heap>(reinterpret_cast<std::uintptr_t>(handle)); }

Block* BlockOf(const Heap& heap, const void* data) noexcept {
    auto* const block = Checked<Block>(reinterpret_cast<std::uintptr_t>(data) - sizeof(Block));
    return block && block->owner == &heap ? block : nullptr;
}

void* DataOf(Block& block) noexcept { return &block + 1; }

void Link(Heap& heap, Block& block) noexcept {
    block.cookie = kCookie ^ reinterpret_cast<std::uintptr_t>(&block);
    block.owner = &heap;
    block.previous = heap.ring.previous;
    block.next = &heap.ring;
    block.previous->next = &block;
    block.next->previous = &block;
}

void Unlink(Block& block) noexcept {
    block.cookie = 0;
    block.previous->next = block.next;
    block.next->previous = block.previous;
}

// New and not yet linked; null when out of memory.
Block* NewBlock(DWORD flags, std::size_t bytes) noexcept {
    if (platform::FaultHere() || bytes > kMaxBytes) return nullptr;
    const std::size_t all = sizeof(Block) + bytes;
    void* const memory = flags & HEAP_ZERO_MEMORY ? std::calloc(1, all) : std::malloc(all);
    if (!memory) return nullptr;
    auto* const block = new (memory) Block{};
    block->size = bytes;
    return block;
}

}  // namespace

extern "C" HANDLE HeapCreate(DWORD, SIZE_T, SIZE_T) noexcept {
    if (platform::FaultHere()) return Fail<HANDLE>(ERROR_NOT_ENOUGH_MEMORY, nullptr);
    auto* const heap = new (std::nothrow) Heap{};
    if (!heap) return Fail<HANDLE>(ERROR_NOT_ENOUGH_MEMORY, nullptr);
    heap->cookie = kCookie ^ reinterpret_cast<std::uintptr_t>(&heap->cookie);
    pthread_mutex_init(&heap->lock, nullptr);
    heap->ring.previous = heap->ring.next = &heap->ring;
    return heap;
}

extern "C" BOOL HeapDestroy(HANDLE handle) noexcept {
    Heap* const heap = HeapOf(handle);
    if (!heap) return Fail(ERROR_INVALID_HANDLE);
    heap->cookie = 0;
    for (Block* block = heap->ring.next; block != &heap->ring;) {
        Block* const next = block->next;
        block->cookie = 0;
        std::free(block);
        block = next;
    }
    pthread_mutex_destroy(&heap->lock);
    delete heap;
    return TRUE;
}

extern "C" void* HeapAlloc(HANDLE handle, DWORD flags, SIZE_T bytes) noexcept {
    Heap* const heap = HeapOf(handle);
    Block* const block = heap ? NewBlock(flags, bytes) : nullptr;
    if (!block) return nullptr;
    PthreadLock lock(heap->lock);
    Link(*heap, *block);
    return DataOf(*block);
}

extern "C" void* HeapReAlloc(HANDLE handle, DWORD flags, void* data, SIZE_T bytes) noexcept {
    Heap* const heap = HeapOf(handle);
    if (!heap) return nullptr;
    PthreadLock lock(heap->lock);
    Block* const old = BlockOf(*heap, data);
    Block* const block = old ? NewBlock(flags, bytes) : nullptr;
    if (!block) return nullptr;
    std::memcpy(DataOf(*block), data, old->size < bytes ? old->size : bytes);
    Link(*heap, *block);
    Unlink(*old);
    std::free(old);
    return DataOf(*block);
}

extern "C" BOOL HeapFree(HANDLE handle, DWORD, void* data) noexcept {
    if (!data) return TRUE;
    Heap* const heap = HeapOf(handle);
    if (!heap) return Fail(ERROR_INVALID_HANDLE);
    PthreadLock lock(heap->lock);
    Block* const block = BlockOf(*heap, data);
    if (!block) return Fail(ERROR_INVALID_PARAMETER);
    Unlink(*block);
    std::free(block);
    return TRUE;
}

extern "C" SIZE_T HeapSize(HANDLE handle, DWORD, const void* data) noexcept {
    Heap* const heap = HeapOf(handle);
    if (!heap) return Fail(ERROR_INVALID_HANDLE, kNoSize);
    PthreadLock lock(heap->lock);
    const Block* const block = BlockOf(*heap, data);
    return block ? block->size : Fail(ERROR_INVALID_PARAMETER, kNoSize);
}
