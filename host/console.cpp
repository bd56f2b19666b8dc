#include "host/console.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <string>

#include "host/failure.h"

#ifdef SA_RESTART
#include <poll.h>
#endif

namespace clipfio::host {
namespace {

constexpr std::size_t kMostBytesPerRead = std::size_t{1} << 24;

std::atomic<bool> g_stop{false};
static_assert(std::atomic<bool>::is_always_lock_free, "set from a signal handler");

// The second signal of its kind finds the default action again.
void OnInterrupt(int signal) {
    g_stop = true;
    std::signal(signal, SIG_DFL);
}

#ifdef SA_RESTART

constexpr int kStopSignals[] = {SIGINT, SIGTERM, SIGHUP};
constexpr int kMillisecondsBetweenLooks = 200;

// A call that waits is not taken up again behind the handler's back.
void TakeSignal(int signal) {
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    if (action.sa_handler == SIG_IGN) return;
    action = {};
    action.sa_handler = OnInterrupt;
    sigaction(signal, &action, nullptr);
}

void LeaveSignal(int signal) {
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    if (action.sa_handler == OnInterrupt) std::signal(signal, SIG_DFL);
}

// With a bound: a signal may have come after the flag was looked at and before the wait began.
void WaitForInput() {
    pollfd input{STDIN_FILENO, POLLIN, 0};
    int ready = 0;
    do {
        InterruptScope::Check();
        ready = poll(&input, 1, kMillisecondsBetweenLooks);
    } while (ready == 0 || (ready < 0 && errno == EINTR));
}

#else

constexpr int kStopSignals[] = {SIGINT, SIGTERM};

void TakeSignal(int signal) {
    if (std::signal(signal, OnInterrupt) == SIG_IGN) std::signal(signal, SIG_IGN);
}

void LeaveSignal(int signal) {
    if (std::signal(signal, SIG_DFL) == SIG_IGN) std::signal(signal, SIG_IGN);
}

void WaitForInput() { InterruptScope::Check(); }

#endif

// A reader that closed its end: EPIPE, or EINVAL where the runtime reports it so.
[[nodiscard]] bool Outcome(bool good) {
    if (good) return true;
    if (errno == EPIPE || errno == EINVAL) return false;
    throw Failure(std::string("cannot write to standard output: ") + std::strerror(errno));
}

}  // namespace

void PrepareConsole() {
#ifdef _O_BINARY
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stdin), _O_BINARY);
#endif
#ifdef SIGPIPE
    std::signal(SIGPIPE, SIG_IGN);
#endif
#ifdef SIGXFSZ
    // A file that grows past a limit is a write that fails.
    std::signal(SIGXFSZ, SIG_IGN);
#endif
}

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
        WaitForInput();
        const auto part = static_cast<unsigned>(std::min(bytes - done, kMostBytesPerRead));
        const auto got = read(fileno(stdin), to + done, part);
        if (got == 0) break;
        if (got > 0) {
            done += static_cast<std::size_t>(got);
        } else if (errno != EINTR && errno != EAGAIN) {
            throw Failure(std::string("cannot read standard input: ") + std::strerror(errno));
        }
    }
    return done;
}

bool IsOutputTerminal() { return isatty(fileno(stdout)) != 0; }
bool IsErrorOutputTerminal() { return isatty(fileno(stderr)) != 0; }

InterruptScope::InterruptScope() {
    g_stop = false;
    for (const int signal : kStopSignals) TakeSignal(signal);
}

InterruptScope::~InterruptScope() {
    for (const int signal : kStopSignals) LeaveSignal(signal);
}

bool InterruptScope::Requested() noexcept { return g_stop; }

void InterruptScope::Check() {
    if (g_stop) throw Failure("stopped");
}

}  // namespace clipfio::host
