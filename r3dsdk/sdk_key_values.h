// The loader's own table of settings, which it shares with the libraries.
#pragma once

#include <map>

#include "r3dsdk/sdk_interfaces.h"

namespace clipfio {

// What is set while memory has run out is dropped: the caller is another module and cannot be told.
class SdkKeyValueTable final : public SdkKeyValues {
  public:
    void SetPointer(uint64_t key, const void* value) noexcept override;
    void SetValue(uint64_t key, uint64_t value) noexcept override;
    bool Has(uint64_t key) noexcept override;
    uint64_t GetValue(uint64_t key) noexcept override;
    void* GetPointer(uint64_t key) noexcept override;
    void Dump() noexcept override;
    // Without bit 0 the table is emptied and the memory stays the caller's; with it the object is deleted. Returns what
    // is left: the object or null.
    void* Destroy(uint32_t flags) noexcept override;

    // Something was dropped.
    bool LostValues() const noexcept { return lost_values_; }

  private:
    std::map<uint64_t, uint64_t> values_;
    bool lost_values_ = false;
};

}  // namespace clipfio
