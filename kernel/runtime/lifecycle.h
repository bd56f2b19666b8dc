// The start and the end of the kernel: the bracket around all use of it. Both run while the module is attached to and
// detached from the process.
#pragma once

#include "platform/base.h"

// True when nothing failed. `flags` are kept for the interface's other hosts; the plug-in gives 0.
KT_API bool KtKernel_EarlyInitialize(HMODULE module, uint32_t flags) noexcept;
KT_API int32_t KtKernel_LateTerminate(HMODULE module) noexcept;  // always 1; the argument is not read
// The module given at the start, null after the end.
KT_API HMODULE KtKernel_GetAppKernel() noexcept;
