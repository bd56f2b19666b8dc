#include "fuzz/resource_image.h"

// The system alone knows how a module's resources lie.
ResourceImageOfRun::ResourceImageOfRun(const uint8_t*, size_t) {}
ResourceImageOfRun::~ResourceImageOfRun() = default;
HMODULE ResourceImageOfRun::Module() const { return nullptr; }
