// What a program's main is given: its name, arguments and standard streams.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

namespace platform {

// In UTF-8, the program's name first. Pass what main got.
std::vector<std::string> Arguments(int argc, char** argv);

// The program's own file in UTF-8, as the system's file functions take it; empty when it cannot be had.
std::string ProgramFile();

// Before anything is read or written: raw bytes on standard input and output, and a reader that went away, or a limit
// to the size of files, shows as a failed write.
void PrepareStandardStreams() noexcept;

// From now on the first request of each kind to end this process (an interrupt, a hang-up, a termination) sets the flag
// instead; the second one finds the system's own action. Requests that the process was started to ignore stay ignored.
// Null gives all back. For one thread.
void TakeStopRequests(std::atomic<bool>* flag) noexcept;

// Waits for bytes of standard input and takes what is there, at most `bytes`. Returns 0 at its end, and -1 with errno
// when it cannot be read. The flag ends the wait, with -1, where the system lets go of a read.
std::ptrdiff_t ReadInput(void* data, std::size_t bytes, const std::atomic<bool>& flag) noexcept;

// Whether the errno of a failed write says that the reader has closed its end.
bool ReaderLeft(int error) noexcept;

bool IsTerminal(std::FILE* stream) noexcept;

}  // namespace platform
