// Standard output and the user's wish to stop.
#pragma once

#include <cstddef>

namespace clipfio::host {

// False when the reader has gone away, which is no failure: whoever reads decides how much. Throws Failure for any
// other reason.
[[nodiscard]] bool WriteStandardOutput(const void* data, std::size_t bytes);
[[nodiscard]] bool FlushStandardOutput();

// Bytes from standard input: fewer than asked for at its end alone. An InterruptScope ends the wait for them. Throws
// Failure for a stop and for an input that cannot be read.
[[nodiscard]] std::size_t ReadStandardInput(void* data, std::size_t bytes);

// While one lives, an interrupt (Ctrl-C), a hang-up or a request to end only sets a flag, so that files can be left
// whole. The second one ends the process at once. What the process was started to ignore stays ignored.
class InterruptScope {
  public:
    InterruptScope();
    ~InterruptScope();
    InterruptScope(const InterruptScope&) = delete;
    InterruptScope& operator=(const InterruptScope&) = delete;

    [[nodiscard]] static bool Requested() noexcept;
    // Throws Failure when a stop was asked for.
    static void Check();
};

}  // namespace clipfio::host
