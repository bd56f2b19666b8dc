// Handles of shared mappings. Their value carries the file descriptor, so that another process that was told the
// value can find the mapping by it.
#pragma once

#include "platform/base.h"

namespace platform {

// By its value alone: such a handle may still be closed, or be another process's.
bool IsMappingHandle(HANDLE handle) noexcept;
// -1 for what is no live mapping of this process.
int LiveMappingDescriptor(HANDLE handle) noexcept;
BOOL CloseMapping(HANDLE handle) noexcept;
// A handle of this process on the mapping that `handle` names here, or in the process of `pidfd` and `id`. Null with
// the last error set on failure.
HANDLE DuplicateMapping(HANDLE handle, BOOL inherit) noexcept;
HANDLE DuplicateForeignMapping(int pidfd, DWORD id, HANDLE handle, BOOL inherit) noexcept;

}  // namespace platform
