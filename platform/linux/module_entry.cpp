// Linked into a module, not into the layer: calls the module's entry when it is loaded and unloaded, and makes its
// resources known.
#include "platform/module_entry.h"

#include <dlfcn.h>
#include <link.h>

#include "platform/modules.h"
#include "resources.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void* reserved);
extern "C" const unsigned char clipfio_resources[];
extern "C" const unsigned int clipfio_resources_size;

namespace {

class ModuleEntry {
  public:
    ModuleEntry() noexcept : module_(OwnModule()) {
        platform::RegisterResources(module_, clipfio_resources, clipfio_resources_size);
        attached_ = DllMain(module_, DLL_PROCESS_ATTACH, nullptr) != FALSE;
    }
    ~ModuleEntry() {
        if (attached_) DllMain(module_, DLL_PROCESS_DETACH, nullptr);
        platform::UnregisterResources(module_);
    }
    ModuleEntry(const ModuleEntry&) = delete;
    ModuleEntry& operator=(const ModuleEntry&) = delete;

    [[nodiscard]] bool IsAttached() const noexcept { return attached_; }

  private:
    static HMODULE OwnModule() noexcept {
        Dl_info info{};
        link_map* map = nullptr;
        const bool found = dladdr1(clipfio_resources, &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP) != 0;
        return found ? reinterpret_cast<HMODULE>(map) : nullptr;
    }

    HMODULE module_;
    bool attached_ = false;
};

// The link line puts this file last, so that the entry finds every other object of the module made, and at the end is
// called before any of them goes.
ModuleEntry g_entry;

}  // namespace

namespace platform {
bool ModuleAttached() noexcept { return g_entry.IsAttached(); }
}  // namespace platform
