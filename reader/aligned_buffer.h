// A buffer that only grows, with a fixed alignment. Its content is not kept when it grows. Not for several threads.
#pragma once

#include <cstdint>

#include "kernel/heap_object.h"
#include "platform/base.h"

namespace clipfio {

class AlignedBuffer : public HeapObject {
  public:
    // `alignment` in bytes, a power of two.
    explicit AlignedBuffer(uint64_t alignment) noexcept : alignment_(alignment) {}
    AlignedBuffer(const AlignedBuffer&) = delete;
    AlignedBuffer& operator=(const AlignedBuffer&) = delete;

    // S_OK or E_OUTOFMEMORY, and then nothing is held. Below 1 byte succeeds and holds nothing.
    virtual HRESULT Reserve(int64_t bytes);
    // The first aligned byte; null while nothing is held. Always S_OK.
    virtual HRESULT GetPointer(void** out);

    // The owner ends the object, so that no slot is spent on it.
    ~AlignedBuffer();

  private:
    void* memory_ = nullptr;
    int64_t capacity_ = 0;
    uint64_t offset_ = 0;
    uint64_t alignment_;
};

}  // namespace clipfio
