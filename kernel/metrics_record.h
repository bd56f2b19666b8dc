// What a metric handle points to.
#pragma once

#include <algorithm>
#include <cstddef>

#include "kernel/heap_object.h"
#include "kernel/metrics.h"

namespace clipfio {

// The path of a key, which is cut where it gets too long.
class MetricPath {
  public:
    static constexpr size_t kSize = 260;  // characters, terminator included

    MetricPath& Add(WStringView part) noexcept {
        const size_t fit = std::min(part.size(), kSize - 1 - length_);
        text_[length_ += part.copy(text_ + length_, fit)] = 0;
        is_cut_ |= fit < part.size();
        return *this;
    }
    MetricPath& AddNumber(uint32_t number) noexcept {
        if (number >= 10) AddNumber(number / 10);
        const auto digit = static_cast<WCHAR>(W('0') + number % 10);
        return Add({&digit, 1});
    }
    // A null or empty sub key adds nothing.
    MetricPath& AddSubKey(const WCHAR* sub_key) noexcept {
        return sub_key && *sub_key ? Add(W("\\")).Add(sub_key) : *this;
    }

    [[nodiscard]] const WCHAR* Text() const noexcept { return text_; }
    [[nodiscard]] bool IsCut() const noexcept { return is_cut_; }

  private:
    WCHAR text_[kSize] = {};
    size_t length_ = 0;
    bool is_cut_ = false;
};

}  // namespace clipfio

struct KtMetric : clipfio::HeapObject {
    WCHAR path[clipfio::MetricPath::kSize];
    HKEY key;  // null where opening failed
};
static_assert(offsetof(KtMetric, key) == 520);

namespace clipfio {

// The record of a handle; null for the default handle, which nothing sets.
inline KtMetric* MetricRecord(HKTMETRIC handle) noexcept {
    return reinterpret_cast<uintptr_t>(handle) == UINTPTR_MAX ? nullptr : handle;
}

// The open key of a handle, or null.
inline HKEY MetricKey(HKTMETRIC handle) noexcept {
    const KtMetric* const record = MetricRecord(handle);
    return record ? record->key : nullptr;
}

}  // namespace clipfio
