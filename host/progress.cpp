#include "host/progress.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "platform/program.h"

namespace clipfio::host {
namespace {

constexpr int kWidth = 30;
constexpr std::chrono::milliseconds kInterval{100};

}  // namespace

Progress::Progress(std::string label, std::uint64_t total)
    : label_(std::move(label)), total_(std::max<std::uint64_t>(total, 1)), shown_(platform::IsTerminal(stderr)) {
    if (shown_) Draw();
}

Progress::~Progress() {
    if (shown_) std::fputs("\r\033[K", stderr);
}

void Progress::Step(std::uint64_t steps) {
    if (!shown_) return;
    const std::lock_guard lock(mutex_);
    done_ += steps;
    if (std::chrono::steady_clock::now() - drawn_ >= kInterval || done_ >= total_) Draw();
}

void Progress::Draw() {
    drawn_ = std::chrono::steady_clock::now();
    const double part = static_cast<double>(std::min(done_, total_)) / static_cast<double>(total_);
    const auto full = static_cast<int>(part * kWidth);
    const std::string bar =
        std::string(static_cast<std::size_t>(full), '#') + std::string(static_cast<std::size_t>(kWidth - full), '.');
    std::fprintf(stderr, "\r%s [%s] %3d%%\033[K", label_.c_str(), bar.c_str(), static_cast<int>(part * 100));
    std::fflush(stderr);
}

}  // namespace clipfio::host
