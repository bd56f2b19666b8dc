// The one module record of the process, and what lives as long as it.
#pragma once

#include <atomic>
#include <cstdint>

#include "kernel/lang.h"
#include "platform/base.h"

namespace clipfio {

class MediaPropertyEditor;

struct PluginModule {
    HINSTANCE hInstance = nullptr;
    uint32_t reserved1 = 0;
    uint64_t reserved2 = 0;
    HKTLANG hLang = nullptr;
};

// Zeroed before the entry runs; no static initialiser touches it.
PluginModule& Module() noexcept;

// The process's editor of decode settings; null before attach, after detach, or when there was no memory for it. The
// streams keep the address of the pointer.
MediaPropertyEditor*& ProcessEditor() noexcept;

// Changed by IClassFactory::LockServer, and by the life of the factories. Nothing reads them to decide anything: the
// module never agrees to be unloaded.
std::atomic<int32_t>& ServerLockCount() noexcept;
std::atomic<int32_t>& FactoryCount() noexcept;

// The start and the end of the module in a process, called by its entry. Attach gives false when the kernel or the
// language context cannot be made; a missing decoder library is no failure.
bool AttachProcess(HINSTANCE instance) noexcept;
void DetachProcess() noexcept;

}  // namespace clipfio
