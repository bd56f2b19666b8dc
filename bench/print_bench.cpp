// What printing costs. The yardsticks: {fmt} writing the same text into a buffer of 16-bit characters, and ICU's number
// formatter, opened before, for numbers in groups. The ratios are printed last.
#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <fmt/xchar.h>
#include <unicode/unum.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <limits>
#include <string_view>

#include "bench/summary.h"
#include "kernel/print.h"
#include "kernel/runtime/lifecycle.h"
#include "platform/locale.h"
#include "platform/modules.h"

namespace {

constexpr uint32_t kRoom = 256;
constexpr std::u16string_view kName = u"A001_C002_0503AB_001.R3D";

// Arguments that the compiler does not know, and that change from call to call.
int32_t NextNumber() {
    static uint32_t state = 1;
    state = state * 1664525u + 1013904223u;
    return static_cast<int32_t>(state >> 1);
}

template <class... Arguments>
void Print(const WCHAR* format, Arguments... arguments) {
    WCHAR text[kRoom];
    benchmark::DoNotOptimize(KtCchPrintF(text, kRoom, nullptr, format, arguments...));
    benchmark::DoNotOptimize(text);
    benchmark::ClobberMemory();
}

template <class... Arguments>
void Yardstick(std::u16string_view format, const Arguments&... arguments) {
    char16_t text[kRoom];
    char16_t* const end = fmt::format_to(text, format, arguments...);
    *end = 0;
    benchmark::DoNotOptimize(text);
    benchmark::ClobberMemory();
}

void Decimal() { Print(W("%d"), NextNumber()); }
void DecimalByFmt() { Yardstick(u"{}", NextNumber()); }
void Hex() { Print(W("%08x"), NextNumber()); }
void HexByFmt() { Yardstick(u"{:08x}", NextNumber()); }
void Text() { Print(W("%s"), kName.data()); }
// A text that ends with a zero, as the printer gets it.
void TextByFmt() { Yardstick(u"{}", kName.data()); }
void Message() { Print(W("%s: frame %d of %d, status 0x%08x"), kName.data(), NextNumber(), 1000, NextNumber()); }
void MessageByFmt() {
    Yardstick(u"{}: frame {} of {}, status 0x{:08x}", kName.data(), NextNumber(), 1000, NextNumber());
}

class IcuFormatter {
  public:
    explicit IcuFormatter(int32_t decimals) {
        UErrorCode error = U_ZERO_ERROR;
        format_ = unum_open(UNUM_DECIMAL, nullptr, 0, "en_US", nullptr, &error);
        unum_setAttribute(format_, UNUM_FRACTION_DIGITS, decimals);
    }
    ~IcuFormatter() { unum_close(format_); }
    IcuFormatter(const IcuFormatter&) = delete;
    IcuFormatter& operator=(const IcuFormatter&) = delete;
    [[nodiscard]] UNumberFormat* Get() const { return format_; }

  private:
    UNumberFormat* format_;
};

void GroupedDecimal() { Print(W("$d"), NextNumber()); }
void GroupedDecimalByIcu() {
    static const IcuFormatter format(0);
    char16_t text[kRoom];
    UErrorCode error = U_ZERO_ERROR;
    unum_format(format.Get(), NextNumber(), text, kRoom, nullptr, &error);
    benchmark::DoNotOptimize(text);
}
void GroupedDouble() { Print(W("$.2f"), NextNumber() / 64.0); }
void GroupedDoubleByIcu() {
    static const IcuFormatter format(2);
    char16_t text[kRoom];
    UErrorCode error = U_ZERO_ERROR;
    unum_formatDouble(format.Get(), NextNumber() / 64.0, text, kRoom, nullptr, &error);
    benchmark::DoNotOptimize(text);
}

using Operation = void (*)();

struct Pair {
    const char* name;
    Operation ours;
    Operation yardstick;
    double goal;  // of the time of ours over the yardstick's
    double ratio;
};
Pair g_pairs[] = {
    {"print/%d", Decimal, DecimalByFmt, 1.5, 0},
    {"print/%08x", Hex, HexByFmt, 1.5, 0},
    {"print/%s", Text, TextByFmt, 1.5, 0},
    {"print/message", Message, MessageByFmt, 1.5, 0},
    {"print/$d", GroupedDecimal, GroupedDecimalByIcu, 1.0 / 3, 0},
    {"print/$.2f", GroupedDouble, GroupedDoubleByIcu, 1.0 / 3, 0},
};

double Seconds(Operation operation) {
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 2000; ++i) operation();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// The best of many short runs, taken in turn: what else the machine does disturbs both alike.
void Compare(benchmark::State& state, Pair& pair) {
    double ours = std::numeric_limits<double>::max();
    double yardstick = std::numeric_limits<double>::max();
    for (auto _ : state) {
        ours = std::min(ours, Seconds(pair.ours));
        yardstick = std::min(yardstick, Seconds(pair.yardstick));
    }
    pair.ratio = ours / yardstick;
    state.counters["ns"] = ours / 2000 * 1e9;
    state.counters["yardstick_ns"] = yardstick / 2000 * 1e9;
    state.counters["ratio"] = pair.ratio;
}

bool Register() {
    SetEnvironmentVariableW(W("KT_LCID"), W("0x0409"));
    KtKernel_EarlyInitialize(nullptr, 0);
    for (Pair& pair : g_pairs) {
        benchmark::RegisterBenchmark(pair.name, [&pair](benchmark::State& state) { Compare(state, pair); })
            ->Iterations(200)
            ->Unit(benchmark::kMillisecond);
    }
    return true;
}

void PrintReport() {
    for (const Pair& pair : g_pairs) {
        if (pair.ratio == 0) continue;
        std::printf("%-58s %6.2f  goal %.2f  %s\n", (std::string(pair.name) + ", time over the yardstick").c_str(),
                    pair.ratio, pair.goal, pair.ratio <= pair.goal ? "met" : "MISSED");
    }
}

[[maybe_unused]] const bool registered = Register();
[[maybe_unused]] const bool reported = clipfio::bench::AddSummary(PrintReport);

}  // namespace
