// The one guard of everything that leaves the module: no exception does.
#pragma once

#include <new>
#include <utility>

#include "platform/base.h"

namespace clipfio {

// Runs `operation`, which gives an HRESULT, and turns what it throws into one.
template <class Operation>
HRESULT Guarded(Operation&& operation) noexcept {
    try {
        return std::forward<Operation>(operation)();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_UNEXPECTED;
    }
}

}  // namespace clipfio
