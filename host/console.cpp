#include "host/console.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <string>

#include "host/failure.h"

namespace clipfio::host {
namespace {

std::atomic<bool> g_stop{false};
static_assert(std::atomic<bool>::is_always_lock_free, "set from a signal handler");

void OnInterrupt(int signal) {
    g_stop = true;
    std::signal(signal, SIG_DFL);
}

// A reader that closed its end: EPIPE, or EINVAL where the runtime reports it so.
[[nodiscard]] bool Outcome(bool good) {
    if (good) return true;
    if (errno == EPIPE || errno == EINVAL) return false;
    throw Failure(std::string("cannot write to standard output: ") + std::strerror(errno));
}

}  // namespace

bool WriteStandardOutput(const void* data, std::size_t bytes) {
    errno = 0;
    return Outcome(std::fwrite(data, 1, bytes, stdout) == bytes);
}

bool FlushStandardOutput() {
    errno = 0;
    return Outcome(std::fflush(stdout) == 0);
}

InterruptScope::InterruptScope() {
    g_stop = false;
    std::signal(SIGINT, OnInterrupt);
    std::signal(SIGTERM, OnInterrupt);
}

InterruptScope::~InterruptScope() {
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
}

bool InterruptScope::Requested() { return g_stop; }

void InterruptScope::Check() {
    if (g_stop) throw Failure("stopped");
}

}  // namespace clipfio::host
