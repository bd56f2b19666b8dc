#include "platform/program.h"

#include <unistd.h>

#include <csignal>

namespace platform {

std::vector<std::string> Arguments(int argc, char** argv) { return {argv, argv + argc}; }

void PrepareStandardStreams() noexcept { std::signal(SIGPIPE, SIG_IGN); }

bool IsTerminal(std::FILE* stream) noexcept { return isatty(fileno(stream)) != 0; }

}  // namespace platform
