#include <benchmark/benchmark.h>

#include <vector>

#include "bench/summary.h"

namespace clipfio::bench {
namespace {

std::vector<std::function<void()>>& Summaries() {
    static std::vector<std::function<void()>> summaries;
    return summaries;
}

}  // namespace

bool AddSummary(std::function<void()> print) {
    Summaries().push_back(std::move(print));
    return true;
}

void PrintSummaries() {
    for (const auto& print : Summaries()) print();
}

}  // namespace clipfio::bench

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    clipfio::bench::PrintSummaries();
    return 0;
}
