// What the reader's COM objects share: the count, and the steps of QueryInterface.
#pragma once

#include <atomic>
#include <cstdint>

#include "platform/base.h"
#include "platform/com.h"
#include "platform/scoped.h"

namespace clipfio {

// An interlocked reference count; both operations give the new count.
class ReferenceCount {
  public:
    explicit ReferenceCount(uint32_t start) noexcept : count_(start) {}
    uint32_t Increment() noexcept { return count_.fetch_add(1, std::memory_order_relaxed) + 1; }
    uint32_t Decrement() noexcept { return count_.fetch_sub(1, std::memory_order_acq_rel) - 1; }

  private:
    std::atomic<uint32_t> count_;
};

// The recursive mutex that each reader object but the class objects has.
class ObjectLock {
  public:
    ObjectLock() noexcept : mutex_(CreateMutexW(nullptr, FALSE, nullptr)) {}
    // False when the platform had no mutex to give; the object must then not be used.
    [[nodiscard]] bool IsGood() const noexcept { return static_cast<bool>(mutex_); }
    [[nodiscard]] platform::MutexLock Hold() noexcept { return platform::MutexLock(mutex_.Get()); }

  private:
    platform::ScopedHandle mutex_;
};

// Hands `object` out with a reference.
template <class Interface>
HRESULT HandOut(Interface* object, void** out) noexcept {
    object->AddRef();
    *out = object;
    return S_OK;
}

}  // namespace clipfio
