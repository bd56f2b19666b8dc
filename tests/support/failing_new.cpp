#include "support/failing_new.h"

#include <cstdlib>
#include <new>

namespace {

constexpr int kOff = -1;
constexpr int kHit = -2;
thread_local int countdown = kOff;

void* Allocate(std::size_t bytes) noexcept {
    if (countdown >= 0 && countdown-- == 0) {
        countdown = kHit;
        return nullptr;
    }
    return std::malloc(bytes ? bytes : 1);
}

}  // namespace

FailingNew::FailingNew(int n) noexcept { countdown = n; }
FailingNew::~FailingNew() { countdown = kOff; }
bool FailingNew::Hit() const noexcept { return countdown == kHit; }

void* operator new(std::size_t bytes) {
    if (void* block = Allocate(bytes)) return block;
    throw std::bad_alloc();
}
void* operator new[](std::size_t bytes) { return operator new(bytes); }
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept { return Allocate(bytes); }
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept { return Allocate(bytes); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { std::free(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { std::free(block); }
