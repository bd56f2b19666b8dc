// What a candidate library asks of the test that loads it. The candidate finds the host's address, as decimal digits,
// in the environment; without it, it is a good library with nothing to tell.
#pragma once

#include "r3dsdk/sdk_interfaces.h"

namespace candidate {

#define CANDIDATE_HOST_VARIABLE W("CLIPFIO_CANDIDATE_HOST")

struct Host {
    // The answer of a version or id function; `usual` is what a good library says.
    virtual uint32_t Number(const char* candidate, const char* symbol, uint32_t usual) = 0;
    // The answer of a text function, which stays valid until it is asked again.
    virtual const char* Text(const char* candidate, const char* symbol, const char* usual) = 0;
    virtual int32_t Initialize(const char* candidate, uint32_t phase, clipfio::SdkKeyValues* values,
                               const HMODULE* handles, uint32_t count) = 0;
    virtual uint32_t Imports(const char* candidate, clipfio::SdkImportList* list) = 0;
    // A line about what else happened.
    virtual void Event(const char* candidate, const char* event) = 0;
};

}  // namespace candidate
