// What a metric handle points to.
#pragma once

#include <cstddef>

#include "kernel/heap_object.h"
#include "kernel/key_path.h"
#include "kernel/metrics.h"

namespace clipfio {

using MetricPath = KeyPath<260>;

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
