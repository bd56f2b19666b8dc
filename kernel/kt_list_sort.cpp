#include <bit>
#include <utility>

#include "kernel/kt_list_parts.h"

namespace clipfio::list {
namespace {

// How many levels of a heap lie between an item and one above it, with items counted from 1.
int Levels(std::size_t upper, std::size_t lower) noexcept { return std::countl_zero(upper) - std::countl_zero(lower); }

// The two kinds of array, with items counted from 1 as a heap has them.
class Pointers {
  public:
    explicit Pointers(const tKTLIST& list) noexcept : slots_(static_cast<void**>(list.array)) {}
    const void* operator[](std::size_t i) const noexcept { return slots_[i - 1]; }
    void Swap(std::size_t a, std::size_t b) const noexcept { std::swap(slots_[a - 1], slots_[b - 1]); }
    void Put(std::size_t i, const void* item) const noexcept { slots_[i - 1] = const_cast<void*>(item); }

  private:
    void** slots_;
};

class InPlace {
  public:
    explicit InPlace(const tKTLIST& list) noexcept
        : bytes_(static_cast<char*>(list.array)), item_size_(list.item_size) {}
    const void* operator[](std::size_t i) const noexcept { return Slot(i); }
    void Swap(std::size_t a, std::size_t b) const noexcept {
        char* const first = Slot(a);
        char* const second = Slot(b);
        for (std::size_t i = 0; i < item_size_; i += sizeof(uint32_t)) {
            uint32_t word;
            std::memcpy(&word, first + i, sizeof word);
            std::memcpy(first + i, second + i, sizeof word);
            std::memcpy(second + i, &word, sizeof word);
        }
    }
    void Sink(std::size_t from, std::size_t to) const noexcept {
        for (int shift = Levels(from, to); shift > 0; --shift) {
            Swap(to >> shift, to >> (shift - 1));
        }
    }

  private:
    [[nodiscard]] char* Slot(std::size_t i) const noexcept { return bytes_ + (i - 1) * item_size_; }

    char* bytes_;
    std::size_t item_size_;
};

template <class Slots>
void SelectionSort(const Slots& slots, std::size_t count, uintptr_t criteria, KTLISTCOMPARE compare) noexcept {
    for (std::size_t end = count; end > 1; --end) {
        std::size_t greatest = 1;
        for (std::size_t i = 2; i <= end; ++i) {
            if (compare(criteria, slots[i], slots[greatest]) > 0) greatest = i;
        }
        if (greatest != end) slots.Swap(greatest, end);
    }
}

// Sinks the item at `root` to where no child is greater. Its place is looked for from below, along the greatest
// children, as most items belong near the bottom: that takes about half the compares of a search from above and finds
// the same place.
void Sift(const InPlace& slots, std::size_t root, std::size_t count, uintptr_t criteria,
          KTLISTCOMPARE compare) noexcept {
    std::size_t at = root;
    while (2 * at < count) at = 2 * at + (compare(criteria, slots[2 * at + 1], slots[2 * at]) > 0);
    if (2 * at == count) at = count;
    while (at != root && compare(criteria, slots[root], slots[at]) >= 0) at /= 2;
    slots.Sink(root, at);
}

// The same, with pointers moved up on the way down, while they are at hand.
void Sift(const Pointers& slots, std::size_t root, std::size_t count, uintptr_t criteria,
          KTLISTCOMPARE compare) noexcept {
    const void* const item = slots[root];
    std::size_t at = root;
    while (2 * at < count) {
        const void* const left = slots[2 * at];
        const void* const right = slots[2 * at + 1];
        const bool is_right = compare(criteria, right, left) > 0;
        slots.Put(at, is_right ? right : left);
        at = 2 * at + is_right;
    }
    if (2 * at == count) {
        slots.Put(at, slots[count]);
        at = count;
    }
    for (; at != root && compare(criteria, item, slots[at / 2]) >= 0; at /= 2) slots.Put(at, slots[at / 2]);
    slots.Put(at, item);
}

template <class Slots>
void HeapSort(const Slots& slots, std::size_t count, uintptr_t criteria, KTLISTCOMPARE compare) noexcept {
    for (std::size_t root = count / 2; root > 1; --root) Sift(slots, root, count, criteria, compare);
    for (std::size_t end = count; end > 1; --end) {
        Sift(slots, 1, end, criteria, compare);
        slots.Swap(1, end);
    }
}

// What both sorts do around the sorting: `sort` takes the slots, their count, the criteria and the compare function.
template <class Sort>
HRESULT SortBy(tKTLIST* list, uintptr_t criteria, KTLISTCOMPARE compare, Sort sort) noexcept {
    const Use use(list);
    if (!use) return E_FAIL;
    list->sort_criteria = criteria;
    if (!compare || list->count < 2) return S_OK;
    const auto count = static_cast<std::size_t>(list->count);
    if (IsInPlace(*list)) {
        sort(InPlace(*list), count, criteria, compare);
    } else {
        sort(Pointers(*list), count, criteria, compare);
    }
    return S_OK;
}

}  // namespace
}  // namespace clipfio::list

using namespace clipfio::list;

HRESULT KtList_Sort(tKTLIST* list, uintptr_t criteria, KTLISTCOMPARE compare) noexcept {
    return SortBy(list, criteria, compare, [](const auto& slots, auto... how) { SelectionSort(slots, how...); });
}

HRESULT KtList_HeapSort(tKTLIST* list, uintptr_t criteria, KTLISTCOMPARE compare) noexcept {
    return SortBy(list, criteria, compare, [](const auto& slots, auto... how) { HeapSort(slots, how...); });
}

HRESULT KtList_SortTo(tKTLIST* destination, tKTLIST* source, uintptr_t criteria, KTLISTCOMPARE compare) noexcept {
    const Use use_destination(destination);
    const Use use_source(source);
    if (!use_destination || !use_source || destination == source) return E_FAIL;
    if (IsHeap(*destination) || IsInPlace(*destination) != IsInPlace(*source)) return E_FAIL;
    if (destination->item_size != source->item_size) return E_FAIL;
    if (!compare) return E_INVALIDARG;
    if (const HRESULT result = EnsureRoom(*destination, source->count); FAILED(result)) return result;
    destination->sort_criteria = criteria;
    for (int32_t i = 0; i < source->count; ++i) {
        const int32_t place =
            KtList_FindSortedInsertIndexRange(destination, ItemOf(*source, i), 0, destination->count, compare);
        std::memcpy(OpenGap(*destination, place, 1), SlotOf(*source, i), source->item_size);
    }
    return S_OK;
}
