#include "r3dsdk/sdk_import_list.h"

#include <new>

namespace clipfio {

void* SdkImportRows::Destroy(uint32_t flags) noexcept {
    Clear();
    if (!(flags & 1)) return this;
    delete this;
    return nullptr;
}

void SdkImportRows::Add(const char* file_name, uint32_t id, uint32_t flags) noexcept {
    try {
        rows_.push_back({file_name ? file_name : "", id, flags});
    } catch (const std::bad_alloc&) {
        lost_rows_ = true;
    }
}

void SdkImportRows::Clear() noexcept {
    rows_.clear();
    lost_rows_ = false;
}

uint32_t SdkImportRows::Count() noexcept { return static_cast<uint32_t>(rows_.size()); }

const char* SdkImportRows::FileName(uint32_t row) noexcept {
    return row < rows_.size() ? rows_[row].file_name.c_str() : nullptr;
}

uint32_t SdkImportRows::Id(uint32_t row) noexcept { return row < rows_.size() ? rows_[row].id : 0; }

uint32_t SdkImportRows::Flags(uint32_t row) noexcept { return row < rows_.size() ? rows_[row].flags : 0; }

}  // namespace clipfio
