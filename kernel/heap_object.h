// Objects of the module live zero-filled on the platform's global heap.
#pragma once

#include <cstddef>
#include <new>

#include "platform/memory.h"

namespace clipfio {

// A base for classes whose objects are made with `new (std::nothrow)`: null when out of memory. A constructor needs to
// set only what is not zero.
class HeapObject {
  public:
    static void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
        const HGLOBAL block = GlobalAlloc(GPTR, bytes);
        return block ? GlobalLock(block) : nullptr;
    }
    static void operator delete(void* object) noexcept {
        if (!object) return;
        const HGLOBAL block = GlobalHandle(object);
        GlobalUnlock(block);
        GlobalFree(block);
    }
    static void operator delete(void* object, const std::nothrow_t&) noexcept { operator delete(object); }

  protected:
    HeapObject() noexcept = default;
    ~HeapObject() = default;
};

}  // namespace clipfio
