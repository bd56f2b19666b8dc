// Failing platform calls on purpose, so that tests can walk every error path of an operation.
//
// for (int n = 0;; ++n) { FailAfter(n); run the operation; if (!Hit()) break; }   then Clear().
// Process-wide; the calls of all threads count. On Windows nothing is failed and Hit() is always false.
#pragma once

namespace platform::faults {

#ifdef _WIN32
inline void FailAfter(int) noexcept {}
inline void Clear() noexcept {}
inline bool Hit() noexcept { return false; }
#else
// Lets `n` calls of the layer that can fail go through and fails the one after them, once.
void FailAfter(int n) noexcept;
void Clear() noexcept;
// True once the call was failed, until the next FailAfter or Clear.
bool Hit() noexcept;
#endif

}  // namespace platform::faults
