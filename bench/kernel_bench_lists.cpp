// The list's sort against the library's heap sort, and its sorted insertion beside a vector's.
//
// Both sides of a pair are timed in turn, by the processor time of the thread, so that other work of the machine meets
// both alike, and the fastest round of each counts.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <numeric>
#include <random>
#include <vector>

#include "bench/summary.h"
#include "kernel/kt_list.h"

namespace {

constexpr int kRounds = 15;
constexpr int32_t kSorted = 100'000;
constexpr int32_t kInserted = 10'000;
constexpr double kSortGoal = 1.3;

double g_sort_ratio = 0;
double g_insert_ratio = 0;

int32_t Compare(uintptr_t, const void* a, const void* b) {
    const int32_t first = *static_cast<const int32_t*>(a);
    const int32_t second = *static_cast<const int32_t*>(b);
    return first < second ? -1 : first > second;
}
// Through a pointer that the compiler does not know, as the list has it.
KTLISTCOMPARE volatile g_compare = Compare;

std::vector<int32_t> Shuffled(int32_t count) {
    std::vector<int32_t> values(static_cast<std::size_t>(count));
    std::iota(values.begin(), values.end(), 0);
    std::shuffle(values.begin(), values.end(), std::mt19937(7));
    return values;
}

tKTLIST* NewList(uint32_t options, uintptr_t item_size, int32_t count, int32_t grow_by) {
    tKTLIST* list = nullptr;
    if (FAILED(KtList_CreateExZ(&list, item_size, count, grow_by, options, nullptr, nullptr, 0))) std::abort();
    return list;
}

double ThreadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

template <class Action>
double Seconds(Action&& action) {
    const double start = ThreadSeconds();
    action();
    return ThreadSeconds() - start;
}

void HeapSort(benchmark::State& state) {
    const std::vector<int32_t> values = Shuffled(kSorted);
    std::vector<const void*> items;
    for (const int32_t& value : values) items.push_back(&value);
    double ours = 1e9, theirs = 1e9;
    for (auto _ : state) {
        tKTLIST* const list = NewList(0, 0, kSorted, 0);
        KtList_InsertList(list, 0, items.data(), kSorted);
        const double sorted = Seconds([list] { KtList_HeapSort(list, 0, g_compare); });
        KtList_Destroy(list);
        std::vector<const void*> copy = items;
        const double library = Seconds([&copy] {
            const KTLISTCOMPARE compare = g_compare;
            const auto less = [compare](const void* a, const void* b) { return compare(0, a, b) < 0; };
            std::make_heap(copy.begin(), copy.end(), less);
            std::sort_heap(copy.begin(), copy.end(), less);
        });
        ours = std::min(ours, sorted);
        theirs = std::min(theirs, library);
        state.SetIterationTime(sorted);
    }
    g_sort_ratio = ours / theirs;
    state.counters["of_std_sort_heap"] = g_sort_ratio;
}
BENCHMARK(HeapSort)->Name("list/heap_sort_100000")->Iterations(kRounds)->UseManualTime();

void SortedInsert(benchmark::State& state) {
    const std::vector<int32_t> values = Shuffled(kInserted);
    double ours = 1e9, theirs = 1e9;
    for (auto _ : state) {
        tKTLIST* const list = NewList(KTLIST_IN_PLACE, sizeof(int32_t), kInserted, 1024);
        const double inserted = Seconds([&] {
            for (const int32_t& value : values) {
                const int32_t at = KtList_FindSortedInsertIndexRange(list, &value, 0, -1, g_compare);
                KtList_InsertList(list, at, &value, 1);
            }
        });
        KtList_Destroy(list);
        std::vector<int32_t> sorted;
        sorted.reserve(kInserted);
        const double library = Seconds([&] {
            for (const int32_t value : values) {
                sorted.insert(std::lower_bound(sorted.begin(), sorted.end(), value), value);
            }
        });
        benchmark::DoNotOptimize(sorted.data());
        ours = std::min(ours, inserted);
        theirs = std::min(theirs, library);
        state.SetIterationTime(inserted);
    }
    g_insert_ratio = ours / theirs;
    state.counters["of_std_vector"] = g_insert_ratio;
}
BENCHMARK(SortedInsert)->Name("list/sorted_insert_10000")->Iterations(kRounds)->UseManualTime();

const bool g_added = clipfio::bench::AddSummary([] {
    if (g_sort_ratio == 0 || g_insert_ratio == 0) return;
    std::printf("\nList\n  heap sort of 100,000 pointers: %.2f of std::sort_heap (goal %.1f): %s\n", g_sort_ratio,
                kSortGoal, g_sort_ratio <= kSortGoal ? "met" : "NOT MET");
    std::printf("  sorted insertion of 10,000: %.2f of std::vector with std::lower_bound\n", g_insert_ratio);
});

}  // namespace
