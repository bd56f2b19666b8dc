// The user's locale as a test wants it, where a test can have it so: on Windows it is what it is.
#pragma once

#include "platform/locale.h"
#include "platform/text.h"
#include "support/scoped_variable.h"

namespace support {

class UserLocale {
  public:
    explicit UserLocale(LCID lcid)
        : variable_(W("KT_LCID"), platform::Wide(std::to_string(lcid)).c_str()), lcid_(lcid) {}
    [[nodiscard]] bool IsSet() const { return GetUserDefaultLCID() == lcid_; }

  private:
    ScopedVariable variable_;
    LCID lcid_;
};

}  // namespace support
