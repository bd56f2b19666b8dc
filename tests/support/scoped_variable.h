// An environment variable with another value, or none (null), for a scope.
#pragma once

#include "platform/modules.h"

namespace support {

class ScopedVariable {
  public:
    ScopedVariable(const WCHAR* name, const WCHAR* value) : name_(name) {
        WCHAR old[512];
        had_ = GetEnvironmentVariableW(name, old, 512) != 0;
        if (had_) old_ = old;
        SetEnvironmentVariableW(name, value);
    }
    ~ScopedVariable() { SetEnvironmentVariableW(name_, had_ ? old_.c_str() : nullptr); }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

  private:
    const WCHAR* name_;
    bool had_ = false;
    WString old_;
};

}  // namespace support
