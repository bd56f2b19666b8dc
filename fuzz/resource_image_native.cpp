#include <algorithm>

#include "fuzz/resource_image.h"
#include "platform/linux/resources.h"

namespace {

constexpr char kModule[] = "an address that no module has";

}  // namespace

// A block of exactly the size, so that a sanitizer sees each byte that is read behind it.
ResourceImageOfRun::ResourceImageOfRun(const uint8_t* data, size_t size) : bytes_(new uint8_t[size]) {
    std::copy_n(data, size, bytes_.get());
    platform::RegisterResources(Module(), bytes_.get(), size);
}

ResourceImageOfRun::~ResourceImageOfRun() { platform::UnregisterResources(Module()); }

HMODULE ResourceImageOfRun::Module() const { return reinterpret_cast<HMODULE>(const_cast<char*>(kModule)); }
