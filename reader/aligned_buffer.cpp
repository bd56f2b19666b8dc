#include "reader/aligned_buffer.h"

#include <cstdlib>
#include <utility>

namespace clipfio {

AlignedBuffer::~AlignedBuffer() { std::free(memory_); }

HRESULT AlignedBuffer::Reserve(int64_t bytes) {
    if (bytes <= capacity_) return S_OK;
    std::free(std::exchange(memory_, nullptr));
    capacity_ = bytes;
    offset_ = 0;
    // Zero-filled, so that no host ever sees what was in the memory before.
    memory_ = std::calloc(1, static_cast<uint64_t>(bytes) - 1 + alignment_);
    if (!memory_) {
        capacity_ = 0;
        return E_OUTOFMEMORY;
    }
    const uint64_t past = reinterpret_cast<uintptr_t>(memory_) % alignment_;
    offset_ = past ? alignment_ - past : 0;
    return S_OK;
}

HRESULT AlignedBuffer::GetPointer(void** out) {
    if (!out) return E_POINTER;
    *out = memory_ ? static_cast<uint8_t*>(memory_) + offset_ : nullptr;
    return S_OK;
}

}  // namespace clipfio
