// The dynamic array: what it holds after each operation, what it refuses, and that nothing is lost when memory ends.
#include "kernel/kt_list.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <memory>
#include <numeric>
#include <random>
#include <set>
#include <thread>
#include <tuple>
#include <vector>

#include "platform/memory.h"
#include "platform/scoped.h"
#include "support/fail_each.h"

namespace {

struct Destroy {
    void operator()(tKTLIST* list) const noexcept { EXPECT_EQ(KtList_Destroy(list), S_OK); }
};
using List = std::unique_ptr<tKTLIST, Destroy>;

constexpr uint32_t kPlain = 0;
constexpr uint32_t kEachKind[] = {KTLIST_HEAP, KTLIST_IN_PLACE, kPlain};
constexpr uint32_t kHeapKinds[] = {KTLIST_HEAP, KTLIST_HEAP | KTLIST_PRIVATE_HEAP, KTLIST_HEAP | KTLIST_LOCKED};

List Make(uint32_t options, uintptr_t item_size = 4, int32_t count = 1, int32_t grow_by = 4) {
    tKTLIST* list = nullptr;
    EXPECT_EQ(KtList_CreateExZ(&list, item_size, count, grow_by, options, nullptr, nullptr, 0), S_OK);
    return List(list);
}

// A list of numbers, one of each kind.
List Numbers(uint32_t options, const std::vector<int32_t>& values) {
    List list = Make(options);
    for (const int32_t value : values) {
        if (options & KTLIST_HEAP) {
            EXPECT_EQ(KtList_AllocAndInsertItem(list.get(), &value, 4, -1, nullptr), S_OK);
        } else if (options & KTLIST_IN_PLACE) {
            EXPECT_EQ(KtList_InsertList(list.get(), -1, &value, 1), S_OK);
        } else {
            static std::set<int32_t> kept;  // what a list does not own lives elsewhere
            const void* const item = &*kept.insert(value).first;
            EXPECT_EQ(KtList_InsertList(list.get(), -1, &item, 1), S_OK);
        }
    }
    return list;
}

std::vector<int32_t> ValuesOf(const List& list) {
    std::vector<int32_t> values;
    for (int32_t i = 0; i < list->count; ++i) {
        const void* const item = list->options & KTLIST_IN_PLACE ? static_cast<int32_t*>(list->array) + i
                                                                 : static_cast<void**>(list->array)[i];
        values.push_back(*static_cast<const int32_t*>(item));
    }
    return values;
}

std::vector<int32_t> Counting(int32_t count) {
    std::vector<int32_t> values(static_cast<std::size_t>(count));
    std::iota(values.begin(), values.end(), 0);
    return values;
}

// Criteria of 1 turn the order round.
int32_t Compare(uintptr_t criteria, const void* a, const void* b) {
    const int32_t first = *static_cast<const int32_t*>(a);
    const int32_t second = *static_cast<const int32_t*>(b);
    const int32_t order = first < second ? -1 : first > second;
    return criteria == 1 ? -order : order;
}

TEST(List, IsMadeInRoundedSizes) {
    const std::tuple<uint32_t, uintptr_t, int32_t, int32_t, uintptr_t, int32_t, int32_t> kRows[] = {
        {KTLIST_IN_PLACE, 10, 0, 0, 12, 16, 16}, {KTLIST_IN_PLACE, 12, 5, 4, 12, 8, 4},
        {KTLIST_HEAP, 999, 1, 1, 8, 4, 4},       {kPlain, 3, -7, 6, 8, 18, 6},
        {kPlain, 0, 1, 100000, 8, 66560, 66560}, {KTLIST_IN_PLACE, 1, 17, INT_MIN, 4, 32, 16},
        {KTLIST_HEAP, 0, 100, 33, 8, 132, 33},
    };
    for (const auto& [options, item_size, initial, grow_by, slot, allocated, quantum] : kRows) {
        const List list = Make(options, item_size, initial, grow_by);
        ASSERT_TRUE(list);
        EXPECT_EQ(list->item_size, slot);
        EXPECT_EQ(list->allocated, allocated);
        EXPECT_EQ(list->grow_by, quantum);
        EXPECT_EQ(list->count, 0);
        EXPECT_EQ(KtList_GetCreateOptions(list.get()), options | KTLIST_ANY_THREAD);
        EXPECT_EQ(KtList_GetThreadOwner(list.get()), GetCurrentThreadId());
        EXPECT_EQ(list->heap_allocation_flags, 9u);
        EXPECT_EQ(list->heap_free_flags, 1u);
    }
}

TEST(List, RefusesWhatCannotBeMade) {
    const std::tuple<uint32_t, uintptr_t, int32_t, int32_t, HRESULT> kRows[] = {
        {KTLIST_HEAP | KTLIST_IN_PLACE, 4, 0, 0, E_FAIL},
        {KTLIST_IN_PLACE, 0, 0, 0, E_INVALIDARG},
        {KTLIST_IN_PLACE, UINTPTR_MAX, 0, 0, E_INVALIDARG},
        {KTLIST_IN_PLACE, UINTPTR_MAX / 2 - 5, 0, 0, E_OUTOFMEMORY},
        {KTLIST_IN_PLACE, uintptr_t{1} << 60, 16, 16, E_OUTOFMEMORY},
        {KTLIST_IN_PLACE, uintptr_t{1} << 40, INT_MAX - 1, 16, E_OUTOFMEMORY},
        {kPlain, 0, INT_MAX, 16, E_OUTOFMEMORY},
    };
    for (const auto& [options, item_size, initial, grow_by, result] : kRows) {
        tKTLIST storage;
        std::memset(&storage, 0xAA, sizeof storage);
        for (const uint32_t place : {0u, uint32_t{KTLIST_CALLER_STORAGE}}) {
            tKTLIST* list = &storage;
            EXPECT_EQ(KtList_CreateExZ(&list, item_size, initial, grow_by, options | place, nullptr, nullptr, 0),
                      result);
            EXPECT_TRUE(place || !list);
        }
        EXPECT_FALSE(KtList_IsListFast(&storage));
    }
    tKTLIST* none = nullptr;
    EXPECT_EQ(KtList_CreateExZ(nullptr, 4, 0, 0, 0, nullptr, nullptr, 0), E_FAIL);
    EXPECT_EQ(KtList_CreateExZ(&none, 4, 0, 0, KTLIST_CALLER_STORAGE, nullptr, nullptr, 0), E_FAIL);
}

TEST(List, InsertsWhereAskedFor) {
    const std::pair<int32_t, std::vector<int32_t>> kRows[] = {
        {0, {9, 0, 1, 2}},  {2, {0, 1, 9, 2}},    {3, {0, 1, 2, 9}},
        {-1, {0, 1, 2, 9}}, {1000, {0, 1, 2, 9}}, {INT_MIN, {0, 1, 2, 9}},
    };
    static constexpr int32_t kNine = 9;
    for (const uint32_t kind : kEachKind) {
        for (const auto& [index, after] : kRows) {
            const List list = Numbers(kind, {0, 1, 2});
            const void* const pointer = &kNine;
            if (kind == KTLIST_HEAP) {
                void* item = nullptr;
                ASSERT_EQ(KtList_AllocItem(list.get(), 4, &item), S_OK);
                *static_cast<int32_t*>(item) = 9;
                EXPECT_EQ(KtList_InsertList(list.get(), index, nullptr, -1), S_OK);
                EXPECT_EQ(list->pending_item, nullptr);
            } else {
                const void* const items = kind == kPlain ? static_cast<const void*>(&pointer) : &kNine;
                EXPECT_EQ(KtList_InsertList(list.get(), index, items, 1), S_OK);
            }
            EXPECT_EQ(ValuesOf(list), after) << kind << ' ' << index;
        }
    }
}

TEST(List, TakesEachKindOnlyWhatItIsFor) {
    const int32_t values[4] = {1, 2, 3, 4};
    const List in_place = Numbers(KTLIST_IN_PLACE, {0});
    const List heap = Numbers(KTLIST_HEAP, {0});
    const std::tuple<tKTLIST*, const void*, int32_t, HRESULT> kRows[] = {
        {in_place.get(), nullptr, 1, E_FAIL}, {in_place.get(), nullptr, -1, E_FAIL},
        {in_place.get(), values, 0, E_FAIL},  {in_place.get(), values, -1, E_FAIL},
        {heap.get(), values, 1, E_FAIL},      {in_place.get(), values, INT_MAX, E_OUTOFMEMORY},
        {heap.get(), values, 0, E_FAIL},      {heap.get(), nullptr, -1, E_FAIL},  // nothing is pending
        {heap.get(), nullptr, 1, E_FAIL},     {heap.get(), values, INT_MIN, E_OUTOFMEMORY},
        {nullptr, values, 1, E_FAIL},         {heap.get(), values, -INT_MAX, E_OUTOFMEMORY},
    };
    for (const auto& [list, items, count, result] : kRows) {
        EXPECT_EQ(KtList_InsertList(list, 0, items, count), result) << count;
    }
    EXPECT_EQ(in_place->count, 1);
    EXPECT_EQ(heap->count, 1);
    void* pending = nullptr;
    EXPECT_EQ(KtList_AllocItem(in_place.get(), 4, &pending), E_FAIL);
    EXPECT_EQ(KtList_ReAllocItem(in_place.get(), 0, 8), E_FAIL);
    EXPECT_EQ(KtList_ArrayForceItemCount(heap.get(), 1, 0), E_FAIL);
    ASSERT_EQ(KtList_AllocItem(heap.get(), 4, nullptr), S_OK);
    EXPECT_EQ(KtList_AllocItem(heap.get(), 4, &pending), E_FAIL);
    EXPECT_EQ(pending, nullptr);
    EXPECT_EQ(KtList_InsertList(heap.get(), 0, nullptr, -2), E_FAIL);
    EXPECT_EQ(KtList_DeleteList(heap.get(), -1, -1, 0), S_OK);
    EXPECT_EQ(KtList_DeleteList(heap.get(), -1, -1, 0), E_FAIL);
    int32_t place = 7;
    EXPECT_EQ(KtList_AllocAndInsertItem(heap.get(), nullptr, UINTPTR_MAX, 0, &place), E_OUTOFMEMORY);
    EXPECT_EQ(place, -1);
    EXPECT_EQ(KtList_AllocAndInsertItem(heap.get(), nullptr, 4, 50, &place), S_OK);
    EXPECT_EQ(place, 1);
    EXPECT_EQ(ValuesOf(heap), (std::vector<int32_t>{0, 0}));
}

TEST(List, TakesOverPointersAndItsOwnItems) {
    const List heap = Make(KTLIST_HEAP);
    void* items[6];
    for (int32_t i = 0; i < 6; ++i) {
        items[i] = GlobalAlloc(GPTR, 4);
        std::memcpy(items[i], &i, 4);
    }
    EXPECT_EQ(KtList_InsertList(heap.get(), 0, items, -6), S_OK);
    EXPECT_EQ(ValuesOf(heap), Counting(6));

    const List list = Numbers(KTLIST_IN_PLACE, Counting(4));  // full: the array moves while its items are read
    EXPECT_EQ(KtList_InsertList(list.get(), 1, list->array, 4), S_OK);
    EXPECT_EQ(ValuesOf(list), (std::vector<int32_t>{0, 0, 1, 2, 3, 1, 2, 3}));
    EXPECT_EQ(KtList_InsertList(list.get(), 0, static_cast<char*>(list->array) + 28, 2), E_FAIL);
}

TEST(List, GrowsAndShrinksByItsQuantum) {
    const List list = Make(KTLIST_IN_PLACE, 4, 8, 8);
    ASSERT_EQ(KtList_ArrayForceItemCount(list.get(), 5, 1), S_OK);
    static_cast<int32_t*>(list->array)[4] = 44;
    const std::tuple<HRESULT (*)(tKTLIST*, int32_t) noexcept, int32_t, HRESULT, int32_t> kRows[] = {
        {KtList_GrowAllocated, 0, S_OK, 16},        {KtList_GrowAllocated, -5, S_OK, 24},
        {KtList_GrowAllocated, 9, S_OK, 40},        {KtList_GrowAllocated, INT_MAX, E_OUTOFMEMORY, 40},
        {KtList_ShrinkAllocated, 0, S_OK, 40},      {KtList_ShrinkAllocated, 1, S_OK, 32},
        {KtList_ShrinkAllocated, 9, S_OK, 16},      {KtList_ShrinkAllocated, 11, S_OK, 8},
        {KtList_ShrinkAllocated, -1, S_OK, 8},      {KtList_GrowAllocated, 40, S_OK, 48},
        {KtList_ShrinkAllocated, INT_MAX, S_OK, 8},
    };
    for (const auto& [operation, slots, result, allocated] : kRows) {
        EXPECT_EQ(operation(list.get(), slots), result) << slots;
        EXPECT_EQ(list->allocated, allocated) << slots;
        EXPECT_EQ(ValuesOf(list), (std::vector<int32_t>{0, 0, 0, 0, 44}));
    }
    EXPECT_EQ(KtList_ArrayForceItemCount(list.get(), 17, 0), S_OK);
    EXPECT_EQ(list->allocated, 24);
    EXPECT_EQ(KtList_ArrayForceItemCount(list.get(), -1, 0), E_FAIL);
    EXPECT_EQ(KtList_ArrayForceItemCount(list.get(), INT_MAX, 0), E_OUTOFMEMORY);
    EXPECT_EQ(list->count, 17);
    // A deletion gives slots back only when more than a quantum is free, and only when asked to.
    for (const auto& [deleted, allocated] : {std::pair{1, 24}, {10, 8}, {-1, 8}}) {
        EXPECT_EQ(KtList_DeleteList(list.get(), 0, deleted, 1), S_OK);
        EXPECT_EQ(list->allocated, allocated) << deleted;
    }
    EXPECT_EQ(KtList_ShrinkAllocated(list.get(), -1), S_OK);
    EXPECT_EQ(list->allocated, 1);  // one slot stays
}

TEST(List, DeletesAndMovesRanges) {
    using Change = HRESULT (*)(tKTLIST*, int32_t, int32_t, int32_t) noexcept;
    const Change move = KtList_MoveRange;
    const Change remove = [](tKTLIST* list, int32_t index, int32_t, int32_t count) noexcept {
        return KtList_DeleteList(list, index, count, 0);
    };
    const std::vector<int32_t> all = Counting(8);
    const std::tuple<Change, int32_t, int32_t, int32_t, HRESULT, std::vector<int32_t>> kRows[] = {
        {remove, 0, 0, -1, S_OK, {}},     {remove, 9, 0, 0, S_OK, all},
        {remove, 2, 0, -1, S_OK, {0, 1}}, {remove, 4, 0, INT_MAX, S_OK, {0, 1, 2, 3}},
        {remove, 0, 0, 0, S_OK, all},     {remove, 1, 0, 2, S_OK, {0, 3, 4, 5, 6, 7}},
        {remove, 8, 0, 1, E_FAIL, all},   {remove, INT_MAX, 0, -1, S_OK, all},
        {remove, -1, 0, 1, E_FAIL, all},  {remove, INT_MIN, 0, INT_MIN, E_FAIL, all},
        {remove, -1, 0, -1, E_FAIL, all}, {move, 5, 2, 2, S_OK, {0, 1, 5, 6, 2, 3, 4, 7}},
        {move, 3, 3, 2, S_OK, all},       {move, 2, 5, 2, S_OK, {0, 1, 4, 5, 6, 2, 3, 7}},
        {move, 3, 1, 0, S_OK, all},       {move, 0, 1, -1, S_OK, {7, 0, 1, 2, 3, 4, 5, 6}},
        {move, 8, 0, -1, S_OK, all},      {move, 6, -3, -1, S_OK, {6, 7, 0, 1, 2, 3, 4, 5}},
        {move, 9, 0, -1, E_FAIL, all},    {move, -1, 0, 1, E_INVALIDARG, all},
        {move, 7, 0, 2, E_FAIL, all},     {move, INT_MAX, 0, INT_MAX, E_FAIL, all},
        {move, 0, 7, 2, E_FAIL, all},     {move, 1, 2, INT_MAX, E_FAIL, all},
    };
    for (const uint32_t kind : {kHeapKinds[0], kHeapKinds[1], uint32_t{KTLIST_IN_PLACE}, kPlain}) {
        for (const auto& [change, index, to, count, result, after] : kRows) {
            const List list = Numbers(kind, all);
            EXPECT_EQ(change(list.get(), index, to, count), result) << index << ' ' << to << ' ' << count;
            EXPECT_EQ(ValuesOf(list), after) << index << ' ' << to << ' ' << count;
            EXPECT_EQ(list->allocated, 8);
            const auto* const array = static_cast<char*>(list->array);
            EXPECT_TRUE(std::all_of(array + after.size() * list->item_size, array + 8 * list->item_size,
                                    [](char vacated) { return vacated == 0; }));
        }
    }
    const List large = Numbers(KTLIST_IN_PLACE, Counting(1000));
    EXPECT_EQ(KtList_MoveRange(large.get(), 500, 0, 400), S_OK);
    std::vector<int32_t> expected = Counting(1000);
    std::rotate(expected.begin(), expected.begin() + 500, expected.begin() + 900);
    EXPECT_EQ(ValuesOf(large), expected);
}

TEST(List, ReallocatesItemsAndSaysTheirSizes) {
    for (const uint32_t kind : kHeapKinds) {
        const List list = Numbers(kind, {5, 6});
        EXPECT_EQ(KtList_AllocSize(list.get(), 1), 4);
        EXPECT_EQ(KtList_ReAllocItem(list.get(), 1, 1000), S_OK);
        const auto* const item = static_cast<const char*>(static_cast<void**>(list->array)[1]);
        EXPECT_EQ(item[0], 6);
        EXPECT_EQ(std::count(item + 4, item + 1000, 0), 996);
        EXPECT_EQ(KtList_AllocSize(list.get(), 1), 1000);
        EXPECT_EQ(KtList_AllocSize(list.get(), -1), static_cast<intptr_t>(sizeof(tKTLIST)) + 4 * 8 + 1004);
        EXPECT_EQ(KtList_ReAllocItem(list.get(), 1, 4), S_OK);
        EXPECT_EQ(ValuesOf(list), (std::vector<int32_t>{5, 6}));
        EXPECT_EQ(KtList_ReAllocItem(list.get(), 2, 4), E_FAIL);
        EXPECT_EQ(KtList_ReAllocItem(list.get(), -1, 4), E_FAIL);
        EXPECT_EQ(KtList_ReAllocItem(list.get(), 0, UINTPTR_MAX - 8), E_OUTOFMEMORY);
        EXPECT_EQ(KtList_AllocSize(list.get(), 2), -1);
    }
    EXPECT_EQ(KtList_AllocSize(Numbers(KTLIST_IN_PLACE, {5}).get(), 0), 4);
    EXPECT_EQ(KtList_AllocSize(Numbers(kPlain, {5}).get(), 0), 8);
}

TEST(List, MovesItemsBetweenHeapLists) {
    using Values = std::vector<int32_t>;
    const std::tuple<int32_t, int32_t, int32_t, HRESULT, Values, Values> kRows[] = {
        {1, 1, 2, S_OK, {10, 1, 2, 11}, {0, 3}},   {-1, 0, -1, S_OK, {10, 11, 0, 1, 2, 3}, {}},
        {99, 3, 1, S_OK, {10, 11, 3}, {0, 1, 2}},  {0, 2, 0, S_OK, {10, 11}, Counting(4)},
        {0, 1, -1, E_FAIL, {10, 11}, Counting(4)}, {0, -1, 1, E_FAIL, {10, 11}, Counting(4)},
        {0, 4, 1, E_FAIL, {10, 11}, Counting(4)},  {0, 1, INT_MAX, E_FAIL, {10, 11}, Counting(4)},
    };
    for (const uint32_t to_kind : kHeapKinds) {
        for (const uint32_t from_kind : kHeapKinds) {
            for (const auto& [index, start, count, result, moved, left] : kRows) {
                const List to = Numbers(to_kind, {10, 11}), from = Numbers(from_kind, Counting(4));
                EXPECT_EQ(KtList_MoveItemsBetweenHeapLists(to.get(), index, from.get(), start, count), result);
                EXPECT_EQ(ValuesOf(to), moved) << index << ' ' << start << ' ' << count;
                EXPECT_EQ(ValuesOf(from), left);
            }
        }
    }
    const List heap = Numbers(KTLIST_HEAP, {1});
    const List other = Numbers(KTLIST_HEAP, {2});
    EXPECT_EQ(KtList_MoveItemsBetweenHeapLists(heap.get(), 0, heap.get(), 0, 1), E_FAIL);
    EXPECT_EQ(KtList_MoveItemsBetweenHeapLists(heap.get(), 0, Numbers(kPlain, {1}).get(), 0, 1), E_FAIL);
    ASSERT_EQ(KtList_AllocItem(heap.get(), 4, nullptr), S_OK);
    EXPECT_EQ(KtList_MoveItemsBetweenHeapLists(heap.get(), 0, other.get(), 0, 1), E_FAIL);
    EXPECT_EQ(KtList_MoveItemsBetweenHeapLists(other.get(), 0, heap.get(), 0, 1), S_OK);
}

int32_t MatchTens(const void* key, const void* item) {
    return *static_cast<const int32_t*>(key) - *static_cast<const int32_t*>(item) / 10;
}

TEST(List, FindsInRanges) {
    for (const uint32_t kind : kEachKind) {
        const List list = Numbers(kind, {10, 20, 21, 30, 40});
        const std::tuple<int32_t, int32_t, int32_t, int32_t, int32_t, int32_t> kRows[] = {
            {20, 0, -1, 1, 1, 1},      {21, 0, -1, 1, 2, 2},
            {25, 0, -1, 1, -1, 3},     {50, 0, -1, -1, -1, 5},
            {5, 0, -1, -1, -1, 0},     {20, 2, -1, 2, -1, 2},
            {40, 0, 4, -1, -1, 4},     {40, -9, 99, 4, 4, 4},
            {10, 5, -1, -1, -1, 0},    {10, 6, -1, -1, -1, -1},
            {10, 0, 0, -1, -1, 0},     {10, INT_MAX, INT_MAX, -1, -1, -1},
            {30, 3, INT_MAX, 3, 3, 3}, {30, INT_MIN, INT_MIN, 3, 3, 3},
        };
        for (const auto& [key, start, count, match, sorted, insert] : kRows) {
            const int32_t tens = key / 10;
            SCOPED_TRACE(testing::Message() << kind << ' ' << key << ' ' << start << ' ' << count);
            EXPECT_EQ(KtList_FindItemRange(list.get(), start, count, &tens, MatchTens), match);
            EXPECT_EQ(KtList_FindSortedItemRange(list.get(), &key, start, count, Compare), sorted);
            EXPECT_EQ(KtList_FindSortedInsertIndexRange(list.get(), &key, start, count, Compare), insert);
            const auto item = [&](int32_t index) -> const void* {
                return kind == KTLIST_IN_PLACE ? &key : static_cast<void**>(list->array)[index];
            };
            const int32_t found = sorted >= 0 ? sorted : 0;
            const int32_t expected = sorted >= 0 || (key == 10 && start <= 0 && count != 0) ? found : -1;
            if (kind == KTLIST_IN_PLACE || sorted >= 0) {
                EXPECT_EQ(KtList_FindSpecificItemRange(list.get(), start, count, item(found)), expected);
            }
        }
        EXPECT_EQ(KtList_FindSpecificItemRange(list.get(), 0, -1, nullptr), -1);
        EXPECT_EQ(KtList_FindItemRange(list.get(), 0, -1, &kind, nullptr), -1);
        EXPECT_EQ(KtList_FindSortedItemRange(list.get(), &kind, 0, -1, nullptr), -1);
        EXPECT_EQ(KtList_FindSortedInsertIndexRange(list.get(), &kind, 0, -1, nullptr), -1);
        EXPECT_TRUE(KtList_IsValidIndexSlow(list.get(), 4));
        EXPECT_FALSE(KtList_IsValidIndexSlow(list.get(), 5));
        EXPECT_FALSE(KtList_IsValidIndexSlow(list.get(), -1));
    }
}

TEST(List, Sorts) {
    std::mt19937 random(1);
    // Items of several words move whole.
    struct Wide {
        int32_t key, copies[4];
    };
    for (const auto sort : {KtList_Sort, KtList_HeapSort}) {
        for (const uint32_t kind : kEachKind) {
            for (const int32_t count : {0, 1, 2, 3, 4, 5, 7, 8, 31, 200}) {
                std::vector<int32_t> values = Counting(count);
                for (int32_t& value : values) value = static_cast<int32_t>(random() % 50);
                const List list = Numbers(kind, values);
                EXPECT_EQ(sort(list.get(), 77, nullptr), S_OK);
                EXPECT_EQ(KtList_GetSortCriteria(list.get()), 77u);
                EXPECT_EQ(ValuesOf(list), values);
                EXPECT_EQ(sort(list.get(), 0, Compare), S_OK);
                std::sort(values.begin(), values.end());
                EXPECT_EQ(ValuesOf(list), values) << kind << ' ' << count;
                EXPECT_EQ(sort(list.get(), 1, Compare), S_OK);
                EXPECT_EQ(KtList_GetSortCriteria(list.get()), 1u);
                std::reverse(values.begin(), values.end());
                EXPECT_EQ(ValuesOf(list), values) << kind << ' ' << count;
            }
        }
        const List wide = Make(KTLIST_IN_PLACE, sizeof(Wide));
        for (int32_t i = 0; i < 40; ++i) {
            const int32_t key = i * 7 % 40;
            const Wide item{key, {key, key, key, key}};
            ASSERT_EQ(KtList_InsertList(wide.get(), -1, &item, 1), S_OK);
        }
        EXPECT_EQ(sort(wide.get(), 0, Compare), S_OK);
        for (int32_t i = 0; i < 40 * 5; ++i) EXPECT_EQ(static_cast<int32_t*>(wide->array)[i], i / 5);
        // A compare that lies does no harm.
        const auto liar = [](uintptr_t, const void*, const void*) -> int32_t { return 1; };
        EXPECT_EQ(sort(wide.get(), 0, liar), S_OK);
    }
}

TEST(List, SortsIntoAnotherList) {
    for (const uint32_t kind : {uint32_t{KTLIST_IN_PLACE}, kPlain}) {
        const List to = Numbers(kind, {9, 5, 1});
        const List from = Numbers(kind == kPlain ? KTLIST_HEAP : kind, {3, 9, 11, 0});
        EXPECT_EQ(KtList_SortTo(to.get(), from.get(), 0, nullptr), E_INVALIDARG);
        EXPECT_EQ(KtList_SortTo(to.get(), from.get(), 1, Compare), S_OK);
        EXPECT_EQ(ValuesOf(to), (std::vector<int32_t>{11, 9, 9, 5, 3, 1, 0}));
        EXPECT_EQ(KtList_GetSortCriteria(to.get()), 1u);
        EXPECT_EQ(ValuesOf(from), (std::vector<int32_t>{3, 9, 11, 0}));  // and the source still owns its items
        EXPECT_EQ(KtList_SortTo(to.get(), to.get(), 1, Compare), E_FAIL);
    }
    // Two would own the items, or they are of another kind or size.
    const List heap = Numbers(KTLIST_HEAP, {1}), in_place = Numbers(KTLIST_IN_PLACE, {1}), plain = Numbers(kPlain, {1}),
               wide = Make(KTLIST_IN_PLACE, 8);
    for (const auto& [to, from] :
         {std::pair{&heap, &plain}, {&plain, &in_place}, {&wide, &plain}, {&wide, &in_place}}) {
        EXPECT_EQ(KtList_SortTo(to->get(), from->get(), 0, Compare), E_FAIL);
    }
}

TEST(List, MovesIntoCallerStorage) {
    for (const uint32_t kind : kHeapKinds) {
        List list = Numbers(kind, Counting(3));
        tKTLIST storage;
        tKTLIST* moving = list.release();
        EXPECT_EQ(KtList_ConvertToInPlace(&moving, nullptr), E_INVALIDARG);
        EXPECT_EQ(KtList_ConvertToInPlace(&moving, moving), E_INVALIDARG);
        ASSERT_EQ(KtList_ConvertToInPlace(&moving, &storage), S_OK);
        EXPECT_EQ(moving, nullptr);
        EXPECT_EQ(KtList_GetCreateOptions(&storage), kind | KTLIST_ANY_THREAD | KTLIST_CALLER_STORAGE);
        const List moved(&storage);
        EXPECT_EQ(ValuesOf(moved), Counting(3));
        EXPECT_EQ(KtList_DeleteList(&storage, 1, 1, 0), S_OK);
        EXPECT_EQ(ValuesOf(moved), (std::vector<int32_t>{0, 2}));
        tKTLIST other;
        moving = &storage;
        EXPECT_EQ(KtList_ConvertToInPlace(&moving, &other), E_FAIL);
        EXPECT_EQ(moving, &storage);
    }
    tKTLIST storage;
    tKTLIST* list = nullptr;
    EXPECT_EQ(KtList_ConvertToInPlace(&list, &storage), E_INVALIDARG);
    list = &storage;
    ASSERT_EQ(KtList_CreateExZ(&list, 4, 0, 0, KTLIST_CALLER_STORAGE, nullptr, nullptr, 0), S_OK);
    EXPECT_TRUE(KtList_IsListFast(&storage));
    for (const HRESULT destroyed : {S_OK, E_FAIL}) {
        EXPECT_EQ(KtList_Destroy(&storage), destroyed);
        EXPECT_FALSE(KtList_IsListFast(&storage));
    }
}

TEST(List, KnowsWhatIsAList) {
    const List list = Make(KTLIST_IN_PLACE);
    EXPECT_TRUE(KtList_IsList(list.get(), sizeof(tKTLIST)));
    EXPECT_FALSE(KtList_IsList(list.get(), sizeof(tKTLIST) - 8));
    const tKTLIST blank{};
    for (const void* const wild :
         {static_cast<const void*>(nullptr), reinterpret_cast<const void*>(uintptr_t{8}),
          reinterpret_cast<const void*>(~uintptr_t{0} - 64), static_cast<const void*>(&blank)}) {
        EXPECT_FALSE(KtList_IsList(wild, sizeof(tKTLIST))) << wild;
    }
    tKTLIST none{};
    for (tKTLIST* const no_list : {static_cast<tKTLIST*>(nullptr), &none}) {
        EXPECT_EQ(KtList_InsertList(no_list, 0, &blank, 1), E_FAIL);
        EXPECT_EQ(KtList_DeleteList(no_list, 0, 1, 0), E_FAIL);
        EXPECT_EQ(KtList_MoveRange(no_list, 0, 0, 1), E_FAIL);
        EXPECT_EQ(KtList_GrowAllocated(no_list, 0), E_FAIL);
        EXPECT_EQ(KtList_Sort(no_list, 0, Compare), E_FAIL);
        EXPECT_EQ(KtList_SortTo(no_list, list.get(), 0, Compare), E_FAIL);
        EXPECT_EQ(KtList_FindItemRange(no_list, 0, -1, nullptr, MatchTens), -1);
        EXPECT_EQ(KtList_AllocSize(no_list, -1), -1);
        EXPECT_EQ(KtList_SetUserData(no_list, 5), 0u);
        EXPECT_EQ(KtList_GetUserData(no_list), 0u);
        EXPECT_EQ(KtList_SetThreadOwner(no_list, 5), E_FAIL);
    }
    EXPECT_EQ(KtList_Destroy(nullptr), S_OK);
    for (const uint32_t data : {0, 5}) EXPECT_EQ(KtList_SetUserData(list.get(), data + 5), data);
    EXPECT_EQ(KtList_GetUserData(list.get()), 10u);
    WCHAR text[2] = {W('x'), W('y')};
    EXPECT_EQ(KtList_GetFileAndLine(list.get(), text), -1);
    EXPECT_EQ(text[0], 0);
    EXPECT_EQ(text[1], W('y'));
}

// Lists of this kind are not made by the public operation; the rule holds for a record that says so.
TEST(List, BelongsToItsThreadWithoutTheOptionForAny) {
    const List list = Numbers(KTLIST_IN_PLACE, {1, 2});
    list->options &= ~uint32_t{KTLIST_ANY_THREAD};
    const int32_t key = 1;
    std::thread([&] {
        EXPECT_EQ(KtList_InsertList(list.get(), 0, &key, 1), E_FAIL);
        EXPECT_EQ(KtList_FindSortedItemRange(list.get(), &key, 0, -1, Compare), -1);
        EXPECT_EQ(KtList_AllocSize(list.get(), 0), -1);
        EXPECT_EQ(KtList_SetThreadOwner(list.get(), 0), S_OK);
        EXPECT_EQ(KtList_FindSortedItemRange(list.get(), &key, 0, -1, Compare), 0);
    }).join();
    EXPECT_EQ(KtList_DeleteList(list.get(), 0, 1, 0), E_FAIL);
    EXPECT_EQ(KtList_SetThreadOwner(list.get(), GetCurrentThreadId()), S_OK);
    EXPECT_EQ(KtList_DeleteList(list.get(), 0, 1, 0), S_OK);
}

TEST(List, LocksAroundEachOperationAndFromOutside) {
    const List list = Make(KTLIST_HEAP | KTLIST_LOCKED);
    const List other = Make(KTLIST_HEAP | KTLIST_LOCKED);
    constexpr int32_t kEach = 300;
    std::vector<std::thread> threads;
    for (int32_t t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            for (int32_t i = 0; i < kEach; ++i) {
                const int32_t value = i * 4 + t;
                EXPECT_EQ(KtList_AllocAndInsertItem(list.get(), &value, 4, 0, nullptr), S_OK);
                const platform::CriticalSectionLock hold(list->lock);
                // Between the find and the use nobody else comes in.
                const auto match = [](const void* key, const void* item) -> int32_t {
                    return std::memcmp(key, item, 4);
                };
                const int32_t place = KtList_FindItemRange(list.get(), 0, -1, &value, match);
                EXPECT_EQ(KtList_MoveItemsBetweenHeapLists(other.get(), -1, list.get(), place, 1), S_OK);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(list->count, 0);
    EXPECT_EQ(KtList_HeapSort(other.get(), 0, Compare), S_OK);
    EXPECT_EQ(ValuesOf(other), Counting(4 * kEach));
}

// Every allocation fails once, and each time the lists are as before.
TEST(List, StaysAsItWasWhenMemoryEnds) {
    struct {
        const char* name;
        HRESULT (*operation)(tKTLIST* list, tKTLIST* other);
    } const kRows[] = {
        {"create",
         [](tKTLIST*, tKTLIST*) {
             tKTLIST* made = nullptr;
             const HRESULT result = KtList_CreateExZ(&made, 0, 0, 0, kHeapKinds[1], nullptr, nullptr, 0);
             EXPECT_EQ(FAILED(result), made == nullptr);
             KtList_Destroy(made);
             return result;
         }},
        {"insert",
         [](tKTLIST* list, tKTLIST*) {
             int32_t place = 0;
             const HRESULT result = KtList_AllocAndInsertItem(list, &place, 4, 2, &place);
             EXPECT_EQ(place, FAILED(result) ? -1 : 2);
             return result;
         }},
        {"grow", [](tKTLIST* list, tKTLIST*) { return KtList_GrowAllocated(list, 1); }},
        {"shrink",
         [](tKTLIST* list, tKTLIST*) {
             const HRESULT grown = KtList_GrowAllocated(list, 8);
             return FAILED(grown) ? grown : KtList_ShrinkAllocated(list, -1);
         }},
        {"reallocate", [](tKTLIST* list, tKTLIST*) { return KtList_ReAllocItem(list, 1, 99); }},
        {"move between",
         [](tKTLIST* list, tKTLIST* other) { return KtList_MoveItemsBetweenHeapLists(list, 1, other, 0, -1); }},
        {"move within", [](tKTLIST* list, tKTLIST*) { return KtList_MoveRange(list, 0, 70, 70); }},
    };
    for (const uint32_t kind : kHeapKinds) {
        for (const auto& row : kRows) {
            SCOPED_TRACE(row.name);
            const List list = Numbers(kind, Counting(140)), other = Numbers(KTLIST_HEAP, Counting(9));
            support::FailEach<support::FailingCall>([&] { return row.operation(list.get(), other.get()); },
                                                    [&](HRESULT result, bool failed) {
                                                        EXPECT_EQ(result, failed ? E_OUTOFMEMORY : S_OK);
                                                        if (!failed) return;
                                                        EXPECT_EQ(ValuesOf(list), Counting(140));
                                                        EXPECT_EQ(ValuesOf(other), Counting(9));
                                                        EXPECT_EQ(list->pending_item, nullptr);
                                                    });
        }
    }
    // A deletion that cannot give its slots back has deleted all the same.
    const List list = Numbers(KTLIST_IN_PLACE, Counting(50));
    {
        const support::FailingCall fail(0);
        EXPECT_EQ(KtList_DeleteList(list.get(), 1, -1, 1), S_OK);
    }
    EXPECT_EQ(ValuesOf(list), Counting(1));
}

}  // namespace
