// Finds the decoder library, checks that it fits, binds it and runs its start-up and shut-down.
//
// There is one loader in the process and nothing here is locked: initialise and finalise while no other thread uses
// the library or asks for the version text. No operation throws.
#pragma once

#include <cstdint>

#include "r3dsdk/sdk_interfaces.h"
#include "r3dsdk/sdk_status.h"

namespace clipfio {

// Looks for the library in `folder` (UTF-8), in the folder of the environment variable R3DSDKPATH and where libraries
// found there redirect to, and takes the newest that can be started. What an earlier call loaded goes first. 0 or an
// SdkStatus; after a failure nothing is loaded.
int32_t SdkInitialize(const char* folder, uint32_t options) noexcept;

// Ends the libraries, last first. May be called at any time.
void SdkFinalize() noexcept;

// The client's version, followed by the build names of the libraries and the folder in use. Narrow text, valid until
// the next call.
const char* SdkVersionText() noexcept;

// For a client that lives in a library which another client has loaded: called with each phase that the library's own
// initialisation gets. Phase 1 binds the `count` modules, which stay the other client's. `values` must stay valid until
// SdkFinalize. A loader that SdkInitialize left is ended first. The first call allocates nothing.
int32_t SdkInitializeEmbedded(uint32_t phase, SdkKeyValues* values, const HMODULE* handles, uint32_t count) noexcept;

// Loads further libraries into the loader in place, `folder` (UTF-8, ending in a separator) being put before each file
// name, binds all tables anew and runs phases 1 and 2 of all libraries. Libraries that were loaded stay loaded after a
// failure. Without a loader kSdkNoMainLibrary.
int32_t SdkLoadLate(const char* folder, SdkImportList* list) noexcept;

}  // namespace clipfio
