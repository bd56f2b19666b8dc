// What a room wants printed once all benchmarks have run: tables of ratios, and whether its goals were met.
#pragma once

#include <functional>

namespace clipfio::bench {

// To be called while static objects are made.
bool AddSummary(std::function<void()> print);
void PrintSummaries();

}  // namespace clipfio::bench
