// The module's own activation context, in which libraries with several versions are those that the module asks for.
#pragma once

#include "platform/base.h"

namespace platform {

// In force from its making to its end. Where there are no such contexts, and once the system has said so on Windows,
// nothing is done.
class ActivationScope {
#ifdef _WIN32
  public:
    ActivationScope() noexcept;
    ~ActivationScope();
    ActivationScope(const ActivationScope&) = delete;
    ActivationScope& operator=(const ActivationScope&) = delete;

  private:
    ULONG_PTR cookie_ = 0;
    bool active_ = false;
#else
  public:
    ActivationScope() noexcept {}
    ~ActivationScope() {}
#endif
};

}  // namespace platform
