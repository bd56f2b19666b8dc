// The loader's list of the further files that a main library asks for.
#pragma once

#include <string>
#include <vector>

#include "r3dsdk/sdk_interfaces.h"

namespace clipfio {

class SdkImportRows final : public SdkImportList {
  public:
    // As SdkKeyValueTable has it.
    void* Destroy(uint32_t flags) noexcept override;
    // A null name is an empty one.
    void Add(const char* file_name, uint32_t id, uint32_t flags) noexcept override;
    void Clear() noexcept override;
    uint32_t Count() noexcept override;
    // Valid until the list changes.
    const char* FileName(uint32_t row) noexcept override;
    // 0 for a row that is not there.
    uint32_t Id(uint32_t row) noexcept override;
    uint32_t Flags(uint32_t row) noexcept override;

    // A row could not be added since memory ran out.
    bool LostRows() const noexcept { return lost_rows_; }

  private:
    struct Row {
        std::string file_name;
        uint32_t id;
        uint32_t flags;
    };

    std::vector<Row> rows_;
    bool lost_rows_ = false;
};

}  // namespace clipfio
