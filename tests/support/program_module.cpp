// The unit test program stands in for the module: it carries the module's resources, and counts as attached.
#include "platform/linux/resources.h"
#include "platform/module_entry.h"

extern "C" const unsigned char clipfio_resources[];
extern "C" const unsigned int clipfio_resources_size;

namespace {

[[maybe_unused]] const bool g_registered =
    platform::RegisterResources(nullptr, clipfio_resources, clipfio_resources_size);

}  // namespace

namespace platform {
bool ModuleAttached() noexcept { return true; }
}  // namespace platform
