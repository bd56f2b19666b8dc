#include "platform/program.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>

namespace platform {
namespace {

constexpr int kMillisecondsBetweenLooks = 200;
constexpr std::size_t kMostBytesPerRead = std::size_t{1} << 24;

std::atomic<std::atomic<bool>*> g_stop{nullptr};
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<void*>::is_always_lock_free, "used by a handler");

void OnStopRequest(int signal) {
    if (std::atomic<bool>* const flag = g_stop) *flag = true;
    std::signal(signal, SIG_DFL);
}

struct sigaction ActionOf(int signal) noexcept {
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    return action;
}

// Without SA_RESTART: a call that waits is not taken up again behind the handler's back.
void TakeSignal(int signal) noexcept {
    if (ActionOf(signal).sa_handler == SIG_IGN) return;
    struct sigaction action {};
    action.sa_handler = OnStopRequest;
    sigaction(signal, &action, nullptr);
}

void LeaveSignal(int signal) noexcept {
    if (ActionOf(signal).sa_handler == OnStopRequest) std::signal(signal, SIG_DFL);
}

}  // namespace

std::vector<std::string> Arguments(int argc, char** argv) { return {argv, argv + argc}; }

std::string ProgramFile() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).string();
}

void PrepareStandardStreams() noexcept {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

void TakeStopRequests(std::atomic<bool>* flag) noexcept {
    g_stop = flag;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) flag ? TakeSignal(signal) : LeaveSignal(signal);
}

std::ptrdiff_t ReadInput(void* data, std::size_t bytes, const std::atomic<bool>& flag) noexcept {
    for (;;) {
        if (flag) {
            errno = EINTR;
            return -1;
        }
        // With a bound: a request may have come after the look at the flag and before the wait.
        pollfd input{STDIN_FILENO, POLLIN, 0};
        const int ready = poll(&input, 1, kMillisecondsBetweenLooks);
        if (ready == 0 || (ready < 0 && errno == EINTR)) continue;
        const ssize_t got = read(STDIN_FILENO, data, std::min(bytes, kMostBytesPerRead));
        if (got >= 0 || (errno != EINTR && errno != EAGAIN)) return got;
    }
}

bool ReaderLeft(int error) noexcept { return error == EPIPE; }

bool IsTerminal(std::FILE* stream) noexcept { return isatty(fileno(stream)) != 0; }

}  // namespace platform
