// The C library's own names stand behind these, and every module of the process finds these first.
#include "tests/module/allocation_counter.h"

#include <cstddef>

extern "C" void* __libc_malloc(std::size_t bytes);
extern "C" void* __libc_calloc(std::size_t count, std::size_t bytes);
extern "C" void* __libc_realloc(void* block, std::size_t bytes);

namespace {

thread_local long g_allocations = 0;

}  // namespace

#define COUNTED extern "C" __attribute__((visibility("default")))

COUNTED void* malloc(std::size_t bytes) {
    ++g_allocations;
    return __libc_malloc(bytes);
}
COUNTED void* calloc(std::size_t count, std::size_t bytes) {
    ++g_allocations;
    return __libc_calloc(count, bytes);
}
COUNTED void* realloc(void* block, std::size_t bytes) {
    ++g_allocations;
    return __libc_realloc(block, bytes);
}

long Allocations() noexcept { return g_allocations; }
