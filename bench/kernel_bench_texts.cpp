// Repeated look-ups of texts: a row against a call that does nothing, an id against a lock around a binary search.
//
// Both sides of a pair are timed in turn, so that other work of the machine meets both alike, and the fastest round of
// each counts.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "bench/summary.h"
#include "kernel/lang.h"
#include "kernel/lang_handle.h"
#include "kernel/string_rows.h"
#include "platform/modules.h"

namespace {

constexpr int kRounds = 400;
constexpr int kCalls = 10'000;
constexpr double kRowGoal = 3.0;
constexpr double kIdGoal = 1.5;

double g_row_ratio = 0;
double g_id_ratio = 0;

// Every call goes through a pointer that the compiler does not know, as one into a module does.
const WCHAR* Nothing(HKTLANG, KTLANGSTRINGID) noexcept { return nullptr; }
const WCHAR* (*volatile g_nothing)(HKTLANG, KTLANGSTRINGID) noexcept = Nothing;
const WCHAR* (*volatile g_by_row)(HKTLANG, KTLANGSTRINGID) noexcept = KtGetString;
const WCHAR* (*volatile g_by_id)(HKTLANG, uint32_t) noexcept = KtGetString;

struct Entry {
    uint32_t id;
    const WCHAR* text;
};
CRITICAL_SECTION g_lock;
std::vector<Entry> g_entries;

const WCHAR* Search(HKTLANG, uint32_t id) noexcept {
    const platform::CriticalSectionLock hold(g_lock);
    const auto found = std::lower_bound(g_entries.begin(), g_entries.end(), id,
                                        [](const Entry& entry, uint32_t wanted) { return entry.id < wanted; });
    return found != g_entries.end() && found->id == id ? found->text : nullptr;
}
const WCHAR* (*volatile g_search)(HKTLANG, uint32_t) noexcept = Search;

template <class Call, class Argument>
double Nanoseconds(Call call, HKTLANG lang, const std::vector<Argument>& arguments) {
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < kCalls;) {
        for (std::size_t at = 0; at < arguments.size() && i < kCalls; ++at, ++i) {
            benchmark::DoNotOptimize(call(lang, arguments[at]));
        }
    }
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count() / kCalls;
}

void ByRow(benchmark::State& state) {
    HKTLANG lang = nullptr;
    if (FAILED(KtLang_Open(&lang, nullptr, 0x0411, 0))) std::abort();
    const std::vector<KTLANGSTRINGID> rows = {clipfio::kKtStrCancel, clipfio::kKtStrOk, clipfio::kKtStrYes,
                                              clipfio::kKtStrPan, clipfio::kKtStrMusicLabel};
    double ours = 1e9, bound = 1e9;
    for (auto _ : state) {
        bound = std::min(bound, Nanoseconds(g_nothing, lang, rows));
        const double time = Nanoseconds(g_by_row, lang, rows);
        ours = std::min(ours, time);
        state.SetIterationTime(time * kCalls * 1e-9);
    }
    KtLang_Close(lang);
    g_row_ratio = ours / bound;
    state.counters["of_empty_call"] = g_row_ratio;
    state.counters["ns"] = ours;
}
BENCHMARK(ByRow)->Name("texts/by_row")->Iterations(kRounds)->UseManualTime();

void ById(benchmark::State& state) {
    // The module's own string resources.
    const platform::ScopedLibrary module(LoadLibraryW(CLIPFIO_BENCH_MODULE));
    HKTLANG lang = nullptr;
    if (!module || FAILED(KtLang_Open(&lang, module.Get(), 0, 0))) std::abort();
    InitializeCriticalSection(&g_lock);
    std::vector<uint32_t> ids;
    for (uint32_t id = 100; id < 1200; ++id) {
        const WCHAR* const text = KtGetString(lang, id);
        if (*text == 0) continue;
        ids.push_back(id);
        g_entries.push_back({id, text});
    }
    if (ids.size() < 20) std::abort();
    double ours = 1e9, bound = 1e9;
    for (auto _ : state) {
        bound = std::min(bound, Nanoseconds(g_search, lang, ids));
        const double time = Nanoseconds(g_by_id, lang, ids);
        ours = std::min(ours, time);
        state.SetIterationTime(time * kCalls * 1e-9);
    }
    g_entries.clear();
    DeleteCriticalSection(&g_lock);
    KtLang_Close(lang);
    g_id_ratio = ours / bound;
    state.counters["of_locked_search"] = g_id_ratio;
    state.counters["ns"] = ours;
}
BENCHMARK(ById)->Name("texts/by_id")->Iterations(kRounds)->UseManualTime();

const bool g_added = clipfio::bench::AddSummary([] {
    if (g_row_ratio == 0 || g_id_ratio == 0) return;
    std::printf("\nTexts\n  by row: %.2f of an empty call (goal %.1f): %s\n", g_row_ratio, kRowGoal,
                g_row_ratio <= kRowGoal ? "met" : "NOT MET");
    std::printf("  by id: %.2f of a locked binary search (goal %.1f): %s\n", g_id_ratio, kIdGoal,
                g_id_ratio <= kIdGoal ? "met" : "NOT MET");
});

}  // namespace
