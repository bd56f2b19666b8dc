#include "platform/program.h"

#include <fcntl.h>
#include <io.h>

#include <algorithm>
#include <cerrno>
#include <csignal>

#include "platform/base.h"
#include "platform/text.h"

#include <shellapi.h>

namespace platform {
namespace {

constexpr std::size_t kMostBytesPerRead = std::size_t{1} << 24;

std::atomic<std::atomic<bool>*> g_stop{nullptr};

void OnStopRequest(int signal) {
    if (std::atomic<bool>* const flag = g_stop) *flag = true;
    std::signal(signal, SIG_DFL);
}

}  // namespace

// Main's own are in the system's code page, which has few of the characters of file names.
std::vector<std::string> Arguments(int argc, char** argv) {
    WCHAR** const wide = CommandLineToArgvW(GetCommandLineW(), &argc);
    if (wide == nullptr) return {argv, argv + argc};
    std::vector<std::string> arguments;
    for (int i = 0; i < argc; ++i) arguments.push_back(Utf8(wide[i]));
    LocalFree(wide);
    return arguments;
}

std::string ProgramFile() {
    WString path(MAX_PATH, 0);
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) return Utf8({path.data(), length});
        path.resize(path.size() * 2);
    }
}

void PrepareStandardStreams() noexcept {
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
    // What moves in a terminal is drawn with control sequences; without this they would be shown.
    const HANDLE screen = GetStdHandle(STD_ERROR_HANDLE);
    DWORD mode = 0;
    if (GetConsoleMode(screen, &mode)) SetConsoleMode(screen, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

void TakeStopRequests(std::atomic<bool>* flag) noexcept {
    g_stop = flag;
    for (const int signal : {SIGINT, SIGTERM, SIGBREAK}) {
        const auto before = std::signal(signal, flag ? OnStopRequest : SIG_DFL);
        if (before == SIG_IGN) std::signal(signal, SIG_IGN);
    }
}

std::ptrdiff_t ReadInput(void* data, std::size_t bytes, const std::atomic<bool>&) noexcept {
    return _read(_fileno(stdin), data, static_cast<unsigned>(std::min(bytes, kMostBytesPerRead)));
}

// The runtime has no name of its own for a pipe that is being closed.
bool ReaderLeft(int error) noexcept { return error == EPIPE || error == EINVAL; }

// The runtime takes every character device for a terminal, NUL too: a console is what can be asked for its mode.
bool IsTerminal(std::FILE* stream) noexcept {
    DWORD mode = 0;
    return GetConsoleMode(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream))), &mode) != FALSE;
}

}  // namespace platform
