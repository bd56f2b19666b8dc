// Failing allocations on purpose: the unit test program's operator new counts down.
//
// for (int n = 0;; ++n) { FailingNew fail(n); run the operation; if (!fail.Hit()) break; }
#pragma once

// While it lives, `n` allocations of this thread go through and the one after them fails, once.
class FailingNew {
  public:
    explicit FailingNew(int n) noexcept;
    ~FailingNew();
    FailingNew(const FailingNew&) = delete;
    FailingNew& operator=(const FailingNew&) = delete;
    [[nodiscard]] bool Hit() const noexcept;
};
