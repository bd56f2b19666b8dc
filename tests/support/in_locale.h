// Another locale of the user for a scope, and the kernel's record refreshed for it.
#pragma once

#include <string>

#include "kernel/internationals.h"
#include "platform/locale.h"
#include "platform/text.h"
#include "support/scoped_variable.h"

namespace support {

namespace detail {
// Refreshes when the variable has its old value again.
struct RefreshLast {
    ~RefreshLast() { KtLang_GetInternationals(nullptr, 0); }
};
}  // namespace detail

// On Windows the user's locale is what it is: a test needs the one that is asked for.
class InLocale : private detail::RefreshLast, private ScopedVariable {
  public:
    explicit InLocale(LCID lcid)
        : ScopedVariable(W("KT_LCID"), platform::Wide(std::to_string(lcid)).c_str()), lcid_(lcid) {
        KtLang_GetInternationals(nullptr, 0);
    }
    [[nodiscard]] bool IsSet() const { return GetUserDefaultLCID() == lcid_; }
    // Why a test is skipped where it is not set.
    [[nodiscard]] std::string Lack() const {
        return "needs a user of locale " + std::to_string(lcid_) + ", not " + std::to_string(GetUserDefaultLCID());
    }

  private:
    LCID lcid_;
};

}  // namespace support
