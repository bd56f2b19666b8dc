#include "kernel/kt_list.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

#include "kernel/kt_list_parts.h"
#include "platform/memory.h"

namespace clipfio::list {
namespace {

constexpr uint32_t kSignature = 0x534C544B;
constexpr int32_t kDefaultSlots = 16;
constexpr int32_t kLeastSlots = 4;
constexpr int32_t kMostGrowBy = 0x10400;
constexpr uintptr_t kMostItemSize = std::numeric_limits<intptr_t>::max() - 3;

// `slots` rounded up to a multiple of the list's quantum.
int64_t Rounded(const tKTLIST& list, int64_t slots) noexcept {
    return (slots + list.grow_by - 1) / list.grow_by * list.grow_by;
}

// A zero-filled array, null when out of memory or more than can be counted.
void* NewArray(const tKTLIST& list, int64_t slots) noexcept {
    if (slots > std::numeric_limits<int32_t>::max()) return nullptr;
    const auto most = static_cast<uint64_t>(std::numeric_limits<intptr_t>::max()) / list.item_size;
    if (static_cast<uint64_t>(slots) > most) return nullptr;
    return GlobalAlloc(GPTR, BytesOf(list, static_cast<int32_t>(slots)));
}

[[nodiscard]] HRESULT SetAllocated(tKTLIST& list, int64_t slots) noexcept {
    void* const array = NewArray(list, slots);
    if (!array) return E_OUTOFMEMORY;
    std::memcpy(array, list.array, BytesOf(list, static_cast<int32_t>(std::min<int64_t>(list.allocated, slots))));
    GlobalFree(list.array);
    list.array = array;
    list.allocated = static_cast<int32_t>(slots);
    return S_OK;
}

// Items of a heap list.
void* NewItem(const tKTLIST& list, uintptr_t bytes) noexcept {
    return list.heap ? HeapAlloc(list.heap, list.heap_allocation_flags, bytes) : GlobalAlloc(GPTR, bytes);
}

void FreeItem(const tKTLIST& list, void* item) noexcept {
    if (list.heap) {
        HeapFree(list.heap, list.heap_free_flags, item);
    } else {
        GlobalFree(item);
    }
}

uintptr_t SizeOfItem(const tKTLIST& list, void* item) noexcept {
    return list.heap ? HeapSize(list.heap, list.heap_free_flags, item) : GlobalSize(item);
}

bool HasIndex(const tKTLIST& list, int32_t index) noexcept { return index >= 0 && index < list.count; }

// A copy of bytes that are about to be moved over: short ones lie in the object.
class Scratch {
  public:
    Scratch(const void* bytes, std::size_t size) noexcept
        : bytes_(size <= sizeof local_ ? local_ : static_cast<char*>(GlobalAlloc(GMEM_FIXED, size))) {
        if (bytes_) std::memcpy(bytes_, bytes, size);
    }
    ~Scratch() {
        if (bytes_ != local_) GlobalFree(bytes_);
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
    [[nodiscard]] const char* Get() const noexcept { return bytes_; }  // null when out of memory

  private:
    char local_[512];
    char* bytes_;
};

// Slots are closed up and what they leave is cleared.
void CloseGap(tKTLIST& list, int32_t index, int32_t count) noexcept {
    char* const gap = SlotOf(list, index);
    std::memmove(gap, SlotOf(list, index + count), BytesOf(list, list.count - index - count));
    list.count -= count;
    std::memset(SlotOf(list, list.count), 0, BytesOf(list, count));
}

void CloseLock(tKTLIST& list) noexcept {
    if (list.options & KTLIST_LOCKED) DeleteCriticalSection(&list.lock);
}

HRESULT Init(tKTLIST& list, uintptr_t item_size, int32_t initial_count, int32_t grow_by, uint32_t options) noexcept {
    const bool in_place = (options & KTLIST_IN_PLACE) != 0;
    if (in_place && (item_size == 0 || item_size > kMostItemSize)) return E_INVALIDARG;
    list.item_size = in_place ? (item_size + 3) & ~uintptr_t{3} : sizeof(void*);
    list.grow_by = std::clamp(grow_by < 1 ? kDefaultSlots : grow_by, kLeastSlots, kMostGrowBy);
    const int64_t slots = Rounded(list, std::max(initial_count < 1 ? kDefaultSlots : initial_count, kLeastSlots));
    list.array = NewArray(list, slots);
    if (!list.array) return E_OUTOFMEMORY;
    list.allocated = static_cast<int32_t>(slots);
    list.heap_allocation_flags = HEAP_NO_SERIALIZE | HEAP_ZERO_MEMORY;
    list.heap_free_flags = HEAP_NO_SERIALIZE;
    if ((options & KTLIST_HEAP) && (options & KTLIST_PRIVATE_HEAP)) {
        list.heap = HeapCreate(HEAP_NO_SERIALIZE, 4096, 0);
        if (!list.heap) {
            GlobalFree(list.array);
            return E_OUTOFMEMORY;
        }
    }
    if (options & KTLIST_LOCKED) InitializeCriticalSection(&list.lock);
    list.thread_owner = GetCurrentThreadId();
    list.options = options | KTLIST_ANY_THREAD;
    list.signature = kSignature;
    return S_OK;
}

void FreeItems(tKTLIST& list) noexcept {
    if (list.heap) {
        HeapDestroy(list.heap);
    } else if (IsHeap(list)) {
        for (int32_t i = 0; i < list.count; ++i) FreeItem(list, PointerAt(list, i));
        if (list.pending_item) FreeItem(list, list.pending_item);
    }
}

[[nodiscard]] HRESULT Discard(tKTLIST& list) noexcept {
    if (!list.pending_item) return E_FAIL;
    FreeItem(list, list.pending_item);
    list.pending_item = nullptr;
    return S_OK;
}

// Copies of a range of the source's items in the free slots of the destination, which has room for them.
[[nodiscard]] HRESULT CopyItems(tKTLIST& destination, const tKTLIST& source, int32_t start, int32_t count) noexcept {
    void** const copies = &PointerAt(destination, destination.count);
    for (int32_t i = 0; i < count; ++i) {
        void* const item = PointerAt(source, start + i);
        const uintptr_t bytes = SizeOfItem(source, item);
        copies[i] = NewItem(destination, bytes);
        if (copies[i]) {
            std::memcpy(copies[i], item, bytes);
            continue;
        }
        while (i-- > 0) FreeItem(destination, std::exchange(copies[i], nullptr));
        return E_OUTOFMEMORY;
    }
    return S_OK;
}

}  // namespace

HRESULT EnsureRoom(tKTLIST& list, int64_t more) noexcept {
    const int64_t missing = list.count + more - list.allocated;
    return missing > 0 ? SetAllocated(list, list.allocated + Rounded(list, missing)) : S_OK;
}

char* OpenGap(tKTLIST& list, int32_t index, int32_t count) noexcept {
    char* const gap = SlotOf(list, index);
    std::memmove(SlotOf(list, index + count), gap, BytesOf(list, list.count - index));
    list.count += count;
    return gap;
}

}  // namespace clipfio::list

using namespace clipfio::list;

HRESULT KtList_CreateExZ(tKTLIST** list, uintptr_t item_size, int32_t initial_count, int32_t grow_by, uint32_t options,
                         const void*, const void*, int32_t) noexcept {
    const bool callers = (options & KTLIST_CALLER_STORAGE) != 0;
    if (!list || (callers && !*list)) return E_FAIL;
    if (callers) {
        **list = {};
    } else {
        *list = nullptr;
    }
    if ((options & KTLIST_HEAP) && (options & KTLIST_IN_PLACE)) return E_FAIL;
    tKTLIST* const made = callers ? *list : static_cast<tKTLIST*>(GlobalAlloc(GPTR, sizeof(tKTLIST)));
    if (!made) return E_OUTOFMEMORY;
    const HRESULT result = Init(*made, item_size, initial_count, grow_by, options);
    if (FAILED(result) && !callers) GlobalFree(made);
    if (FAILED(result) && callers) *made = {};
    if (SUCCEEDED(result)) *list = made;
    return result;
}

HRESULT KtList_Destroy(tKTLIST* list) noexcept {
    if (!list) return S_OK;
    {
        const Use use(list);
        if (!use) return E_FAIL;
        FreeItems(*list);
        GlobalFree(list->array);
        list->signature = 0;
    }
    CloseLock(*list);
    const bool callers = (list->options & KTLIST_CALLER_STORAGE) != 0;
    *list = {};
    if (!callers) GlobalFree(list);
    return S_OK;
}

HRESULT KtList_ConvertToInPlace(tKTLIST** list, tKTLIST* storage) noexcept {
    if (!list || !storage || storage == *list || !KtList_IsListFast(*list)) return E_INVALIDARG;
    tKTLIST* const old = *list;
    if (old->options & KTLIST_CALLER_STORAGE) return E_FAIL;
    *storage = *old;
    storage->options |= KTLIST_CALLER_STORAGE;
    if (storage->options & KTLIST_LOCKED) {
        // A lock cannot be moved.
        storage->lock = {};
        InitializeCriticalSection(&storage->lock);
    }
    CloseLock(*old);
    old->signature = 0;
    GlobalFree(old);
    *list = nullptr;
    return S_OK;
}

HRESULT KtList_InsertList(tKTLIST* list, int32_t index, const void* items, int32_t count) noexcept {
    const Use use(list);
    if (!use) return E_FAIL;
    const bool pending = IsHeap(*list) && !items;
    if (pending) {
        if (count != -1 || !list->pending_item) return E_FAIL;
        items = &list->pending_item;
    } else if (!items || (IsHeap(*list) ? count >= 0 : count <= 0)) {
        return E_FAIL;
    }
    const int64_t wanted = std::abs(int64_t{count});
    if (wanted > std::numeric_limits<int32_t>::max() - list->count) return E_OUTOFMEMORY;
    const auto n = static_cast<int32_t>(wanted);
    if (index < 0 || index > list->count) index = list->count;

    const auto first = reinterpret_cast<uintptr_t>(items);
    const auto array = reinterpret_cast<uintptr_t>(list->array);
    if (first >= array && first - array < BytesOf(*list, list->allocated)) {
        // Items of the list itself, which are about to be moved.
        if (BytesOf(*list, n) > BytesOf(*list, list->allocated) - (first - array)) return E_FAIL;
        const Scratch copy(items, BytesOf(*list, n));
        return copy.Get() ? KtList_InsertList(list, index, copy.Get(), count) : E_OUTOFMEMORY;
    }
    if (const HRESULT result = EnsureRoom(*list, n); FAILED(result)) return result;
    std::memcpy(OpenGap(*list, index, n), items, BytesOf(*list, n));
    if (pending) list->pending_item = nullptr;
    return S_OK;
}

HRESULT KtList_DeleteList(tKTLIST* list, int32_t index, int32_t count, int32_t shrink) noexcept {
    const Use use(list);
    if (!use) return E_FAIL;
    if (count < 0 && index < 0) return Discard(*list);
    if (count < 0) count = list->count - index;
    if (count < 1) return S_OK;
    if (!HasIndex(*list, index)) return E_FAIL;
    count = std::min(count, list->count - index);
    if (IsHeap(*list)) {
        for (int32_t i = index; i < index + count; ++i) FreeItem(*list, PointerAt(*list, i));
    }
    CloseGap(*list, index, count);
    // The items are gone, also when there is no memory for a smaller array.
    if (shrink && list->allocated - list->count > list->grow_by) static_cast<void>(KtList_ShrinkAllocated(list, -1));
    return S_OK;
}

HRESULT KtList_MoveRange(tKTLIST* list, int32_t from, int32_t to, int32_t count) noexcept {
    const Use use(list);
    if (!use) return E_FAIL;
    if (from < 0) return E_INVALIDARG;
    to = std::max(to, 0);
    if (count < 0) {
        count = list->count - std::max(from, to);
        if (count < 0) return E_FAIL;
    }
    if (count == 0) return S_OK;
    if (count > list->count || from > list->count - count || to > list->count - count) return E_FAIL;
    if (from == to) return S_OK;
    const std::size_t bytes = BytesOf(*list, count);
    const Scratch block(SlotOf(*list, from), bytes);
    if (!block.Get()) return E_OUTOFMEMORY;
    if (from < to) {
        std::memmove(SlotOf(*list, from), SlotOf(*list, from + count), BytesOf(*list, to - from));
    } else {
        std::memmove(SlotOf(*list, to + count), SlotOf(*list, to), BytesOf(*list, from - to));
    }
    std::memcpy(SlotOf(*list, to), block.Get(), bytes);
    return S_OK;
}

HRESULT KtList_GrowAllocated(tKTLIST* list, int32_t slots) noexcept {
    const Use use(list);
    if (!use) return E_FAIL;
    return SetAllocated(*list, list->allocated + Rounded(*list, slots < 1 ? list->grow_by : slots));
}

HRESULT KtList_ShrinkAllocated(tKTLIST* list, int32_t slots) noexcept {
    const Use use(list);
    if (!use) return E_FAIL;
    const int32_t slack = list->allocated - list->count;
    int64_t away = Rounded(*list, slots < 0 ? slack : std::min(slots, slack));
    if (away > slack) away -= list->grow_by;
    return away > 0 ? SetAllocated(*list, std::max<int64_t>(list->allocated - away, 1)) : S_OK;
}

HRESULT KtList_ArrayForceItemCount(tKTLIST* list, int32_t count, int32_t) noexcept {
    const Use use(list);
    if (!use || !IsInPlace(*list) || count < 0) return E_FAIL;
    if (const HRESULT result = EnsureRoom(*list, int64_t{count} - list->count); FAILED(result)) return result;
    list->count = count;
    return S_OK;
}

HRESULT KtList_AllocItem(tKTLIST* list, uintptr_t bytes, void** item) noexcept {
    if (item) *item = nullptr;
    const Use use(list);
    if (!use || !IsHeap(*list) || list->pending_item) return E_FAIL;
    list->pending_item = NewItem(*list, bytes);
    if (item) *item = list->pending_item;
    return list->pending_item ? S_OK : E_OUTOFMEMORY;
}

HRESULT KtList_AllocAndInsertItem(tKTLIST* list, const void* data, uintptr_t bytes, int32_t index,
                                  int32_t* place) noexcept {
    if (place) *place = -1;
    const Use use(list);
    if (!use) return E_FAIL;
    void* item = nullptr;
    if (const HRESULT result = KtList_AllocItem(list, bytes, &item); FAILED(result)) return result;
    if (data) std::memcpy(item, data, bytes);
    if (index < 0 || index > list->count) index = list->count;
    const HRESULT result = KtList_InsertList(list, index, nullptr, -1);
    if (FAILED(result)) {
        static_cast<void>(Discard(*list));
    } else if (place) {
        *place = index;
    }
    return result;
}

HRESULT KtList_ReAllocItem(tKTLIST* list, int32_t index, uintptr_t bytes) noexcept {
    const Use use(list);
    if (!use || !IsHeap(*list) || !HasIndex(*list, index)) return E_FAIL;
    void*& item = PointerAt(*list, index);
    void* moved = nullptr;
    if (list->heap) {
        moved = HeapReAlloc(list->heap, list->heap_allocation_flags, item, bytes);
    } else if ((moved = NewItem(*list, bytes)) != nullptr) {
        std::memcpy(moved, item, std::min<uintptr_t>(bytes, SizeOfItem(*list, item)));
        FreeItem(*list, item);
    }
    if (!moved) return E_OUTOFMEMORY;
    item = moved;
    return S_OK;
}

intptr_t KtList_AllocSize(tKTLIST* list, int32_t index) noexcept {
    const Use use(list);
    if (!use || index >= list->count) return -1;
    const auto size_of = [list](int32_t i) {
        return IsHeap(*list) ? SizeOfItem(*list, PointerAt(*list, i)) : list->item_size;
    };
    if (index >= 0) return static_cast<intptr_t>(size_of(index));
    uintptr_t bytes = sizeof(tKTLIST) + BytesOf(*list, list->allocated);
    if (IsHeap(*list)) {
        for (int32_t i = 0; i < list->count; ++i) bytes += size_of(i);
    }
    return static_cast<intptr_t>(bytes);
}

HRESULT KtList_MoveItemsBetweenHeapLists(tKTLIST* destination, int32_t index, tKTLIST* source, int32_t start,
                                         int32_t count) noexcept {
    const Use use_destination(destination);
    const Use use_source(source);
    if (!use_destination || !use_source || destination == source) return E_FAIL;
    if (!IsHeap(*destination) || !IsHeap(*source) || destination->pending_item) return E_FAIL;
    if (count < 0) count = source->count;
    if (start < 0 || start > source->count || count > source->count - start) return E_FAIL;
    if (index < 0 || index > destination->count) index = destination->count;
    if (const HRESULT result = EnsureRoom(*destination, count); FAILED(result)) return result;
    // They come to lie behind the destination's last item, and change places with its tail when nothing can fail any
    // more.
    void** const landing = &PointerAt(*destination, destination->count);
    if (destination->heap == source->heap) {
        std::copy_n(&PointerAt(*source, start), count, landing);
    } else {
        if (const HRESULT result = CopyItems(*destination, *source, start, count); FAILED(result)) return result;
        for (int32_t i = start; i < start + count; ++i) FreeItem(*source, PointerAt(*source, i));
    }
    std::rotate(&PointerAt(*destination, index), landing, landing + count);
    destination->count += count;
    CloseGap(*source, start, count);
    return S_OK;
}

uintptr_t KtList_SetUserData(tKTLIST* list, uintptr_t value) noexcept {
    return KtList_IsListFast(list) ? std::atomic_ref(list->user_data).exchange(value) : 0;
}

uintptr_t KtList_GetUserData(tKTLIST* list) noexcept {
    return KtList_IsListFast(list) ? std::atomic_ref(list->user_data).load() : 0;
}

uint32_t KtList_GetCreateOptions(tKTLIST* list) noexcept { return KtList_IsListFast(list) ? list->options : 0; }

uintptr_t KtList_GetSortCriteria(tKTLIST* list) noexcept { return KtList_IsListFast(list) ? list->sort_criteria : 0; }

uint32_t KtList_GetThreadOwner(tKTLIST* list) noexcept { return KtList_IsListFast(list) ? list->thread_owner : 0; }

HRESULT KtList_SetThreadOwner(tKTLIST* list, uint32_t thread) noexcept {
    if (!KtList_IsListFast(list)) return E_FAIL;
    list->thread_owner = thread ? thread : GetCurrentThreadId();
    return S_OK;
}

int32_t KtList_IsList(const void* list, uintptr_t bytes) noexcept {
    return bytes == sizeof(tKTLIST) && !IsBadReadPtr(list, bytes) && KtList_IsListFast(list);
}

int32_t KtList_IsListFast(const void* list) noexcept {
    return list && static_cast<const tKTLIST*>(list)->signature == kSignature;
}

int32_t KtList_IsValidIndexSlow(tKTLIST* list, int32_t index) noexcept {
    const Use use(list);
    return use && HasIndex(*list, index);
}

int32_t KtList_GetFileAndLine(tKTLIST*, WCHAR* file) noexcept {
    if (file) *file = 0;
    return -1;
}
