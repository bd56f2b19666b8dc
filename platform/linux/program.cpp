#include "platform/program.h"

#include <unistd.h>

#include <csignal>
#include <filesystem>

namespace platform {

std::vector<std::string> Arguments(int argc, char** argv) { return {argv, argv + argc}; }

std::string ProgramFile() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).string();
}

void PrepareStandardStreams() noexcept { std::signal(SIGPIPE, SIG_IGN); }

bool IsTerminal(std::FILE* stream) noexcept { return isatty(fileno(stream)) != 0; }

}  // namespace platform
