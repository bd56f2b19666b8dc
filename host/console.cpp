#include "host/console.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "host/failure.h"
#include "platform/program.h"

namespace clipfio::host {
namespace {

std::atomic<bool> g_stop{false};

// False when the reader has closed its end.
[[nodiscard]] bool Outcome(bool good) {
    if (good) return true;
    if (platform::ReaderLeft(errno)) return false;
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

std::size_t ReadStandardInput(void* data, std::size_t bytes) {
    auto* to = static_cast<char*>(data);
    std::size_t done = 0;
    while (done < bytes) {
        const std::ptrdiff_t got = platform::ReadInput(to + done, bytes - done, g_stop);
        InterruptScope::Check();
        if (got < 0) throw Failure(std::string("cannot read standard input: ") + std::strerror(errno));
        if (got == 0) break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

InterruptScope::InterruptScope() {
    g_stop = false;
    platform::TakeStopRequests(&g_stop);
}

InterruptScope::~InterruptScope() { platform::TakeStopRequests(nullptr); }

bool InterruptScope::Requested() noexcept { return g_stop; }

void InterruptScope::Check() {
    if (g_stop) throw Failure("stopped");
}

}  // namespace clipfio::host
