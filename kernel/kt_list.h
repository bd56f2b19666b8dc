// The kernel's dynamic array: fixed-size items in place, pointers to items that the list owns (a heap list), or plain
// pointers that it does not own.
//
// The record is open: `count` and `array` may be read, and `lock` may be taken around several calls of a list with
// KTLIST_LOCKED, whose operations then are safe from any thread. Other lists are for one thread at a time.
//
// Where nothing else is told, results are 0, E_OUTOFMEMORY with the list as it was, or E_FAIL for what is no list, the
// wrong kind of list, a bad index or a conflict over the pending item. Searches give an index or -1. Items are counted,
// never bytes, and an item in place is always of the list's `item_size`, which what is handed in must have as well.
// Functions that are called back must leave the list as it is.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/base.h"
#include "platform/sync.h"

enum KTLISTOPTION : uint32_t {
    KTLIST_HEAP = 0x2,
    KTLIST_IN_PLACE = 0x4,
    KTLIST_CALLER_STORAGE = 0x8,
    KTLIST_PRIVATE_HEAP = 0x10000000,  // a heap list's items come from a heap of its own
    KTLIST_ANY_THREAD = 0x40000000,    // always set
    KTLIST_LOCKED = 0x80000000,        // every operation takes the lock
};

struct tKTLIST {
    int32_t count;
    uintptr_t item_size;  // bytes of a slot
    void* array;
    CRITICAL_SECTION lock;  // exists only with KTLIST_LOCKED
    uint32_t signature;     // 0x534C544B while it is a list
    uint32_t options;
    uintptr_t user_data;
    uintptr_t sort_criteria;  // handed to every compare call
    uint32_t thread_owner;
    int32_t allocated;  // slots
    int32_t grow_by;    // slots
    HANDLE heap;
    uint32_t heap_allocation_flags;
    uint32_t heap_free_flags;
    void* pending_item;  // allocated and not yet inserted
};
static_assert(sizeof(tKTLIST) == 128 && offsetof(tKTLIST, item_size) == 8 && offsetof(tKTLIST, array) == 16);
static_assert(offsetof(tKTLIST, lock) == 24 && offsetof(tKTLIST, signature) == 64 && offsetof(tKTLIST, options) == 68);
static_assert(offsetof(tKTLIST, user_data) == 72 && offsetof(tKTLIST, sort_criteria) == 80);
static_assert(offsetof(tKTLIST, thread_owner) == 88 && offsetof(tKTLIST, allocated) == 92);
static_assert(offsetof(tKTLIST, grow_by) == 96 && offsetof(tKTLIST, heap) == 104);
static_assert(offsetof(tKTLIST, heap_allocation_flags) == 112 && offsetof(tKTLIST, heap_free_flags) == 116);
static_assert(offsetof(tKTLIST, pending_item) == 120);

// Negative when the first goes first. For items in place the arguments are their addresses, else the stored pointers.
using KTLISTCOMPARE = int32_t (*)(uintptr_t criteria, const void* key_or_item, const void* item);
using KTLISTMATCH = int32_t (*)(const void* key, const void* item);  // 0 for a match

// Makes a list and lets `*list` point at it, null on failure. With KTLIST_CALLER_STORAGE `*list` points at storage of
// the caller's beforehand, which is cleared and must outlive the list. Below 1, `initial_count` and `grow_by` mean 16.
// An item size counts for KTLIST_IN_PLACE only and is rounded up to 4; 0 is E_INVALIDARG. KTLIST_HEAP with
// KTLIST_IN_PLACE is E_FAIL. The last three arguments are not read.
KT_API HRESULT KtList_CreateExZ(tKTLIST** list, uintptr_t item_size, int32_t initial_count, int32_t grow_by,
                                uint32_t options, const void* reserved1, const void* reserved2,
                                int32_t reserved3) noexcept;
// Frees what the list owns, the pending item included. Null is accepted.
KT_API HRESULT KtList_Destroy(tKTLIST* list) noexcept;
// Moves the record into `storage`, which must outlive the list, and clears `*list`. E_INVALIDARG for a missing or the
// same argument, E_FAIL for a list that lives in caller storage already. Nobody may hold the lock.
KT_API HRESULT KtList_ConvertToInPlace(tKTLIST** list, tKTLIST* storage) noexcept;

// Inserts `count` items before `index`; an index outside the list means its end. A heap list takes either the pending
// item (`items` null, `count` -1) or, with a negative count, that many pointers of the array `items`, which it owns
// from then on: fixed blocks of the global heap, or of the list's private one.
KT_API HRESULT KtList_InsertList(tKTLIST* list, int32_t index, const void* items, int32_t count) noexcept;
// Deletes, and frees, `count` items; a negative count means all from `index` on, and with a negative index the pending
// item. A count beyond the end is cut. With `shrink` slots that are too many are given back, if there is memory to do
// so.
KT_API HRESULT KtList_DeleteList(tKTLIST* list, int32_t index, int32_t count, int32_t shrink) noexcept;
// Moves a block of items so that it begins at `to` afterwards. A negative `from` is E_INVALIDARG, a negative `to` means
// 0, a negative count means all items behind the greater of both; a count of 0 moves nothing. A block that leaves the
// list is E_FAIL.
KT_API HRESULT KtList_MoveRange(tKTLIST* list, int32_t from, int32_t to, int32_t count) noexcept;

// Adds slots, `grow_by` when below 1, rounded up to a multiple of it. Addresses of items in place change.
KT_API HRESULT KtList_GrowAllocated(tKTLIST* list, int32_t slots) noexcept;
// Gives free slots back, all when negative, in multiples of `grow_by`; one slot always stays.
KT_API HRESULT KtList_ShrinkAllocated(tKTLIST* list, int32_t slots) noexcept;
// Lists with items in place only: sets the count, touches no item and gives no slot back. A negative count is E_FAIL.
// The last argument is not read.
KT_API HRESULT KtList_ArrayForceItemCount(tKTLIST* list, int32_t count, int32_t reserved) noexcept;

// Heap lists only. The item is zero-filled and pending until it is inserted or discarded; `item` may be null.
KT_API HRESULT KtList_AllocItem(tKTLIST* list, uintptr_t bytes, void** item) noexcept;
// `data` (`bytes` long, or null for zeros) as a new item in one step. `place` may be null and gets -1 on failure.
KT_API HRESULT KtList_AllocAndInsertItem(tKTLIST* list, const void* data, uintptr_t bytes, int32_t index,
                                         int32_t* place) noexcept;
// The item may move; what is added to it is zero-filled.
KT_API HRESULT KtList_ReAllocItem(tKTLIST* list, int32_t index, uintptr_t bytes) noexcept;
// Bytes of an item, or of a slot when the list does not own items. With a negative index those of the record, the array
// and all owned items. -1 for an index beyond the end.
KT_API intptr_t KtList_AllocSize(tKTLIST* list, int32_t index) noexcept;
// Heap lists only, two different ones, and no item pending in the destination. A negative or too great `index` means
// the destination's end, a negative `count` the source's count; the range must lie in the source. Items stay where they
// are in memory, unless a private heap makes a copy necessary.
KT_API HRESULT KtList_MoveItemsBetweenHeapLists(tKTLIST* destination, int32_t index, tKTLIST* source, int32_t start,
                                                int32_t count) noexcept;

// Ranges: a negative start means 0, a negative count to the end; a range is cut to the items that there are.
// Compares the bytes of items in place, and the pointers of other lists.
KT_API int32_t KtList_FindSpecificItemRange(tKTLIST* list, int32_t start, int32_t count, const void* item) noexcept;
KT_API int32_t KtList_FindItemRange(tKTLIST* list, int32_t start, int32_t count, const void* key,
                                    KTLISTMATCH match) noexcept;
// For a range that is sorted. Of equal items it may find any.
KT_API int32_t KtList_FindSortedItemRange(tKTLIST* list, const void* key, int32_t start, int32_t count,
                                          KTLISTCOMPARE compare) noexcept;
// Where the key belongs, or the index of an item equal to it. 0 for an empty range, -1 for a start beyond the end.
KT_API int32_t KtList_FindSortedInsertIndexRange(tKTLIST* list, const void* key, int32_t start, int32_t count,
                                                 KTLISTCOMPARE compare) noexcept;

// Each stores the criteria, and does no more without a compare function. Equal items come in any order.
KT_API HRESULT KtList_Sort(tKTLIST* list, uintptr_t criteria, KTLISTCOMPARE compare) noexcept;      // quadratic
KT_API HRESULT KtList_HeapSort(tKTLIST* list, uintptr_t criteria, KTLISTCOMPARE compare) noexcept;  // n log n
// Inserts every item of the source at its sorted place in the destination, which gets the criteria. Both hold items in
// place of one size, or both hold pointers and the destination does not own its items; else E_FAIL. E_INVALIDARG
// without a compare function.
KT_API HRESULT KtList_SortTo(tKTLIST* destination, tKTLIST* source, uintptr_t criteria, KTLISTCOMPARE compare) noexcept;

// 0 for what is no list. The user data is exchanged atomically, and the old value returned.
KT_API uintptr_t KtList_SetUserData(tKTLIST* list, uintptr_t value) noexcept;
KT_API uintptr_t KtList_GetUserData(tKTLIST* list) noexcept;
KT_API uint32_t KtList_GetCreateOptions(tKTLIST* list) noexcept;
KT_API uintptr_t KtList_GetSortCriteria(tKTLIST* list) noexcept;
KT_API uint32_t KtList_GetThreadOwner(tKTLIST* list) noexcept;
KT_API HRESULT KtList_SetThreadOwner(tKTLIST* list, uint32_t thread) noexcept;  // 0: the calling thread

// Tests, 1 or 0. `bytes` is the size that the caller believes the record to have; any address may be asked about.
KT_API int32_t KtList_IsList(const void* list, uintptr_t bytes) noexcept;
KT_API int32_t KtList_IsListFast(const void* list) noexcept;  // null, or memory that can be read
KT_API int32_t KtList_IsValidIndexSlow(tKTLIST* list, int32_t index) noexcept;

// Records of where lists were made are not kept: an empty text into `file` (one character, or null), and -1.
KT_API int32_t KtList_GetFileAndLine(tKTLIST* list, WCHAR* file) noexcept;
