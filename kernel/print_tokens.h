// The texts that the printer puts in the place of "$(name)": one table for the process. Names are the same whatever
// their case. Any thread; the table has a lock of its own.
#pragma once

#include <cstdint>

#include "platform/base.h"

// Copies both; a token of that name is replaced. 1, or 0 when there is no memory (the old token is then gone too), for
// a null argument, and outside the kernel's life.
KT_API int32_t KtPrintF_AddToken(const WCHAR* name, const WCHAR* value) noexcept;
KT_API int32_t KtPrintF_DeleteToken(const WCHAR* name) noexcept;  // 1 when it was there, else 0

namespace clipfio {

// The kernel's start and end bracket all use of the table.
HRESULT CreatePrintTokens() noexcept;
void DestroyPrintTokens() noexcept;

// Finds a token and keeps the table locked while its value is used.
class TokenUse {
  public:
    explicit TokenUse(const WCHAR* name) noexcept;
    ~TokenUse();
    TokenUse(const TokenUse&) = delete;
    TokenUse& operator=(const TokenUse&) = delete;

    [[nodiscard]] bool IsFound() const noexcept { return found_; }
    [[nodiscard]] WStringView Value() const noexcept { return value_; }

  private:
    bool found_ = false;
    WStringView value_;
};

}  // namespace clipfio
