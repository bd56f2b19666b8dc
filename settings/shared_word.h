// One aligned word that the dialog's thread writes while decoding threads read it.
#pragma once

#include <atomic>

namespace clipfio {

// Neither side waits for the other, and no order between two words is promised.
template <class T>
class SharedWord {
  public:
    constexpr SharedWord(T value = T{}) noexcept : value_(value) {}
    SharedWord(const SharedWord& other) noexcept : value_(other.Get()) {}
    SharedWord& operator=(const SharedWord&) = delete;

    [[nodiscard]] T Get() const noexcept { return value_.load(std::memory_order_relaxed); }
    void Set(T value) noexcept { value_.store(value, std::memory_order_relaxed); }

  private:
    std::atomic<T> value_;
    static_assert(std::atomic<T>::is_always_lock_free);
};

}  // namespace clipfio
