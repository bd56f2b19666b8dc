// What a program's main is given: its name, arguments and standard streams.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

namespace platform {

// In UTF-8, the program's name first. Pass what main got.
std::vector<std::string> Arguments(int argc, char** argv);

// The program's own file in UTF-8, as the system's file functions take it; empty when it cannot be had.
std::string ProgramFile();

// Before anything is read or written: raw bytes on standard input and output, and a reader that went away shows as a
// failed write.
void PrepareStandardStreams() noexcept;

bool IsTerminal(std::FILE* stream) noexcept;

}  // namespace platform
