#include "platform/program.h"

#include <fcntl.h>
#include <io.h>

#include "platform/base.h"
#include "platform/text.h"

#include <shellapi.h>

namespace platform {

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

// The runtime takes every character device for a terminal, NUL too: a console is what can be asked for its mode.
bool IsTerminal(std::FILE* stream) noexcept {
    DWORD mode = 0;
    return GetConsoleMode(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream))), &mode) != FALSE;
}

}  // namespace platform
