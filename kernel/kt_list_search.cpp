#include <algorithm>

#include "kernel/kt_list_parts.h"

namespace clipfio::list {
namespace {

struct Range {
    int32_t first;
    int32_t last;  // behind the range
};

Range RangeOf(const tKTLIST& list, int32_t start, int32_t count) noexcept {
    const int32_t first = std::clamp(start, 0, list.count);
    const int32_t there = list.count - first;
    return {first, first + (count < 0 ? there : std::min(count, there))};
}

struct Place {
    int32_t index;
    bool is_equal;
};

Place FindSorted(const tKTLIST& list, const void* key, Range range, KTLISTCOMPARE compare) noexcept {
    auto [first, last] = range;
    while (first < last) {
        const int32_t middle = first + (last - first) / 2;
        const int32_t order = compare(list.sort_criteria, key, ItemOf(list, middle));
        if (order == 0) return {middle, true};
        if (order < 0) {
            last = middle;
        } else {
            first = middle + 1;
        }
    }
    return {first, false};
}

template <class Test>
int32_t FindFirst(Range range, Test&& test) noexcept {
    for (int32_t i = range.first; i < range.last; ++i) {
        if (test(i)) return i;
    }
    return -1;
}

}  // namespace
}  // namespace clipfio::list

using namespace clipfio::list;

int32_t KtList_FindSpecificItemRange(tKTLIST* list, int32_t start, int32_t count, const void* item) noexcept {
    const Use use(list);
    if (!use) return -1;
    const Range range = RangeOf(*list, start, count);
    if (!IsInPlace(*list)) return FindFirst(range, [=](int32_t i) { return PointerAt(*list, i) == item; });
    if (!item) return -1;
    return FindFirst(range, [=](int32_t i) { return std::memcmp(SlotOf(*list, i), item, list->item_size) == 0; });
}

int32_t KtList_FindItemRange(tKTLIST* list, int32_t start, int32_t count, const void* key, KTLISTMATCH match) noexcept {
    const Use use(list);
    if (!use || !match) return -1;
    return FindFirst(RangeOf(*list, start, count), [=](int32_t i) { return match(key, ItemOf(*list, i)) == 0; });
}

int32_t KtList_FindSortedItemRange(tKTLIST* list, const void* key, int32_t start, int32_t count,
                                   KTLISTCOMPARE compare) noexcept {
    const Use use(list);
    if (!use || !compare) return -1;
    const Place place = FindSorted(*list, key, RangeOf(*list, start, count), compare);
    return place.is_equal ? place.index : -1;
}

int32_t KtList_FindSortedInsertIndexRange(tKTLIST* list, const void* key, int32_t start, int32_t count,
                                          KTLISTCOMPARE compare) noexcept {
    const Use use(list);
    if (!use || !compare || start > list->count) return -1;
    const Range range = RangeOf(*list, start, count);
    return range.first == range.last ? 0 : FindSorted(*list, key, range, compare).index;
}
