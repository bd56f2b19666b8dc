// A bar on standard error while a command works, when that is a terminal; nothing otherwise.
#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>

namespace clipfio::host {

// Step may be called by several threads.
class Progress {
  public:
    Progress(std::string label, std::uint64_t total);
    ~Progress();  // takes the bar away
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void Step(std::uint64_t steps = 1);

  private:
    void Draw();

    std::string label_;
    std::uint64_t total_;
    bool shown_;
    std::mutex mutex_;
    std::uint64_t done_ = 0;
    std::chrono::steady_clock::time_point drawn_{};
};

}  // namespace clipfio::host
